// A terminal of its own for one harness: a seat's environment and nothing of ours beside it.

import { execFile, spawn } from "node:child_process";
import { once } from "node:events";
import { mkdir, readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { promisify } from "node:util";

import { Home } from "./harnesses.mjs";
import { Model } from "./model.mjs";

const run = promisify(execFile);

/** What a window shows, without what steers the terminal. */
export const shown = (output) => output.replace(/\x1b(\][^\x07\x1b]*(\x07|\x1b\\)|\[[?<>=]?[0-9;]*[A-Za-z])/g, "");

/** A folder with a program that notes what environment it got and then is the one of the build. */
async function watched(build, folder) {
  const programs = join(folder, "programs");
  await mkdir(programs, { recursive: true });
  const path = join(programs, "quillpost-teamwork");
  const script = [
    "#!/bin/sh",
    `env >"$0.\${1:-server}"`,
    `exec ${build}/quillpost-teamwork "$@"`,
    "",
  ];
  await writeFile(path, script.join("\n"), { mode: 0o755 });
  return programs;
}

/** Types keys as a person does: a window throws away what comes before it has drawn itself. */
async function type(window, keys) {
  for (const key of keys) {
    await pause(1500);
    window.stdin.write(key);
  }
}

export class Terminal {
  /** What the harness printed. */
  output = "";

  /**
   * Sets a harness up for a user of its own: where it works, its program and its model, and what the
   * environment of that user's terminals has but for a seat.
   */
  static async setUp(place, harness, { folder, ...options }) {
    const home = new Home({ ...place, build: await watched(place.build, folder), folder: join(folder, "home") });
    const work = join(folder, "work");
    await mkdir(home.folder, { recursive: true });
    await mkdir(work, { recursive: true });
    const model = await Model.start(place.log);
    await harness.setUp(home, { ...options, model, work });
    const environment = {
      HOME: home.folder,
      PATH: `${place.programs}:${place.node}:/usr/bin:/bin`,
      LANG: "C.UTF-8",
      TERM: "xterm-256color",
      SHELL: "/bin/bash",
      UNRELATED: "1",
    };
    return { home, work, model, environment, program: join(place.programs, harness.program) };
  }

  /**
   * Sets a harness up for a seat and starts it. Terminals with the same `folder` are of one user, and
   * share what the harness keeps in its home directory. With `window`, words of a command line, it
   * has a window in a terminal of its own, and otherwise reads nothing. `command` are other words than
   * those that play a session.
   */
  static async open(place, harness, { seat, folder, window, ...options }) {
    const terminal = new Terminal();
    const { home, work, model, program, ...made } =
      await Terminal.setUp(place, harness, { ...options, folder, window });
    const environment = {
      ...made.environment,
      ...seat.environment,
      ...harness.more(model, options),
      ...options.more,
    };
    if (options.bundled) {
      const contrib = await home.copyContrib();
      for (const line of harness.bundle.install) {
        const words = line.map((word) => word.replace(/^contrib/, contrib));
        const installed = run(program, words, { cwd: work, env: environment });
        installed.child.stdin.on("error", () => {}); // one that asks nothing may have ended
        installed.child.stdin.end("y\n"); // the person trusts the bundle's folder
        const { stdout, stderr } = await installed;
        terminal.output += stdout + stderr;
      }
    }
    const process = spawn(
      window ? join(import.meta.dirname, "window.py") : program,
      window
        ? [program, ...harness.windowWords(window)]
        : (options.command ?? harness.words(model, options)),
      { cwd: work, env: environment, stdio: [window ? "pipe" : "ignore", "pipe", "pipe"], detached: true },
    );
    Object.assign(terminal, { seat, model, folder, environment, process, exited: once(process, "exit") });
    const expected = window ? [...(harness.typed ?? [])] : [];
    for (const pipe of [process.stdout, process.stderr])
      pipe.setEncoding("utf8").on("data", (text) => {
        terminal.output += text;
        if (expected.length > 0 && shown(terminal.output).includes(expected[0][0]))
          type(process, expected.shift()[1]);
      });
    process.stdin?.on("error", () => {}); // the window may have closed
    return terminal;
  }

  /**
   * What of the terminal's environment its server or its stop hook (`--wake-stop-hook`) got, in
   * words; absent when it was not started.
   */
  async inherited(mode = "server") {
    const path = join(this.folder, "programs", `quillpost-teamwork.${mode}`);
    const text = await readFile(path, "utf8").catch(() => undefined);
    if (text === undefined) return undefined;
    const got = Object.fromEntries(text.split("\n").map((line) => line.split(/=(.*)/s)));
    const ours = Object.keys(this.environment).filter((name) => name.startsWith("QUILLPOST_"));
    const lost = ours.filter((name) => got[name] !== this.environment[name]);
    const strange = Object.keys(got).filter((name) => name.startsWith("QUILLPOST_") && !ours.includes(name));
    return [
      lost.length === 0 ? `all ${ours.length} of ours` : `without ${lost.join(", ")}`,
      got.UNRELATED ? "and the rest" : "not the rest",
      ...strange.map((name) => `${name}, which is not set, as "${got[name]}"`),
    ].join(", ");
  }

  get hasEnded() {
    return this.process.exitCode !== null || this.process.signalCode !== null;
  }

  /** Whether the harness ended by itself within that time, as it does when its agent may stop. */
  async ends(seconds) {
    if (this.hasEnded) return true;
    let timer;
    const late = new Promise((resolve) => (timer = setTimeout(resolve, seconds * 1000, false)));
    const ended = await Promise.race([this.exited.then(() => true), late]);
    clearTimeout(timer);
    return ended;
  }

  /** Ends the harness and whatever it started. */
  async close() {
    this.model.stop();
    try {
      process.kill(-this.process.pid, "SIGKILL");
    } catch (error) {
      if (error.code !== "ESRCH") throw error;
    }
    await this.exited;
  }
}
