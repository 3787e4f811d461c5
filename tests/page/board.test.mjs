// The parts of the page, in a real browser against real programs.

import assert from 'node:assert/strict';
import { describe, it } from 'node:test';

import { begin, card, column, drawer, openTab, remark, said, setTheStage, stage } from './stage.mjs';

describe('the page', () => {
  setTheStage();

  it('sets the goal and the charter, switches the squad, files a task and counts the revision', async () => {
    await begin();
    const tab = await openTab();
    await tab.getByText('The bakery shows what bread is left').waitFor();
    await tab.getByRole('button', { name: 'Edit', exact: true }).click();
    await tab.getByRole('textbox', { name: 'Goal' }).fill('Every bread has a page');
    await tab.getByRole('button', { name: 'Set the goal' }).click();
    await tab.locator('#goal h1', { hasText: 'Every bread has a page' }).waitFor();
    await tab.getByRole('button', { name: 'Edit', exact: true }).click();
    await tab.getByRole('textbox', { name: 'Charter' }).fill('Small steps');
    await tab.getByRole('button', { name: 'Set the charter' }).click();
    await tab.locator('.charter', { hasText: 'Small steps' }).waitFor();
    await tab.getByRole('switch', { name: 'Squad' }).click();
    await said(tab, 'The squad is on.');
    await tab.locator('[role=switch][aria-checked=true]', { hasText: 'Squad' }).waitFor();
    await tab.getByRole('button', { name: 'New task' }).click();
    await tab.getByLabel('Title', { exact: true }).fill('A page for rye');
    await tab.getByLabel('Brief', { exact: true }).fill('With a photo');
    await tab.getByLabel('Priority').fill('4');
    await tab.getByRole('button', { name: 'File it' }).click();
    await column(tab, 'ready').getByText('A page for rye').waitFor();
    const shown = await stage.board.type('show', 't1');
    assert.match(shown, /With a photo/);
    const { rev } = JSON.parse((await stage.board.ask('person_live')).message);
    await tab.locator('.rev', { hasText: `rev ${rev}` }).waitFor();
  });

  it('puts each task into the column of its state, with marks, and moves a card without making it anew', async () => {
    await begin(async () => {
      await stage.board.type('add', 'Held', '--resources', 'site', '--priority', '2');
      await stage.board.type('add', 'Rival', '--resources', 'site');
      await stage.board.type('add', 'Later', '--waits-on', '1');
      await stage.board.type('add', 'To review');
      await stage.board.type('add', 'Finished');
      await stage.board.type('done', '5');
    });
    const ada = await stage.board.agent('Ada');
    await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--progress', 'half way through');
    await ada.qp('claim', 't000004', 'then', 'request-review', 't000004');
    const tab = await openTab();
    await column(tab, 'claimed').getByText('half way through').waitFor();
    assert.match(await card(tab, 't000001').locator('.priority').textContent(), /2/);
    assert.match(await card(tab, 't000001').locator('.lease').getAttribute('title'), /lease: \d+ min left/);
    assert.match(await card(tab, 't000002').textContent(), /shares site with t1/);
    await column(tab, 'waiting').getByText('after t1').waitFor();
    await column(tab, 'review').getByText('To review').waitFor();
    assert.equal(await column(tab, 'done').locator('.count').textContent(), '1');
    assert.equal(await column(tab, 'done').locator('a.card').count(), 0);
    await column(tab, 'done').getByRole('button', { name: /Done/ }).click();
    await column(tab, 'done').getByText('Finished').waitFor();
    await card(tab, 't000002').evaluate((node) => { node.wasHere = true; node.focus(); });
    await ada.qp('done', 't000001', 'It stands');
    await column(tab, 'ready').getByText('Later').waitFor();
    assert.equal(await card(tab, 't000002').evaluate((node) => node.wasHere && document.activeElement === node), true);
  });

  it('shows the agents with what they hold, and says something to one or to all', async () => {
    await begin(() => stage.board.type('add', 'Frame'));
    const ada = await stage.board.agent('Ada');
    await stage.board.agent('Bo');
    await ada.qp('claim', 't000001');
    const tab = await openTab();
    const row = tab.locator('.agent-card', { hasText: 'Ada' });
    await row.getByText('Frame').waitFor();
    await row.getByText(/silent \d+ s/).waitFor();
    await row.getByText(/last work \d+ s ago/).waitFor();
    const wait = ada.qp('wait');
    await row.locator('.chip', { hasText: 'listening' }).waitFor();
    await row.getByText('Say something to').click();
    await row.getByRole('textbox').fill('Take the oak');
    await row.getByRole('button', { name: 'Send' }).click();
    assert.match(await wait, /Take the oak/);
    await tab.getByLabel('Say to all agents').fill('Lunch');
    await tab.locator('.say-all').getByRole('button', { name: 'Send' }).click();
    await said(tab, 'Said to 2 agents.');
  });

  it('opens a task by its address and does with it whatever the commands do', async () => {
    await begin(async () => {
      await stage.board.type('add', 'Frame', '--body', 'See https://example.org/frame');
      await stage.board.type('add', 'Wheels', '--waits-on', '1');
    });
    const ada = await stage.board.agent('Ada');
    await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--progress', 'sawing');
    const tab = await openTab(`${stage.page.address}&t000001`);
    const sheet = drawer(tab);
    await sheet.getByRole('heading', { name: 'Frame' }).waitFor();
    await sheet.getByText('sawing').waitFor();
    await sheet.locator('.facts').getByText('Wheels').waitFor();
    const link = sheet.getByRole('link', { name: 'https://example.org/frame' });
    assert.match(await link.getAttribute('rel'), /noopener/);
    await sheet.getByLabel('Comment on t1').fill('Use ash');
    await sheet.getByRole('button', { name: 'Comment' }).click();
    await sheet.locator('.log').getByText('Use ash').waitFor();
    await sheet.getByRole('button', { name: 'Release' }).click();
    await sheet.getByLabel('Release: why').fill('lunch');
    await sheet.locator('.remark').getByRole('button', { name: 'Release' }).click();
    await sheet.locator('.log').getByText('released: lunch').waitFor();
    await sheet.getByLabel('Hand t000001 to').selectOption({ index: 1 });
    await sheet.locator('.facts').getByText('Meant for').waitFor();
    await sheet.getByRole('button', { name: 'Edit' }).click();
    await tab.getByLabel('Title', { exact: true }).fill('The frame');
    await tab.getByRole('button', { name: 'Save' }).click();
    await sheet.getByRole('heading', { name: 'The frame' }).waitFor();
    await remark(sheet, 'Done');
    await sheet.locator('.chip', { hasText: 'done' }).first().waitFor();
    await remark(sheet, 'Reopen');
    await remark(sheet, 'Decline');
    await sheet.locator('.chip', { hasText: 'declined' }).first().waitFor();
    await remark(sheet, 'Reopen');
    await remark(sheet, 'Delete');
    await said(tab, 'waits on');
    await sheet.getByRole('button', { name: 'Delete anyway' }).click();
    await sheet.getByRole('button', { name: 'Restore' }).click();
    await said(tab, 'Put back');
    assert.match(await stage.board.type('show', 't1'), /The frame/);
  });

  it('draws who did what when, and each bar opens its task', async () => {
    await begin(async () => {
      await stage.board.type('add', 'Frame');
      await stage.board.type('add', 'Wheels');
    });
    const ada = await stage.board.agent('Ada');
    await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--blocked', '--blocker-question', 'Oak?');
    await stage.board.type('answer', '1', 'yes');
    await ada.qp('done', 't000001', 'It stands');
    const tab = await openTab();
    await tab.getByRole('button', { name: 'Who did what' }).click();
    const bar = tab.locator('#lanes .bar.done');
    await bar.waitFor();
    assert.match(await bar.locator('a').getAttribute('aria-label'), /t1 Frame: done, .*1 question/);
    await ada.qp('claim', 't000002');
    await tab.locator('#lanes .bar.now').waitFor();
    const left = (kind) => tab.locator(`#lanes .bar.${kind} rect`).first().evaluate((node) => Number(node.getAttribute('x')));
    const between = async () => (await left('now')) - (await left('done'));
    const before = await between();
    await tab.getByRole('button', { name: 'Zoom in' }).click();
    assert.ok((await between()) > before);
    await tab.getByRole('button', { name: 'All' }).click();
    await bar.locator('a').focus();
    await tab.keyboard.press('Enter');
    await drawer(tab).getByRole('heading', { name: 'Frame' }).waitFor();
  });

  it('draws what waits on what, with the longest chain marked', async () => {
    await begin(async () => {
      await stage.board.type('add', 'One');
      await stage.board.type('add', 'Two', '--waits-on', '1');
      await stage.board.type('add', 'Three', '--waits-on', '2');
      await stage.board.type('add', 'Alone');
    });
    const tab = await openTab();
    await tab.getByRole('button', { name: 'What waits' }).click();
    await tab.getByText('The longest chain has 3 tasks; it ends with t3.').waitFor();
    assert.equal(await tab.locator('#graph .node').count(), 4);
    assert.equal(await tab.locator('#graph .node.chain').count(), 3);
    assert.equal(await tab.locator('#graph .edge.chain').count(), 2);
    await stage.board.type('done', '1');
    await tab.getByText('The longest chain has 2 tasks').waitFor();
    await tab.locator('#graph .node', { hasText: 'Two' }).click();
    await drawer(tab).getByRole('heading', { name: 'Two' }).waitFor();
  });

  it('finds ids, titles, briefs and logs, filters, and lists the history', async () => {
    await begin(async () => {
      await stage.board.type('add', 'Frame', '--body', 'of seasoned walnut', '--type', 'wood');
      await stage.board.type('add', 'Wheels', '--type', 'rubber');
    });
    const ada = await stage.board.agent('Ada');
    await ada.qp('claim', 't000002', 'then', 'update', 't000002', '--progress', 'the spokes are titanium');
    const tab = await openTab();
    const search = tab.getByRole('searchbox');
    await card(tab, 't000002').waitFor();
    await search.fill('walnut');
    await card(tab, 't000002').waitFor({ state: 'detached' });
    await tab.locator('#found').getByText('of seasoned walnut').waitFor();
    await search.fill('TITANIUM');
    await card(tab, 't000001').waitFor({ state: 'detached' });
    await card(tab, 't000002').waitFor();
    await search.fill('t1');
    await card(tab, 't000001').waitFor();
    await card(tab, 't000002').waitFor({ state: 'detached' });
    await search.fill('');
    await tab.getByLabel('Only with this tag').selectOption('rubber');
    await card(tab, 't000001').waitFor({ state: 'detached' });
    await tab.getByLabel('Only with this tag').selectOption('');
    await tab.getByLabel('Only in this state').selectOption('ready');
    await card(tab, 't000002').waitFor({ state: 'detached' });
    await tab.getByLabel('Only in this state').selectOption('');
    await tab.getByRole('button', { name: 'History' }).click();
    const history = tab.locator('.history-list');
    await history.getByText('task claimed').waitFor();
    await tab.getByLabel('Only of this agent').selectOption({ index: 1 });
    await history.getByText('task added').first().waitFor({ state: 'detached' });
    await tab.getByLabel('Only of this agent').selectOption('');
    await stage.board.type('comment', '1', 'a late word');
    await history.getByText('a late word').waitFor();
    await stage.board.type('delete', '1', 'not needed');
    await tab.locator('.deleted').getByText('not needed').waitFor();
    await tab.locator('.deleted').getByRole('button', { name: 'Restore' }).click();
    await said(tab, 'Put back');
  });
});
