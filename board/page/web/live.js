// The worker that hears for all tabs of the page: one stream, however many they are. Its name says
// the key and the Thread.

import { follow } from './server.js';

const [key, thread] = JSON.parse(self.name);
const tabs = new Set();
let last = null;

self.onconnect = ({ ports: [tab] }) => {
  tabs.add(tab);
  tab.onmessage = () => tabs.delete(tab);
  // A tab that comes later is told how things stand.
  if (last) tab.postMessage(last);
};

follow(key, thread, (kind, data) => {
  if (kind !== 'gap') last = kind === 'sheet' ? ['open', {}] : [kind, data];
  for (const tab of tabs) tab.postMessage([kind, data]);
});
