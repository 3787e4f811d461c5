// Doing something on the board: one request, what came of it said in words, and what is typed kept
// until it has arrived.

import { el, put } from './dom.js';
import { send } from './link.js';

const said = document.getElementById('said');
const dialog = document.getElementById('sheet');
dialog.addEventListener('close', () => document.body.append(said));
let timer = 0;

// Says what came of something, for as long as it takes to read it.
export function tell(words, kind = 'good') {
  // An open window hides and silences all that is not in it.
  const place = dialog.open ? dialog : document.body;
  if (said.parentNode !== place) place.append(said);
  put(said, el('p', { class: kind }, words));
  clearTimeout(timer);
  timer = setTimeout(() => put(said), Math.max(4000, words.length * 70));
}

// The commands' words for what a button does here.
const inButtons = (words) => words
  .replace(/ ?With --anyway it is (confirmed|deleted) all the same\./, '')
  .replace('; `unseat` stops one', '')
  .replace('`helper list` has', '“Helpers” has')
  .replace(/`(\w+)[^`]*`/g, (_, word) => `“${word[0].toUpperCase()}${word.slice(1).replace('-', ' ')}”`);

// Says why something was refused.
export const complain = (refusal) => tell(inButtons(refusal.message), 'bad');

// Sends a deed while `control` is at rest. What came of it: the outcome, or null when it was refused.
export async function act(control, deed) {
  if (control?.getAttribute('aria-busy') === 'true') return null;
  control?.setAttribute('aria-busy', 'true');
  try {
    const outcome = await send(deed);
    tell([outcome.message, outcome.notice].filter(Boolean).map(inButtons).join(' '));
    return outcome;
  } catch (refusal) {
    complain(refusal);
    if (/--anyway/.test(refusal.message)) return { anyway: true };
    return null;
  } finally {
    control?.removeAttribute('aria-busy');
  }
}

// A button that carries a deed out. When the board has something against it, it asks once more.
export function deedButton(label, deedOf, { kind = '', after = null } = {}) {
  const button = el('button', { type: 'button', class: kind }, label);
  let isSure = false;
  button.addEventListener('click', async () => {
    const deed = { ...deedOf() };
    if (isSure) deed.acknowledgeOpenTasks = true;
    const outcome = await act(button, deed);
    isSure = Boolean(outcome?.anyway);
    put(button, isSure ? `${label} anyway` : label);
    if (outcome && !isSure) after?.(outcome);
  });
  return button;
}

// A line to write and a button that sends it: `key` is what the draft is kept under, and `deedOf`
// makes the deed of the words. A line for a secret is never kept.
export function sayLine({ key, label, button = 'Send', placeholder = '', deedOf, secret = false, rows = 1, after = null }) {
  const name = `line-${key}`;
  const input = rows > 1
    ? el('textarea', { rows, 'aria-label': label, placeholder, data: { draft: name } })
    : el('input', { type: secret ? 'password' : 'text', 'aria-label': label, placeholder,
      autocomplete: secret ? 'new-password' : 'off' });
  if (!secret) keepDraft(input, name);
  const submit = el('button', { type: 'submit' }, button);
  const form = el('form', { class: rows > 1 ? 'line tall' : 'line' }, input, submit);
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    if (!input.value.trim()) return input.focus();
    const outcome = await act(submit, deedOf(input.value));
    if (!outcome) return;
    input.value = '';
    dropDraft(name);
    after?.(outcome);
  });
  if (rows > 1) {
    input.addEventListener('keydown', (event) => {
      if (event.key === 'Enter' && (event.ctrlKey || event.metaKey)) form.requestSubmit();
    });
  }
  return form;
}

const prefix = 'draft:';

// Keeps what is typed there over a reload and over a lost board, in this tab.
export function keepDraft(input, name) {
  const kept = sessionStorage.getItem(prefix + name);
  if (kept !== null) input.value = kept;
  input.addEventListener('input', () => sessionStorage.setItem(prefix + name, input.value));
}

export const dropDraft = (name) => sessionStorage.removeItem(prefix + name);
