// The drawer with one task or one discussion, whole. The address says which: #t000012.

import { el, put } from './dom.js';
import { makeDebate, updateDebate } from './debate_sheet.js';
import { ask } from './link.js';
import { rowsOf } from './sheet.js';
import { state, watch } from './store.js';
import { makeTask, updateTask } from './task_sheet.js';

const drawer = document.getElementById('drawer');
let id = '';
let shown = null;
let opener = null;
let asked = 0;

export const isDrawerOpen = () => !drawer.hidden;

// Closes it and gives the focus back to where it was opened.
export function closeDrawer() {
  if (location.hash) history.pushState(null, '', location.pathname);
  follow();
}

function close() {
  if (drawer.hidden) return;
  const had = drawer.contains(document.activeElement);
  id = '';
  shown = null;
  drawer.hidden = true;
  document.body.classList.remove('with-drawer');
  put(drawer);
  const card = opener?.dataset?.id && document.querySelector(`a.card[data-id="${opener.dataset.id}"]`);
  if (had || document.activeElement === document.body) (card || opener)?.focus?.();
}

function complain(words) {
  shown = null;
  put(drawer, closeButton(), el('p', { class: 'empty' }, words));
}

const closeButton = () => el('button', { type: 'button', class: 'close quiet', 'aria-label': 'Close', on: { click: closeDrawer } }, '×');

// Discussions of a task with their volleys, which their own sheets have.
async function debatesOf(sheet) {
  const rows = rowsOf(sheet, 'debates').slice(-20);
  return Promise.all(rows.map(async (row) => ({ row, sheet: await ask('show', { what: row.id }) })));
}

async function load() {
  const mine = ++asked;
  const what = id;
  try {
    const sheet = await ask('show', { what });
    const isTask = rowsOf(sheet, 'task').length > 0;
    const debates = isTask ? await debatesOf(sheet) : [];
    if (mine !== asked || what !== id) return;
    if (!shown || shown.id !== what) {
      shown = isTask ? makeTask(what) : makeDebate(what);
      put(drawer, closeButton(), shown.node);
      drawer.setAttribute('aria-label', `${isTask ? 'Task' : 'Discussion'} ${what}`);
    }
    if (isTask) updateTask(shown, sheet, debates);
    else updateDebate(shown, sheet);
  } catch (refusal) {
    if (mine === asked && !shown) complain(refusal.message);
  }
}

// Opens what the address says, and closes when it says nothing.
function follow() {
  const found = /^#([td]\d+)$/.exec(location.hash);
  if (!found) {
    close();
    return;
  }
  if (found[1] === id) return;
  if (drawer.hidden) opener = document.activeElement;
  id = found[1];
  shown = null;
  drawer.hidden = false;
  document.body.classList.add('with-drawer');
  put(drawer, closeButton(), el('p', { class: 'empty' }, 'Asking the board …'));
  drawer.focus();
  load();
}

// Follows the address, and keeps what is open.
export function mountDrawer() {
  addEventListener('hashchange', follow);
  addEventListener('popstate', follow);
  watch((changed) => {
    if (!id) return;
    const isConcerned = changed.has(id) || changed.has('debates') || changed.has('needs')
      || (changed.has('link') && state.link === 'live');
    if (isConcerned) load();
  });
  follow();
}
