// The page put together: takes the key, asks for the board, and follows it.

import { mountAgents } from './agents.js';
import { mountBanner, showGate } from './banner.js';
import { mountBar } from './bar.js';
import { mountColumns } from './columns.js';
import { mountDrawer } from './drawer.js';
import { mountGoal } from './goal.js';
import { mountGraph } from './graph.js';
import { mountHelpers } from './helpers.js';
import { mountHistory } from './history.js';
import { mountKeys } from './keys.js';
import { mountLanes } from './lanes.js';
import { ask, listen, settleThread, takeKey } from './link.js';
import { mountNeeds } from './needs.js';
import { mountNotices } from './notices.js';
import { setLink, state, take } from './store.js';
import { startClock } from './times.js';

let isAsking = false;

// Asks for everything; tried again by the next event when it fails.
async function refresh() {
  if (isAsking) return;
  isAsking = true;
  try {
    take(await ask('board'));
    if (state.thread) settleThread(state.thread.tag);
  } catch (refusal) {
    if (refusal.status === 401) showGate();
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
    showGate();
  } else {
    setLink(kind, data.why);
  }
}

function start() {
  // What takes longest is asked for first; it is shown when everything stands that shows it.
  refresh();
  mountBanner();
  mountGoal();
  mountNeeds();
  mountBar();
  mountColumns();
  mountAgents();
  mountLanes();
  mountGraph();
  mountHistory();
  mountHelpers();
  mountDrawer();
  mountNotices();
  mountKeys();
  startClock();
  listen(hear);
}

if (takeKey()) start();
else showGate();
