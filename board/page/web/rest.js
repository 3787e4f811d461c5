// What is not seen at first: the pictures, the history, the helpers, the drawer, notices, the keyboard.

import { mountDrawer } from './drawer.js';
import { mountGraph } from './graph.js';
import { mountHelpers } from './helpers.js';
import { mountHistory } from './history.js';
import { mountKeys } from './keys.js';
import { mountLanes } from './lanes.js';
import { mountNotices } from './notices.js';

// Mounts it all.
export function mountRest() {
  mountLanes();
  mountGraph();
  mountHistory();
  mountHelpers();
  mountDrawer();
  mountNotices();
  mountKeys();
}
