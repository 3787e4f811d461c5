// What moved before the page was opened, asked for once, and what has moved since.

import { ask } from './link.js';
import { rowsOf } from './sheet.js';
import { state } from './store.js';

let before = null;
let rev = 0;
let asking = null;

// Asks for the past unless it is there; after a board that was lost it is asked for anew.
export async function loadPast(isStale = false) {
  if (before && !isStale) return;
  asking ??= ask('history').then((sheet) => {
    before = rowsOf(sheet, 'moves');
    rev = sheet.rev;
  }).finally(() => { asking = null; });
  await asking;
}

// All moves that are known, the oldest first.
export function moves() {
  return [...(before ?? []), ...state.moves.filter((move) => move.rev > rev)];
}
