// The agents: who they are, what they hold, how long they are silent, and a line to each and to all.

import { sayLine } from './act.js';
import { hueOf } from './card.js';
import { el, keep, linked, linkTo, put, say } from './dom.js';
import { state, watch } from './store.js';
import { sinceNode, untilBar } from './times.js';

const aside = document.getElementById('agents');
const title = el('h2', {});
const list = el('ul', { class: 'agent-list' });
const none = el('p', { class: 'empty' });
const all = el('div', { class: 'say-all' });

function makeAgent(agent) {
  const parts = {
    state: el('span', { class: 'chip' }),
    name: el('span', { class: 'name' }),
    role: el('span', { class: 'role' }),
    status: el('p', { class: 'note' }),
    holds: el('p', { class: 'holds' }),
    lease: el('span', { class: 'lease' }),
    silent: el('time', {}),
    deed: el('time', {}),
    deedRow: el('span', {}),
  };
  put(parts.deedRow, 'last work ', parts.deed, ' ago');
  const saying = el('details', { class: 'saying' }, el('summary', {}, `Say something to ${agent.handle}`),
    sayLine({ key: `say-${agent.handle}`, label: `Say to ${agent.handle}`, placeholder: `to ${agent.handle}`,
      deedOf: (body) => ({ method: 'person_say', to: agent.handle, body }) }));
  const node = el('li', { class: 'agent-card', vars: { '--hue': hueOf(agent.handle) } },
    el('header', {}, el('i', { class: 'spot' }), el('strong', {}, agent.handle), parts.name, parts.role, parts.state),
    parts.status, parts.holds, parts.lease,
    el('p', { class: 'times' }, el('span', {}, 'silent ', parts.silent), parts.deedRow), saying);
  node.parts = parts;
  return node;
}

function updateAgent(node, agent) {
  const { parts } = node;
  say(parts.name, agent.name);
  say(parts.role, agent.role);
  say(parts.state, agent.state);
  parts.state.dataset.state = agent.state;
  const words = agent.parked ? `parked: ${agent.parked}` : agent.status;
  if (parts.status.dataset.words !== words) {
    parts.status.dataset.words = words;
    put(parts.status, linked(words));
  }
  const held = [...state.tasks.values()].filter((task) => task.holder === agent.handle && task.leaseUntil);
  const key = held.map((task) => task.id + task.title).join('|');
  if (parts.holds.dataset.key !== key) {
    parts.holds.dataset.key = key;
    put(parts.holds, held.map((task) => el('span', {}, linkTo(task.id), ` ${task.title}`)));
  }
  untilBar(parts.lease, agent.leaseUntil, Number(state.thread?.lease) || 1);
  // The board notes a call that moves nothing only now and then.
  sinceNode(parts.silent, Math.max(agent.lastCall, agent.lastDeed));
  sinceNode(parts.deed, agent.lastDeed);
  parts.deedRow.hidden = !agent.lastDeed;
}

function draw() {
  say(title, `Agents ${state.agents.length || ''}`);
  none.hidden = state.agents.length > 0;
  all.hidden = state.agents.length < 2;
  keep(list, state.agents, (agent) => agent.handle, makeAgent, updateAgent);
}

// Shows the agents, and keeps them.
export function mountAgents() {
  put(none, 'Nobody is here yet. ', el('code', {}, 'quillpost-board run --name Ada -- claude'), ' starts an agent in a seat.');
  put(all, sayLine({ key: 'say-all', label: 'Say to all agents', placeholder: 'Say to all', deedOf: (body) => ({ method: 'person_say', to: 'all', body }) }));
  put(aside, title, all, list, none);
  watch((changed) => {
    if (['agents', 'tasks', 'thread'].some((part) => changed.has(part))) draw();
  });
}
