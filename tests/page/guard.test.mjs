// What the page lets in, seen from a browser: texts that are hostile, pages of others, a wrong key.

import assert from 'node:assert/strict';
import { once } from 'node:events';
import http from 'node:http';
import { describe, it } from 'node:test';

import { begin, card, drawer, openIn, openTab, setTheStage, stage, takeComplaints } from './stage.mjs';

const HOSTILE = [
  '<img src=x onerror="document.title=1;fetch(`/owned`)">',
  '<script>document.title = "owned"</script>',
  '"><svg onload=alert(1)>',
  'javascript:alert(1)',
  '[click](javascript:alert(1)) data:text/html,<script>alert(1)</script>',
  '\u202egnp.exe\u202c \u0007bell \u001b[31mred \u2066x\u2069',
  '{{constructor.constructor("alert(1)")()}} ${alert(1)}',
];

/** Holds back what is asked for at a path, until the function that it gives is called. */
async function hold(context, path) {
  let release;
  const held = new Promise((resolve) => { release = resolve; });
  await context.route(path, async (route) => {
    await held;
    await route.continue();
  });
  return release;
}

const wrongAddress = () => `${stage.page.url.origin}/#key=${'0'.repeat(32)}`;

describe('what the page lets in', () => {
  setTheStage();

  it('shows whatever agents wrote as text', async () => {
    await begin(async (board) => {
      await board.type('squad', 'on');
      for (const text of HOSTILE) await board.ask('person_add', { title: text, body: text, taskType: text.slice(0, 40), resources: [text] });
    });
    const ada = await stage.board.agent(HOSTILE[0]);
    for (let i = 0; i < HOSTILE.length; ++i) {
      const id = `t00000${i + 1}`;
      await ada.qp('claim', id, 'then', 'update', id, '--progress', HOSTILE[i]);
      await ada.qp('comment', id, '--', HOSTILE[i]);
    }
    await ada.qp('update', 't000001', '--blocked', '--blocker-kind', 'decision', '--blocker-question', HOSTILE[0],
      '--blocker-options', '["<b>x</b>","javascript:alert(1)"]', '--blocker-artifact', 'javascript:alert(1)', '--blocker-consequence', HOSTILE[1]);
    await ada.qp('discuss', '--address-to', 'human', '--task-id', 't000002', '--', HOSTILE[2]);
    const tab = await openTab();
    let asked = 0;
    tab.on('dialog', (dialog) => { ++asked; dialog.dismiss(); });
    tab.on('request', (request) => { if (request.url().includes('owned')) ++asked; });
    await card(tab, 't000001').getByText('<img src=x').first().waitFor();
    for (const view of ['Who did what', 'What waits', 'History', 'Board']) {
      await tab.getByRole('button', { name: view }).click();
      await tab.waitForTimeout(100);
    }
    for (let i = 0; i < HOSTILE.length; ++i) {
      await tab.evaluate((n) => { location.hash = `t00000${n}`; }, i + 1);
      await drawer(tab).locator('.id', { hasText: `t${i + 1}` }).first().waitFor();
    }
    await tab.getByRole('searchbox').fill('alert');
    await tab.locator('#found').waitFor();
    assert.equal(await tab.locator('img, iframe, object, embed, script:not([src]), svg[onload], b').count(), 0);
    const links = await tab.locator('a[href]').evaluateAll((all) => all.map((a) => a.getAttribute('href')));
    assert.deepEqual(links.filter((href) => !/^(#|https?:\/\/)/.test(href)), []);
    const text = await tab.evaluate(() => document.body.textContent + document.title);
    assert.doesNotMatch(text, /[\u202a-\u202e\u2066-\u2069\u0007\u001b]/);
    assert.match(text, /⟨U\+202E⟩gnp\.exe/);
    assert.match(text, /␛\[31mred/);
    assert.equal(asked, 0);
  });

  it('makes markup impossible even for a script of its own', async () => {
    await begin();
    const tab = await openTab();
    await tab.locator('.link.live').waitFor();
    const outcome = await tab.evaluate(() => {
      try {
        document.createElement('div').innerHTML = '<b>x</b>';
        return 'taken';
      } catch (error) {
        return error.name;
      }
    });
    assert.equal(outcome, 'TypeError');
    assert.match(takeComplaints().join(), /TrustedHTML/);
  });

  it('asks for the key when there is none or a wrong one, and takes the address that was printed', async () => {
    await begin((board) => board.type('add', 'Frame'));
    const wrong = await openTab(wrongAddress());
    await wrong.getByText('This page needs its key').waitFor();
    const tab = await openTab(`${stage.page.url.origin}/#t000001`);
    await tab.getByText('This page needs its key').waitFor();
    await tab.getByLabel('Address').fill(stage.page.address);
    await tab.getByRole('button', { name: 'Open' }).click();
    await drawer(tab).getByRole('heading', { name: 'Frame' }).waitFor();
    await tab.reload();
    await card(tab, 't000001').waitFor();
  });

  it('asks for the key though that comes out only while the page is put together', async () => {
    await begin();
    const context = await stage.browser.newContext();
    const answer = await hold(context, '**/api/board*');
    const rest = await hold(context, '**/rest.js');
    const coming = context.waitForEvent('page');
    const opened = openIn(context, wrongAddress());
    const tab = await coming;
    await tab.locator('.column.ready').waitFor();
    answer();
    await tab.getByText('This page needs its key').waitFor();
    rest();
    await opened;
    await tab.evaluate(() => import('/rest.js'));
  });

  it('asks for the key once, and keeps what is typed though it is refused again', async () => {
    await begin();
    const context = await stage.browser.newContext();
    const answer = await hold(context, '**/api/board*');
    const tab = await openIn(context, wrongAddress());
    // The stream of moves is refused first.
    await tab.getByLabel('Address').fill('half an addr');
    const refused = tab.waitForResponse((response) => response.url().includes('/api/board'));
    answer();
    assert.equal((await refused).status(), 401);
    await tab.waitForTimeout(100);
    assert.equal(await tab.getByLabel('Address').inputValue(), 'half an addr');
  });

  it('has its key in no address, no request line and no lasting storage', async () => {
    await begin((board) => board.type('add', 'Frame'));
    const context = await stage.browser.newContext();
    const addresses = [];
    context.on('request', (request) => addresses.push(request.url(), request.headers().referer ?? ''));
    const tab = await openIn(context);
    await card(tab, 't000001').click();
    await drawer(tab).getByRole('heading', { name: 'Frame' }).waitFor();
    assert.ok(addresses.length > 10);
    // The first is what was typed; no browser sends what stands behind the #.
    assert.deepEqual(addresses.slice(1).filter((address) => address.includes(stage.page.key)), []);
    assert.doesNotMatch(tab.url(), /key/);
    assert.equal(await tab.evaluate(() => sessionStorage.getItem('key')), stage.page.key);
    assert.doesNotMatch(await tab.evaluate(() => JSON.stringify({ ...localStorage }) + document.cookie), new RegExp(stage.page.key));
  });

  it('asks nothing of other hosts', async () => {
    await begin((board) => board.type('add', 'Frame', '--body', 'https://example.org/x.png'));
    const context = await stage.browser.newContext();
    const hosts = new Set();
    context.on('request', (request) => hosts.add(new URL(request.url()).host));
    const tab = await openIn(context, `${stage.page.address}&t000001`);
    await drawer(tab).getByRole('link', { name: 'https://example.org/x.png' }).waitFor();
    assert.deepEqual([...hosts], [stage.page.url.host]);
  });

  it('can be neither read, written to nor framed by another page', async () => {
    await begin((board) => board.type('add', 'Frame'));
    const { origin } = stage.page.url;
    const other = http.createServer((_, answer) => answer.setHeader('Content-Type', 'text/html').end(
      `<title>other</title><iframe src="${origin}/"></iframe>`)).listen(0, '127.0.0.1');
    await once(other, 'listening');
    try {
      const tab = await openTab(`http://127.0.0.1:${other.address().port}/`);
      const outcome = await tab.evaluate(async ([at, key]) => {
        const tryIt = (options) => fetch(`${at}/api/${options.method ? 'do' : 'board'}`, options).then((answer) => `came: ${answer.type}`, (error) => error.name);
        const Authorization = `Bearer ${key}`;
        const body = '{"method":"person_add","title":"from elsewhere"}';
        return [
          await tryIt({ headers: { Authorization } }),
          await tryIt({ method: 'POST', body, headers: { Authorization, 'Content-Type': 'application/json' } }),
          await tryIt({ method: 'POST', body, mode: 'no-cors', headers: { 'Content-Type': 'text/plain' } }),
        ];
      }, [origin, stage.page.key]);
      assert.deepEqual(outcome, ['TypeError', 'TypeError', 'TypeError']);
      const frame = tab.frames()[1];
      assert.doesNotMatch(await frame.content().catch(() => ''), /id="board"/);
      assert.doesNotMatch(await stage.board.type('show'), /from elsewhere/);
      assert.match(takeComplaints().join(), /frame-ancestors 'none'/);
    } finally {
      other.close();
    }
  });
});
