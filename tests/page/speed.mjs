// Measures the page on a board of 1,000 tasks: how long it takes from asking for the board to painted
// cards, the same from the tab's beginning beside a bare page of as many cards, and how long after a
// move of an agent's its card is painted. Prints one table; run by scripts/bench page.

import { createServer } from 'node:http';

import { Board, openBrowser, Page } from './world.mjs';

const tasks = 1000;
const turns = 15;

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];

const ms = (value) => `${Math.round(value)} ms`;

const row = (...cells) => console.log(`| ${cells.join(' | ')} |`);

const against = (value, goal) => [`<= ${goal} ms`, value <= goal ? 'met' : 'MISSED'];

/** Runs in the tab: keeps when the first cards were painted, and when the one awaited last was. */
function watch() {
  globalThis.paintedAt = 0;
  globalThis.movedAt = 0;
  globalThis.awaited = '';
  new MutationObserver(() => {
    if (!paintedAt && document.querySelector('a.card')) requestAnimationFrame(() => (paintedAt = performance.now()));
    if (awaited && !movedAt && document.querySelector(`.column.claimed a.card[href$="${awaited}"]`))
      requestAnimationFrame(() => (movedAt = Date.now()));
  }).observe(document, { subtree: true, childList: true });
}

/** What the browser alone takes: one file, with a script that makes the cards of one column. */
const bare = createServer((_, answer) => {
  answer.setHeader('Content-Type', 'text/html');
  answer.end(`<!doctype html><title>Bare</title><body><script type="module">
    for (let i = 0; i < 50; ++i) {
      const card = Object.assign(document.createElement('a'), { className: 'card', href: '#' + i });
      card.textContent = 'Task ' + i;
      document.body.append(card);
    }</script>`);
});

/** Lets the browser put away what the tab before left behind, which takes both processors. */
const quiet = () => new Promise((resolve) => setTimeout(resolve, 700));

/** When the cards of this address were painted in a tab that began anew, and what the tab tells. */
async function sight(tab, address) {
  await tab.goto('about:blank');
  await quiet();
  await tab.goto(address);
  await tab.waitForFunction(() => paintedAt > 0);
  return tab.evaluate(() => ({
    painted: paintedAt,
    asked: performance.getEntriesByType('resource').find(({ name }) => name.includes('/api/board'))?.startTime ?? 0,
  }));
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

  const whole = [], fromBoard = [], alone = [];
  for (let turn = 0; turn < turns; ++turn) {
    const seen = await sight(tab, page.address);
    whole.push(seen.painted);
    fromBoard.push(seen.painted - seen.asked);
    alone.push((await sight(tab, `http://127.0.0.1:${bare.address().port}/`)).painted);
  }

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
  row(`first cards of ${count} tasks, from asking for the board`, ms(median(fromBoard)), '', ...against(median(fromBoard), 100));
  row('the same, from the beginning of the tab', ms(median(whole)), `bare page: ${ms(median(alone))}`, '', '');
  row('a move of an agent\u2019s, until its card is painted', ms(median(moves)), '', ...against(median(moves), 200));
} finally {
  bare.close();
  await page?.stop();
  await browser.close();
  await board.remove();
}
