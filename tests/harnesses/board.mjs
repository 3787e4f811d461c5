// A board of the session's own, and the person who leads it.

import { execFile, spawn } from "node:child_process";
import { once } from "node:events";
import { join } from "node:path";
import { promisify } from "node:util";

const run = promisify(execFile);

export class Board {
  /** Serves a board in a folder, with the programs of a build. */
  static async start(build, folder) {
    const board = new Board();
    board.program = join(build, "quillpost-board");
    board.folder = folder;
    board.process = spawn(board.program, ["--dir", folder, "serve"], {
      env: {},
      stdio: ["ignore", "ignore", "pipe"],
    });
    const [line] = await once(board.process.stderr.setEncoding("utf8"), "data");
    if (!line.includes("listening on")) throw new Error(`the board said: ${line}`);
    return board;
  }

  async stop() {
    if (this.process.exitCode !== null) return;
    this.process.kill();
    await once(this.process, "exit");
  }

  /** What the person types, and what the board says to it; in a terminal with these variables. */
  async person(words, { input = "", env = {}, cwd } = {}) {
    const asked = run(this.program, ["--dir", this.folder, ...words], { env, cwd });
    asked.child.stdin.on("error", () => {}); // a command that reads nothing may have ended
    asked.child.stdin.end(input);
    const { stdout, stderr } = await asked;
    return stdout + stderr;
  }

  /** A new seat: its handle, and the variables of the terminal that sits there. */
  async seat(name) {
    const lines = await this.person(["seat", "--name", name]);
    const environment = {};
    for (const [, key, value] of lines.matchAll(/^export (QUILLPOST_\w+)='?([^'\n]*)'?$/gm))
      environment[key] = value;
    return { handle: lines.match(/answers to (\w+)/)[1], environment };
  }
}
