// The form in which a task is filed or edited.

import { act, dropDraft, keepDraft } from './act.js';
import { el } from './dom.js';
import { state } from './store.js';
import { closeSheet, openSheet } from './window.js';

const wholeID = (text) => text.trim();
const entries = (text) => text.split(/[,\n]/).map((entry) => entry.trim()).filter(Boolean);

// Each field: its name in the deed, what it is called, how it is read, how it is shown.
const FIELDS = [
  ['title', 'Title', (text) => text.trim()],
  ['body', 'Brief', (text) => text, 'area'],
  ['priority', 'Priority (higher comes first)', (text) => Number.parseInt(text, 10) || 0, 'number'],
  ['taskType', 'Type', (text) => text.trim()],
  ['waitsOn', 'Waits on (ids, with commas)', (text) => entries(text).map(wholeID)],
  ['resources', 'Resources (with commas)', entries],
  ['assignedRole', 'For the role', (text) => text.trim()],
  ['routedToFingerprint', 'For the agent (handle)', (text) => text.trim()],
];

// Opens the form: for a new task, or for one of these values to be edited.
export function openTaskForm(task = null) {
  const where = task?.id ?? 'new';
  const inputs = FIELDS.map(([name, label, , kind]) => {
    const id = `field-${name}`;
    const before = task?.[name] ?? '';
    const input = kind === 'area' ? el('textarea', { id, rows: 6 })
      : el('input', { id, type: kind ?? 'text', autocomplete: 'off', list: name === 'routedToFingerprint' ? 'handles' : null });
    input.value = before;
    keepDraft(input, `${where}-${name}`);
    return { name, input, before, row: el('p', { class: 'field' }, el('label', { for: id }, label), input) };
  });
  const submit = el('button', { type: 'submit', class: 'primary' }, task ? 'Save' : 'File it');
  const form = el('form', { class: 'task-form' }, el('h2', {}, task ? `Edit ${task.id}` : 'New task'),
    inputs.map((field) => field.row),
    el('datalist', { id: 'handles' }, state.agents.map((agent) => el('option', { value: agent.handle }, agent.name))),
    el('p', { class: 'end' }, submit));
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    const deed = task ? { method: 'person_edit', taskID: task.id } : { method: 'person_add' };
    inputs.forEach(({ name, input, before }, i) => {
      if (input.value !== before) deed[name] = FIELDS[i][2](input.value);
    });
    if (!(await act(submit, deed))) return;
    inputs.forEach(({ name }) => dropDraft(`${where}-${name}`));
    closeSheet();
  });
  openSheet(task ? 'Edit task' : 'New task', form);
  inputs[0].input.focus();
}
