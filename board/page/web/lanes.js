// The picture of who did what when: a lane an agent, a bar a claim, coloured by how it ended.

import { hueOf } from './card.js';
import { el, put, say, short, svg } from './dom.js';
import { filter, watchFilter } from './filter.js';
import { claimsOf, lanesOf, ticksOf } from './lanes_layout.js';
import { hasPast, moves } from './past.js';
import { agentAt, state, watch } from './store.js';
import { moment, now, span } from './times.js';
import { isShown, watchView } from './views.js';

const section = document.getElementById('lanes');
const ROW = 24;
const GAP = 14;
const LABEL = 110;
const TOP = 24;
// What is seen at the least: a claim can be as short as this.
const SMALLEST_MS = 1_000;
const ENDS = { now: 'goes on', done: 'done', released: 'given back', lapsed: 'lapsed', handed: 'handed over', declined: 'declined', deleted: 'deleted' };

const picture = svg('svg', { class: 'picture lanes', role: 'group', 'aria-label': 'Claims in time', tabindex: 0 });
const note = el('p', { class: 'empty' });
let bars = [];
// What is seen: from and to, or everything while nobody has zoomed.
let view = null;

const whole = () => {
  const from = Math.min(...bars.map((bar) => bar.from));
  const to = now();
  const margin = Math.max(3_000, (to - from) * 0.03);
  return { from: from - margin, to: to + margin };
};

function barNode(bar, x, y, end) {
  const left = Math.max(LABEL, x(bar.from));
  const right = Math.max(left + 3, Math.min(end, x(bar.to)));
  const title = state.tasks.get(bar.task)?.title ?? '';
  const words = `${short(bar.task)} ${title}`;
  const told = `${words}: ${ENDS[bar.end]}, ${moment(bar.from)} for ${span(bar.to - bar.from)}`
    + (bar.asks.length ? `, ${bar.asks.length} question${bar.asks.length > 1 ? 's' : ''}` : '');
  const asks = bar.asks.map((ask) => {
    const at = Math.max(left, x(ask.from));
    return { at, width: Math.max(3, Math.min(right, x(ask.to || bar.to)) - at) };
  });
  // As much of the words as there is room for, unless that is next to nothing.
  const label = (text, at, width, kind) => {
    const room = Math.floor((width - 8) / 6.6);
    return room > 3 && svg('text', { class: kind, 'aria-hidden': 'true', x: at + 5, y: y + 14 },
      text.length > room ? `${text.slice(0, room - 1)}…` : text);
  };
  // What is read out says more than there is room for, so the texts stand beside the link.
  return svg('g', { class: `bar ${bar.end}` },
    svg('a', { href: `#${bar.task}`, 'aria-label': told }, svg('title', {}, told),
      svg('rect', { x: left, y, width: right - left, height: ROW - 4, rx: 4 }),
      asks.map(({ at, width }) => svg('rect', { class: 'asking', x: at, y, width, height: ROW - 4, rx: 2 }))),
    label(words, left, (asks[0]?.at ?? right) - left, 'words'),
    asks.map(({ at, width }) => label(`? ${words}`, at, width, 'mark')
      || svg('text', { class: 'mark', 'aria-hidden': 'true', x: at + 3, y: y + 14 }, '?')));
}

function axis(scale, x, width, height) {
  return ticksOf(scale.from, scale.to, Math.max(3, width / 110)).filter((at) => x(at) > LABEL).map((at) =>
    svg('g', { class: x(at) > width - 90 ? 'tick last' : 'tick' }, svg('line', { x1: x(at), x2: x(at), y1: TOP - 6, y2: height }),
      svg('text', { x: x(at) + (x(at) > width - 90 ? -3 : 3), y: TOP - 10 }, moment(at))));
}

function paint() {
  const scale = view ?? whole();
  const width = Math.max(320, section.clientWidth);
  const x = (ms) => LABEL + ((ms - scale.from) / (scale.to - scale.from)) * (width - LABEL - 8);
  const wanted = bars.filter((bar) => (!filter.agent || bar.by === filter.agent));
  const lanes = lanesOf(wanted);
  let y = TOP;
  const drawn = [];
  lanes.forEach((lane, i) => {
    const height = lane.rows.length * ROW + GAP;
    drawn.push(svg('rect', { class: i % 2 ? 'lane odd' : 'lane', x: 0, y, width, height }));
    const name = agentAt(lane.by)?.name ?? '';
    const label = svg('text', { class: 'label', x: 8, y: y + GAP / 2 + 15 }, `${lane.by} ${name}`.slice(0, 15));
    label.style.setProperty('--hue', hueOf(lane.by));
    lane.rows.forEach((row, r) => {
      for (const bar of row) {
        if (bar.to < scale.from || bar.from > scale.to) continue;
        drawn.push(barNode(bar, x, y + GAP / 2 + r * ROW, width - 8));
      }
    });
    drawn.push(label);
    y += height;
  });
  picture.setAttribute('viewBox', `0 0 ${width} ${y + 8}`);
  picture.setAttribute('width', width);
  picture.setAttribute('height', y + 8);
  const focused = picture.contains(document.activeElement) && document.activeElement.getAttribute('aria-label');
  const here = x(now());
  put(picture, drawn.filter((node) => node.tagName === 'rect'), axis(scale, x, width, y),
    here > LABEL && here < width && svg('line', { class: 'here', x1: here, x2: here, y1: TOP - 6, y2: y }),
    drawn.filter((node) => node.tagName !== 'rect'));
  if (focused) [...picture.querySelectorAll('a')].find((node) => node.getAttribute('aria-label').startsWith(focused.split(':')[0]))?.focus();
}

async function draw(isStale = false) {
  if (!isShown('lanes') || !(await hasPast(note, isStale))) return;
  bars = claimsOf(moves(), now());
  note.hidden = bars.length > 0;
  say(note, 'Nobody has taken a task yet.');
  picture.classList.toggle('hidden', bars.length === 0);
  if (bars.length) paint();
}

// Shows more or less around a place, which stays where it is.
function zoom(factor, part = 0.5) {
  const { from, to } = view ?? whole();
  const at = from + (to - from) * part;
  const size = Math.max(SMALLEST_MS, (to - from) * factor);
  const most = whole();
  view = size >= most.to - most.from ? null : { from: at - size * part, to: at + size * (1 - part) };
  paint();
}

function pan(part) {
  const { from, to } = view ?? whole();
  view = { from: from + (to - from) * part, to: to + (to - from) * part };
  paint();
}

function listen() {
  picture.addEventListener('wheel', (event) => {
    event.preventDefault();
    const { left, width } = picture.getBoundingClientRect();
    if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY)) pan((event.deltaX || event.deltaY) / width);
    else zoom(event.deltaY > 0 ? 1.2 : 1 / 1.2, Math.max(0, (event.clientX - left - LABEL) / (width - LABEL)));
  }, { passive: false });
  let grip = null;
  picture.addEventListener('pointerdown', (event) => { grip = event.clientX; });
  picture.addEventListener('pointermove', (event) => {
    if (grip === null || event.buttons !== 1 || Math.abs(event.clientX - grip) < 2) return;
    pan((grip - event.clientX) / picture.clientWidth);
    grip = event.clientX;
  });
  picture.addEventListener('keydown', (event) => {
    const step = { ArrowLeft: () => pan(-0.1), ArrowRight: () => pan(0.1), '+': () => zoom(0.8), '-': () => zoom(1.25) }[event.key];
    if (!step) return;
    event.preventDefault();
    step();
  });
}

// Shows the picture when it is looked at, and keeps it.
export function mountLanes() {
  const tools = el('p', { class: 'picture-tools' },
    el('button', { type: 'button', 'aria-label': 'Zoom in', on: { click: () => zoom(0.6) } }, '+'),
    el('button', { type: 'button', 'aria-label': 'Zoom out', on: { click: () => zoom(1.6) } }, '−'),
    el('button', { type: 'button', on: { click: () => { view = null; paint(); } } }, 'All'),
    Object.entries(ENDS).map(([end, words]) => el('span', { class: `key ${end}` }, words)),
    el('span', { class: 'key asking' }, 'asks you'));
  listen();
  put(section, tools, note, el('div', { class: 'scroll' }, picture));
  watch((changed) => {
    if (changed.has('moves') || changed.has('agents')) draw();
    else if (changed.has('link') && state.link === 'live') draw(true);
  });
  watchView(() => draw());
  watchFilter(() => { if (isShown('lanes') && bars.length) paint(); });
  new ResizeObserver(() => { if (isShown('lanes') && bars.length) paint(); }).observe(section);
  draw();
}
