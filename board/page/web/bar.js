// The bar over the board: the views, the search and the filters.

import { afterPaint, el, keep, linked, linkTo, put, say } from './dom.js';
import { filter, setFilter, setFound, tagsOf, watchFilter } from './filter.js';
import { ask } from './link.js';
import { rowsOf } from './sheet.js';
import { state, watch } from './store.js';
import { showView, VIEWS, restoreView, watchView } from './views.js';

const bar = document.getElementById('bar');
const foundBox = document.getElementById('found');
const search = el('input', { type: 'search', id: 'search', 'aria-label': 'Search ids, titles, briefs and logs', placeholder: 'Search  /', autocomplete: 'off' });
const agents = el('select', { 'aria-label': 'Only of this agent' });
const columns = el('select', { 'aria-label': 'Only in this state' });
const tags = el('select', { 'aria-label': 'Only with this tag' });

const STATES = [['ready', 'Ready'], ['claimed', 'Claimed'], ['blocked', 'Blocked'], ['review', 'In review'], ['waiting', 'Waiting'], ['done', 'Done']];
const PAUSE_MS = 150;

function choices(select, first, rows) {
  const before = select.value;
  const key = JSON.stringify(rows);
  if (select.dataset.rows === key) return;
  select.dataset.rows = key;
  put(select, el('option', { value: '' }, first), rows.map(([value, label]) => el('option', { value }, label)));
  select.value = rows.some(([value]) => value === before) ? before : '';
}

function drawChoices() {
  choices(agents, 'all agents', state.agents.map((agent) => [agent.handle, agent.name ? `${agent.handle} ${agent.name}` : agent.handle]));
  const known = new Set();
  for (const task of state.tasks.values()) for (const tag of tagsOf(task)) known.add(tag);
  choices(tags, 'all tags', [...known].sort().slice(0, 200).map((tag) => [tag, tag]));
  tags.hidden = known.size === 0;
}

let timer = 0;
let asked = 0;

// Asks the board for what the page does not have: briefs, logs, discussions, tasks long done.
async function findMore(words) {
  const mine = ++asked;
  if (words.length < 2) {
    showFound([]);
    return;
  }
  try {
    const rows = rowsOf(await ask('find', { words }), 'found');
    if (mine === asked) showFound(rows);
  } catch {
    if (mine === asked) showFound([]);
  }
}

const list = el('ul', { class: 'found-list' });
const count = el('h2', {});

function showFound(rows) {
  setFound(rows.map((row) => row.id));
  // What stands in a title is found on the board already.
  const told = rows.filter((row) => !['id', 'title'].includes(row.where) || !state.tasks.has(row.id));
  foundBox.hidden = told.length === 0;
  say(count, `${told.length}${rows.length >= 100 ? ' or more' : ''} in briefs, logs and discussions`);
  keep(list, told, (row) => row.id + row.text, (row) => el('li', {}, linkTo(row.id), ' ',
    el('span', { class: 'found-title' }, row.title), el('span', { class: 'chip' }, row.where),
    el('span', { class: 'found-text' }, linked(row.text))));
}

// Empties the search and the filters. Whether there was anything to empty.
export function clearSearch() {
  const had = search.value !== '' || agents.value || columns.value || tags.value;
  for (const input of [search, agents, columns, tags]) input.value = '';
  for (const part of Object.keys(filter)) setFilter(part, '');
  clearTimeout(timer);
  findMore('');
  return Boolean(had);
}

export function focusSearch() {
  search.focus();
  search.select();
}

// Shows the bar, and keeps it.
export function mountBar() {
  const tabs = VIEWS.map(([name, label]) => el('button', { type: 'button', class: 'tab', on: { click: () => showView(name) } }, label));
  watchView((shownView) => tabs.forEach((tab, i) => {
    if (VIEWS[i][0] === shownView) tab.setAttribute('aria-current', 'page');
    else tab.removeAttribute('aria-current');
  }));
  search.addEventListener('input', () => {
    setFilter('words', search.value.trim());
    clearTimeout(timer);
    timer = setTimeout(() => findMore(search.value.trim()), PAUSE_MS);
  });
  agents.addEventListener('change', () => setFilter('agent', agents.value));
  columns.addEventListener('change', () => setFilter('column', columns.value));
  tags.addEventListener('change', () => setFilter('tag', tags.value));
  choices(columns, 'all states', STATES);
  put(foundBox, count, list);
  put(bar, el('div', { class: 'tabs' }, tabs), el('div', { class: 'search' }, search, agents, columns, tags));
  watch((changed) => {
    if (changed.has('agents') || changed.has('tasks')) afterPaint(drawChoices);
  });
  watchFilter(() => bar.classList.toggle('filtering', Object.values(filter).some(Boolean)));
  restoreView();
}
