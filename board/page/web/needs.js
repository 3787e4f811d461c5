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

// What is said of a need, and what can be done about it.
function proposal(need) {
  const name = need.thread || undefined;
  return [
    [el('p', { class: 'asked' }, 'The goal is complete. Do you agree?')],
    el('div', { class: 'options' },
      deedButton('Confirm', () => ({ method: 'person_confirm_goal', name }), { kind: 'primary' }),
      deedButton('Reopen', () => ({ method: 'person_reopen_goal', name }))),
  ];
}

function debate(need) {
  const found = state.debates.find((row) => row.id === need.id);
  return [
    [el('p', { class: 'asked' }, linked(need.question)),
      found?.last && el('p', { class: 'about' }, `${found.lastBy}: `, linked(found.last))],
    sayLine({ key: `needs-${need.id}`, label: `Reply in ${need.id}`, placeholder: 'Your word on it',
      button: 'Reply', deedOf: (body) => ({ method: 'person_reply', name: need.thread || undefined, taskID: need.id, body }) }),
  ];
}

function tag(need) {
  return [
    [el('p', { class: 'asked' }, linked(need.question))],
    sayLine({ key: `needs-${need.id}`, label: `Reply on ${need.id}`, placeholder: 'Your reply',
      button: 'Reply', deedOf: (body) => ({ method: 'person_comment', name: need.thread || undefined, taskID: need.id, body }) }),
  ];
}

function helper(need) {
  const found = need.thread ? null : state.helpers.find((row) => row.name === need.id);
  return [
    [el('p', { class: 'asked' }, found ? `May agents have “${need.id}” started?` : need.question),
      found && el('p', {}, el('code', {}, found.command)),
      found?.text && el('p', { class: 'about' }, linked(found.text)),
      found?.reason && el('p', { class: 'about' }, 'Why: ', linked(found.reason))],
    suggestionButtons(need.id, need.thread),
  ];
}

function bodyOf(need) {
  if (need.kind === 'proposal') return proposal(need);
  if (need.kind === 'escalated' || need.kind === 'discussion') return debate(need);
  if (need.kind === 'tag') return tag(need);
  if (need.kind === 'question') return [[questionText(need)], answerForm(need, 'needs')];
  return helper(need);
}

const keyOf = (need) => [need.thread, need.kind, need.id, need.question, need.options].join('\n');

function makeNeed(need) {
  const isTask = /^[td]\d+$/.test(need.id);
  const head = el('header', {},
    isTask && !need.thread ? linkTo(need.id) : null,
    need.thread && el('span', { class: 'chip' }, need.thread),
    el('span', { class: 'who' }, need.from), ` ${KINDS[need.kind] ?? need.kind} `,
    need.since && sinceNode(el('time', { class: 'age' }), need.since));
  const [told, ways] = bodyOf(need);
  return el('li', { class: `need ${need.kind}`, data: { need: need.id } },
    el('div', { class: 'both' }, el('div', {}, head, need.title && el('h3', {}, need.title), told), ways));
}

function draw() {
  const needs = state.needs;
  section.hidden = needs.length === 0;
  say(title, needs.length === 1 ? 'One thing needs you' : `${needs.length} things need you`);
  keep(list, needs, keyOf, makeNeed);
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
    if (changed.has('needs')) draw();
  });
}
