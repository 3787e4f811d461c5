// Pictures of the page's main states at two widths, for the guide: node screenshots.mjs FOLDER

import { mkdir, rm } from 'node:fs/promises';
import { join, resolve } from 'node:path';

import { Board, openBrowser, Page } from './world.mjs';

const folder = resolve(process.argv[2]);
// Where helpers would run stands in a picture.
const bakery = '/tmp/bakery';
const WIDTHS = [[1280, 800], [380, 760]];

/** A bakery's board in the middle of its day. */
async function setUp(board) {
  await board.type('goal', 'The bakery shows on its site what bread is left. No prices, no online orders.');
  await board.type('charter', 'Small steps, a test for each; ask before you guess.');
  await board.type('squad', 'on');
  const add = (title, ...more) => board.type('add', title, ...more);
  await add('Publish bread.json', '--priority', '2', '--type', 'feature', '--resources', 'till', '--body', 'Read the till every minute, write what is left.\nIts form: https://example.org/till\n\n- whole loaves\n- no prices');
  await add('Show the bread on the front page', '--waits-on', '1', '--resources', 'site/front.html');
  await add('Say when the bakery is closed', '--resources', 'site/footer.html');
  await add('Round weights to whole loaves', '--waits-on', '1');
  await add('A photo for each bread', '--type', 'design');
  await add('Cache the page for a minute', '--waits-on', '2', '--priority', '1');
  await add('Tell the baker in the street', '--waits-on', '6');
  await add('Write down how to add a bread');
  await add('Look at it on a phone', '--type', 'design', '--waits-on', '2');
  await add('Read the till once', '--type', 'feature');
  const [ada, bo, cy] = [await board.agent('Ada'), await board.agent('Bo'), await board.agent('Cy')];
  await cy.qp('claim', 't000010', 'then', 'done', 't000010', 'It has three fields; compared with the paper roll');
  await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--progress', 'The till is read and tested; next: the writer', '--summary', 'Reads the till, writes nothing yet');
  await bo.qp('claim', 't000003', 'then', 'update', 't000003', '--blocked', '--blocker-kind', 'decision', '--blocker-question', 'Which day is the bakery closed?', '--blocker-options', 'Monday,Tuesday', '--blocker-consequence', 'It stands in the footer of every page.');
  await cy.qp('claim', 't000005', 'then', 'update', 't000005', '--progress', 'Four of six photos are taken', 'then', 'request-review', 't000005');
  await ada.qp('discuss', 'A loaf is sold out: hide it or grey it out?', '--task-id', 't000001', '--address-to', 'Bo');
  await bo.qp('reply', 'd000001', 'Grey it out: people shall see that we bake it.');
  return ada;
}

const STATES = [
  ['board', async () => {}],
  ['task', async (tab) => {
    await tab.evaluate(() => { location.hash = 't000001'; });
    await tab.locator('#drawer .log li').first().waitFor();
  }],
  ['lanes', async (tab) => {
    await tab.keyboard.press('Escape');
    await tab.getByRole('button', { name: 'Who did what' }).click();
    await tab.locator('#lanes .bar').first().waitFor();
  }],
  ['graph', async (tab) => {
    await tab.getByRole('button', { name: 'What waits' }).click();
    await tab.locator('#graph .node').first().waitFor();
  }],
];

const board = await Board.start('--db', ':memory:');
const browser = await openBrowser();
let page;
await mkdir(bakery, { recursive: true });
process.chdir(bakery);
try {
  const ada = await setUp(board);
  page = await Page.start(board);
  for (const [width, height] of WIDTHS) {
    const tab = await (await browser.newContext({ viewport: { width, height } })).newPage();
    await tab.goto(page.address);
    await tab.locator('a.card').first().waitFor();
    for (const [name, show] of STATES) {
      await show(tab);
      await tab.waitForTimeout(300);
      await tab.screenshot({ path: join(folder, `board-${name}-${width}.png`) });
    }
  }
  await ada.qp('suggest', '--name', 'counter', '--command', "counter --model small -p 'Count what is asked; say a number' {prompt}",
    '--explanation', 'Adds up loaves, writes nothing', '--reason', 'The till has eleven rolls of paper');
  const tab = await (await browser.newContext({ viewport: { width: 1280, height: 800 } })).newPage();
  await tab.goto(page.address);
  await tab.getByRole('button', { name: 'Look and allow …' }).click();
  await tab.getByRole('dialog', { name: 'Suggested helper' }).waitFor();
  await tab.waitForTimeout(300);
  await tab.screenshot({ path: join(folder, 'board-helper-1280.png') });
} finally {
  await browser.close();
  await page?.stop();
  await board.remove();
  await rm(bakery, { recursive: true });
}
