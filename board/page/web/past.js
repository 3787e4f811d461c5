// What moved before the page was opened, asked for once, and what has moved since.

import { say } from './dom.js';
import { ask } from './link.js';
import { rowsOf } from './sheet.js';
import { state } from './store.js';

let before = null;
let rev = 0;
let asking = null;

// Asks for the past unless it is there; after a board that was lost it is asked for anew. False
// when it cannot be had: `note` then says why.
export async function hasPast(note, isStale) {
  if (before && !isStale) return true;
  asking ??= ask('history').then((sheet) => {
    before = rowsOf(sheet, 'moves');
    rev = sheet.rev;
  }).finally(() => { asking = null; });
  try {
    await asking;
    return true;
  } catch (refusal) {
    note.hidden = false;
    say(note, refusal.message);
    return false;
  }
}

// All moves that are known, the oldest first.
export function moves() {
  return [...(before ?? []), ...state.moves.filter((move) => move.rev > rev)];
}
