// What needs the person, in a real browser against real programs.

import assert from 'node:assert/strict';
import { describe, it } from 'node:test';

import { begin, card, column, drawer, openTab, said, setTheStage, stage } from './stage.mjs';

describe('what needs the person', () => {
  setTheStage();

  it('shows a question when an agent asks, and a click answers it: the agent goes on with the answer', async () => {
    await begin(() => stage.board.type('add', 'Sold-out bread'));
    const tab = await openTab();
    await card(tab, 't000001').waitFor();
    assert.equal(await tab.title(), 'main');
    const ada = await stage.board.agent('Ada');
    await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--blocked', '--blocker-kind', 'decision',
      '--blocker-question', 'Grey it out or hide it?', '--blocker-options', 'Grey it out,Hide it',
      '--blocker-consequence', 'Hidden bread cannot be asked for');
    const wait = ada.qp('wait');
    const need = tab.locator('.need');
    await need.getByText('Grey it out or hide it?').waitFor();
    await need.getByText('Hidden bread cannot be asked for').waitFor();
    await tab.waitForFunction(() => document.title === '(1) main');
    assert.match(await tab.locator('#heard').textContent(), /Ada: Grey it out or hide it\?/);
    await need.getByRole('button', { name: 'Hide it' }).click();
    assert.match(await wait, /Hide it/);
    await tab.waitForFunction(() => document.title === 'main');
    await need.waitFor({ state: 'detached' });
    await column(tab, 'claimed').locator('a.card').waitFor();
  });

  it('takes a secret in a field that hides it, and shows it nowhere', async () => {
    await begin(() => stage.board.type('add', 'Read the till'));
    const ada = await stage.board.agent('Ada');
    await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--blocked', '--blocker-kind', 'secret',
      '--blocker-question', 'The key of the till?', '--blocker-secret-name', 'TILL_KEY');
    const tab = await openTab();
    const field = tab.getByLabel('The secret TILL_KEY');
    assert.equal(await field.getAttribute('type'), 'password');
    await field.fill('sesame-77');
    const wait = ada.qp('wait');
    await tab.locator('.need').getByRole('button', { name: 'Give it' }).click();
    await wait;
    assert.match(await ada.qp('read', 't000001'), /sesame-77/);
    await tab.goto(`${stage.page.url.origin}/#t000001`);
    await drawer(tab).getByText('a secret was given').waitFor();
    assert.doesNotMatch(await tab.content(), /sesame-77/);
    assert.doesNotMatch(await tab.evaluate(() => JSON.stringify({ ...sessionStorage, ...localStorage })), /sesame-77/);
  });

  it('confirms or reopens a goal that is proposed as complete, and asks once more when tasks are open', async () => {
    await begin(() => stage.board.type('add', 'Left over'));
    const ada = await stage.board.agent('Ada');
    await ada.qp('propose-complete', '--acknowledge-open-tasks');
    const tab = await openTab();
    const need = tab.locator('.need.proposal');
    await need.getByRole('button', { name: 'Confirm' }).click();
    await said(tab, '1 task is still open.');
    await need.getByRole('button', { name: 'Confirm anyway' }).click();
    await tab.locator('#goal').getByText('goal complete').waitFor();
    assert.match(await stage.board.type('show'), /GOAL COMPLETE/);
    await tab.getByRole('button', { name: 'Edit', exact: true }).click();
    await tab.getByRole('button', { name: 'Reopen the goal' }).click();
    await said(tab, 'The goal is open again.');
  });

  it('brings debates, tags and plain questions before the person, and carries the replies back', async () => {
    await begin(async () => {
      await stage.board.type('squad', 'on');
      await stage.board.type('add', 'Frame');
    });
    const ada = await stage.board.agent('Ada');
    const bo = await stage.board.agent('Bo');
    await ada.qp('claim', 't000001', 'then', 'comment', 't000001', 'Is oak fine?', '--tags', 'human');
    await bo.qp('discuss', 'Bolts or glue?', '--address-to', 'human');
    const tab = await openTab();
    const tag = tab.locator('.need.tag');
    await tag.getByLabel('Reply on t000001').fill('Oak it is');
    await tag.getByRole('button', { name: 'Reply' }).click();
    await tag.waitFor({ state: 'detached' });
    const debate = tab.locator('.need.discussion');
    const reply = debate.getByLabel('Reply in d000001');
    await reply.fill('Glue');
    await bo.qp('reply', 'd000001', 'It should hold for years');
    await debate.getByText('It should hold for years').waitFor();
    assert.equal(await reply.inputValue(), 'Glue', 'what is typed stays');
    await debate.getByRole('button', { name: 'Reply' }).click();
    await debate.waitFor({ state: 'detached' });
    assert.match(await stage.board.type('show', 't1'), /Oak it is/);
    await tab.evaluate(() => { location.hash = 'd000001'; });
    await drawer(tab).locator('.volleys').getByText('Glue').waitFor();
  });

  it('says of an answer that another answered first', async () => {
    await begin(() => stage.board.type('add', 'Frame'));
    const ada = await stage.board.agent('Ada');
    await ada.qp('claim', 't000001', 'then', 'update', 't000001', '--blocked', '--blocker-question', 'Oak or steel?');
    const tab = await openTab();
    await tab.getByLabel('Answer t000001').fill('Steel');
    // The page hears of nothing meanwhile.
    await tab.route('**/api/moves*', (route) => route.abort());
    await stage.board.type('answer', 't1', 'Oak');
    await tab.evaluate(async () => {
      const { act } = await import('/act.js');
      await act(null, { method: 'person_answer', taskID: 't000001', body: 'Steel', blockerQuestion: 'Oak or steel?' });
    });
    await said(tab, 'it was answered first, or taken back');
    assert.doesNotMatch(await stage.board.type('show', 't1'), /Steel/);
  });
});
