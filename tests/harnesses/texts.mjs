// What the session compares and counts: what the seat itself says, and how much of it was read.

import { execFile } from "node:child_process";
import { join } from "node:path";

/** What the seat itself says to a client of that name: instructions and tools. */
export async function reference(build, clientName) {
  const lines = [
    { id: 1, method: "initialize", params: { clientInfo: { name: clientName, version: "1" } } },
    { id: 2, method: "tools/list" },
  ].map((message) => JSON.stringify({ jsonrpc: "2.0", ...message }) + "\n");
  const output = await new Promise((resolve) => {
    const seat = execFile(join(build, "quillpost-teamwork"), { env: {} }, (_, text) => resolve(text));
    seat.stdin.end(lines.join(""));
  });
  const [initialized, listed] = output.trim().split("\n").map((line) => JSON.parse(line).result);
  return { instructions: initialized.instructions, tools: listed.tools };
}

/** A text with its lines however they are broken and indented. */
export const plain = (text) => text.replace(/\s+/g, " ");

/** How many characters of a text, from its beginning, stand in a larger one. */
export function prefixIn(whole, text) {
  let [known, beyond] = [0, text.length + 1];
  while (beyond - known > 1) {
    const middle = (known + beyond) >> 1;
    if (whole.includes(text.slice(0, middle))) known = middle;
    else beyond = middle;
  }
  return known;
}

export const count = (number) => number.toLocaleString("en");

/** Whether a text is a whole result: it ends with the Thread's tag. */
export const tagged = (text) => /\(thread T-[a-z0-9]{6}\)/.test(text ?? "");

/** What stands for a result that did not come. */
export const unanswered = "not answered";

/** The first words of what came back, on one line. */
export const gist = (text, length = 110) =>
  text === undefined ? unanswered : text.replace(/\s+/g, " ").trim().slice(0, length);

/** A text of 60 KB whose lines are numbered. */
export const brief = Array.from(
  { length: 1000 },
  (_, i) => `line ${String(i + 1).padStart(4, "0")} ${"x".repeat(49)}`,
);

/** How many lines of the brief are there, and between which the others are missing. */
export function missing(seen) {
  const there = new Set(seen);
  const first = brief.findIndex((line) => !there.has(line)) + 1;
  const last = brief.findLastIndex((line) => !there.has(line)) + 1;
  return `${seen.length} of ${brief.length} lines, ${first} to ${last} missing`;
}

