// The server as one would write it in an afternoon on the official SDK: lists the tools of a file,
// forwards each call to the app and sorts a backlog into what the agent can act on.

import { readFile } from 'node:fs/promises';
import { createConnection } from 'node:net';
import { Server } from '@modelcontextprotocol/sdk/server/index.js';
import { StdioServerTransport } from '@modelcontextprotocol/sdk/server/stdio.js';
import { CallToolRequestSchema, ListToolsRequestSchema } from '@modelcontextprotocol/sdk/types.js';

const environment = process.env;
const { tools } = JSON.parse(await readFile(environment.QUILLPOST_BENCH_TOOLS, 'utf8'));

async function currentToken() {
  const token = await readFile(environment.QUILLPOST_COLLAB_TOKEN_FILE, 'utf8').catch(() => '');
  return token.trim() || environment.QUILLPOST_COLLAB_TOKEN || '';
}

function exchange(request) {
  return new Promise((resolve, reject) => {
    const chunks = [];
    const socket = createConnection({
      path: environment.QUILLPOST_COLLAB_SOCKET,
      allowHalfOpen: true,
    });
    socket.setTimeout(40_000, () => socket.destroy(new Error('timed out')));
    socket.on('error', reject);
    socket.on('data', (chunk) => chunks.push(chunk));
    socket.on('end', () => {
      socket.end();
      const reply = Buffer.concat(chunks);
      const end = reply.indexOf(0x0a);
      resolve(reply.subarray(0, end < 0 ? reply.length : end).toString('utf8'));
    });
    socket.end(`${JSON.stringify(request)}\n`);
  });
}

function compactTask(task) {
  const view = { id: task.id, title: task.title, state: task.state };
  const texts = ['blockerQuestion', 'blockerAnswer', 'type', 'reviewState', 'reviewNote',
    'parkedReason'];
  if (task.ownerFingerprint) view.owner = task.ownerFingerprint;
  if (task.routedToFingerprint) view.assignedTo = task.routedToFingerprint;
  if (task.reportsToHandle) view.askedBy = task.reportsToHandle;
  for (const key of texts) if (task[key]) view[key] = task[key];
  for (const key of ['blocked', 'blockerEscalated', 'thrashing', 'mentionsYou']) {
    if (task[key]) view[key] = true;
  }
  if (task.priority) view.priority = task.priority;
  if (task.resources.length > 0) view.resources = task.resources;
  if (task.claimLeaseSecondsRemaining !== undefined) {
    view.claimLeaseSecondsRemaining = task.claimLeaseSecondsRemaining;
  }
  if (task.waitsOn?.length > 0) {
    view.waitsOn = task.waitsOn;
    view.ready = task.ready ?? true;
  }
  const progress = task.log.filter(
    (line) => !line.startsWith('[[gist]] ') && !line.startsWith('[[for]] '),
  );
  if (progress.length > 0) view.lastProgress = progress[progress.length - 1];
  if (progress.length > 1) view.logCount = progress.length;
  const gist = task.log.findLast((line) => line.startsWith('[[gist]] '));
  if (gist) view.summary = gist.slice('[[gist]] '.length).trim();
  return view;
}

function briefing(tasks) {
  const board = { yours: [], forYou: [], readyToClaim: [], waiting: [] };
  let hidden = 0;
  for (const task of [...tasks].sort((a, b) => (b.priority ?? 0) - (a.priority ?? 0))) {
    if (task.state === 'done' || task.state === 'rejected') {
      hidden += 1;
    } else if (!task.ownerFingerprint && !task.blocked && (task.ready ?? true)) {
      board.readyToClaim.push(compactTask(task));
    } else {
      board.waiting.push(compactTask(task));
    }
  }
  if (hidden > 0) board.hint = `${hidden} finished tasks hidden`;
  return board;
}

function resultText(response) {
  const text = response.tasks
    ? JSON.stringify(briefing(response.tasks))
    : response.message ?? 'Done.';
  return response.threadTag ? `${text}\n\n(thread ${response.threadTag})` : text;
}

const server = new Server(
  { name: 'quillpost-teamwork', version: '1.0.0' },
  { capabilities: { tools: { listChanged: false } }, instructions: 'A shared board.' },
);

server.setRequestHandler(ListToolsRequestSchema, () => ({ tools }));

server.setRequestHandler(CallToolRequestSchema, async ({ params }) => {
  const reply = await exchange({
    ...params.arguments,
    protocolVersion: 1,
    token: await currentToken(),
    sessionID: environment.QUILLPOST_SESSION_ID,
    method: params.name,
  });
  return { content: [{ type: 'text', text: resultText(JSON.parse(reply)) }], isError: false };
});

await server.connect(new StdioServerTransport());
