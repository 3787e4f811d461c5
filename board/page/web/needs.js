// What needs the person: questions, proposals, debates that were handed over, tags, suggestions.

import { deedButton, sayLine } from './act.js';
import { answerForm, questionText } from './answer.js';
import { el, keep, linked, linkTo, put, say } from './dom.js';
import { state, watch } from './store.js';
import { suggestionButtons } from './suggestion.js';
import { sinceNode } from './times.js';

const section = document.getElementById('needs');
const title = el('h2', { id: 'needs-title' });
const list = el('ul', { class: 'need-list' });

const KINDS = {
  question: 'asks',
  proposal: 'proposes',
  escalated: 'cannot settle it without you',
  discussion: 'asks you in a discussion',
  tag: 'tagged you',
  helper: 'would like a helper',
};

// What stands on the board beside the need: the debate, or the suggestion.
function besideOf(need) {
  if (need.kind === 'escalated' || need.kind === 'discussion') return state.debates.find((row) => row.id === need.id);
  if (need.kind === 'helper' && !need.thread) return state.helpers.find((row) => row.name === need.id);
  return undefined;
}

const asked = (...words) => el('p', { class: 'asked' }, ...words);
const about = (...words) => el('p', { class: 'about' }, ...words);

// What is said of a need.
function toldOf(need) {
  const beside = besideOf(need);
  if (need.kind === 'proposal') return [asked('The goal is complete. Do you agree?')];
  if (need.kind === 'question') return [questionText(need)];
  if (need.kind !== 'helper') {
    return [asked(linked(need.question)), beside?.last && about(`${beside.lastBy}: `, linked(beside.last))];
  }
  return [
    asked(beside ? `May agents have “${need.id}” started?` : need.question),
    beside && el('p', {}, el('code', {}, beside.command)),
    beside?.text && about(linked(beside.text)),
    beside?.reason && about('Why: ', linked(beside.reason)),
  ];
}

function replyLine(need, label, placeholder, method) {
  return sayLine({ key: `needs-${need.id}`, label, placeholder, button: 'Reply',
    deedOf: (body) => ({ method, name: need.thread || undefined, taskID: need.id, body }) });
}

// What can be done about it.
function waysOf(need) {
  const name = need.thread || undefined;
  switch (need.kind) {
    case 'proposal':
      return el('div', { class: 'options' },
        deedButton('Confirm', () => ({ method: 'person_confirm_goal', name }), { kind: 'primary' }),
        deedButton('Reopen', () => ({ method: 'person_reopen_goal', name })));
    case 'escalated':
    case 'discussion': return replyLine(need, `Reply in ${need.id}`, 'Your word on it', 'person_reply');
    case 'tag': return replyLine(need, `Reply on ${need.id}`, 'Your reply', 'person_comment');
    case 'question': return answerForm(need, 'needs');
    default: return suggestionButtons(need.id, need.thread);
  }
}

const keyOf = (need) => [need.thread, need.kind, need.id, need.question, need.options].join('\n');

function headOf(need) {
  const isTask = /^[td]\d+$/.test(need.id);
  return el('header', {},
    isTask && !need.thread ? linkTo(need.id) : null,
    need.thread && el('span', { class: 'chip' }, need.thread),
    el('span', { class: 'who' }, need.from), ` ${KINDS[need.kind] ?? need.kind} `,
    need.since && sinceNode(el('time', { class: 'age' }), need.since));
}

function makeNeed(need) {
  const told = el('div');
  const node = el('li', { class: `need ${need.kind}`, data: { need: need.id } },
    el('div', { class: 'both' }, told, waysOf(need)));
  node.told = told;
  return node;
}

// Says what is so by now; what is being typed stays.
function updateNeed(node, need) {
  const key = JSON.stringify([need, besideOf(need)]);
  if (node.key === key) return;
  node.key = key;
  put(node.told, headOf(need), need.title && el('h3', {}, need.title), toldOf(need));
}

function draw() {
  const needs = state.needs;
  section.hidden = needs.length === 0;
  say(title, needs.length === 1 ? 'One thing needs you' : `${needs.length} things need you`);
  keep(list, needs, keyOf, makeNeed, updateNeed);
}

// Goes to the first control of the need after the one that has the focus.
export function focusNextNeed() {
  const all = [...list.children];
  if (all.length === 0) return;
  const at = all.findIndex((node) => node.contains(document.activeElement));
  const next = all[(at + 1) % all.length];
  next.querySelector('.options button, input, textarea, button')?.focus();
  next.scrollIntoView({ block: 'nearest' });
}

// Shows what needs the person, and keeps it.
export function mountNeeds() {
  put(section, title, list);
  watch((changed) => {
    if (['needs', 'debates', 'helpers'].some((part) => changed.has(part))) draw();
  });
}
