// What can be done with a task beside writing on it.

import { act, deedButton } from './act.js';
import { el, put } from './dom.js';
import { state } from './store.js';
import { openTaskForm } from './task_form.js';

function editButton(row, body) {
  return el('button', { type: 'button', on: { click: () => openTaskForm({
    id: row.id, title: row.title, body, priority: row.priority || '0', taskType: row.type,
    waitsOn: row.waitsOn.split('\n').join(', '), resources: row.resources.split('\n').join(', '),
    assignedRole: row.role, routedToFingerprint: row.meantFor }) } }, 'Edit');
}

function assignForm(row) {
  if (state.agents.length === 0) return null;
  const select = el('select', { 'aria-label': `Hand ${row.id} to` }, el('option', { value: '' }, 'Hand to …'),
    state.agents.map((agent) => el('option', { value: agent.handle }, `${agent.handle} ${agent.name}`)));
  select.addEventListener('change', async () => {
    if (select.value) await act(select, { method: 'person_assign', taskID: row.id, to: select.value });
    select.value = '';
  });
  return select;
}

// A button that asks for a word on it first; the word may be left out.
function remarkButton(label, method, member, row, kind = '') {
  const button = el('button', { type: 'button', class: kind, 'aria-expanded': 'false' }, label);
  const input = el('input', { type: 'text', 'aria-label': `${label}: why (may be empty)`, placeholder: 'why (may be empty)' });
  const go = deedButton(label, () => ({ method, taskID: row.id, [member]: input.value || undefined }), { kind: `primary ${kind}`, after: () => toggle(false) });
  const line = el('form', { class: 'line remark', hidden: true }, input, go);
  const toggle = (isOpen) => {
    line.hidden = !isOpen;
    button.setAttribute('aria-expanded', String(isOpen));
    if (isOpen) input.focus();
  };
  line.addEventListener('submit', (event) => {
    event.preventDefault();
    go.click();
  });
  button.addEventListener('click', () => toggle(line.hidden));
  return [button, line];
}

// Puts the buttons there that the task's state has a use for.
export function drawActions(node, row, body) {
  const key = JSON.stringify([row.state, row.title, body, row.priority, row.type, row.role, row.meantFor,
    row.waitsOn, row.resources, state.agents.map((agent) => agent.handle + agent.name)]);
  if (node.dataset.key === key) return;
  node.dataset.key = key;
  const isOpen = !['done', 'declined', 'deleted'].includes(row.state);
  const isHeld = row.holder !== '' && isOpen;
  if (row.state === 'deleted') {
    put(node, deedButton('Restore', () => ({ method: 'person_restore', taskID: row.id }), { kind: 'primary' }));
    return;
  }
  put(node,
    editButton(row, body),
    isOpen && !isHeld && assignForm(row),
    isHeld && remarkButton('Release', 'person_release', 'releaseReason', row),
    isOpen && remarkButton('Done', 'person_done', 'body', row),
    isOpen && remarkButton('Decline', 'person_reject', 'releaseReason', row),
    !isOpen && remarkButton('Reopen', 'person_reopen', 'releaseReason', row),
    remarkButton('Delete', 'person_delete', 'releaseReason', row, 'danger'));
}
