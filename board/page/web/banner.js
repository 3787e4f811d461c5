// What stands over everything: that the board is lost, and the door for whoever has no key.

import { el, put } from './dom.js';
import { takeKey } from './link.js';
import { state, watch } from './store.js';
import { moment, now } from './times.js';

const banner = document.getElementById('banner');

// Says when the board is lost, and takes that back when it is there again.
export function mountBanner() {
  watch((changed) => {
    if (!changed.has('link')) return;
    const isLost = state.link === 'lost' || state.link === 'off';
    banner.hidden = !isLost;
    document.body.classList.toggle('is-lost', isLost);
    if (isLost) {
      put(banner, el('strong', {}, `Lost since ${moment(state.lostAt + now() - Date.now())}. `),
        state.why, '. What you see is how it stood then; what you type is kept. ',
        'This page comes back by itself.');
    }
  });
}

// Asks for the address that the program printed, in the place of the page.
export function showGate() {
  const input = el('input', { type: 'text', id: 'address', autocomplete: 'off', spellcheck: 'false',
    placeholder: 'http://127.0.0.1:…/#key=…' });
  const form = el('form', { class: 'gate' },
    el('h1', {}, 'This page needs its key'),
    el('p', {}, 'It is new each time the page’s program is started. Open the address that ',
      el('code', {}, 'quillpost-board page'), ' printed, or paste it here.'),
    el('label', { for: 'address' }, 'Address'), input,
    el('button', { type: 'submit', class: 'primary' }, 'Open'));
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    const found = /key=[0-9a-f]+/.exec(input.value);
    const rest = location.hash.replace(/^#/, '');
    if (found && takeKey(`#${found[0]}${rest ? `&${rest}` : ''}`)) location.reload();
  });
  put(document.body, el('main', {}, form));
  document.body.hidden = false;
  document.body.ariaBusy = null;
  document.title = 'Board: no key';
  input.focus();
}
