// The picture of what waits on what: the open tasks, those that can be taken first, the longest chain
// marked.

import { el, put, say, short, svg } from './dom.js';
import { isFiltering, isWanted, watchFilter } from './filter.js';
import { graphOf } from './graph_layout.js';
import { state, watch } from './store.js';
import { isShown, watchView } from './views.js';

const section = document.getElementById('graph');
const NARROW = 190;
const WIDE = 320;
const HEIGHT = 44;
const ACROSS = 70;
const DOWN = 12;
const EDGE = 12;

const picture = svg('svg', { class: 'picture graph', role: 'group', 'aria-label': 'Open tasks and what they wait on' });
const note = el('p', { class: 'empty' });

// How wide a task is drawn: as wide as there is room for.
let box = NARROW;

const clip = (text, count) => (text.length > count ? `${text.slice(0, count - 1)}…` : text);

function taskNode({ task, x, y }, inChain) {
  const told = `${short(task.id)} ${task.title}: ${task.column}${task.holder ? `, ${task.holder}` : ''}${inChain ? ', in the longest chain' : ''}`;
  // What is read out says more than there is room for, so the texts stand beside the link.
  const node = svg('g', { class: `node ${task.column}${inChain ? ' chain' : ''}` },
    svg('a', { href: `#${task.id}`, 'aria-label': told }, svg('title', {}, told),
      svg('rect', { x, y, width: box, height: HEIGHT, rx: 6 })),
    svg('text', { class: 'id', 'aria-hidden': 'true', x: x + 9, y: y + 17 }, `${short(task.id)}  ${task.holder || task.column}`),
    svg('text', { 'aria-hidden': 'true', x: x + 9, y: y + 34 }, clip(task.title, Math.floor(box / 7))));
  if (isFiltering() && !isWanted(task)) node.classList.add('unwanted');
  return node;
}

function edgeNode(from, to, inChain) {
  const x1 = from.x + box;
  const y1 = from.y + HEIGHT / 2;
  const y2 = to.y + HEIGHT / 2;
  const half = (to.x - x1) / 2;
  return svg('path', { class: inChain ? 'edge chain' : 'edge', d: `M${x1} ${y1}C${x1 + half} ${y1} ${to.x - half} ${y2} ${to.x} ${y2}` });
}

function draw() {
  if (!isShown('graph')) return;
  const tasks = [...state.tasks.values()].filter((task) => task.column !== 'done' && !['done', 'declined'].includes(task.state))
    .sort((a, b) => b.priority - a.priority || (a.id < b.id ? -1 : 1));
  const { nodes, edges, chain, alone } = graphOf(tasks);
  const layers = Math.max(0, ...nodes.map(({ layer }) => layer)) + 1;
  const room = (section.clientWidth - 3 * EDGE - (layers - 1) * ACROSS) / layers;
  box = Math.floor(Math.min(WIDE, Math.max(NARROW, room)));
  const places = new Map(nodes.map((node) => [node.task.id, {
    ...node, x: EDGE + node.layer * (box + ACROSS), y: EDGE + node.place * (HEIGHT + DOWN) }]));
  const links = new Set(chain.slice(1).map((id, i) => `${chain[i]} ${id}`));
  const inChain = new Set(chain);
  const width = Math.max(0, ...[...places.values()].map(({ x }) => x + box)) + EDGE;
  const height = Math.max(0, ...[...places.values()].map(({ y }) => y + HEIGHT)) + EDGE;
  picture.setAttribute('viewBox', `0 0 ${width} ${height}`);
  picture.setAttribute('width', width);
  picture.setAttribute('height', height);
  const focused = picture.contains(document.activeElement) && document.activeElement.getAttribute('href');
  const drawnEdges = edges.map(({ from, to }) => edgeNode(places.get(from), places.get(to), links.has(`${from} ${to}`)));
  put(picture, drawnEdges.filter((node) => !node.classList.contains('chain')),
    drawnEdges.filter((node) => node.classList.contains('chain')),
    [...places.values()].sort((a, b) => a.layer - b.layer || a.place - b.place).map((node) => taskNode(node, inChain.has(node.task.id))));
  if (focused) picture.querySelector(`a[href="${focused}"]`)?.focus();
  note.hidden = false;
  say(note, tasks.length === 0 ? 'There is nothing to be done.'
    : [chain.length ? `The longest chain has ${chain.length} tasks; it ends with ${short(chain.at(-1))}.` : 'Nothing waits on anything.',
      alone ? `${alone} more tasks wait on nothing, and nothing on them.` : ''].join(' '));
}

// Shows the picture when it is looked at, and keeps it.
export function mountGraph() {
  put(section, note, el('div', { class: 'scroll', tabindex: 0, role: 'region', 'aria-label': 'Picture, to be scrolled' }, picture));
  watch((changed) => {
    if (changed.has('tasks')) draw();
  });
  watchView(draw);
  watchFilter(draw);
  new ResizeObserver(() => draw()).observe(section);
}
