// Measures the page on a board of 1,000 tasks: how long after a tab began its cards are painted, and
// how long after a move of an agent's its card is. Prints one table; run by scripts/bench page.

import { Board, openBrowser, Page } from './world.mjs';

const tasks = 1000;
const turns = 15;

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];

const row = (work, ms, goal) =>
  console.log(`| ${work.padEnd(52)} | ${`${Math.round(ms)} ms`.padEnd(8)} | <= ${goal} ms | ${ms <= goal ? 'met   ' : 'MISSED'} |`);

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

const board = await Board.start();
const browser = await openBrowser();
let page;
try {
  for (let i = 0; i < tasks; i += 50) {
    await Promise.all(Array.from({ length: 50 }, (_, j) =>
      board.ask('person_add', { title: `Task ${i + j}`, resources: [`file ${j}`] })));
  }
  page = await Page.start(board);
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 } });
  await context.addInitScript(watch);

  const sights = [];
  const tab = await context.newPage();
  for (let turn = 0; turn < turns; ++turn) {
    await tab.goto('about:blank');
    await tab.goto(page.address);
    await tab.waitForFunction(() => paintedAt > 0);
    sights.push(await tab.evaluate(() => paintedAt));
  }

  const moves = [];
  const ada = await board.agent('Ada');
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
  row(`first cards of ${count} tasks, from the tab's beginning`, median(sights), 100);
  row('a move of an agent\u2019s, until its card is painted', median(moves), 200);
} finally {
  await page?.stop();
  await browser.close();
  await board.remove();
}
