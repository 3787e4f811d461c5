// The clients of the two generations of the official SDK, under one face.

import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";
import {
  CallToolResultSchema,
  InitializeResultSchema,
  JSONRPCMessageSchema,
  ListToolsResultSchema,
  ProgressNotificationSchema,
  ResultSchema,
} from "@modelcontextprotocol/sdk/types.js";

export const program = process.env.QUILLPOST_PROGRAM;
if (!program) throw new Error("QUILLPOST_PROGRAM names the program under test");

const first = {
  name: "sdk 1",
  Client,
  Transport: StdioClientTransport,
  callTool: (client, params, options) => client.callTool(params, undefined, options),
  request: (client, request) => client.request(request, ResultSchema),
};

/** The second generation needs a newer runtime than the first. */
async function second() {
  const { Client } = await import("@modelcontextprotocol/client");
  const { StdioClientTransport } = await import("@modelcontextprotocol/client/stdio");
  return {
    name: "sdk 2",
    Client,
    Transport: StdioClientTransport,
    callTool: (client, params, options) => client.callTool(params, options),
    request: (client, request) => client.request(request, ResultSchema),
  };
}

const runtime = Number(process.versions.node.split(".")[0]);
export const generations = runtime >= 20 ? [first, await second()] : [first];

/** A connected client that keeps every message in both directions. */
export class Session {
  sent = [];
  received = [];
  /** What went wrong on the way, such as a line that is no message. */
  errors = [];

  static async open(generation, environment, clientName = "test") {
    const session = new Session();
    session.generation = generation;
    session.transport = new generation.Transport({
      command: program,
      args: [],
      env: environment,
      stderr: "pipe",
    });
    session.transport.stderr.on("data", (text) => session.errors.push(`stderr: ${text}`));
    session.client = new generation.Client({ name: clientName, version: "1.0.0" });
    session.client.onerror = (error) => session.errors.push(error);
    await session.client.connect(session.#recording(session.transport));
    return session;
  }

  /** Calls a tool and gives its text. */
  async call(name, args = {}, options = undefined) {
    const params = { name, arguments: args };
    const result = await this.generation.callTool(this.client, params, options);
    return result.content[0].text;
  }

  /** Calls a tool and gives the object that its text begins with. */
  async callForObject(name, args = {}, options = undefined) {
    const text = await this.call(name, args, options);
    return JSON.parse(text.replace(/\n\n\(thread T-[^)]*\)$/, ""));
  }

  close() {
    return this.client.close();
  }

  #recording(transport) {
    const send = transport.send.bind(transport);
    transport.send = (message, options) => {
      this.sent.push(message);
      return send(message, options);
    };
    // The client sets its handler when it connects, before any message comes.
    let handler;
    Object.defineProperty(transport, "onmessage", {
      get: () => handler,
      set: (wanted) => {
        handler = (message, extra) => {
          this.received.push(message);
          wanted?.(message, extra);
        };
      },
    });
    return transport;
  }
}

const resultSchemas = {
  initialize: InitializeResultSchema,
  "tools/list": ListToolsResultSchema,
  "tools/call": CallToolResultSchema,
};

/** Holds every message that the program wrote against the protocol's schemas. */
export function validate(session) {
  const methodOf = new Map(session.sent.map((message) => [message.id, message.method]));
  for (const message of session.received) {
    JSONRPCMessageSchema.parse(message);
    if (message.method) {
      ProgressNotificationSchema.parse(message);
    } else if (message.result) {
      (resultSchemas[methodOf.get(message.id)] ?? ResultSchema).parse(message.result);
    }
  }
}
