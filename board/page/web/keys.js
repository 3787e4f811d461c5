// The keyboard: a key for everything, and the list of them.

import { clearSearch, focusSearch } from './bar.js';
import { cardsInOrder } from './columns.js';
import { el } from './dom.js';
import { closeDrawer, isDrawerOpen } from './drawer.js';
import { openHelpers } from './helpers.js';
import { focusNextNeed } from './needs.js';
import { openTaskForm } from './task_form.js';
import { showView, VIEWS } from './views.js';
import { isSheetOpen, openSheet } from './window.js';

function step(by) {
  const cards = cardsInOrder();
  if (cards.length === 0) return;
  const at = cards.indexOf(document.activeElement?.closest?.('a.card'));
  const next = at < 0 ? (by > 0 ? 0 : cards.length - 1) : Math.min(cards.length - 1, Math.max(0, at + by));
  cards[next].focus();
  cards[next].scrollIntoView({ block: 'nearest' });
}

const KEYS = [
  ['/', 'search', focusSearch],
  ['n', 'the next thing that needs you', focusNextNeed],
  ['j', 'the next task', () => step(1)],
  ['k', 'the task before', () => step(-1)],
  ['c', 'a new task', () => openTaskForm()],
  ['h', 'the helpers', openHelpers],
  ...VIEWS.map(([name, label], i) => [String(i + 1), `show “${label}”`, () => showView(name)]),
  ['?', 'this list', help],
];

function help() {
  const rows = [['Enter', 'open the task that has the focus'], ['Esc', 'close what is open, or end the search'],
    ...KEYS.map(([key, what]) => [key, what])];
  openSheet('Keys', el('h2', {}, 'Keys'), el('dl', { class: 'keys' },
    rows.map(([key, what]) => [el('dt', {}, el('kbd', {}, key)), el('dd', {}, what)])));
}

function escape(event) {
  if (isSheetOpen()) return;
  const isTyping = event.target.matches('input, textarea, select');
  if (isTyping && event.target.id !== 'search') event.target.blur();
  else if (isDrawerOpen() && event.target.id !== 'search') closeDrawer();
  else if (clearSearch()) document.activeElement?.blur();
  else if (isDrawerOpen()) closeDrawer();
  else document.activeElement?.blur();
}

// Listens to the keyboard.
export function mountKeys() {
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    if (event.key === 'Escape') {
      escape(event);
      return;
    }
    if (isSheetOpen() || event.target.matches('input, textarea, select')) return;
    const found = KEYS.find(([key]) => key === event.key);
    if (!found) return;
    event.preventDefault();
    found[2]();
  });
}
