// The board as columns. A move changes its card; of a long column as much is drawn as was scrolled to.

import { makeCard, updateCard } from './card.js';
import { el, keep, put, say } from './dom.js';
import { isFiltering, isWanted, watchFilter } from './filter.js';
import { state, watch } from './store.js';
import { isShown, watchView } from './views.js';

const board = document.getElementById('board');
// How many cards are drawn at first, which fill a tall window, and how many more each time.
const FIRST = 20;
const MORE = 40;
// Where the columns stand under each other, one that grows by itself would keep the others away.
const NARROW = 10;
const isNarrow = matchMedia('(max-width: 900px)');
const first = () => (isNarrow.matches ? NARROW : FIRST);

const COLUMNS = [
  ['ready', 'Ready', 'Nothing is ready to be taken.'],
  ['claimed', 'Claimed', 'Nobody works on anything.'],
  ['blocked', 'Blocked', 'Nothing waits for you.'],
  ['review', 'In review', 'Nothing is to be looked at.'],
  ['waiting', 'Waiting', 'Nothing waits on anything.'],
  ['done', 'Done', 'Nothing is done yet.'],
];

// Higher priority first, then the older, as agents see them; of what is done the latest first.
const inOrder = (a, b) => b.priority - a.priority || (a.id < b.id ? -1 : 1);
const latest = (a, b) => Number(b.noteAt) - Number(a.noteAt) || (a.id < b.id ? 1 : -1);

const columns = COLUMNS.map(([name, label, none]) => {
  const column = {
    name, none, limit: first(), tasks: [],
    count: el('span', { class: 'count' }),
    list: el('ol', { class: 'cards', 'aria-label': label }),
    more: el('button', { type: 'button', class: 'more quiet', hidden: true }),
    empty: el('p', { class: 'empty' }),
  };
  column.fold = el('button', { type: 'button', class: 'fold', 'aria-expanded': 'true' }, el('span', {}, label), column.count);
  column.node = el('section', { class: `column ${name}`, 'aria-label': label }, el('h2', {}, column.fold), column.list, column.empty, column.more);
  return column;
});

function showMore(column) {
  column.limit += isNarrow.matches ? NARROW : MORE;
  fill(column);
}

function setFold(column, isFolded) {
  column.isFolded = isFolded;
  column.fold.setAttribute('aria-expanded', String(!isFolded));
  column.node.classList.toggle('folded', isFolded);
}

function turnFold(column) {
  setFold(column, !column.isFolded);
  localStorage.setItem(`fold-${column.name}`, column.isFolded ? 'yes' : 'no');
  fill(column);
}

function fill(column) {
  const wanted = column.isFolded && !isFiltering() ? [] : column.tasks.slice(0, column.limit);
  keep(column.list, wanted, (task) => task.id, makeCard, (node, task) => {
    if (node.drawn === task && !node.isStale) return;
    node.drawn = task;
    node.isStale = false;
    updateCard(node, task);
  });
  const rest = column.isFolded && !isFiltering() ? 0 : column.tasks.length - wanted.length;
  column.more.hidden = rest <= 0;
  say(column.more, `${rest} more`);
  column.empty.hidden = column.tasks.length > 0 || column.isFolded;
  say(column.empty, isFiltering() ? 'Nothing that is looked for.' : column.none);
}

function countOf(column) {
  // The board tells of the latest that are done, and how many there are.
  if (column.name === 'done' && !isFiltering()) {
    const unread = [...state.tasks.values()].filter((task) => task.column === 'review' && task.state === 'done').length;
    return Math.max(column.tasks.length, Number(state.thread?.finished ?? 0) - unread);
  }
  return column.tasks.length;
}

function draw() {
  if (!isShown('board')) return;
  const byName = new Map(columns.map((column) => [column.name, []]));
  for (const task of state.tasks.values()) if (isWanted(task)) byName.get(task.column)?.push(task);
  for (const column of columns) {
    column.tasks = byName.get(column.name).sort(column.name === 'done' ? latest : inOrder);
    say(column.count, countOf(column));
    fill(column);
  }
}

// What a card says of other tasks, of agents and of resources may have become wrong.
function stale() {
  for (const column of columns) for (const node of column.list.children) node.isStale = true;
}

// The cards from the first to the last, as the keyboard goes through them.
export const cardsInOrder = () => [...board.querySelectorAll('a.card')];

// Shows the board, and keeps it.
export function mountColumns() {
  put(board, columns.map((column) => column.node));
  for (const column of columns) {
    column.fold.addEventListener('click', () => turnFold(column));
    column.more.addEventListener('click', () => showMore(column));
    new IntersectionObserver((entries) => {
      if (!isNarrow.matches && entries.some((entry) => entry.isIntersecting)) showMore(column);
    }, { rootMargin: '400px' }).observe(column.more);
    setFold(column, (localStorage.getItem(`fold-${column.name}`) ?? (column.name === 'done' ? 'yes' : 'no')) === 'yes');
  }
  watch((changed) => {
    if (changed.has('agents') || changed.has('tasks')) stale();
    if (['tasks', 'agents', 'thread'].some((part) => changed.has(part))) draw();
  });
  watchFilter(() => {
    for (const column of columns) column.limit = first();
    draw();
  });
  watchView(draw);
}
