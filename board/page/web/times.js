// Times as a person reads them, by the board's clock, and keeping those on the screen right.

import { say } from './dom.js';

let skew = 0;

// Sets the board's time of now.
export function setNow(ms) { skew = ms - Date.now(); }

export const now = () => Date.now() + skew;

const STEPS = [[60, 's'], [60, 'min'], [24, 'h'], [Infinity, 'd']];

// A length of time in its largest unit.
export function span(ms) {
  let amount = Math.max(0, Math.floor(ms / 1000));
  for (const [size, unit] of STEPS) {
    if (amount < size) return `${amount} ${unit}`;
    amount = Math.floor(amount / size);
  }
  return '';
}

const pad = (n) => String(n).padStart(2, '0');

// A moment: the time of day, with the day before it when that is not today.
export function moment(ms) {
  const at = new Date(Number(ms));
  const time = `${pad(at.getHours())}:${pad(at.getMinutes())}`;
  const today = new Date(now());
  if (at.toDateString() === today.toDateString()) return time;
  return `${at.getFullYear()}-${pad(at.getMonth() + 1)}-${pad(at.getDate())} ${time}`;
}

// Makes a node tell how long ago something was; it is kept right from then on.
export function sinceNode(node, ms) {
  node.dataset.since = ms || '';
  if (ms) node.title = new Date(Number(ms)).toLocaleString();
  tellSince(node);
  return node;
}

function tellSince(node) {
  say(node, node.dataset.since ? span(now() - Number(node.dataset.since)) : '');
}

// Makes a bar run down until a moment, of a whole length of time.
export function untilBar(node, until, whole) {
  node.dataset.until = until || '';
  node.dataset.whole = whole;
  tellUntil(node);
}

function tellUntil(node) {
  const left = Number(node.dataset.until) - now();
  const part = Math.min(1, Math.max(0, left / Number(node.dataset.whole)));
  node.style.setProperty('--left', part.toFixed(3));
  node.classList.toggle('low', part < 0.25);
  node.title = left > 0 ? `lease: ${span(left)} left` : 'the lease is over';
}

// Keeps all of them right.
export function startClock() {
  setInterval(() => {
    if (document.hidden) return;
    document.querySelectorAll('[data-since]').forEach(tellSince);
    document.querySelectorAll('[data-until]').forEach(tellUntil);
  }, 1000);
}
