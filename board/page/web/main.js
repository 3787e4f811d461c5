// The page put together: takes the key, asks for the board, shows it, and follows it.

import { mountAgents } from './agents.js';
import { mountBanner, showGate } from './banner.js';
import { mountBar } from './bar.js';
import { mountColumns } from './columns.js';
import { afterPaint } from './dom.js';
import { mountGoal } from './goal.js';
import { ask, listen, settleThread, takeKey } from './link.js';
import { mountNeeds } from './needs.js';
import { setLink, state, take, watch } from './store.js';
import { startClock } from './times.js';

let isAsking = false;
let isShut = false;

// The page is no longer there, and nothing may be put on it: neither what was still to come, nor a second
// gate over what is typed into the first.
function shut() {
  if (isShut) return;
  isShut = true;
  showGate();
}

// Asks for everything; tried again by the next event when it fails.
async function refresh() {
  if (isAsking) return;
  isAsking = true;
  try {
    take(await ask('board'));
    if (state.thread) settleThread(state.thread.tag);
  } catch (refusal) {
    if (refusal.status === 401) shut();
    else setLink('lost', refusal.message);
  } finally {
    isAsking = false;
  }
}

function hear(kind, data) {
  if (kind === 'sheet') {
    if (!take(data)) refresh();
  } else if (kind === 'open') {
    if (state.link !== 'live') refresh();
  } else if (kind === 'gap') {
    refresh();
  } else if (kind === 'denied') {
    shut();
  } else {
    setLink(kind, data.why);
  }
}

// A board that does not answer at once is waited for so long before the page is shown without it.
const PATIENCE_MS = 250;

// Brings what is not seen at first, and what tells of moves; the page is busy until then.
async function complete() {
  const { mountRest } = await import('./rest.js');
  if (isShut) return;
  mountRest();
  startClock();
  listen(hear);
  document.body.ariaBusy = null;
}

// Shows the page: one painting of all that stands, where its empty frame would cost another before it.
function show() {
  if (!document.body.hidden) return;
  document.body.hidden = false;
  afterPaint(complete);
}

function start() {
  // What takes longest is asked for first; it is shown when everything stands that shows it.
  refresh();
  document.body.ariaBusy = 'true';
  mountBanner();
  mountGoal();
  mountNeeds();
  mountBar();
  mountColumns();
  mountAgents();
  watch(show);
  setTimeout(show, PATIENCE_MS);
  // While the board answers, fonts are found and controls made; what stands is not painted yet.
  document.body.hidden = true;
}

if (takeKey()) start();
else shut();
