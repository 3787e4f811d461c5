// The interfaces that harnesses speak with a model, each read into one form and written from one.
//
// What a request says:  { instructions, tools: [{name, description, group}], prompts, results }
// What an answer is:    { call: {tool, arguments} } or { text }

const joined = (content) =>
  typeof content === "string"
    ? content
    : (content ?? []).map((part) => part.text ?? part.output_text ?? "").join("\n");

/** Writes events as a stream that ends; `named` events say their type in a line of their own. */
function stream(response, events, named) {
  response.writeHead(200, { "content-type": "text/event-stream" });
  for (const event of events) {
    if (named) response.write(`event: ${event.type}\n`);
    response.write(`data: ${typeof event === "string" ? event : JSON.stringify(event)}\n\n`);
  }
  response.end();
}

function whole(response, value) {
  response.writeHead(200, { "content-type": "application/json" });
  response.end(JSON.stringify(value));
}

let lastId = 0;
const fresh = (prefix) => `${prefix}_${++lastId}`;

/** OpenAI's Responses. */
const responses = {
  serves: (path) => path.endsWith("/responses"),
  read(body) {
    const items = body.input ?? [];
    const messages = items.filter((item) => item.role);
    return {
      instructions: [
        body.instructions ?? "",
        ...messages.filter((item) => item.role !== "user").map((item) => joined(item.content)),
      ].join("\n"),
      tools: (body.tools ?? []).flatMap((tool) =>
        tool.type === "namespace"
          ? tool.tools.map((one) => ({ ...one, group: tool.name, about: tool.description }))
          : [{ ...tool, name: tool.name ?? tool.type }],
      ),
      prompts: messages.filter((item) => item.role === "user").map((item) => joined(item.content)),
      results: items
        .filter((item) => item.type === "function_call_output")
        .map((item) => joined(item.output)),
    };
  },
  write(response, { call, text }) {
    const item = call
      ? {
          type: "function_call",
          id: fresh("fc"),
          call_id: fresh("call"),
          name: call.tool.name,
          arguments: JSON.stringify(call.arguments),
          ...(call.tool.group && { namespace: call.tool.group }),
        }
      : {
          type: "message",
          id: fresh("msg"),
          role: "assistant",
          content: [{ type: "output_text", text, annotations: [] }],
        };
    const usage = { input_tokens: 1, output_tokens: 1, total_tokens: 2 };
    const id = fresh("resp");
    const events = [
      { type: "response.created", response: { id } },
      { type: "response.output_item.done", output_index: 0, item },
      { type: "response.completed", response: { id, usage } },
    ];
    stream(response, events, true);
  },
};

/** OpenAI's chat completions. */
const completions = {
  serves: (path) => path.endsWith("/chat/completions"),
  read(body) {
    const of = (role) => body.messages.filter((message) => message.role === role);
    return {
      instructions: [...of("system"), ...of("developer")]
        .map((message) => joined(message.content))
        .join("\n"),
      tools: (body.tools ?? []).map((tool) => tool.function),
      prompts: of("user").map((message) => joined(message.content)),
      results: of("tool").map((message) => joined(message.content)),
    };
  },
  write(response, { call, text }, body) {
    const toolCall = call && {
      index: 0,
      id: fresh("call"),
      type: "function",
      function: { name: call.tool.name, arguments: JSON.stringify(call.arguments) },
    };
    const message = {
      role: "assistant",
      ...(call ? { content: null, tool_calls: [toolCall] } : { content: text }),
    };
    const finish_reason = call ? "tool_calls" : "stop";
    const usage = { prompt_tokens: 1, completion_tokens: 1, total_tokens: 2 };
    const common = { id: fresh("chat"), created: 1, model: body.model, usage };
    if (!body.stream) {
      whole(response, {
        ...common,
        object: "chat.completion",
        choices: [{ index: 0, message, finish_reason }],
      });
      return;
    }
    const chunk = { ...common, object: "chat.completion.chunk" };
    stream(response, [
      { ...chunk, choices: [{ index: 0, delta: message, finish_reason: null }] },
      { ...chunk, choices: [{ index: 0, delta: {}, finish_reason }] },
      "[DONE]",
    ]);
  },
};

/** Anthropic's Messages. */
const messages = {
  serves: (path) => path.endsWith("/messages"),
  read(body) {
    const parts = body.messages
      .filter((message) => message.role === "user")
      .flatMap((message) =>
        typeof message.content === "string"
          ? [{ type: "text", text: message.content }]
          : message.content,
      );
    return {
      instructions: [
        joined(body.system),
        ...body.messages
          .filter((message) => message.role === "system")
          .map((message) => joined(message.content)),
      ].join("\n"),
      tools: body.tools ?? [],
      prompts: parts.filter((part) => part.type === "text").map((part) => part.text),
      results: parts
        .filter((part) => part.type === "tool_result")
        .map((part) => joined(part.content)),
    };
  },
  write(response, { call, text }, body) {
    const block = call
      ? { type: "tool_use", id: fresh("toolu"), name: call.tool.name, input: call.arguments }
      : { type: "text", text };
    const stop_reason = call ? "tool_use" : "end_turn";
    const usage = { input_tokens: 1, output_tokens: 1 };
    const message = {
      id: fresh("msg"),
      type: "message",
      role: "assistant",
      model: body.model,
      content: [],
      stop_reason: null,
      stop_sequence: null,
      usage,
    };
    if (!body.stream) {
      whole(response, { ...message, content: [block], stop_reason });
      return;
    }
    const begun = call ? { ...block, input: {} } : { type: "text", text: "" };
    const delta = call
      ? { type: "input_json_delta", partial_json: JSON.stringify(call.arguments) }
      : { type: "text_delta", text };
    const events = [
      { type: "message_start", message },
      { type: "content_block_start", index: 0, content_block: begun },
      { type: "content_block_delta", index: 0, delta },
      { type: "content_block_stop", index: 0 },
      { type: "message_delta", delta: { stop_reason, stop_sequence: null }, usage },
      { type: "message_stop" },
    ];
    stream(response, events, true);
  },
};

/** Google's generateContent, streamed and whole. */
const contents = {
  serves: (path) => /:(streamG|g)enerateContent/.test(path),
  read(body) {
    const parts = (body.contents ?? [])
      .filter((content) => content.role === "user")
      .flatMap((content) => content.parts);
    return {
      instructions: joined(body.systemInstruction?.parts),
      tools: (body.tools ?? []).flatMap((tool) => tool.functionDeclarations ?? []),
      prompts: parts.filter((part) => part.text !== undefined).map((part) => part.text),
      results: parts
        .filter((part) => part.functionResponse)
        .map(({ functionResponse: { response } }) =>
          typeof response.output === "string"
            ? response.output
            : typeof response.error === "string"
              ? response.error
              : joined(response.content),
        ),
    };
  },
  write(response, { call, text }, body, path) {
    const part = call ? { functionCall: { name: call.tool.name, args: call.arguments } } : { text };
    const answer = {
      candidates: [
        { index: 0, content: { role: "model", parts: [part] }, finishReason: "STOP" },
      ],
      usageMetadata: { promptTokenCount: 1, candidatesTokenCount: 1, totalTokenCount: 2 },
    };
    if (path.includes("streamGenerateContent")) stream(response, [answer]);
    else whole(response, answer);
  },
};

export const dialects = [responses, completions, messages, contents];
