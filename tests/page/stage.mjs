// What every group of tests stands on: a browser, and a fresh board with its page for each test.

import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { after, afterEach, before } from 'node:test';

import { Board, openBrowser, Page } from './world.mjs';

/** The board, the page and the browser of the test that runs. */
export const stage = { browser: null, board: null, page: null };

const complaints = [];

const axe = await readFile(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

/** What axe finds in a tab that is serious or worse. */
export async function findings(tab) {
  if (!(await tab.evaluate(() => 'axe' in globalThis))) await tab.evaluate(axe);
  const { violations } = await tab.evaluate(() => globalThis.axe.run(document, { resultTypes: ['violations'] }));
  return violations.filter(({ impact }) => impact === 'serious' || impact === 'critical')
    .map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 120)).join(' | ')}`);
}

/** Takes what the page's scripts complained of, which a test may want them to. */
export const takeComplaints = () => complaints.splice(0);

/** To be called once in a group. */
export function setTheStage() {
  before(async () => { stage.browser = await openBrowser(); });
  after(() => stage.browser.close());
  afterEach(async () => {
    for (const context of stage.browser.contexts()) await context.close();
    await stage.page?.stop();
    await stage.board.remove();
    assert.deepEqual(takeComplaints(), [], 'the page\u2019s scripts complained');
  });
}

/** Starts a board, sets it up, and starts its page. */
export async function begin(setUp = async () => {}) {
  stage.board = await Board.start();
  await stage.board.type('goal', 'The bakery shows what bread is left');
  await setUp(stage.board);
  stage.page = await Page.start(stage.board);
}

/** An agent with a question, a discussion and a review on a board of some tasks. */
export async function busyBoard(board) {
  await board.type('squad', 'on');
  for (const title of ['Publish bread.json', 'Show the bread', 'Read the till', 'Say when it is closed'])
    await board.type('add', title, '--resources', 'site', '--priority', '1', '--body', 'Whole loaves.');
  await board.type('add', 'Put it together', '--waits-on', '1,2');
  const ada = await board.agent('Ada');
  const bo = await board.agent('Bo');
  await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--blocked', '--blocker-kind', 'decision',
    '--blocker-question', 'Grey it out or hide it?', '--blocker-options', 'Grey it out,Hide it');
  await bo.qp('claim', 't000002', 'then', 'update', 't000002', '--progress', 'drawing', 'then', 'request-review', 't000002');
  await bo.qp('claim', 't000003', 'then', 'done', 't000003', 'It reads');
  await ada.qp('discuss', 'Bolts or glue?', '--task-id', 't000002', '--address-to', 'human');
  await bo.qp('suggest', '--name', 'scout', '--command', "scout -p 'a b'", '--explanation', 'Reads code', '--reason', 'To look around');
  await board.type('helper', 'allow', 'counter', '--explanation', 'adds up', '--', 'counter', '-p');
  return { ada, bo };
}

/** A tab that shows the page, in a browser session of its own. */
export async function openTab(address = stage.page.address, options = {}) {
  const context = await stage.browser.newContext({ viewport: { width: 1280, height: 800 }, ...options });
  return openIn(context, address);
}

/** A tab beside others; what its scripts complain of fails the test. */
export async function openIn(context, address = stage.page.address) {
  const tab = await context.newPage();
  tab.on('pageerror', (error) => complaints.push(error.message));
  tab.on('console', (message) => {
    if (/Content Security Policy|TrustedHTML/.test(message.text())) complaints.push(message.text());
  });
  tab.setDefaultTimeout(20_000);
  await tab.goto(address);
  await tab.locator('body:not([aria-busy])').waitFor({ state: 'attached' });
  return tab;
}

export const card = (tab, id) => tab.locator(`a.card[data-id="${id}"]`);
export const said = (tab, words) => tab.locator('#said', { hasText: words }).waitFor();
export const column = (tab, name) => tab.locator(`.column.${name}`);
export const drawer = (tab) => tab.locator('#drawer');

/** Says something of a task by a button that asks why, without saying why. */
export async function remark(sheet, label) {
  await sheet.getByRole('button', { name: label, exact: true }).first().click();
  await sheet.locator('.remark:not([hidden])').getByRole('button', { name: label }).click();
}
