// What a helper would be started as: its arguments one by one, where, with which variables, and the
// two marks that only the person can give it.

import { argumentsOf, marked } from './arguments.js';
import { el } from './dom.js';

// The list of arguments, each in a box of its own.
export function argumentList(shown) {
  const list = argumentsOf(shown);
  // What cannot be split is the board's word on why.
  if (!list) return el('p', { class: 'about' }, shown);
  return el('ol', { class: 'arguments', 'aria-label': 'Arguments' },
    list.map((argument) => el('li', {}, argument === '' ? el('i', {}, 'an empty one') : marked(argument))));
}

// What is run and with what, before it is allowed.
export function launchFacts(shown, launch) {
  const list = argumentsOf(shown) ?? [];
  const hasPlace = list.some((argument) => argument.includes('{prompt}'));
  return [
    el('h3', {}, list.length === 1 ? 'This one word is run, without a shell' : `These ${list.length} words are run, each as it stands, without a shell`),
    argumentList(shown),
    el('p', { class: 'about' }, 'The line that names its task ',
      hasPlace ? ['stands where ', el('code', {}, '{prompt}'), ' does.'] : 'is one argument more, at the end.'),
    el('dl', { class: 'facts' },
      el('dt', {}, 'In'), el('dd', {}, el('code', {}, marked(launch.directory))),
      el('dt', {}, 'With'), el('dd', {}, `${launch.variables.join(', ')}, and its seat; no other variable`)),
  ];
}

// The two marks: a part of a form, and what it says.
export function makeMarks(name) {
  const mark = (member, words) => {
    const input = el('input', { type: 'checkbox', id: `${name}-${member}` });
    return { member, input, row: el('p', { class: 'tick' }, input, el('label', { for: input.id }, words)) };
  };
  const marks = [mark('runsWithoutApprovals', 'It asks nobody for approval'),
    mark('quillpostTools', 'It has the board’s tools, not qp alone')];
  return {
    rows: marks.map(({ row }) => row),
    values: () => Object.fromEntries(marks.map(({ member, input }) => [member, input.checked])),
  };
}
