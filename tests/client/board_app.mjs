// The app of these tests: answers requests on a Unix socket by what a test says for each method.

import { once } from "node:events";
import { mkdtemp, rm } from "node:fs/promises";
import net from "node:net";
import { join } from "node:path";

export class BoardApp {
  /** Every request so far, in the order in which they came. */
  requests = [];
  /** Method to reply, or to a function of the request that gives one, perhaps later. */
  answers = {};

  static async start() {
    const app = new BoardApp();
    // A path of a few bytes: sockets allow no more than about a hundred.
    app.directory = await mkdtemp("/tmp/qp-");
    app.socketPath = join(app.directory, "app.sock");
    app.server = net.createServer({ allowHalfOpen: true }, (socket) => app.#serve(socket));
    app.server.listen(app.socketPath);
    await once(app.server, "listening");
    return app;
  }

  async stop() {
    this.server.close();
    await once(this.server, "close");
    await rm(this.directory, { recursive: true });
  }

  /** What a terminal of this board has in its environment. */
  get environment() {
    return {
      QUILLPOST_SESSION_ID: "S-7",
      QUILLPOST_COLLAB_TOKEN: "t0k",
      QUILLPOST_COLLAB_SOCKET: this.socketPath,
    };
  }

  methods() {
    return this.requests.map((request) => request.method);
  }

  async #serve(socket) {
    socket.on("error", () => {});
    let received = "";
    socket.setEncoding("utf8");
    socket.on("data", (text) => (received += text));
    await once(socket, "end");
    const request = JSON.parse(received);
    this.requests.push(request);
    const answer = this.answers[request.method];
    const reply = typeof answer === "function" ? await answer(request) : answer;
    socket.end(reply === undefined ? "" : JSON.stringify(reply) + "\n");
  }
}

/** A change feed in which nothing changed, and what is said otherwise. */
export const changes = (rev, said = {}) => ({
  kind: "changes",
  threadTag: "T-abc123",
  changes: {
    rev,
    changed: false,
    goal: "Ship it",
    goalComplete: false,
    pendingGoalComplete: false,
    changeKinds: [],
    tasks: [],
    ...said,
  },
});

/** A task with all that a task must have, and what is said otherwise. */
export const task = (id, said = {}) => ({
  id,
  title: `Task ${id}`,
  body: "One line.\n",
  state: "open",
  log: [],
  resources: [],
  ...said,
});
