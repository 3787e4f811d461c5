// Helpers on the page: what an agent suggests is looked at and allowed or refused, and the person
// allows, lists and forgets them, in a real browser against real programs.

import assert from 'node:assert/strict';
import { realpath } from 'node:fs/promises';
import { describe, it } from 'node:test';

import { begin, findings, openTab, said, setTheStage, stage } from './stage.mjs';

const suggest = (agent, name, command, ...more) =>
  agent.qp('suggest', '--name', name, '--command', command, '--explanation', 'Reads code', ...more);
const list = () => stage.board.type('helper', 'list');
const sheet = (tab, name) => tab.getByRole('dialog', { name });
const argumentsIn = (part) => part.locator('.arguments li').allTextContents();

/** An agent suggests this helper, and a tab has the window open in which it is looked at. */
async function lookAt(name, command) {
  await begin();
  const ada = await stage.board.agent('Ada');
  await suggest(ada, name, command);
  const tab = await openTab();
  await tab.locator('.need.helper').getByRole('button', { name: 'Look and allow …' }).click();
  return { ada, tab, shown: sheet(tab, 'Suggested helper') };
}

describe('helpers on the page', () => {
  setTheStage();

  it('shows a suggestion argument by argument before it is allowed, and allows exactly that where the page was started', async () => {
    await begin();
    const ada = await stage.board.agent('Ada');
    const tab = await openTab();
    await suggest(ada, 'scout', "scout -p 'be  brief; do not $guess' '' {prompt}", '--reason', 'To look at the till');
    const need = tab.locator('.need.helper');
    await need.getByText('May agents have “scout” started?').waitFor();
    await need.getByText('To look at the till').waitFor();
    await need.getByRole('button', { name: 'Look and allow …' }).click();
    const shown = sheet(tab, 'Suggested helper');
    await shown.getByRole('heading', { name: /would like the helper “scout”/ }).waitFor();
    assert.deepEqual(await argumentsIn(shown), ['scout', '-p', 'be  brief; do not $guess', 'an empty one', '{prompt}']);
    await shown.getByText(await realpath('.')).waitFor();
    assert.match(await shown.textContent(), /PATH/);
    assert.doesNotMatch(await list(), /ALLOWED/, 'nothing is allowed by looking');
    await shown.getByLabel('It has the board’s tools').check();
    assert.deepEqual(await findings(tab), []);
    const wait = ada.qp('wait');
    await shown.getByRole('button', { name: 'Allow exactly this' }).click();
    await need.waitFor({ state: 'detached' });
    assert.match(await wait, /The human allows the helper .*scout.* that you suggested/);
    const allowed = await list();
    assert.match(allowed, /Runs: 'scout' '-p' 'be  brief; do not \$guess' '' '\{prompt\}'/);
    assert.match(allowed, /has the board's tools/);
    assert.doesNotMatch(allowed, /without asking/);
    assert.ok(allowed.includes(await realpath('.')), allowed);
    await tab.locator('[role=switch][aria-checked=true]', { hasText: 'Squad' }).waitFor();
  });

  it('does not allow what came in the place of what was shown, and shows that', async () => {
    const { ada, tab, shown } = await lookAt('scout', 'scout -p');
    assert.deepEqual(await argumentsIn(shown), ['scout', '-p']);
    await suggest(ada, 'scout', 'evil -p', '--reason', 'It is quicker');
    await tab.locator('.need.helper').getByText('It is quicker').waitFor();
    assert.deepEqual(await argumentsIn(shown), ['scout', '-p'], 'it does not change under the hand');
    await shown.getByRole('button', { name: 'Allow exactly this' }).click();
    await shown.getByText('has been replaced since it was shown').waitFor();
    assert.doesNotMatch(await list(), /ALLOWED/);
    await shown.locator('.arguments li', { hasText: 'evil' }).waitFor();
    await shown.getByRole('button', { name: 'Refuse' }).click();
    await tab.locator('.need.helper').waitFor({ state: 'detached' });
    assert.doesNotMatch(await list(), /scout|evil/);
  });

  it('refuses a suggestion with one click', async () => {
    await begin();
    const ada = await stage.board.agent('Ada');
    await suggest(ada, 'mate', 'mate');
    const tab = await openTab();
    const wait = ada.qp('wait');
    await tab.locator('.need.helper').getByRole('button', { name: 'Refuse' }).click();
    await tab.locator('.need.helper').waitFor({ state: 'detached' });
    assert.match(await wait, /does not allow the helper .*mate/);
    assert.match(await list(), /nothing to show/);
  });

  it('shows what cannot be seen in an argument as marks', async () => {
    const { tab, shown } = await lookAt('<b>scout</b>', "scout '<img src=x>' 'a\u202eb\u200bc\u00a0d\u00ade' 'one\ntwo'");
    await shown.getByRole('heading', { name: '<b>scout</b>' }).waitFor();
    assert.deepEqual(await argumentsIn(shown),
      ['scout', '<img src=x>', 'a⟨U+202E⟩b⟨U+200B⟩c⟨U+00A0⟩d⟨U+00AD⟩e', 'one␊two']);
    assert.equal(await tab.locator('#sheet img, #sheet b').count(), 0);
  });

  it('allows a helper after its arguments were shown, has it started, shows what it wrote, and forgets it', async () => {
    await begin();
    const ada = await stage.board.agent('Ada');
    const tab = await openTab();
    await tab.locator('.link.live').waitFor();
    await tab.keyboard.press('h');
    const shown = sheet(tab, 'Helpers');
    await shown.getByText('None yet').waitFor();
    await shown.getByLabel('Name').fill('counter');
    await shown.getByLabel('What it is good for').fill('adds up loaves');
    await shown.getByLabel('Command').fill('sh -c "echo 3 and 4; exit 2" | cat');
    await shown.getByRole('button', { name: 'Show what would run' }).click();
    await shown.getByText('this one has a pipe').waitFor();
    assert.equal(await shown.getByRole('button', { name: 'Allow exactly this' }).count(), 0);
    await shown.getByLabel('Command').fill(`sh -c 'echo "3 and 4"; env | cut -d= -f1; exit 2'`);
    await shown.getByRole('button', { name: 'Show what would run' }).click();
    await shown.getByRole('button', { name: 'Allow exactly this' }).waitFor();
    assert.deepEqual(await argumentsIn(shown.locator('form')), ['sh', '-c', 'echo "3 and 4"; env | cut -d= -f1; exit 2']);
    await shown.getByLabel('Command').pressSequentially(' ');
    assert.equal(await shown.getByRole('button', { name: 'Allow exactly this' }).count(), 0, 'what changed is to be shown anew');
    await shown.getByRole('button', { name: 'Show what would run' }).click();
    await shown.getByLabel('It asks nobody for approval').check();
    await shown.getByRole('button', { name: 'Allow exactly this' }).click();
    await shown.locator('.helper-card', { hasText: 'adds up loaves' }).waitFor();
    assert.equal(await shown.getByLabel('Command').inputValue(), '');
    assert.match(await list(), /runs without asking for approval/);
    assert.match(await ada.qp('hands', '--title', 'Count the loaves'), /is handed to/);
    const run = shown.locator('[data-run]');
    await run.getByText('failed').waitFor();
    await run.getByText(/^What \w+ wrote$/).click();
    await run.locator('.output', { hasText: '3 and 4' }).waitFor();
    const variables = await run.locator('.output').textContent();
    assert.match(variables, /QUILLPOST_SESSION_ID/);
    assert.doesNotMatch(variables, /QUILLPOST_PROGRAMS|QUILLPOST_BROWSER/, 'nothing else of the terminal');
    assert.deepEqual(await findings(tab), []);
    await shown.getByRole('button', { name: 'Forget' }).click();
    await said(tab, 'is started no more');
    await shown.getByText('None yet').waitFor();
    assert.doesNotMatch(await list(), /ALLOWED/);
    await tab.keyboard.press('Escape');
    await shown.waitFor({ state: 'hidden' });
  });
});
