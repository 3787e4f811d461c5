// Measures the page on a board of 1,000 tasks: how long it takes until its first card is on the screen
// from when the board's answer is in the tab, and from the tab's beginning; the same of a bare page of
// as many cards, from when its script begins; and how long after a move of an agent's its card is
// painted. Prints one table; run by scripts/bench page.

import { createServer } from 'node:http';

import { Board, openBrowser, Page } from './world.mjs';

const tasks = 1000;
const turns = 15;

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];

const ms = (value) => `${Math.round(value)} ms`;

const row = (...cells) => console.log(`| ${cells.join(' | ')} |`);

const against = (value, goal) => [`<= ${goal} ms`, value <= goal ? 'met' : 'MISSED'];

/** Runs in the tab: keeps when the first card was on the screen, and when the one awaited last was. */
function watch() {
  globalThis.seenAt = 0;
  globalThis.movedAt = 0;
  globalThis.awaited = '';
  new PerformanceObserver((list) => { seenAt ||= list.getEntries()[0].renderTime; }).observe({ type: 'element', buffered: true });
  new MutationObserver(() => {
    document.querySelector('a.card h3:not([elementtiming])')?.setAttribute('elementtiming', 'card');
    if (awaited && !movedAt && document.querySelector(`.column.claimed a.card[href$="${awaited}"]`))
      requestAnimationFrame(() => setTimeout(() => (movedAt = Date.now()), 0));
  }).observe(document, { subtree: true, childList: true });
}

/** What the browser alone takes: one file, with a script that makes as many cards as are seen. */
const bare = createServer((_, answer) => {
  answer.setHeader('Content-Type', 'text/html');
  answer.end(`<!doctype html><title>Bare</title><body><script type="module">
    performance.mark('begun');
    for (let i = 0; i < 20; ++i) {
      const card = Object.assign(document.createElement('a'), { className: 'card', href: '#' + i });
      card.append(Object.assign(document.createElement('h3'), { textContent: 'Task ' + i }));
      document.body.append(card);
    }</script>`);
});

/** Lets the browser put away what the tab before left behind, which takes both processors. */
const quiet = () => new Promise((resolve) => setTimeout(resolve, 700));

/** When the first card of this address was seen in a tab that began anew, and what it took from when
 *  there was something to show. */
async function sight(tab, address) {
  await tab.goto('about:blank');
  await quiet();
  await tab.goto(address);
  await quiet();
  await tab.waitForFunction(() => seenAt > 0);
  return tab.evaluate(() => {
    const answer = performance.getEntriesByType('resource').find(({ name }) => name.includes('/api/board'));
    const from = answer?.responseEnd ?? performance.getEntriesByName('begun')[0].startTime;
    return { whole: seenAt, after: seenAt - from };
  });
}

const board = await Board.start();
const browser = await openBrowser();
let page;
try {
  for (let i = 0; i < tasks; i += 50) {
    await Promise.all(Array.from({ length: 50 }, (_, j) =>
      board.ask('person_add', { title: `Task ${i + j}`, resources: [`file ${j}`] })));
  }
  page = await Page.start(board);
  await new Promise((resolve) => bare.listen(0, '127.0.0.1', resolve));
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 } });
  await context.addInitScript(watch);
  const tab = await context.newPage();

  const pages = [], bares = [];
  for (let turn = 0; turn < turns; ++turn) {
    pages.push(await sight(tab, page.address));
    bares.push(await sight(tab, `http://127.0.0.1:${bare.address().port}/`));
  }
  const middle = (seen, part) => median(seen.map((each) => each[part]));

  const moves = [];
  const ada = await board.agent('Ada');
  await sight(tab, page.address);
  for (let turn = 0; turn < turns; ++turn) {
    const task = `t${String(turn + 1).padStart(6, '0')}`;
    await tab.evaluate((id) => { movedAt = 0; awaited = id; }, task);
    await ada.qp('claim', task);
    await tab.waitForFunction(() => movedAt > 0);
    const { rows } = JSON.parse((await board.ask('person_history')).message).sections[0];
    moves.push((await tab.evaluate(() => movedAt)) - Number(rows.at(-1).cells[0]));
    await ada.qp('release', task);
  }

  const count = tasks.toLocaleString('en');
  row('Work', 'Page', 'Against', 'Goal', '');
  row('---', '---', '---', '---', '---');
  const first = middle(pages, 'after');
  row(`first card of ${count} tasks, from the board\u2019s answer`, ms(first), `bare page: ${ms(middle(bares, 'after'))}`, ...against(first, 100));
  row('the same, from the beginning of the tab', ms(middle(pages, 'whole')), `bare page: ${ms(middle(bares, 'whole'))}`, '', '');
  row('a move of an agent\u2019s, until its card is painted', ms(median(moves)), '', ...against(median(moves), 200));
} finally {
  bare.close();
  await page?.stop();
  await browser.close();
  await board.remove();
}
