// A model without a mind: it listens on the loopback address, and what it answers a harness is what
// a script says next. The script sees every request of the harness's, which is all that a model sees.

import { once } from "node:events";
import { appendFile } from "node:fs/promises";
import http from "node:http";

import { dialects } from "./dialects.mjs";

/** How a harness names a tool of ours: after the server's name, whatever stands between. */
const isOurs = (tool) => /teamwork/.test(tool.group ?? tool.name);

export class Model {
  /** The last request of the agent's, and all there were. */
  last;
  requests = [];

  #waiting; // whoever waits for the next request
  #arrived = []; // requests that nobody waited for yet
  #actions = []; // answers that no request has asked for yet
  #asking; // the request that waits for its answer

  /** `log` is a file that keeps every request as it came; none when it is empty. */
  static async start(log = "") {
    const model = new Model();
    model.log = log;
    model.server = http.createServer((request, response) => model.#serve(request, response));
    model.server.listen(0, "127.0.0.1");
    await once(model.server, "listening");
    model.url = `http://127.0.0.1:${model.server.address().port}`;
    return model;
  }

  stop() {
    this.server.closeAllConnections();
    this.server.close();
  }

  /** The harness's first request, or its next one; absent when it sends none in that time. */
  async request(seconds = 120) {
    if (this.#arrived.length > 0) return this.#take();
    let timer;
    const inTime = await new Promise((resolve) => {
      this.#waiting = () => resolve(true);
      timer = setTimeout(() => resolve(false), seconds * 1000);
    });
    clearTimeout(timer);
    this.#waiting = undefined;
    return inTime ? this.#take() : undefined;
  }

  /** Calls a tool of the board's and gives what the model was told of it; absent as above. */
  async call(name, args = {}, seconds = 120) {
    const tool = this.tool(name);
    if (!tool) return undefined;
    return await this.use(tool, args, seconds);
  }

  /** The same for any tool that the model was shown. */
  async use(tool, args, seconds = 120) {
    const before = this.last.results.length;
    this.#act({ call: { tool, arguments: args } });
    const request = await this.request(seconds);
    return request?.results.length > before ? request.results.at(-1) : undefined;
  }

  /** Says something and asks for nothing, which ends a turn. */
  say(text) {
    this.#act({ text });
  }

  /** The tools of the board's that the model was shown. */
  get tools() {
    return (this.last?.tools ?? []).filter(isOurs);
  }

  /** The one with this name; absent when the model was not shown it. */
  tool(name) {
    return this.tools.find((tool) => new RegExp(`(^|[^a-z])${name}$`).test(tool.name));
  }

  #take() {
    this.last = this.#arrived.shift();
    return this.last;
  }

  #act(action) {
    this.#actions.push(action);
    this.#answer();
  }

  #answer() {
    if (!this.#asking || this.#actions.length === 0) return;
    const asking = this.#asking;
    this.#asking = undefined;
    asking(this.#actions.shift());
  }

  async #serve(request, response) {
    let text = "";
    request.setEncoding("utf8");
    for await (const piece of request) text += piece;
    if (this.log) await appendFile(this.log, `${request.method} ${request.url} ${text}\n`);
    const path = request.url.split("?")[0];
    const dialect = dialects.find((one) => one.serves(path));
    if (request.method !== "POST" || !dialect) {
      response.writeHead(404, { "content-type": "application/json" });
      response.end("{}");
      return;
    }
    const body = JSON.parse(text);
    const seen = dialect.read(body);
    // A harness also asks for titles and the like, with no tools or with a form to fill in.
    if (seen.tools.length < 2) {
      dialect.write(response, { text: '{"title":"A session","next_speaker":"user"}' }, body, request.url);
      return;
    }
    this.requests.push(seen);
    this.#arrived.push(seen);
    this.#asking = (action) => dialect.write(response, action, body, request.url);
    this.#waiting?.();
    this.#answer();
  }
}
