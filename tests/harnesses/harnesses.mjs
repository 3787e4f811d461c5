// How each harness is set up as its guide says, and started without an account: its ready files from
// contrib/, with the program of the build in the place of the installed one, and its model on the
// loopback address. Nothing else of its configuration is set.

import { cp, mkdir, readdir, readFile, writeFile } from "node:fs/promises";
import { dirname, join, relative } from "node:path";

/** The files of one terminal's user, and where they come from. */
export class Home {
  constructor({ sources, build, folder }) {
    Object.assign(this, { sources, build, folder });
  }

  /** A path below the home directory; below the agent's working directory with work(). */
  at(...names) {
    return join(this.folder, ...names);
  }

  async write(path, text) {
    await mkdir(dirname(path), { recursive: true });
    await writeFile(path, text);
  }

  /** A ready file, with the installed paths replaced by those of the build and of the sources. */
  async ready(name) {
    const text = await readFile(join(this.sources, "contrib", name), "utf8");
    return text
      .replaceAll("/usr/local/bin/", `${this.build}/`)
      .replaceAll("/usr/local/share/quillpost-teamwork/", `${this.sources}/contrib/`);
  }

  /** A copy of all ready files, changed in the same way. */
  async copyContrib() {
    const copy = this.at("contrib");
    await cp(join(this.sources, "contrib"), copy, { recursive: true });
    for (const entry of await readdir(copy, { recursive: true, withFileTypes: true }))
      if (entry.isFile() && entry.name.endsWith(".json")) {
        const path = join(entry.parentPath ?? entry.path, entry.name);
        await writeFile(path, await this.ready(relative(copy, path)));
      }
    return copy;
  }

  async put(name, path, change = (text) => text) {
    await this.write(path, change(await this.ready(name)));
  }
}

/** What a session begins with. */
const prompt = "Work the board.";

/** The command line with which a harness is allowed as a helper, with the place of its opening line. */
export const helperWords = (harness, model) =>
  harness.words(model, {}).map((word) => (word === prompt ? "{prompt}" : word));

/** Changes a JSON text. */
const edited = (change) => (text) => JSON.stringify(change(JSON.parse(text)), null, 2);

const scriptedForCodex = ({ url }) => [
  'model="scripted"',
  'model_provider="scripted"',
  'model_providers.scripted.name="scripted"',
  `model_providers.scripted.base_url="${url}/v1"`,
  'model_providers.scripted.wire_api="responses"',
];

// For each harness:
//   setUp    puts its files where its guide says; the options name what is left out or added
//   words    its command line
//   more     what else its terminal has in its environment: the model, and that there is no account
//   check    the words with which its guide looks whether the server is there
//   without  what a person grants it, by name; each is left out once
//   longer   the setting that shows the model longer results
//   windows  commands of its window to start two of, where that differs from the command line's

const codex = {
  name: "Codex",
  package: "@openai/codex",
  clientName: "codex-mcp-client",
  program: "codex",
  check: ["mcp", "list"],
  waitsLong: true,
  without: ["approval of the tools", "trust in the hook"],
  longer: "tool_output_token_limit = 30000",
  async setUp(home, { without, longer, window, model }) {
    await home.put("codex/config.toml", home.at(".codex", "config.toml"), (text) => {
      const kept = text.replace(/^default_tools_approval_mode.*$/m, (line) =>
        without === "approval of the tools" ? "" : line,
      );
      // A window with settings on its command line would not be the one that people start.
      const settings = [...(longer ? [this.longer] : []), ...(window ? scriptedForCodex(model) : [])];
      return [...settings, kept].join("\n");
    });
    await home.put("codex/hooks.json", home.at(".codex", "hooks.json"));
  },
  words: (model, { without }) => [
    "exec",
    "--skip-git-repo-check",
    ...scriptedForCodex(model).flatMap((setting) => ["--config", setting]),
    ...(without === "trust in the hook" ? [] : ["--dangerously-bypass-hook-trust"]),
    prompt,
  ],
  more: () => ({}),
  windows: [
    { title: "codex --no-daemon", words: ["--no-daemon"] },
    { title: "codex", words: [] },
  ],
  windowWords: (words) => [...words, prompt],
  // The window asks whether the hook may run; the second answer is that all may.
  typed: [["Hooks need review", ["\x1b[B", "\r"]]],
};

const openCode = {
  name: "OpenCode",
  package: "opencode-ai",
  clientName: "opencode",
  program: "opencode",
  check: ["mcp", "list"],
  without: ["a window"],
  longer: '"tool_output": {"max_bytes": 200000, "max_lines": 5000}',
  async setUp(home, { longer }) {
    const scripted = {
      npm: "@ai-sdk/openai-compatible",
      name: "scripted",
      options: { baseURL: "{env:SCRIPTED_MODEL}/v1", apiKey: "none" },
      models: { scripted: { name: "scripted", limit: { context: 400000, output: 8000 } } },
    };
    await home.put(
      "opencode/opencode.json",
      home.at(".config", "opencode", "opencode.json"),
      edited((settings) => ({
        ...settings,
        model: "scripted/scripted",
        provider: { scripted },
        ...(longer && JSON.parse(`{${this.longer}}`)),
      })),
    );
    await home.put(
      "opencode/quillpost-teamwork.js",
      home.at(".config", "opencode", "plugins", "quillpost-teamwork.js"),
    );
    // Where there is a plugin, OpenCode fetches the types for writing one, and waits. With these it
    // takes them for fetched.
    const lock = { packages: { "": { dependencies: { "@opencode-ai/plugin": "1.18.33" } } } };
    await mkdir(home.at(".config", "opencode", "node_modules"), { recursive: true });
    await home.write(home.at(".config", "opencode", "package-lock.json"), JSON.stringify(lock));
  },
  words: () => ["run", prompt],
  more: ({ url }) => ({ SCRIPTED_MODEL: url, OPENCODE_DISABLE_MODELS_FETCH: "true" }),
  // Its command line ends with the turn, before a plugin can begin another; its window does not.
  mainWindow: [],
  windowWords: (words) => [...words, "--prompt", prompt],
};

const gemini = {
  name: "Gemini CLI",
  package: "@google/gemini-cli",
  clientName: "gemini-cli-mcp-client",
  program: "gemini",
  check: ["mcp", "list"],
  without: ["trust in the folder", "trust in the server"],
  longer: '"tools": {"truncateToolOutputThreshold": 200000}',
  bundle: {
    validate: ["extensions", "validate", "contrib/gemini-extension"],
    install: [["extensions", "install", "--consent", "contrib/gemini-extension"]],
  },
  async setUp(home, { without, longer, work, bundled }) {
    await home.put(
      "gemini/settings.json",
      home.at(".gemini", "settings.json"),
      edited((settings) => {
        if (without === "trust in the server") delete settings.mcpServers.teamwork.trust;
        return {
          ...(!bundled && settings),
          security: { auth: { selectedType: "gemini-api-key" } },
          ...(longer && JSON.parse(`{${this.longer}}`)),
        };
      }),
    );
    const trusted = without === "trust in the folder" ? {} : { [work]: "TRUST_FOLDER" };
    await home.write(home.at(".gemini", "trustedFolders.json"), JSON.stringify(trusted));
  },
  // An extension cannot say that its tools run without a question.
  words: (_model, { bundled }) => [
    ...(bundled ? ["--approval-mode", "yolo"] : []),
    ...["--model", "gemini-2.5-pro", "--prompt", prompt],
  ],
  more: ({ url }) => ({ GEMINI_API_KEY: "none", GOOGLE_GEMINI_BASE_URL: url }),
};

const claude = {
  name: "Claude Code",
  package: "@anthropic-ai/claude-code",
  clientName: "claude-code",
  program: "claude",
  check: ["mcp", "get", "teamwork"],
  waitsLong: true,
  without: ["permission for the tools", "`alwaysLoad`"],
  longer: "MAX_MCP_OUTPUT_TOKENS=100000",
  bundle: {
    validate: ["plugin", "validate", "--strict", "contrib/claude-plugin"],
    install: [
      ["plugin", "marketplace", "add", "contrib"],
      ["plugin", "install", "quillpost-teamwork@quillpost"],
    ],
  },
  async setUp(home, { without, bundled }) {
    if (bundled) return;
    await home.put(
      "claude/mcp.json",
      home.at(".claude.json"),
      edited((settings) => {
        if (without === "`alwaysLoad`") delete settings.mcpServers.teamwork.alwaysLoad;
        return settings;
      }),
    );
    await home.put(
      "claude/settings.json",
      home.at(".claude", "settings.json"),
      edited((settings) => {
        if (without === "permission for the tools") delete settings.permissions;
        return settings;
      }),
    );
  },
  // A plugin cannot allow its own tools; the person does, here on the command line.
  words: (_model, { bundled }) => [
    ...["--print", prompt, "--output-format", "stream-json", "--verbose"],
    ...(bundled ? ["--allowed-tools", "mcp__plugin_quillpost-teamwork_teamwork"] : []),
  ],
  more: ({ url }, { longer }) => ({
    ANTHROPIC_BASE_URL: url,
    ANTHROPIC_API_KEY: "none",
    CLAUDE_CODE_DISABLE_NONESSENTIAL_TRAFFIC: "1",
    ...(longer && { MAX_MCP_OUTPUT_TOKENS: "100000" }),
  }),
};

const copilot = {
  name: "Copilot CLI",
  package: "@github/copilot",
  clientName: "copilot-cli",
  program: "copilot",
  check: ["mcp", "list"],
  without: ["permission for the tools"],
  async setUp(home) {
    await home.put("copilot/mcp-config.json", home.at(".copilot", "mcp-config.json"));
    await home.put("copilot/hooks.json", home.at(".copilot", "hooks", "quillpost-teamwork.json"));
  },
  words: (_model, { without }) => [
    "--prompt",
    prompt,
    ...(without ? [] : ["--allow-tool", "teamwork"]),
  ],
  more: ({ url }) => ({
    COPILOT_OFFLINE: "true",
    COPILOT_PROVIDER_BASE_URL: `${url}/v1`,
    COPILOT_MODEL: "scripted",
    COPILOT_PROVIDER_MAX_PROMPT_TOKENS: "200000",
    COPILOT_PROVIDER_MAX_OUTPUT_TOKENS: "8000",
  }),
};

export const harnesses = { codex, opencode: openCode, gemini, claude, copilot };
