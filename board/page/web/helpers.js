// The helpers: those that are allowed, suggested and asked for, and a form to allow another.

import { act, complain, deedButton, dropDraft, keepDraft } from './act.js';
import { argumentsOf } from './arguments.js';
import { el, keep, linkTo, put, say } from './dom.js';
import { argumentList, launchFacts, makeMarks } from './launch.js';
import { ask, askLaunch } from './link.js';
import { rowsOf } from './sheet.js';
import { watch } from './store.js';
import { suggestionButtons } from './suggestion.js';
import { sinceNode } from './times.js';
import { isSheetOpen, openSheet } from './window.js';

const REST_MS = 2000;
let shown = null;

function allowedRow(row) {
  return el('li', { class: 'helper-card', data: { helper: row.helper } },
    el('header', {}, el('strong', {}, row.helper), el('span', { class: 'about' }, row.text),
      deedButton('Forget', () => ({ method: 'person_helper_forget', agent: row.helper }), { kind: 'quiet', after: load })),
    argumentList(row.arguments),
    el('p', { class: 'about' }, 'in ', el('code', {}, row.directory), `; ${row.marks}`));
}

function suggestedRow(row) {
  return el('li', { class: 'helper-card', data: { helper: row.helper } },
    el('header', {}, el('strong', {}, row.helper), el('span', { class: 'about' }, `${row.text} (${row.by})`)),
    argumentList(row.arguments), suggestionButtons(row.helper, ''));
}

// What a helper wrote, asked for when it is looked at.
function outputPart(handle) {
  const text = el('pre', { class: 'output', tabindex: '0', 'aria-label': `What ${handle} wrote` });
  const part = el('details', { class: 'saying' }, el('summary', {}, `What ${handle} wrote`), text);
  let timer = 0;
  const read = async () => {
    clearTimeout(timer);
    if (!part.open || !part.isConnected || !isSheetOpen()) return;
    timer = setTimeout(read, REST_MS);
    try {
      const written = rowsOf(await ask('show', { what: handle }), 'output')[0]?.text;
      say(text, written || 'Nothing yet.');
    } catch (refusal) {
      say(text, refusal.message);
    }
  };
  part.addEventListener('toggle', read);
  part.read = read;
  return part;
}

function makeRun(row) {
  const parts = { state: el('span', { class: 'chip' }), remark: el('p', { class: 'about' }), output: outputPart(row.handle) };
  const node = el('li', { class: 'helper-card', data: { run: row.handle } },
    el('header', {}, el('strong', {}, row.handle), el('span', { class: 'about' }, `${row.name}, for ${row.from} `,
      row.task && linkTo(row.task)), parts.state, sinceNode(el('time', { class: 'age' }), row.since)),
    parts.remark, parts.output);
  node.parts = parts;
  return node;
}

function updateRun({ parts }, row) {
  say(parts.state, row.state);
  parts.state.dataset.state = row.state;
  say(parts.remark, row.remark);
  parts.remark.hidden = !row.remark;
  parts.output.read();
}

async function load() {
  if (!shown) return;
  try {
    const sheet = await ask('helpers');
    const allowed = rowsOf(sheet, 'allowed');
    const suggested = rowsOf(sheet, 'suggested');
    const runs = rowsOf(sheet, 'hands').reverse();
    keep(shown.allowed, allowed, (row) => JSON.stringify(row), allowedRow);
    keep(shown.suggested, suggested, (row) => JSON.stringify(row), suggestedRow);
    keep(shown.runs, runs, (row) => row.handle, makeRun, updateRun);
    shown.none.hidden = allowed.length > 0;
    shown.suggestedTitle.hidden = suggested.length === 0;
    shown.runsTitle.hidden = runs.length === 0;
  } catch (refusal) {
    complain(refusal);
  }
}

const FIELDS = [
  ['agent', 'Name', 'scout'],
  ['explanation', 'What it is good for', 'reads code, answers questions'],
  ['command', 'Command', "claude -p 'be brief'"],
];

// The form that allows another: its arguments are shown first, and what was shown is what is sent.
function allowForm() {
  const inputs = FIELDS.map(([name, label, placeholder]) => {
    const input = el('input', { type: 'text', id: `helper-${name}`, autocomplete: 'off', spellcheck: 'false', placeholder, maxlength: 2000 });
    keepDraft(input, `helper-${name}`);
    return { name, input, row: el('p', { class: 'field' }, el('label', { for: input.id }, label), input) };
  });
  const [name, explanation, command] = inputs.map(({ input }) => input);
  const marks = makeMarks('allowed');
  const look = el('button', { type: 'submit' }, 'Show what would run');
  const launch = el('div', { class: 'launch' });
  const form = el('form', { 'aria-label': 'Allow another' }, inputs.map(({ row }) => row), marks.rows, el('p', { class: 'end' }, look), launch);
  command.addEventListener('input', () => put(launch));
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    try {
      const line = command.value;
      const told = await askLaunch(line);
      if (line === command.value) put(launch, launchFacts(told.arguments, told), el('p', { class: 'end' }, allowButton(told)));
    } catch (refusal) {
      put(launch);
      complain(refusal);
    }
  });
  function allowButton(told) {
    const button = el('button', { type: 'button', class: 'primary' }, 'Allow exactly this');
    button.addEventListener('click', async () => {
      const outcome = await act(button, { method: 'person_helper_allow', agent: name.value, explanation: explanation.value,
        words: argumentsOf(told.arguments), ...marks.values() });
      if (!outcome) return;
      inputs.forEach((field) => dropDraft(`helper-${field.name}`));
      form.reset();
      put(launch);
      load();
    });
    return button;
  }
  return form;
}

// Opens the window with all of them.
export function openHelpers() {
  shown = {
    allowed: el('ul', { class: 'helpers' }),
    suggested: el('ul', { class: 'helpers' }),
    runs: el('ul', { class: 'helpers' }),
    none: el('p', { class: 'empty' }, 'None yet: agents do alone what they do. A helper is a command that you allow them to have started.'),
    suggestedTitle: el('h2', {}, 'Suggested'),
    runsTitle: el('h2', {}, 'Asked for'),
  };
  openSheet('Helpers', el('h2', {}, 'Allowed helpers'), shown.none, shown.allowed, shown.suggestedTitle, shown.suggested,
    shown.runsTitle, shown.runs, el('h2', {}, 'Allow another'), allowForm());
  load();
}

// Keeps the window right while it is open.
export function mountHelpers() {
  watch((changed) => {
    if (!isSheetOpen() || !shown?.allowed.isConnected) return;
    if (['rev', 'needs', 'link'].some((part) => changed.has(part))) load();
  });
}
