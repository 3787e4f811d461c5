// A discussion with its volleys, and a line to speak in it.

import { sayLine } from './act.js';
import { el, keep, linked, linkTo, put, say, short } from './dom.js';
import { rowsOf } from './sheet.js';
import { moment } from './times.js';

// The sheet of a discussion, without anything on it yet; `isPart` of a task's.
export function makeDebate(id, isPart = false) {
  const parts = {
    state: el('span', { class: 'chip' }),
    question: el(isPart ? 'h3' : 'h2', {}),
    about: el('p', { class: 'about' }),
    volleys: el('ol', { class: 'log volleys' }),
    resolution: el('p', { class: 'resolution', hidden: true }),
    reply: sayLine({ key: `reply-${isPart ? 'task' : 'own'}-${id}`, label: `Reply in ${short(id)}`, placeholder: 'Your word on it',
      button: 'Reply', deedOf: (body) => ({ method: 'person_reply', taskID: id, body }) }),
  };
  const head = isPart ? linkTo(id) : el('span', { class: 'id' }, short(id));
  const node = el('section', { class: 'debate', 'aria-label': `Discussion ${short(id)}` },
    el('p', { class: 'top' }, head, parts.state), parts.question, parts.about, parts.volleys, parts.resolution, parts.reply);
  return { id, node, parts };
}

// Makes the sheet say what is so.
export function updateDebate(shown, sheet) {
  const [row] = rowsOf(sheet, 'debate');
  if (!row) return;
  const { parts } = shown;
  const isOpen = row.state === 'open';
  say(parts.state, row.state);
  parts.state.dataset.state = row.state;
  say(parts.question, row.question);
  put(parts.about, row.task && ['on ', linkTo(row.task), '; '], `between ${row.parties.split('\n').join(', ')}`,
    isOpen && row.waitsFor && `; waits for ${row.waitsFor}`);
  keep(parts.volleys, rowsOf(sheet, 'volleys').map((volley, i) => ({ ...volley, i })), (volley) => String(volley.i), (volley) =>
    el('li', {}, el('span', { class: 'top' }, el('strong', {}, volley.by), el('time', {}, moment(volley.at))),
      el('p', {}, linked(volley.text))));
  parts.resolution.hidden = isOpen;
  put(parts.resolution, 'Decided: ', linked(row.resolution));
  parts.reply.hidden = !isOpen;
}
