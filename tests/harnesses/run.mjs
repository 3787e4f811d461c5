// Plays the session through harnesses that others made, and prints what was seen as a table:
// run.mjs INSTALLED BUILD [NAME...]

import { mkdtemp, readFile, rm } from "node:fs/promises";
import { dirname, join, resolve } from "node:path";

import { Board } from "./board.mjs";
import { harnesses } from "./harnesses.mjs";
import { play } from "./session.mjs";

const [installed, build, ...names] = process.argv.slice(2);
const wanted = names.length > 0 ? names : Object.keys(harnesses);
const unknown = wanted.filter((name) => !harnesses[name]);
if (unknown.length > 0) {
  console.error(`No harness ${unknown.join(", ")}; there are ${Object.keys(harnesses).join(", ")}.`);
  process.exit(2);
}

// Short, because a socket's path may have no more than 103 bytes.
const scratch = await mkdtemp("/var/tmp/qh-");
const place = {
  scratch,
  build: resolve(build),
  sources: resolve(import.meta.dirname, "../.."),
  programs: join(installed, "node_modules", ".bin"),
  node: dirname(process.execPath),
  log: process.env.QUILLPOST_HARNESSES_LOG ?? "",
};

console.log("| Harness | Step | What was seen |\n|---|---|---|");
for (const name of wanted) {
  const harness = harnesses[name];
  const about = join(installed, "node_modules", harness.package, "package.json");
  const { version } = JSON.parse(await readFile(about, "utf8"));
  const board = await Board.start(place.build, await mkdtemp(join(scratch, "board-")));
  await board.person(["goal", "The bakery shows on its site what bread is left"]);
  const note = (step, seen) => {
    const short = seen
      .replaceAll(/\/\S*\/programs\//g, "/usr/local/bin/")
      .replaceAll(/\/\S*\/terminal-\w+\/home/g, "~")
      .replaceAll("|", "\\|");
    console.log(`| ${harness.name} ${version} | ${step} | ${short} |`);
  };
  await play(place, board, harness, note);
  await board.stop();
}
await rm(scratch, { recursive: true, force: true, maxRetries: 10, retryDelay: 200 });
