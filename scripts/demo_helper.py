#!/usr/bin/env python3
"""A helper that the board starts, as the demo plays it: an agent without a model.

    demo_helper.py OPENING-LINE

It does what its opening line says through the tools of quillpost-teamwork, which it finds on its
PATH: it registers, reads its task, claims it, does the work, completes it and leaves. The work is
to add up the loaves that the brief names, such as "3 loaves of rye". What it writes goes to the
board, where the person can read it.
"""

import json
import re
import subprocess
import sys


class Tools:
    """The board's tools, spoken to as every client of MCP does."""

    def __init__(self):
        self.lastID = 0
        self.process = subprocess.Popen(["quillpost-teamwork"], encoding="utf-8",
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.request("initialize", {"protocolVersion": "2024-11-05", "capabilities": {},
                                    "clientInfo": {"name": "demo-helper", "version": "1"}})

    def request(self, method, params):
        self.lastID += 1
        line = {"jsonrpc": "2.0", "id": self.lastID, "method": method, "params": params}
        self.process.stdin.write(json.dumps(line) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())["result"]

    def call(self, tool, **arguments):
        answer = self.request("tools/call", {"name": tool, "arguments": arguments})
        text = answer["content"][0]["text"]
        print(f"{tool}: {text.splitlines()[0][:100]}", flush=True)
        return text

    def close(self):
        self.process.stdin.close()
        return self.process.wait()


def main():
    task = re.search(r"\bt\d{6}\b", sys.argv[-1])[0]
    tools = Tools()
    tools.call("register", name="Counter", role="executor")
    brief = json.JSONDecoder().raw_decode(tools.call("read_task", taskID=task))[0]["body"]
    tools.call("claim_task", taskID=task)
    loaves = sum(int(count) for count in re.findall(r"(\d+) loaves of", json.dumps(brief)))
    tools.call("complete_task", taskID=task,
               summary=f"{loaves} loaves are left. Added up by hand, twice.")
    tools.call("unregister")
    print(f"That makes {loaves}.", flush=True)
    return tools.close()


if __name__ == "__main__":
    sys.exit(main())
