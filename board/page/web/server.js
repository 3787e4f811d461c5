// All that is said to the server and heard from it. Used by the page and by the worker that hears
// for all its tabs, so it knows of no window.

export class Refused extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

async function asked(key, path, options = {}) {
  let answer;
  try {
    answer = await fetch(path, {
      ...options,
      headers: { ...options.headers, Authorization: `Bearer ${key}` },
      cache: 'no-store',
    });
  } catch {
    throw new Refused(0, 'The page’s program does not answer. Start `quillpost-board page` again.');
  }
  if (answer.ok) return answer;
  const outcome = await answer.json().catch(() => ({}));
  throw new Refused(answer.status, outcome.error ?? `That was refused (${answer.status}).`);
}

// What the board shows: a sheet.
export async function fetchSheet(key, what, parameters = {}) {
  const query = new URLSearchParams(Object.entries(parameters).filter(([, value]) => value));
  return (await asked(key, `/api/${what}?${query}`)).json();
}

async function post(key, path, what) {
  const headers = { 'Content-Type': 'application/json' };
  return (await asked(key, path, { method: 'POST', headers, body: JSON.stringify(what) })).json();
}

// What the person does: the message and the notice of the board.
export const sendDeed = (key, deed) => post(key, '/api/do', deed);

// What a helper would be started with: the arguments of a command line, if one is given.
export const fetchLaunch = (key, command) => post(key, '/api/launch', { command });

// Calls `tell(kind, data)` for each event of the server's, as long as it sends any.
async function readEvents(key, thread, tell) {
  const answer = await asked(key, `/api/moves?${new URLSearchParams(thread ? { thread } : {})}`);
  tell('open', {});
  const reader = answer.body.pipeThrough(new TextDecoderStream()).getReader();
  let pending = '';
  for (;;) {
    const { value, done } = await reader.read();
    if (done) return;
    pending += value;
    const events = pending.split('\n\n');
    pending = events.pop();
    for (const event of events) {
      const kind = /^event: (.*)$/m.exec(event)?.[1];
      const data = /^data: (.*)$/m.exec(event)?.[1];
      if (kind) tell(kind, JSON.parse(data));
    }
  }
}

const REST_MS = 500;

// Follows a Thread for ever: tells every event, "off" when the server cannot be reached, and
// "denied" when the key is not this run's, which ends it.
export async function follow(key, thread, tell) {
  for (;;) {
    try {
      await readEvents(key, thread, tell);
    } catch (refusal) {
      if (refusal.status === 401) return tell('denied', { why: refusal.message });
      tell('off', { why: refusal.message });
    }
    await new Promise((resolve) => setTimeout(resolve, REST_MS));
  }
}
