// Where things stand in the pictures: plain functions, without a browser.

import assert from 'node:assert/strict';
import { readdir, readFile } from 'node:fs/promises';
import { describe, it } from 'node:test';

/** A module of the page's, which knows nothing of a browser. */
async function load(name) {
  const source = await readFile(new URL(`../../board/page/web/${name}`, import.meta.url), 'utf8');
  return import(`data:text/javascript,${encodeURIComponent(source)}`);
}

const { graphOf } = await load('graph_layout.js');
const { claimsOf, lanesOf, ticksOf } = await load('lanes_layout.js');

const { argumentsOf, marked } = await load('arguments.js');

const task = (id, ...waitsOn) => ({ id, waitsOn });
const layersOf = ({ nodes }) => Object.fromEntries(nodes.map((node) => [node.task.id, node.layer]));
const move = (at, by, kind, id, what = '') => ({ at: String(at), by, move: kind, task: id, what });

describe('the picture of what waits on what', () => {
  it('puts each task behind the last that it waits on, and marks the longest chain', () => {
    const graph = graphOf([task('a'), task('b', 'a'), task('c', 'b', 'a'), task('d', 'a'), task('e')]);
    assert.deepEqual(layersOf(graph), { a: 0, b: 1, c: 2, d: 1, e: 0 });
    assert.deepEqual(graph.chain, ['a', 'b', 'c']);
    assert.equal(graph.edges.length, 4);
    assert.equal(graph.alone, 0);
  });

  it('passes over ids of no open task, itself and what was said twice', () => {
    const graph = graphOf([task('a', 'gone', 'a'), task('b', 'a', 'a')]);
    assert.deepEqual(graph.edges, [{ from: 'a', to: 'b' }]);
    assert.deepEqual(graphOf([]), { nodes: [], edges: [], chain: [], alone: 0 });
  });

  it('leaves a circle out rather than going round in it', () => {
    assert.deepEqual(layersOf(graphOf([task('a', 'b'), task('b', 'a'), task('c')])), { c: 0 });
  });

  it('takes a chain of any length', () => {
    const chain = Array.from({ length: 5000 }, (_, i) => task(`t${i}`, ...(i ? [`t${i - 1}`] : [])));
    assert.equal(graphOf(chain).chain.length, 5000);
  });

  it('counts tasks that have to do with no other when there are too many to draw', () => {
    const graph = graphOf(Array.from({ length: 50 }, (_, i) => task(`t${i}`)), 40);
    assert.equal(graph.nodes.length, 40);
    assert.equal(graph.alone, 10);
    assert.deepEqual(graph.chain, []);
  });
});

describe('the picture of who did what when', () => {
  it('makes a bar of each claim, from its taking to its end', () => {
    const bars = claimsOf([
      move(10, 'AA2', 'taskClaimed', 't1'), move(20, 'AA2', 'taskBlocked', 't1'), move(30, 'you', 'taskUnblocked', 't1'),
      move(40, 'AA2', 'taskCompleted', 't1'), move(50, 'BB3', 'taskClaimed', 't2'), move(60, 'board', 'taskLapsed', 't2'),
      move(70, 'BB3', 'taskClaimed', 't3'),
    ], 100);
    assert.deepEqual(bars, [
      { task: 't1', by: 'AA2', from: 10, to: 40, end: 'done', asks: [{ from: 20, to: 30 }] },
      { task: 't2', by: 'BB3', from: 50, to: 60, end: 'lapsed', asks: [] },
      { task: 't3', by: 'BB3', from: 70, to: 100, end: 'now', asks: [] },
    ]);
  });

  it('gives a claim that was handed over to whoever took it', () => {
    const bars = claimsOf([move(1, 'AA2', 'taskClaimed', 't1'),
      move(5, 'AA2', 'taskHandedOver', 't1', 'KQ3 took over from AA2')], 9);
    assert.deepEqual(bars.map(({ by, from, to, end }) => [by, from, to, end]), [['AA2', 1, 5, 'handed'], ['KQ3', 5, 9, 'now']]);
  });

  it('ends a question with its claim, and passes over ends of claims that began before', () => {
    const bars = claimsOf([move(1, 'board', 'taskLapsed', 't9'), move(2, 'AA2', 'taskClaimed', 't1'),
      move(3, 'AA2', 'taskBlocked', 't1'), move(4, 'you', 'taskReleased', 't1')], 9);
    assert.deepEqual(bars, [{ task: 't1', by: 'AA2', from: 2, to: 4, end: 'released', asks: [{ from: 3, to: 4 }] }]);
  });

  it('gives an agent as many rows as it held tasks at once', () => {
    const bar = (by, from, to) => ({ by, from, to });
    const lanes = lanesOf([bar('A', 0, 10), bar('A', 5, 8), bar('B', 1, 2), bar('A', 10, 12)]);
    assert.deepEqual(lanes.map(({ by, rows }) => [by, rows.map((row) => row.length)]), [['A', [2, 1]], ['B', [1]]]);
  });

  it('marks its scale with round moments, a few at any length of time', () => {
    for (const length of [60e3, 3600e3, 86400e3, 30 * 86400e3, 900 * 86400e3]) {
      const ticks = ticksOf(1.7e12, 1.7e12 + length, 8);
      assert.ok(ticks.length <= 31, `${ticks.length} for ${length}`);
      assert.ok(ticks.every((at) => at >= 1.7e12 && at <= 1.7e12 + length));
    }
  });
});

describe('the list of a helper\u2019s arguments', () => {
  it('is read as it is written, quotes, blanks and empty ones as well', () => {
    const shown = (list) => list.map((argument) => `'${argument.replaceAll("'", "'\\''")}'`).join(' ');
    for (const list of [['a'], ['a', 'b c', ''], ["it's", "'", "''", '\\', "\\'"], ['', ''], ["' '", 'x\ny'], ['y'.repeat(100_000)]])
      assert.deepEqual(argumentsOf(shown(list)), list);
    for (const text of ['', "'a", "a'", "'a''b'", "'a'  'b'", "'a' ", 'The `command` is to be one simple command'])
      assert.equal(argumentsOf(text), null, text);
  });

  it('has a mark for whatever cannot be seen', () => {
    assert.equal(marked('a b\u00e4\u{1f600}'), 'a b\u00e4\u{1f600}');
    assert.equal(marked('\t\n\u001b\u007f'), '\u2409\u240a\u241b\u27e8U+007F\u27e9');
    assert.equal(marked('\u2028\u3164\u{e0041}'), '\u27e8U+2028\u27e9\u27e8U+3164\u27e9\u27e8U+E0041\u27e9');
  });
});

describe('the files of the page', () => {
  const folder = new URL('../../board/page/web/', import.meta.url);

  it('are all asked for at once', async () => {
    const page = await readFile(new URL('index.html', folder), 'utf8');
    for (const name of await readdir(folder)) {
      if (!name.endsWith('.js') || name === 'live.js') continue;
      assert.match(page, new RegExp(`(src|href)="/${name}"`), name);
    }
  });

  it('are short, and set no markup, no style and no script from a text', async () => {
    for (const name of await readdir(folder)) {
      const text = await readFile(new URL(name, folder), 'utf8');
      assert.ok(text.split('\n').length <= 301, name);
      assert.doesNotMatch(text, /innerHTML|outerHTML|insertAdjacentHTML|document\.write|\beval\(|new Function| style="| on\w+="/, name);
    }
    assert.doesNotMatch(await readFile(new URL('index.html', folder), 'utf8'), /(src|href)="(?!\/|#)/);
  });
});
