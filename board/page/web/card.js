// One task on the board.

import { el, put, say, short } from './dom.js';
import { agentAt, state, tasksInHand } from './store.js';
import { sinceNode, untilBar } from './times.js';

// A hue for a handle, the same everywhere.
export function hueOf(handle) {
  let sum = 0;
  for (const letter of handle) sum = (sum * 31 + letter.codePointAt(0)) % 360;
  return sum;
}

// An agent as it is named on the page: a spot of its colour, its handle, its name.
export function agentName(handle) {
  if (handle === 'you') return el('span', { class: 'agent' }, 'you');
  const name = agentAt(handle)?.name ?? '';
  return el('span', { class: 'agent', vars: { '--hue': hueOf(handle) } }, el('i', { class: 'spot' }), handle,
    name && el('span', { class: 'name' }, ` ${name}`));
}

// The tasks that are being worked on and touch one of these resources, without the task itself.
export function rivalsOf(task) {
  if (task.resources.length === 0 || task.column === 'done') return [];
  return tasksInHand().filter((other) => other.id !== task.id && other.resources.some((name) => task.resources.includes(name)));
}

function marks(task) {
  const rivals = rivalsOf(task);
  return [
    task.debates && el('span', { class: `mark debate${task.debates.endsWith('!') ? ' yours' : ''}` }, task.debates.endsWith('!') ? 'debate: your turn' : 'debate'),
    task.review === 'requested' && el('span', { class: 'mark review' }, 'review'),
    task.review === 'verified' && el('span', { class: 'mark good' }, 'verified'),
    task.review === 'rejected' && el('span', { class: 'mark bad' }, 'review failed'),
    rivals.length > 0 && el('span', { class: 'mark conflict' }, `shares ${shared(task, rivals[0]).split('/').at(-1)} with ${short(rivals[0].id)}`),
    task.parked && el('span', { class: 'mark' }, 'parked'),
    task.state === 'declined' && el('span', { class: 'mark' }, 'declined'),
    Number(task.attempts) > 3 && el('span', { class: 'mark bad' }, `taken ${task.attempts} times`),
  ].filter(Boolean);
}

const shared = (task, other) => task.resources.find((name) => other.resources.includes(name));

function footing(task) {
  if (task.column === 'waiting') {
    const open = task.waitsOn.filter((id) => state.tasks.get(id)?.column !== 'done' && state.tasks.has(id));
    return open.length ? `after ${open.map(short).join(', ')}` : '';
  }
  if (task.state === 'ready' && task.meantFor) return `for ${task.meantFor}`;
  return task.parked || task.note;
}

// A card without anything on it yet.
export function makeCard(task) {
  const parts = {
    id: el('span', { class: 'id' }),
    priority: el('span', { class: 'priority' }),
    age: el('time', { class: 'age' }),
    title: el('h3', {}),
    who: el('span', { class: 'held' }),
    lease: el('span', { class: 'lease' }),
    note: el('p', { class: 'note' }),
    marks: el('p', { class: 'marks' }),
  };
  const link = el('a', { class: 'card', href: `#${task.id}`, data: { id: task.id } },
    el('span', { class: 'top' }, parts.id, parts.priority, parts.who, parts.age),
    parts.title, parts.lease, parts.note, parts.marks);
  const node = el('li', {}, link);
  node.parts = parts;
  return node;
}

// Makes the card say what is so.
export function updateCard(node, task) {
  const { parts } = node;
  node.firstChild.dataset.column = task.column;
  say(parts.id, short(task.id));
  say(parts.priority, task.priority > 0 ? `▲${task.priority}` : task.priority < 0 ? `▼${-task.priority}` : '');
  parts.priority.title = task.priority ? `priority ${task.priority}` : '';
  say(parts.title, task.title);
  const name = agentAt(task.holder)?.name ?? '';
  const who = `${task.holder} ${name}`;
  if (parts.who.dataset.who !== who) {
    parts.who.dataset.who = who;
    put(parts.who, task.holder && agentName(task.holder));
  }
  sinceNode(parts.age, task.column === 'done' ? task.noteAt : task.claimed && task.holder ? task.claimed : '');
  const isHeld = task.leaseUntil !== '';
  parts.lease.hidden = !isHeld;
  if (isHeld) untilBar(parts.lease, task.leaseUntil, Number(state.thread?.lease) || 1);
  say(parts.note, footing(task));
  const found = marks(task);
  const key = found.map((mark) => mark.className + mark.textContent).join('|');
  if (parts.marks.dataset.key !== key) {
    parts.marks.dataset.key = key;
    put(parts.marks, found);
  }
}
