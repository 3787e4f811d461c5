// The protocol's own inspector, on the command line: it lists the tools and calls one.

import assert from "node:assert/strict";
import { execFile } from "node:child_process";
import { dirname } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";
import { promisify } from "node:util";

import { BoardApp } from "./board_app.mjs";
import { program } from "./clients.mjs";

const folder = dirname(fileURLToPath(import.meta.url));
const inspectorFolder = `${folder}/node_modules/@modelcontextprotocol/inspector-cli/build`;

async function inspect(environment, ...options) {
  // It finds its own description by the directory in which it is started.
  const { stdout } = await promisify(execFile)(
    process.execPath,
    ["index.js", program, ...options],
    { cwd: inspectorFolder, env: { ...process.env, ...environment }, maxBuffer: 1 << 24 },
  );
  return JSON.parse(stdout);
}

test("the inspector lists the tools", async () => {
  const { tools } = await inspect({}, "--method", "tools/list");
  assert.equal(tools[0].name, "register");
  assert.ok(tools.every(({ inputSchema }) => inputSchema.type === "object"));
});

test("the inspector calls a tool", async () => {
  const app = await BoardApp.start();
  app.answers.read_task = { kind: "error", message: "There is no t1.", threadTag: "T-abc123" };
  const call = ["--method", "tools/call", "--tool-name", "read_task"];
  const args = ["--tool-arg", "taskID=t1", "offset=2", "limit=5"];
  assert.deepEqual(await inspect(app.environment, ...call, ...args), {
    content: [{ type: "text", text: "There is no t1.\n\n(thread T-abc123)" }],
    isError: false,
  });
  assert.equal(app.requests[0].taskID, "t1");
  await app.stop();
});
