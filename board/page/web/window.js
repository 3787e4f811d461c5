// The one window over the page, for a form or for help.

import { el, put } from './dom.js';

const dialog = document.getElementById('sheet');

// Opens it with that name and those contents.
export function openSheet(name, ...contents) {
  dialog.setAttribute('aria-label', name);
  const close = el('button', { type: 'button', class: 'close quiet', 'aria-label': 'Close', on: { click: closeSheet } }, '×');
  // What has just been said stays over the window.
  put(dialog, close, ...contents, dialog.querySelector('#said'));
  if (!dialog.open) dialog.showModal();
}

export function closeSheet() { dialog.close(); }

export const isSheetOpen = () => dialog.open;
