// The goal, the charter, the squad switch, the revision, and whether the board answers.

import { act, sayLine } from './act.js';
import { el, linked, put, say } from './dom.js';
import { openHelpers } from './helpers.js';
import { chooseThread } from './link.js';
import { openTaskForm } from './task_form.js';
import { noticeButton } from './notices.js';
import { closeSheet, openSheet } from './window.js';
import { state, watch } from './store.js';

const header = document.getElementById('goal');
const goal = el('h1', {});
const charter = el('p', { class: 'charter' });
const badge = el('span', { class: 'chip', hidden: true });
const link = el('span', { class: 'link' });
const rev = el('span', { class: 'rev', title: 'the board’s revision' });
const threads = el('select', { 'aria-label': 'Thread', hidden: true });
const helpers = el('button', { type: 'button', on: { click: openHelpers } }, 'Helpers');
const squad = el('button', { type: 'button', role: 'switch', class: 'switch' }, 'Squad');

function editGoal() {
  const after = closeSheet;
  openSheet('Goal and charter',
    el('h2', {}, 'Goal'),
    sayLine({ key: 'goal', label: 'Goal', placeholder: state.thread?.goal || 'What is it all for?', rows: 5,
      button: 'Set the goal', deedOf: (body) => ({ method: 'person_goal', body }), after }),
    el('h2', {}, 'Charter'),
    sayLine({ key: 'charter', label: 'Charter', placeholder: state.thread?.charter || 'One short line that holds for all work',
      button: 'Set the charter', deedOf: (body) => ({ method: 'person_charter', body }), after }),
    state.thread?.state === 'complete' && el('p', {}, 'The goal is complete. ', reopenButton()));
}

function reopenButton() {
  const button = el('button', { type: 'button' }, 'Reopen the goal');
  button.addEventListener('click', async () => {
    if (await act(button, { method: 'person_reopen_goal' })) closeSheet();
  });
  return button;
}

const LINKS = { live: 'live', lost: 'board lost', off: 'page’s program lost', connecting: 'connecting' };

function draw() {
  const thread = state.thread;
  const words = thread?.goal || 'No goal yet';
  if (goal.dataset.goal !== words) {
    goal.dataset.goal = words;
    put(goal, linked(words));
  }
  put(charter, linked(thread?.charter ?? ''));
  charter.hidden = !thread?.charter;
  badge.hidden = !thread || thread.state === 'open';
  say(badge, thread?.state === 'complete' ? 'goal complete' : 'proposed as complete');
  squad.hidden = !thread;
  squad.setAttribute('aria-checked', String(thread?.squad === 'on'));
  squad.title = thread?.squad === 'on' ? 'Agents may address each other and have helpers started'
    : 'Agents may neither address each other nor have helpers started';
  helpers.hidden = !thread;
  say(rev, thread ? `rev ${state.rev}` : '');
  link.className = `link ${state.link}`;
  say(link, LINKS[state.link] ?? state.link);
}

function drawThreads() {
  threads.hidden = state.threads.length < 2;
  put(threads, state.threads.map((row) => el('option', { value: row.tag, selected: row.tag === state.thread?.tag },
    `${row.thread}${Number(row.needing) ? ` (${row.needing})` : ''}`)));
}

// Shows the head of the page, and keeps it.
export function mountGoal() {
  const edit = el('button', { type: 'button', class: 'quiet', on: { click: editGoal } }, 'Edit');
  const add = el('button', { type: 'button', class: 'primary', on: { click: () => openTaskForm() } }, 'New task');
  threads.addEventListener('change', () => chooseThread(threads.value));
  squad.addEventListener('click', () =>
    act(squad, { method: 'person_squad', approve: squad.getAttribute('aria-checked') !== 'true' }));
  put(header,
    el('div', { class: 'words' }, el('div', { class: 'first' }, goal, badge, edit), charter),
    el('div', { class: 'tools' }, threads, link, rev, squad, helpers, noticeButton(), add));
  watch((changed) => {
    if (['thread', 'link', 'rev'].some((part) => changed.has(part))) draw();
    if (changed.has('threads')) drawThreads();
  });
}
