// That everybody can use the page: with the keyboard alone, on screens of any width, light and dark,
// and whoever cannot see it.

import assert from 'node:assert/strict';
import { describe, it } from 'node:test';

import { begin, busyBoard, card, column, drawer, findings, openTab, setTheStage, stage } from './stage.mjs';

describe('the page for everybody', () => {
  setTheStage();

  it('can be used with the keyboard alone', async () => {
    await begin(busyBoard);
    const tab = await openTab();
    await card(tab, 't000004').waitFor();
    const focused = () => tab.evaluate(() => document.activeElement.textContent || document.activeElement.getAttribute('aria-label'));
    await tab.keyboard.press('?');
    await tab.getByRole('dialog', { name: 'Keys' }).waitFor();
    await tab.keyboard.press('Escape');
    await tab.keyboard.press('/');
    await tab.keyboard.type('closed');
    await card(tab, 't000005').waitFor({ state: 'detached' });
    await tab.keyboard.press('Escape');
    await card(tab, 't000005').waitFor();
    await tab.keyboard.press('j');
    assert.match(await focused(), /^t4/);
    await tab.keyboard.press('j');
    await tab.keyboard.press('k');
    assert.match(await focused(), /^t4/);
    await tab.keyboard.press('Enter');
    await drawer(tab).getByRole('heading', { name: 'Say when it is closed' }).waitFor();
    assert.match(tab.url(), /#t000004$/);
    await tab.keyboard.press('Escape');
    await drawer(tab).waitFor({ state: 'hidden' });
    assert.match(await focused(), /^t4/);
    await tab.keyboard.press('2');
    await tab.locator('#lanes .bar').first().waitFor();
    await tab.keyboard.press('1');
    await tab.keyboard.press('n');
    assert.equal(await focused(), 'Grey it out');
    await tab.keyboard.press('Enter');
    await tab.locator('.need.question').waitFor({ state: 'detached' });
    await tab.keyboard.press('n');
    await tab.keyboard.type('Glue');
    await tab.keyboard.press('Enter');
    await tab.locator('.need.discussion').waitFor({ state: 'detached' });
    await tab.keyboard.press('n');
    assert.equal(await focused(), 'Look and allow …');
    await tab.keyboard.press('Enter');
    await tab.getByRole('dialog', { name: 'Suggested helper' }).waitFor();
    await tab.keyboard.press('Escape');
    assert.equal(await focused(), 'Look and allow …');
    await tab.keyboard.press('Tab');
    assert.equal(await focused(), 'Refuse');
    await tab.keyboard.press('Enter');
    await tab.locator('.need').waitFor({ state: 'detached' });
    await tab.keyboard.press('h');
    await tab.getByRole('dialog', { name: 'Helpers' }).waitFor();
    await tab.keyboard.press('Escape');
    await tab.keyboard.press('c');
    await tab.keyboard.type('By keys');
    await tab.keyboard.press('Enter');
    await column(tab, 'ready').getByText('By keys').waitFor();
  });

  for (const [width, colorScheme] of [[380, 'light'], [1280, 'dark'], [2560, 'light']]) {
    it(`can be used and read by everybody at ${width} pixels, ${colorScheme}`, async () => {
      await begin(busyBoard);
      const tab = await openTab(stage.page.address, { viewport: { width, height: 900 }, colorScheme });
      await card(tab, 't000001').waitFor();
      const isCut = () => tab.evaluate(() => document.documentElement.scrollWidth > innerWidth);
      for (const view of ['Board', 'Who did what', 'What waits', 'History']) {
        await tab.getByRole('button', { name: view }).click();
        await tab.waitForTimeout(100);
        assert.deepEqual(await findings(tab), [], view);
        assert.equal(await isCut(), false, view);
      }
      await tab.evaluate(() => { location.hash = 't000002'; });
      await drawer(tab).getByRole('heading', { name: 'Show the bread' }).waitFor();
      assert.deepEqual(await findings(tab), [], 'the drawer');
      assert.equal(await isCut(), false, 'the drawer');
      await tab.keyboard.press('Escape');
      await tab.getByRole('button', { name: 'New task' }).click();
      assert.deepEqual(await findings(tab), [], 'the form');
      await tab.keyboard.press('Escape');
      await tab.getByRole('button', { name: 'Helpers', exact: true }).click();
      const helpers = tab.getByRole('dialog', { name: 'Helpers' });
      await helpers.getByLabel('Command').fill("scout --model 'a long name of a model' --never-stop 'until it is done, and then some more words'");
      await helpers.getByRole('button', { name: 'Show what would run' }).click();
      await helpers.getByRole('button', { name: 'Allow exactly this' }).waitFor();
      assert.deepEqual(await findings(tab), [], 'the helpers');
      assert.equal(await isCut(), false, 'the helpers');
      await helpers.getByRole('button', { name: 'Look and allow …' }).click();
      await tab.getByRole('dialog', { name: 'Suggested helper' }).getByText('a b', { exact: true }).waitFor();
      assert.deepEqual(await findings(tab), [], 'a suggestion');
    });
  }
});
