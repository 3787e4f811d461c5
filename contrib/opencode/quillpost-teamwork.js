// The stop hook as OpenCode can have one: when a session has come to rest, the program is asked
// whether the board has news, and its line becomes the session's next message. Put this file into
// ~/.config/opencode/plugins/.
import { execFile } from "node:child_process";

const program = "/usr/local/bin/quillpost-teamwork";

/** The program's line when the agent is to go on; empty when it may stop. */
const news = () =>
  new Promise((resolve) => {
    const done = (error, _output, line) => resolve(error?.code === 2 ? line.trim() : "");
    execFile(program, ["--wake-stop-hook"], { timeout: 60_000 }, done).stdin.end();
  });

export const QuillpostTeamwork = async ({ client }) => ({
  event: async ({ event }) => {
    if (event.type !== "session.idle") return;
    const id = event.properties.sessionID;
    // A helper's session ends when it has answered; the agent that sits on the seat goes on.
    const session = await client.session.get({ path: { id } });
    if (session.data?.parentID) return;
    const line = await news();
    if (line) {
      await client.session.promptAsync({
        path: { id },
        body: { parts: [{ type: "text", text: line }] },
      });
    }
  },
});
