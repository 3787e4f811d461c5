// A question to the person with its ways to answer: options as buttons, a line, a field for a secret.

import { act, sayLine } from './act.js';
import { el, linked } from './dom.js';
import { listOf } from './sheet.js';

// What is asked, with what it is about and what follows from it.
export function questionText(need) {
  return el('div', { class: 'question' },
    el('p', { class: 'asked' }, linked(need.question)),
    need.artifact && el('p', { class: 'about' }, 'Look at: ', linked(need.artifact)),
    need.consequence && el('p', { class: 'about' }, 'What follows: ', linked(need.consequence)));
}

function optionButton(need, option, i) {
  const button = el('button', { type: 'button', class: i === 0 ? 'primary' : '' }, option);
  button.addEventListener('click', () => act(button, deedFor(need, option)));
  return button;
}

function deedFor(need, body) {
  return { method: 'person_answer', name: need.thread || undefined, taskID: need.id, body,
    blockerQuestion: need.question };
}

// The ways to answer.
export function answerForm(need, where) {
  const options = listOf(need.options);
  const isSecret = need.secret !== '';
  return el('div', { class: 'ways' },
    options.length > 0 && el('div', { class: 'options' }, options.map((option, i) => optionButton(need, option, i))),
    sayLine({
      key: `${where}-${need.id}`,
      label: isSecret ? `The secret ${need.secret} for ${need.id}` : `Answer ${need.id}`,
      placeholder: isSecret ? `${need.secret}: typed unseen, never shown again`
        : options.length ? 'or in your own words' : 'Your answer',
      button: isSecret ? 'Give it' : 'Answer',
      secret: isSecret,
      deedOf: (body) => deedFor(need, body),
    }));
}
