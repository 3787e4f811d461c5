// The page's key and Thread, and its way to the server.

import { fetchLaunch, fetchSheet, follow, sendDeed } from './server.js';

const policy = globalThis.trustedTypes?.createPolicy('quillpost', {
  createScriptURL: (path) => {
    if (path !== '/live.js') throw new TypeError('no such script');
    return path;
  },
});

let key = '';
let thread = '';

// Takes the key out of the address, where it stands at first, and remembers it for this tab.
// Whether there is one.
export function takeKey(hash = location.hash) {
  const given = /^#?key=([0-9a-f]+)&?(.*)$/.exec(hash);
  if (given) {
    sessionStorage.setItem('key', given[1]);
    history.replaceState(null, '', given[2] ? `#${given[2]}` : location.pathname);
  }
  key = sessionStorage.getItem('key') ?? '';
  thread = sessionStorage.getItem('thread') ?? '';
  return key !== '';
}

// Shows another Thread, from the beginning.
export function chooseThread(tag) {
  sessionStorage.setItem('thread', tag);
  location.reload();
}

export const ask = (what, parameters = {}) => fetchSheet(key, what, { thread, ...parameters });

export const send = (deed) => sendDeed(key, { name: thread || undefined, ...deed });

export const askLaunch = (command) => fetchLaunch(key, command);

// From now on deeds are done on this Thread, whichever is the first one.
export function settleThread(tag) { thread = tag; }

// Calls `tell(kind, data)` for whatever the server says from now on.
export function listen(tell) {
  if (typeof SharedWorker !== 'function') {
    follow(key, thread, tell);
    return;
  }
  const path = policy ? policy.createScriptURL('/live.js') : '/live.js';
  const worker = new SharedWorker(path, { type: 'module', name: JSON.stringify([key, thread]) });
  worker.port.onmessage = ({ data: [kind, data] }) => tell(kind, data);
  addEventListener('pagehide', () => worker.port.postMessage('gone'));
  // A page that comes back as it was left is no longer told anything.
  addEventListener('pageshow', (event) => { if (event.persisted) location.reload(); });
}
