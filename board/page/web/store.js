// The board as the page knows it. Changed here alone, by sheets; whoever shows a part of it is told
// once a frame what has changed.

import { listOf, rowsOf } from './sheet.js';
import { setNow } from './times.js';

export const state = {
  rev: 0,
  thread: null,
  threads: [],
  needs: [],
  agents: [],
  debates: [],
  helpers: [],
  tasks: new Map(),
  deleted: new Map(),
  moves: [],
  link: 'connecting',
  lostAt: 0,
  why: '',
};

const UNSEEN_MS = 250;
const watchers = [];
let changed = new Set();
let isDue = false;
let inHand = null;

// Calls `tell(changed)` after each change: names of parts of the state, and ids of tasks.
export function watch(tell) { watchers.push(tell); }

function touch(...names) {
  for (const name of names) changed.add(name);
  if (isDue) return;
  isDue = true;
  // The first sight waits for no frame. A tab that nobody sees, or sees no longer, has none, and its title
  // is read all the same.
  if (state.rev === 0) queueMicrotask(tellAll);
  requestAnimationFrame(tellAll);
  setTimeout(tellAll, UNSEEN_MS);
}

function tellAll() {
  if (!isDue) return;
  const told = changed;
  changed = new Set();
  isDue = false;
  for (const tell of watchers) tell(told);
}

const isSame = (a, b) => JSON.stringify(a) === JSON.stringify(b);

function replace(name, value) {
  if (isSame(state[name], value)) return;
  state[name] = value;
  touch(name);
}

// The column that a task stands in.
export function columnOf(task) {
  if (task.state === 'declined') return 'done';
  if (task.state === 'blocked') return 'blocked';
  if (task.review === 'requested') return 'review';
  return task.state === 'working' ? 'claimed' : task.state;
}

// Makes a task of its row.
function taskOf(row) {
  row.priority = Number(row.priority);
  row.resources = listOf(row.resources);
  row.waitsOn = listOf(row.waitsOn);
  row.tagged = listOf(row.tagged);
  row.column = columnOf(row);
  return row;
}

function putTask(row) {
  const task = taskOf(row);
  const before = state.tasks.get(task.id);
  if (before && isSame(before, task)) return;
  state.tasks.set(task.id, task);
  state.deleted.delete(task.id);
  inHand = null;
  touch('tasks', task.id);
}

function dropTask(id) {
  if (!state.tasks.delete(id)) return;
  inHand = null;
  touch('tasks', id);
}

function putAll(sheet) {
  const rows = rowsOf(sheet, 'tasks');
  const ids = new Set(rows.map((row) => row.id));
  for (const id of [...state.tasks.keys()]) if (!ids.has(id)) dropTask(id);
  rows.forEach(putTask);
  state.deleted = new Map(rowsOf(sheet, 'deleted').map((row) => [row.id, row]));
}

const MOVES_KEPT = 20000;

// Takes a sheet of the whole board, or of what moved. False when moves before these are missing.
export function take(sheet) {
  const [thread = null] = rowsOf(sheet, 'thread');
  const isWhole = !thread || thread.since === '';
  if (!isWhole && (!state.thread || Number(thread.since) > state.rev)) return false;
  if (!isWhole && sheet.rev < state.rev) return true;
  setNow(sheet.nowMs);
  if (isWhole) putAll(sheet);
  else rowsOf(sheet, 'tasks').forEach(putTask);
  for (const { id } of rowsOf(sheet, 'gone')) dropTask(id);
  for (const row of rowsOf(sheet, 'deleted')) state.deleted.set(row.id, row);
  for (const { id, leaseUntil } of rowsOf(sheet, 'leases')) {
    const task = state.tasks.get(id);
    if (task && task.leaseUntil !== leaseUntil) putTask({ ...rowOf(task), leaseUntil });
  }
  const fresh = rowsOf(sheet, 'moves')
    .map((move, i, all) => ({ ...move, rev: sheet.rev - (all.length - 1 - i) }))
    .filter((move) => move.rev > state.rev);
  if (fresh.length) {
    state.moves = state.moves.concat(fresh).slice(-MOVES_KEPT);
    touch('moves', ...fresh.map((move) => move.task).filter(Boolean));
  }
  if (state.rev !== sheet.rev) touch('rev');
  state.rev = sheet.rev;
  replace('thread', thread);
  replace('needs', rowsOf(sheet, 'needs'));
  replace('agents', rowsOf(sheet, 'agents'));
  replace('debates', rowsOf(sheet, 'debates'));
  replace('helpers', rowsOf(sheet, 'helpers'));
  replace('threads', rowsOf(sheet, 'threads'));
  setLink('live');
  return true;
}

function rowOf(task) {
  const { column, ...row } = task;
  return { ...row, priority: String(row.priority), resources: row.resources.join('\n'),
    waitsOn: row.waitsOn.join('\n'), tagged: row.tagged.join('\n') };
}

// Notes how the board can be reached: "live", "lost" or "denied", and why not.
export function setLink(link, why = '') {
  if (state.link === link) return;
  if (link !== 'live' && state.link !== 'off' && state.link !== 'lost') state.lostAt = Date.now();
  state.link = link;
  state.why = why;
  touch('link');
}

// The tasks that somebody is at, found anew after a change.
export function tasksInHand() {
  inHand ??= [...state.tasks.values()].filter((task) => task.state === 'working' || task.state === 'blocked');
  return inHand;
}

// The agent of that handle.
export const agentAt = (handle) => state.agents.find((agent) => agent.handle === handle);
