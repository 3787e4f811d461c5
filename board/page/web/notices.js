// Being told: the page's title counts what needs the person; a notification and one quiet sound for
// what newly does, when the person has allowed them.

import { el, put, say, shown } from './dom.js';
import { state, watch } from './store.js';

const heard = document.getElementById('heard');
const ALLOWED = 'notices';
let known = null;
const bell = el('button', { type: 'button', role: 'switch', class: 'switch', 'aria-checked': 'false' }, 'Notify me');

const isAllowed = () => localStorage.getItem(ALLOWED) === 'on'
  && globalThis.Notification?.permission === 'granted';

// The bell in the head of the page.
export function noticeButton() {
  bell.title = 'A notification and a quiet sound when something new needs you';
  bell.addEventListener('click', async () => {
    const isOn = !isAllowed() && (await globalThis.Notification?.requestPermission()) === 'granted';
    localStorage.setItem(ALLOWED, isOn ? 'on' : 'off');
    bell.setAttribute('aria-checked', String(isOn));
    if (isOn) ring();
  });
  return bell;
}

// One soft tone of a third of a second.
function ring() {
  const audio = new AudioContext();
  const tone = audio.createOscillator();
  const volume = audio.createGain();
  tone.frequency.value = 660;
  volume.gain.setValueAtTime(0.04, audio.currentTime);
  volume.gain.exponentialRampToValueAtTime(0.0001, audio.currentTime + 0.35);
  tone.connect(volume).connect(audio.destination);
  tone.start();
  tone.stop(audio.currentTime + 0.35);
  tone.onended = () => audio.close();
}

const keyOf = (need) => [need.thread, need.kind, need.id, need.since, need.question].join('\n');

// Only one of several tabs rings: the first that takes the lock.
function announce(fresh) {
  const words = fresh.map((need) => `${need.from}: ${need.question || need.title}`).join('; ');
  say(heard, `Needs you: ${words}`);
  if (!isAllowed()) return;
  navigator.locks.request(`ring ${keyOf(fresh[0])}`, { ifAvailable: true }, async (lock) => {
    if (!lock) return;
    const notification = new Notification('Needs you', { body: shown(words).slice(0, 200), tag: fresh[0].id, silent: true });
    notification.onclick = () => { window.focus(); notification.close(); };
    ring();
    await new Promise((resolve) => setTimeout(resolve, 2000));
  });
}

function title() {
  const name = shown(state.thread?.thread || 'Board');
  const count = state.needs.length;
  const lost = state.link === 'lost' || state.link === 'off' ? '⚠ ' : '';
  document.title = `${lost}${count ? `(${count}) ` : ''}${name}`;
}

// Notes what needs the person, and tells of what is new since the board was first seen.
function tell() {
  const keys = new Set(state.needs.map(keyOf));
  const fresh = known ? state.needs.filter((need) => !known.has(keyOf(need))) : [];
  if (state.thread || state.rev) known = keys;
  if (fresh.length) announce(fresh);
}

// Keeps the title, and tells of what is new.
export function mountNotices() {
  put(heard);
  // A browser takes its time to say what it was allowed.
  bell.setAttribute('aria-checked', String(isAllowed()));
  title();
  tell();
  watch((changed) => {
    if (['needs', 'thread', 'link'].some((part) => changed.has(part))) title();
    if (changed.has('needs') || !known) tell();
  });
}
