// The history as a list, and what was deleted and can be put back.

import { deedButton } from './act.js';
import { el, keep, linkTo, put, say } from './dom.js';
import { filter, watchFilter } from './filter.js';
import { hasPast, moves } from './past.js';
import { state, watch } from './store.js';
import { moment } from './times.js';
import { isShown, watchView } from './views.js';

const section = document.getElementById('history');
const PAGE = 200;
let limit = PAGE;
const list = el('ol', { class: 'history-list', reversed: true });
const more = el('button', { type: 'button', class: 'more quiet', hidden: true });
const deleted = el('ul', { class: 'deleted' });
const deletedTitle = el('h2', {}, 'Deleted');
const note = el('p', { class: 'empty' });

// taskCompleted is "task completed".
export const inWords = (move) => move.replace(/[A-Z]/g, (letter) => ` ${letter.toLowerCase()}`);

function isWanted(move) {
  if (filter.agent && move.by !== filter.agent) return false;
  if (filter.column && state.tasks.get(move.task)?.column !== filter.column) return false;
  if (!filter.words) return true;
  const words = filter.words.toLowerCase();
  return [move.task, move.by, move.what, inWords(move.move), state.tasks.get(move.task)?.title ?? '']
    .some((text) => text.toLowerCase().includes(words));
}

function row(move) {
  const title = state.tasks.get(move.task)?.title ?? '';
  return el('li', {}, el('time', { title: new Date(Number(move.at)).toLocaleString() }, moment(move.at)),
    el('strong', {}, move.by), el('span', { class: 'move' }, inWords(move.move)),
    el('span', { class: 'what' }, move.task && [linkTo(move.task), ' '], title,
      move.what && move.what !== title ? `${title && ' — '}${move.what}` : ''));
}

async function draw(isStale = false) {
  if (!isShown('history') || !(await hasPast(note, isStale))) return;
  const all = moves().map((move, i) => ({ ...move, i })).filter(isWanted).reverse();
  note.hidden = all.length > 0;
  say(note, 'Nothing has moved yet.');
  keep(list, all.slice(0, limit), (move) => String(move.i), row);
  more.hidden = all.length <= limit;
  say(more, `${all.length - limit} more`);
  deletedTitle.hidden = state.deleted.size === 0;
  keep(deleted, [...state.deleted.values()], (task) => task.id, (task) => el('li', {}, linkTo(task.id), ` ${task.title} `,
    task.reason && el('span', { class: 'about' }, `(${task.reason}) `),
    deedButton('Restore', () => ({ method: 'person_restore', taskID: task.id }))));
}

// Shows the list when it is looked at, and keeps it.
export function mountHistory() {
  more.addEventListener('click', () => {
    limit += PAGE;
    draw();
  });
  put(section, deletedTitle, deleted, el('h2', {}, 'What moved'), list, more, note);
  watch((changed) => {
    if (changed.has('moves') || changed.has('tasks')) draw();
    else if (changed.has('link') && state.link === 'live') draw(true);
  });
  watchView(() => draw());
  watchFilter(() => draw());
  draw();
}
