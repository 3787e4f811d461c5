// What is played through each harness, and what the model was sent of it.

import { execFile } from "node:child_process";
import { mkdtemp } from "node:fs/promises";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";

import { helperWords } from "./harnesses.mjs";
import { Terminal, shown } from "./terminal.mjs";
import { brief, count, gist, missing, plain, prefixIn, reference, tagged, unanswered } from "./texts.mjs";

const hookLine = "board changed, call wait_for_changes";

/** One session of one harness: `note(step, seen)` keeps a row of the table. */
class Session {
  constructor(place, board, harness, note) {
    Object.assign(this, { place, board, harness, note });
  }

  async folder() {
    return await mkdtemp(join(this.place.scratch, "terminal-"));
  }

  async open(options = {}) {
    const seat = options.seat ?? (await this.board.seat(options.name ?? "Ada"));
    const folder = options.folder ?? (await this.folder());
    return await Terminal.open(this.place, this.harness, { ...options, seat, folder });
  }

  /** Opens a terminal for the length of a step. A harness that asks its model for nothing says why. */
  async inTerminal(options, step, title = "start") {
    const terminal = await this.open(options);
    try {
      const first = await terminal.model.request(180);
      if (!first) {
        const said = gist(shown(terminal.output).slice(-300), 300) || "nothing";
        this.note(title, `the model was asked for nothing; the harness said: ${said}`);
        return;
      }
      await step(terminal, terminal.model);
    } finally {
      await terminal.close();
    }
  }

  async tools(model) {
    const wanted = await reference(this.place.build, this.harness.clientName);
    if (model.tools.length === 0 && (await this.searched(model)) === undefined) return false;
    const shown = model.tools;
    const whole = wanted.tools.filter((tool) =>
      shown.some((one) => one.description?.includes(tool.description)),
    );
    const name = model.tool("register")?.name ?? "none";
    const group = model.tool("register")?.group;
    this.note(
      "tools",
      `${shown.length} of ${wanted.tools.length}, ${whole.length} with their whole description; ` +
        `\`register\` is \`${group ? `${group}\` / \`${name}` : name}\``,
    );
    const { instructions, prompts, tools } = model.requests[0];
    const all = [instructions, ...prompts, ...tools.map((tool) => tool.about ?? "")].join("\n");
    const seen = prefixIn(plain(all), plain(wanted.instructions));
    const isWhole = seen === plain(wanted.instructions).length;
    const length = wanted.instructions.length;
    this.note(
      "instructions",
      isWhole
        ? `whole, ${count(length)} characters`
        : seen < 40
          ? "not shown"
          : `the first ${count(seen)} of ${count(length)} characters`,
    );
    return shown.length > 0;
  }

  /** Where the tools are not shown at first, the model asks for them as it is told it can. */
  async searched(model) {
    const search = model.last.tools.find((tool) => tool.name === "ToolSearch");
    if (!search) {
      this.note("tools", `none among ${model.last.tools.length}`);
      return undefined;
    }
    const named = [...JSON.stringify(model.last).matchAll(/mcp__teamwork__[a-z_]+/g)];
    this.note("tools at first", `deferred: ${new Set(named.map(String)).size} named, none shown`);
    return await model.use(search, { query: "teamwork", max_results: 50 });
  }

  async work(model) {
    const registered = await model.call("register", { name: "Ada", role: "planner" });
    const plan = await model.call("read_plan");
    const added = await model.call("add_task", { title: "Say when the bakery is closed" });
    const id = added?.match(/\bt\d{6}\b/)?.[0];
    const claimed = await model.call("claim_task", { taskID: id });
    const all = [registered, plan, added, claimed];
    const answered = all.filter(tagged).length;
    this.note(
      "register, plan, add, claim",
      answered === all.length && claimed.includes(`You hold ${id}`)
        ? "all four answered, each result whole"
        : `${answered} of ${all.length} answered: ${all.map((text) => gist(text, 60)).join(" | ")}`,
    );
    return id;
  }

  /** A question that the person answers while the agent waits. */
  async question(model, id) {
    await model.call("update_task", {
      taskID: id,
      blocked: true,
      blockerKind: "decision",
      blockerQuestion: "Which day is the bakery closed?",
    });
    const answersAfter = 45;
    const person = pause(answersAfter * 1000).then(() =>
      this.board.person(["answer", id, "On", "Tuesdays"]),
    );
    const waits = [];
    let text;
    do {
      const began = Date.now();
      text = await model.call("wait_for_changes", { timeoutSeconds: 60 });
      waits.push(Math.round((Date.now() - began) / 1000));
    } while (text && !text.includes("On Tuesdays") && waits.length < 5);
    await person;
    this.note(
      "wait of 60 s, answered after 45 s",
      `${waits.length === 1 ? "one call" : `${waits.length} calls`} (${waits.join(" s, ")} s); ` +
        (text?.includes("On Tuesdays") ? "the answer was read" : `last result: ${gist(text)}`),
    );
    await model.call("update_task", { taskID: id, blocked: false, progress: "Tuesdays it is" });
  }

  /** A brief of 60 KB, whose lines are numbered so that what is missing can be named. */
  async longResult(model, step = "result of 60 KB") {
    const added = await this.board.person(["add", "A long brief", "--body", "-"], {
      input: brief.join("\n"),
    });
    const text = await model.call("read_task", { taskID: added.match(/\bt\d{6}\b/)[0] });
    if (text === undefined) {
      this.note(step, unanswered);
      return;
    }
    const seen = brief.filter((line) => text.includes(line));
    const said = text
      .replace(/(\\n)?\s*\d*(\\t)?line \d{4} x+/g, "")
      .replace(/\S*\/\S*/g, "a file")
      .match(/[^"{}]*(truncated|too large|saved to|showing)[^"{}]*/i);
    this.note(
      step,
      `${count(text.length)} characters, ` +
        (seen.length === brief.length ? "whole" : missing(seen)) +
        (tagged(text) ? "" : ", without the thread's tag") +
        (said && seen.length < brief.length ? `; it says: ${gist(said[0], 160)}` : ""),
    );
  }

  async refusal(model) {
    const text = await model.call("claim_task", { taskID: "t999999" });
    this.note("refused by the board", `the model read: ${gist(text, 80)}`);
  }

  /** Ends its turn three times: with news, with the news read, and again. */
  async stop(terminal, model, step = "stop hook") {
    await this.board.person(["say", terminal.seat.handle, "Lunch", "until", "one"]);
    model.say("I am done.");
    const next = await model.request(45);
    const prompted = next?.prompts.slice(-3).join("\n") ?? "";
    if (!next || !JSON.stringify(next).includes(hookLine)) {
      const ended = (await terminal.ends(5)) ? "the harness ended" : "nothing more was asked";
      this.note(step, `did not keep the agent: ${next ? gist(prompted) : ended}`);
      return;
    }
    const where = prompted.includes(hookLine) ? "as a prompt" : "in a message";
    const heard = await model.call("wait_for_changes", { timeoutSeconds: 15 });
    model.say("Now I am done.");
    const again = await model.request(20);
    this.note(
      step,
      `kept the agent, its line read ${where}; ` +
        (heard?.includes("Lunch until one") ? "the wait brought the word; " : `the wait: ${gist(heard)}; `) +
        (again ? "kept it again" : `then ${(await terminal.ends(20)) ? "let it go" : "let it go, the harness stays"}`),
    );
  }

  async main() {
    const more = this.harness.waitsLong ? { QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS: "60" } : {};
    const window = this.harness.mainWindow;
    await this.inTerminal({ more, window }, async (terminal, model) => {
      if (!(await this.tools(model))) return;
      this.note("environment of the server", (await terminal.inherited()) ?? "not started");
      const id = await this.work(model);
      if (!id) return;
      await this.question(model, id);
      await this.longResult(model);
      await this.refusal(model);
      await this.stop(terminal, model);
      const hook = await terminal.inherited("--wake-stop-hook");
      this.note("environment of the stop hook", hook ?? "not started");
    });
  }

  /** Two terminals of one user at once: the second is opened while the first one's agent works. */
  async two(step = "two terminals at once", window = undefined) {
    const folder = await this.folder();
    const seats = [];
    await this.inTerminal({ folder, window, name: "Bo" }, async (bo, boModel) => {
      await this.inTerminal({ folder, window, name: "Cy" }, async (cy, cyModel) => {
        for (const [terminal, model] of [[bo, boModel], [cy, cyModel]]) {
          if (model.tools.length === 0) await this.searched(model);
          const text = await model.call("register", {}, 60);
          seats.push([terminal.seat.handle, text?.match(/"yourHandle":\s*"(\w+)"/)?.[1]]);
        }
      });
    });
    const own = seats.length === 2 && seats.every(([handle, told]) => handle === told);
    const found = seats.map(([handle, told]) => `the seat ${handle} ${told ? `was told it is ${told}` : "got no answer"}`);
    this.note(step, own ? "each acted as its own seat" : found.join(", "));
  }

  async windows() {
    for (const { title, words } of this.harness.windows ?? [])
      await this.two(`two windows at once, \`${title}\``, words);
  }

  /** The same start without one of the things that a person grants. */
  async without() {
    for (const without of this.harness.without) {
      const what = `without ${without}`;
      await this.inTerminal({ without }, async (terminal, model) => {
        const isNamed = JSON.stringify(model.last).includes("teamwork__");
        if (model.tools.length === 0 && isNamed) await this.searched(model);
        if (!model.tool("register")) {
          this.note(what, "none of the tools is shown to the model");
          return;
        }
        const text = await model.call("register", { name: "Di" }, 30);
        this.note(`${what}: a call`, tagged(text) ? "allowed" : `the model read: ${gist(text)}`);
        if (!tagged(text)) return;
        await this.board.person(["say", terminal.seat.handle, "Lunch", "until", "one"]);
        model.say("I am done.");
        const next = await model.request(15);
        const kept = next && JSON.stringify(next).includes(hookLine);
        this.note(`${what}: stop hook`, kept ? "kept the agent" : "did not run");
      }, what);
    }
  }

  /** What the guide says to look with. */
  async check() {
    const command = this.harness.check;
    const terminal = await this.open({ command });
    await terminal.ends(120);
    const line = shown(terminal.output).split("\n").filter((one) => /teamwork|connected|status/i.test(one));
    this.note(`check, \`${[this.harness.program, ...command].join(" ")}\``, gist(line.join(" "), 160) || "nothing");
    await terminal.close();
  }

  /** The bundle in the place of the ready files. */
  async bundle() {
    if (!this.harness.bundle) return;
    this.note("bundle: the harness's own check", await this.validated());
    await this.inTerminal({ bundled: true }, async (terminal, model) => {
      if (model.tools.length === 0) await this.searched(model);
      const text = await model.call("register", { name: "Flo" }, 60);
      const shown = model.tool("register")?.name ?? "none";
      this.note("bundle: a call", `${tagged(text) ? "answered" : gist(text)}; \`register\` is \`${shown}\``);
      if (tagged(text)) await this.stop(terminal, model, "bundle: stop hook");
    }, "bundle");
  }

  async validated() {
    const { programs, node, sources } = this.place;
    const env = { HOME: await this.folder(), PATH: `${programs}:${node}:/usr/bin:/bin` };
    const words = this.harness.bundle.validate.map((word) => word.replace(/^contrib/, `${sources}/contrib`));
    return await new Promise((resolve) => {
      execFile(join(programs, this.harness.program), words, { env }, (error, output, errors) =>
        resolve(error ? `refused: ${gist(output + errors, 300)}` : "passed"),
      );
    });
  }

  /** The same harness twice: its agent asks for hands, and the board starts it in the background. */
  async helper() {
    const folder = await this.folder();
    const helper = await Terminal.setUp(this.place, this.harness, { folder });
    const more = this.harness.more(helper.model, {});
    const command = [helper.program, ...helperWords(this.harness, helper.model)];
    const allow = ["helper", "allow", "counter", "--with-tools", "--without-approvals"];
    const named = Object.keys(more).length > 0 ? ["--env", Object.keys(more).join(",")] : [];
    try {
      await this.board.person([...allow, ...named, "--", ...command], {
        env: { ...helper.environment, ...more },
        cwd: helper.work,
      });
      await this.inTerminal({ name: "Gil" }, async (_terminal, asker) => {
        if (asker.tools.length === 0) await this.searched(asker);
        await asker.call("register", { name: "Gil" });
        const brief = "Two loaves of rye and three of wheat are left. How many is that?";
        const asked = await asker.call("request_hands", { title: "Count the loaves", brief });
        const [handle, id] = [/handed to (\w+), a new helper/, /\b(t\d{6})\b/].map((part) => asked?.match(part)?.[1]);
        if (!handle || !id) {
          this.note("as a helper", `none was started: ${gist(asked)}`);
          return;
        }
        const heard = this.heard(asker, "Five loaves");
        const worked = await this.worked(helper.model, id);
        const text = await heard;
        this.note(
          "as a helper",
          `${worked}; whoever asked ${text ? "was woken with the result" : "was not woken"}; ` +
            `the person reads: ${gist(await this.ended(handle))}`,
        );
        await asker.call("stop_helper", { agent: handle });
      }, "as a helper");
    } finally {
      helper.model.stop();
      await this.board.person(["helper", "forget", "counter"]);
    }
  }

  /** Waits until a wait brings these words; absent when four bring others. */
  async heard(model, words) {
    for (let waits = 0; waits < 4; ++waits) {
      const text = await model.call("wait_for_changes", { timeoutSeconds: 60 });
      if (text?.includes(words)) return text;
    }
    return undefined;
  }

  /** What a helper's agent does with the task that its first prompt names. */
  async worked(model, id) {
    const first = await model.request(180);
    if (!first) return "its model was asked for nothing";
    if (!first.prompts.join("\n").includes(`read_task with the taskID ${id}`))
      return `its prompt names no task: ${gist(first.prompts.at(-1))}`;
    if (model.tools.length === 0) await this.searched(model);
    const calls = [
      ["register", { name: "Counter" }],
      ["read_task", { taskID: id }],
      ["claim_task", { taskID: id }],
      ["complete_task", { taskID: id, summary: "Five loaves are left." }],
      ["unregister", {}],
    ];
    const refused = [];
    for (const [name, args] of calls) {
      const text = await model.call(name, args, 60);
      if (!tagged(text)) refused.push(`${name}: ${gist(text)}`);
    }
    model.say("The loaves are counted.");
    return refused.length > 0
      ? refused.join(", ")
      : "its first prompt named its task; register, read, claim, complete and unregister were answered";
  }

  /** How the process of a helper ended, as the board tells the person, without what it wrote. */
  async ended(handle) {
    let row;
    for (let tries = 0; tries < 60; ++tries) {
      const { hands } = JSON.parse(await this.board.person(["helper", "list", "--json"]));
      row = hands.find((one) => one.handle === handle);
      if (!["starting", "running"].includes(row?.state)) break;
      await pause(500);
    }
    return row ? `${row.state}, ${row.remark.split(": ")[0]}` : "it is not listed";
  }

  async longer() {
    if (!this.harness.longer) return;
    await this.inTerminal({ longer: true }, async (_terminal, model) => {
      if (model.tools.length === 0) await this.searched(model);
      await model.call("register", { name: "Ed" });
      await this.longResult(model, `result of 60 KB, with \`${this.harness.longer}\``);
    });
  }
}

/** Plays everything through one harness. */
export async function play(place, board, harness, note) {
  const session = new Session(place, board, harness, note);
  for (const part of ["check", "main", "longer", "two", "windows", "without", "helper", "bundle"]) {
    try {
      await session[part]();
    } catch (error) {
      note(part, `the session broke: ${error.stack}`);
    }
  }
}
