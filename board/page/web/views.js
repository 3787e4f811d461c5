// Which of the four views is shown; the address stays that of the open task.

export const VIEWS = [
  ['board', 'Board'],
  ['lanes', 'Who did what'],
  ['graph', 'What waits'],
  ['history', 'History'],
];

const watchers = [];
let current = 'board';

// Calls `tell(name)` whenever another view is shown.
export function watchView(tell) { watchers.push(tell); }

export const isShown = (name) => current === name;

export function showView(name) {
  if (!VIEWS.some(([known]) => known === name)) return;
  current = name;
  sessionStorage.setItem('view', name);
  for (const [view] of VIEWS) document.getElementById(view).hidden = view !== name;
  for (const tell of watchers) tell(name);
}

// Shows the view that was shown before a reload.
export function restoreView() { showView(sessionStorage.getItem('view') ?? 'board'); }
