// The world of these tests: a board that is served, its page, agents with seats, and a browser.

import { spawn, execFile } from 'node:child_process';
import { once } from 'node:events';
import { mkdtemp, readFile, rm } from 'node:fs/promises';
import net from 'node:net';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { promisify } from 'node:util';

import { chromium } from 'playwright-core';

const programs = process.env.QUILLPOST_PROGRAMS;
const run = promisify(execFile);

/** What a started program says first, and the program. */
async function started(name, words, stream) {
  const process = spawn(join(programs, name), words, { stdio: ['ignore', 'pipe', 'pipe'] });
  let errors = '';
  process.stderr.on('data', (text) => (errors += text));
  const first = new Promise((resolve, reject) => {
    createInterface({ input: process[stream] }).once('line', resolve);
    process.once('exit', (status) => reject(new Error(`${name} ended with ${status}: ${errors}`)));
  });
  return { process, first: await first };
}

/** A board that is served in a folder of its own, and the person who commands it. */
export class Board {
  static async start(...options) {
    const board = new Board();
    board.directory = await mkdtemp('/tmp/qp-page-');
    board.options = options;
    await board.serve();
    return board;
  }

  async serve() {
    const words = ['serve', '--dir', this.directory, ...this.options];
    this.process = (await started('quillpost-board', words, 'stderr')).process;
  }

  /** Kills it at once, or ends it in order. */
  async stop(signal = 'SIGTERM') {
    if (this.process.exitCode === null && this.process.signalCode === null) {
      this.process.kill(signal);
      await once(this.process, 'exit');
    }
  }

  async remove() {
    await this.stop();
    await rm(this.directory, { recursive: true });
  }

  /** What a command of the person's prints. */
  async type(...words) {
    const { stdout } = await run(join(programs, 'quillpost-board'), ['--dir', this.directory, ...words]);
    return stdout;
  }

  /** What the board answers to a request of the person's, without a command between. */
  async ask(method, fields = {}) {
    const token = (await readFile(join(this.directory, 'person-board.token'), 'utf8')).trim();
    const socket = net.createConnection(join(this.directory, 'teamwork-board.sock'));
    socket.end(JSON.stringify({ protocolVersion: 1, token, sessionID: '', method, ...fields }) + '\n');
    let answer = '';
    for await (const piece of socket.setEncoding('utf8')) answer += piece;
    return JSON.parse(answer);
  }

  /** An agent in a seat of its own, registered. */
  async agent(name) {
    const lines = await this.type('seat', '--name', name);
    const variables = Object.fromEntries([...lines.matchAll(/^export (\w+)='?([^'\n]*)'?$/gm)].map((m) => [m[1], m[2]]));
    const agent = new Agent({ PATH: `${programs}:/usr/bin:/bin`, HOME: this.directory, ...variables });
    await agent.qp('register', '--name', name);
    return agent;
  }
}

/** An agent that has a shell. */
class Agent {
  constructor(environment) {
    this.environment = environment;
  }

  async qp(...words) {
    const { stdout } = await run(join(programs, 'qp'), words, { env: this.environment });
    return stdout;
  }
}

/** The page's program of a board. */
export class Page {
  static async start(board, ...options) {
    const page = new Page();
    const { process, first } = await started('quillpost-board', ['page', '--dir', board.directory, ...options], 'stdout');
    page.process = process;
    page.address = first;
    page.url = new URL(first);
    page.key = page.url.hash.slice('#key='.length);
    return page;
  }

  /** A stream of what moves, begun and not read. */
  async moves() {
    return fetch(new URL('/api/moves', this.url), { headers: { Authorization: `Bearer ${this.key}` } });
  }

  async stop() {
    if (this.process.exitCode === null && this.process.signalCode === null) {
      this.process.kill('SIGTERM');
      await once(this.process, 'exit');
    }
  }
}

/** A browser without a window. */
export const openBrowser = () =>
  chromium.launch({
    executablePath: process.env.QUILLPOST_BROWSER,
    args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage'],
  });
