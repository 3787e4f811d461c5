// A helper that an agent suggests: shown whole before it is allowed, or refused.

import { act, complain, deedButton } from './act.js';
import { el, linked } from './dom.js';
import { argumentsOf } from './arguments.js';
import { launchFacts, makeMarks } from './launch.js';
import { ask, askLaunch } from './link.js';
import { rowsOf } from './sheet.js';
import { closeSheet, openSheet } from './window.js';

const where = (thread) => (thread ? { thread } : {});

function drawSuggestion(row, launch, thread) {
  const marks = makeMarks('suggested');
  const isRunnable = argumentsOf(row.arguments) !== null;
  const allow = el('button', { type: 'button', class: 'primary', hidden: !isRunnable }, 'Allow exactly this');
  allow.addEventListener('click', async () => {
    // What stands here is what is allowed: the board refuses when something else has come in its place.
    const outcome = await act(allow, { method: 'person_helper_approve', name: thread || undefined,
      agent: row.helper, command: row.arguments, ...marks.values() });
    if (outcome) closeSheet();
    else openSuggestion(row.helper, thread, { isAgain: true });
  });
  openSheet('Suggested helper', el('div', { class: 'launch' },
    el('h2', {}, `${row.by} would like the helper “${row.helper}”`),
    el('p', {}, linked(row.text)),
    row.reason && el('p', { class: 'about' }, 'Why: ', linked(row.reason)),
    launchFacts(row.arguments, launch), marks.rows,
    el('p', { class: 'about' }, 'Agents may then have it started whenever they ask, and what they write on its task is what it reads.'),
    el('p', { class: 'end' }, refuseButton(row.helper, thread, closeSheet), ' ', allow)));
}

// Opens the window in which a suggestion is looked at; `isAgain` after it could not be allowed as it
// stood there.
async function openSuggestion(name, thread, { isAgain = false } = {}) {
  try {
    const [sheet, launch] = await Promise.all([ask('helpers', where(thread)), askLaunch()]);
    const row = rowsOf(sheet, 'suggested').find(({ helper }) => helper === name);
    if (row) drawSuggestion(row, launch, thread);
    else if (isAgain) closeSheet();
    else complain({ message: `“${name}” is not suggested any more.` });
  } catch (refusal) {
    if (!isAgain) complain(refusal);
  }
}

const refuseButton = (name, thread, after = null) =>
  deedButton('Refuse', () => ({ method: 'person_helper_refuse', name: thread || undefined, agent: name }), { after });

// The ways to deal with a suggestion, wherever it is named.
export const suggestionButtons = (name, thread) => el('div', { class: 'options' },
  el('button', { type: 'button', class: 'primary', on: { click: () => openSuggestion(name, thread) } }, 'Look and allow …'),
  refuseButton(name, thread));
