// A task whole: what is asked, what it is, what it waits on, its brief, discussions and log.

import { sayLine } from './act.js';
import { answerForm, questionText } from './answer.js';
import { makeDebate, updateDebate } from './debate_sheet.js';
import { el, keep, linked, linkTo, put, say, short } from './dom.js';
import { listOf, rowsOf } from './sheet.js';
import { state } from './store.js';
import { drawActions } from './task_actions.js';
import { moment, sinceNode, untilBar } from './times.js';

const LINES = 60;

// The sheet of a task, without anything on it yet.
export function makeTask(id) {
  const parts = {
    id: el('span', { class: 'id' }, short(id)),
    state: el('span', { class: 'chip' }),
    title: el('h2', {}),
    question: el('div', { class: 'ask' }),
    lease: el('span', { class: 'lease', hidden: true }),
    facts: el('dl', { class: 'facts' }),
    actions: el('div', { class: 'actions' }),
    body: el('div', { class: 'brief' }),
    debates: el('div', { class: 'debates' }),
    log: el('ol', { class: 'log' }),
    silent: el('p', { class: 'empty' }, 'Nothing has been written on it yet.'),
    earlier: el('button', { type: 'button', class: 'quiet', hidden: true }),
  };
  const comment = sayLine({ key: `comment-${id}`, label: `Comment on ${short(id)}`, rows: 2, button: 'Comment',
    placeholder: 'A comment to all who work on it (Ctrl+Enter sends)',
    deedOf: (body) => ({ method: 'person_comment', taskID: id, body }) });
  const node = el('article', { class: 'task' }, el('p', { class: 'top' }, parts.id, parts.state), parts.title,
    parts.lease, parts.question, parts.facts, parts.actions, parts.body, parts.debates,
    el('section', { 'aria-label': 'Log' }, el('h3', {}, 'Log'), parts.earlier, parts.log, parts.silent), comment);
  const shown = { id, node, parts, lines: LINES, sheet: null };
  parts.earlier.addEventListener('click', () => {
    shown.lines += 500;
    drawLog(shown);
  });
  return shown;
}

const STATES = { working: 'claimed' };

function links(ids) {
  return ids.map((id) => {
    const task = state.tasks.get(id);
    return el('span', { class: 'row' }, linkTo(id), task ? ` ${task.title} ` : ' ',
      task && el('span', { class: 'chip' }, STATES[task.state] ?? task.state));
  });
}

function drawFacts(shown, row) {
  const known = state.tasks.get(shown.id);
  const after = [...state.tasks.values()].filter((task) => task.waitsOn.includes(shown.id)).map((task) => task.id);
  const facts = [
    ['Holder', row.holder],
    ['Held since', known?.claimed && row.holder && row.state !== 'done' ? sinceNode(el('time', {}), known.claimed) : ''],
    ['Filed by', known?.filedBy],
    ['Meant for', row.meantFor],
    ['Role', row.role],
    ['Type', row.type],
    ['Priority', row.priority],
    ['Taken', row.attempts && `${row.attempts} times`],
    ['Parked', row.parked],
    ['Answer', row.answer],
    ['Review', row.review],
    ['Resources', listOf(row.resources).join(', ')],
    ['Waits on', row.waitsOn ? links(listOf(row.waitsOn)) : ''],
    ['Needed by', after.length ? links(after) : ''],
    ['Tagged', listOf(row.tagged).join(', ')],
    ['Watchers', listOf(row.watchers).join(', ')],
    ['Wanted by', listOf(row.wantedBy).join(', ')],
  ].filter(([, value]) => value && value.length !== 0);
  put(shown.parts.facts, facts.map(([name, value]) => [el('dt', {}, name),
    el('dd', {}, typeof value === 'string' ? linked(value) : value)]));
}

function drawQuestion(shown, row) {
  const { question } = shown.parts;
  const key = row.question ? [row.question, row.options, row.secret].join('\n') : '';
  // As long as the same is asked, what is typed there stays.
  if (question.dataset.key === key) return;
  question.dataset.key = key;
  const need = { ...row, thread: '' };
  put(question, row.question && [questionText(need), answerForm(need, 'drawer')]);
}

function drawDebates(shown, debates) {
  keep(shown.parts.debates, debates, ({ row }) => row.id, ({ row }) => {
    const debate = makeDebate(row.id, true);
    debate.node.debate = debate;
    return debate.node;
  }, (node, { sheet }) => updateDebate(node.debate, sheet));
}

const KINDS = { gist: 'summary', handOff: 'hand-off' };

function drawLog(shown) {
  const lines = rowsOf(shown.sheet, 'log').map((line, i) => ({ ...line, number: i }));
  const told = lines.slice(-shown.lines);
  shown.parts.silent.hidden = lines.length > 0;
  shown.parts.earlier.hidden = told.length === lines.length;
  say(shown.parts.earlier, `${lines.length - told.length} earlier lines`);
  keep(shown.parts.log, told, (line) => `${line.number} ${line.text}`, (line) => el('li', { class: line.kind },
    el('span', { class: 'top' }, el('strong', {}, line.by), KINDS[line.kind] && el('span', { class: 'chip' }, KINDS[line.kind]),
      line.at && el('time', { title: new Date(Number(line.at)).toLocaleString() }, moment(line.at))),
    el('p', {}, linked(line.text))));
}

// Makes the sheet say what is so.
export function updateTask(shown, sheet, debates) {
  const [row] = rowsOf(sheet, 'task');
  const { parts } = shown;
  shown.sheet = sheet;
  say(parts.state, STATES[row.state] ?? row.state);
  parts.state.dataset.state = row.state;
  say(parts.title, row.title);
  const leaseUntil = state.tasks.get(shown.id)?.leaseUntil;
  parts.lease.hidden = !leaseUntil;
  if (leaseUntil) untilBar(parts.lease, leaseUntil, Number(state.thread?.lease) || 1);
  const body = rowsOf(sheet, 'brief')[0]?.text ?? '';
  drawQuestion(shown, row);
  drawFacts(shown, row);
  drawActions(parts.actions, row, body);
  if (parts.body.dataset.words !== body) {
    parts.body.dataset.words = body;
    put(parts.body, linked(body));
  }
  drawDebates(shown, debates);
  drawLog(shown);
}
