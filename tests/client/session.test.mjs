// A whole session with clients that others wrote: the program speaks the protocol as they do.

import assert from "node:assert/strict";
import { once } from "node:events";
import { afterEach, beforeEach, describe, test } from "node:test";
import { setTimeout as delay } from "node:timers/promises";

import { AjvJsonSchemaValidator } from "@modelcontextprotocol/sdk/validation/ajv";

import { BoardApp, changes, task } from "./board_app.mjs";
import { generations, Session, validate } from "./clients.mjs";

const agent = {
  id: "A1",
  fingerprint: "#a3f9",
  name: "Importer",
  status: "",
  leaseSecondsRemaining: 600,
  isSelf: true,
  canVerify: false,
  activeClaims: 0,
  handle: "KQ3",
};
const clear = { clear: true };
const tagged = { threadTag: "T-abc123", obligations: clear };

const twoTasks = [
  task("t2", { waitsOn: ["t1"], ready: false }),
  task("t1", { priority: 2, resources: ["parser"] }),
];

describe("clients", { concurrency: true }, () => {
  for (const generation of generations) {
    describe(`a client of ${generation.name}`, { concurrency: false }, () => {
      let app, session;

      beforeEach(async () => {
        app = await BoardApp.start();
        session = await Session.open(generation, app.environment);
      });

      afterEach(async () => {
        await session.close();
        await app.stop();
        validate(session);
        assert.deepEqual(session.errors, []);
      });

      test("learns who the program is and what it can do", () => {
        const { client } = session;
        const version = { name: "quillpost-teamwork", version: "1.0.0" };
        assert.deepEqual(client.getServerVersion(), version);
        assert.deepEqual(client.getServerCapabilities(), { tools: { listChanged: false } });
        assert.match(client.getInstructions(), /^You are one of several agents on a shared board/);
        assert.equal(session.received[0].result.protocolVersion, "2024-11-05");
      });

      test("lists each tool once, with a schema that is a schema", async () => {
        const { tools, nextCursor } = await session.client.listTools();
        assert.equal(tools[0].name, "register");
        assert.equal(nextCursor, undefined);
        assert.equal(new Set(tools.map((tool) => tool.name)).size, tools.length);
        for (const { name, description, inputSchema } of tools) {
          assert.ok(description.length > 40, name);
          const { required = [], properties } = inputSchema;
          const isValid = new AjvJsonSchemaValidator().getValidator(inputSchema);
          assert.equal(isValid({}).valid, required.length === 0, name);
          assert.ok(!isValid({ nothing: "known" }).valid, name);
          for (const key of required) assert.ok(key in properties, `${name}: ${key}`);
        }
        const add = tools.find((tool) => tool.name === "add_task").inputSchema;
        const isValid = new AjvJsonSchemaValidator().getValidator(add);
        assert.ok(isValid({ title: "t", priority: 1, waitsOn: ["t1"] }).valid);
        assert.ok(!isValid({ title: "t", priority: "high" }).valid);
      });

      test("takes a seat, works a task and proposes that the goal is met", async () => {
        Object.assign(app.answers, {
          register: { kind: "registered", agent, ...tagged },
          read_plan: {
            kind: "plan",
            plan: { threadName: "Import", goal: "Ship it", goalLocked: false, dispatched: true },
            ...tagged,
          },
          list_tasks: { kind: "tasks", tasks: twoTasks, ...tagged },
          claim_task: ({ taskID }) => ({
            kind: "task",
            task: task(taskID, { state: "claimed", ownerFingerprint: "#a3f9" }),
            ...tagged,
          }),
          update_task: { kind: "written", message: "Noted.", ...tagged },
          complete_task: { kind: "written", message: "Done with it.", ...tagged },
          propose_goal_complete: { kind: "written", message: "Proposed.", ...tagged },
        });

        const seat = await session.callForObject("register", { name: "Importer" });
        assert.equal(seat.id, "#a3f9");
        assert.equal(seat.yourHandle, "KQ3");
        assert.equal(seat.rules.length, 9);
        const plan = await session.callForObject("read_plan");
        assert.match(plan.nextStep, /^Goal is set\./);
        const backlog = await session.callForObject("list_tasks");
        assert.deepEqual(
          backlog.readyToClaim.map(({ id }) => id),
          ["t1"],
        );
        const claimed = await session.callForObject("claim_task", { taskID: "t1" });
        assert.equal(claimed.owner, "#a3f9");
        assert.equal(claimed.body, "1\tOne line.");
        const noted = await session.call("update_task", { taskID: "t1", progress: "Grüße 😀" });
        assert.equal(noted, "Noted.\n\n(thread T-abc123)");
        const done = await session.call("complete_task", { taskID: "t1", summary: "It works." });
        assert.match(done, /^Done with it\.\n\nNext: /);
        const proposed = await session.call("propose_goal_complete", { summary: "All of it." });
        assert.match(proposed, /\n\n\(thread T-abc123\)$/);

        assert.deepEqual(app.requests[0], {
          protocolVersion: 1,
          token: "t0k",
          sessionID: "S-7",
          method: "register",
          name: "Importer",
        });
        assert.equal(app.requests[4].note, "Grüße 😀");
        assert.deepEqual(app.methods(), Object.keys(app.answers));
      });

      test("is kept alive by progress while it waits, and woken by news", async () => {
        app.answers.heartbeat = { kind: "registered" };
        const news = Date.now() + 8500;
        app.answers.poll_changes = async ({ sinceRev, holdMs }) => {
          if (holdMs === undefined) return changes(sinceRev + 1);
          await delay(Math.min(holdMs, Math.max(news - Date.now(), 0)));
          const isNews = Date.now() >= news;
          return isNews ? changes(9, { changed: true, tasks: twoTasks }) : changes(sinceRev);
        };
        const counts = [];
        const options = {
          // Shorter than the wait: without progress the client would give up.
          timeout: 8000,
          resetTimeoutOnProgress: true,
          onprogress: ({ progress, message }) => {
            assert.equal(message, "Listening for changes on the board…");
            counts.push(progress);
          },
        };
        const args = { standDown: true };
        const outcome = await session.callForObject("wait_for_changes", args, options);
        assert.deepEqual(counts, [1, 2]);
        assert.equal(outcome.rev, 9);
        assert.equal(outcome.watching, "entire backlog");
        assert.deepEqual(
          outcome.tasks.map(({ id }) => id),
          ["t2", "t1"],
        );
        assert.match(outcome.nextStep, /^The board moved/);
        const [heartbeat, firstPoll, secondPoll] = app.requests;
        assert.deepEqual(
          [heartbeat.method, heartbeat.waiting, heartbeat.standDown],
          ["heartbeat", true, true],
        );
        assert.deepEqual([firstPoll.sinceRev, firstPoll.holdMs], [0, undefined]);
        assert.equal(secondPoll.sinceRev, 1);
        assert.ok(secondPoll.holdMs <= 5000);
      });

      test("gets no progress that it did not ask for", async () => {
        app.answers.heartbeat = { kind: "registered" };
        app.answers.poll_changes = changes(2, { changed: true });
        await session.call("wait_for_tasks", { taskIDs: ["t1"] });
        assert.ok(session.received.every((message) => message.method === undefined));
        assert.deepEqual(app.requests[1].taskIDs, ["t1"]);
      });

      test("sees an unknown tool and an unknown method as errors of the protocol", async () => {
        const tool = { code: -32602, message: /Unknown tool: frobnicate/ };
        await assert.rejects(session.call("frobnicate"), tool);
        const method = { code: -32601, message: /Method not found: board\/unknown/ };
        const request = { method: "board/unknown", params: {} };
        await assert.rejects(generation.request(session.client, request), method);
        await session.client.ping();
      });

      test("reads in words what the app refuses, and that it is not there", async () => {
        app.answers.claim_task = { kind: "error", message: "Bee holds it." };
        assert.equal(await session.call("claim_task", { taskID: "t1" }), "Bee holds it.");
        assert.match(await session.call("list_agents"), /^Couldn't reach the Quillpost app/);
        assert.equal(app.methods().filter((method) => method === "list_agents").length, 3);
        const results = session.received.filter((message) => message.result?.content);
        assert.deepEqual(
          results.map(({ result }) => result.isError),
          [false, false],
        );
      });

      test("may give up on a call, and the next one is answered", async () => {
        let release;
        const released = new Promise((resolve) => (release = resolve));
        app.answers.read_messages = async () => {
          await released;
          return { kind: "empty", message: "Too late." };
        };
        app.answers.list_tasks = { kind: "empty" };
        const giveUp = new AbortController();
        const call = session.call("read_messages", {}, { signal: giveUp.signal });
        while (app.requests.length === 0) await delay(5);
        giveUp.abort("no longer wanted");
        await assert.rejects(call);
        release();
        assert.equal(await session.call("list_tasks"), "This Thread's backlog is empty.");
        const cancelled = session.sent.some(({ method }) => method === "notifications/cancelled");
        assert.ok(cancelled);
        // The answer to the call that was given up still came: the client has no use for it.
        session.errors = session.errors.filter(({ message }) => !/unknown message/.test(message));
      });

      test("sends many calls at once and gets each its own answer", async () => {
        app.answers.read_task = ({ taskID }) => ({ kind: "task", task: task(taskID) });
        const ids = Array.from({ length: 200 }, (_, i) => `t${i}`);
        const read = ids.map((taskID) => session.callForObject("read_task", { taskID }));
        assert.deepEqual(
          (await Promise.all(read)).map(({ id }) => id),
          ids,
        );
      });

      test("carries long texts of every kind both ways", async () => {
        const text = "\u0000\u001f\"\\/ äöü 漢字 😀\u2028\r\n\t".repeat(20_000);
        app.answers.send_message = ({ body }) => ({ kind: "written", message: body });
        assert.equal(await session.call("send_message", { to: "KQ3", text }), text);
      });
    });
  }
});

describe("the program", () => {
  test("tells only the clients that can run a command of the cheaper way to wait", async () => {
    const app = await BoardApp.start();
    const endings = new Map();
    for (const name of ["claude-code", "Codex", "antigravity", "agy", "cursor-vscode", "other"]) {
      const session = await Session.open(generations[0], app.environment, name);
      const { tools } = await session.client.listTools();
      const wait = tools.find((tool) => tool.name === "wait_for_changes");
      endings.set(name, wait.description);
      await session.close();
      validate(session);
    }
    const forClaude = endings.get("claude-code");
    endings.delete("claude-code");
    const forOthers = new Set(endings.values());
    assert.equal(forOthers.size, 1);
    assert.ok(!forOthers.has(forClaude));
    await app.stop();
  });

  test("ends by itself when its client closes its input", async () => {
    const app = await BoardApp.start();
    const session = await Session.open(generations[0], app.environment);
    const child = session.transport._process;
    const closed = once(child, "close");
    child.stdin.end();
    assert.deepEqual(await closed, [0, null]);
    assert.deepEqual(session.errors, []);
    await app.stop();
  });
});
