"""The server as one would write it in an afternoon in plain Python: lists the tools of a file,
forwards each call to the app and sorts a backlog into what the agent can act on."""

import json
import os
import socket
import struct
import sys

GIST = "[[gist]] "
FOR = "[[for]] "
TEXTS = ("blockerQuestion", "blockerAnswer", "type", "reviewState", "reviewNote", "parkedReason")
FLAGS = ("blocked", "blockerEscalated", "thrashing", "mentionsYou")


def compact(value):
    return json.dumps(value, ensure_ascii=False, separators=(",", ":"))


def current_token():
    try:
        with open(os.environ["QUILLPOST_COLLAB_TOKEN_FILE"], encoding="utf-8") as file:
            token = file.read().strip()
    except OSError:
        token = ""
    return token or os.environ.get("QUILLPOST_COLLAB_TOKEN", "")


def exchange(request):
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVTIMEO, struct.pack("ll", 40, 0))
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_SNDTIMEO, struct.pack("ll", 10, 0))
        connection.connect(os.environ["QUILLPOST_COLLAB_SOCKET"])
        connection.sendall(compact(request).encode() + b"\n")
        connection.shutdown(socket.SHUT_WR)
        chunks = []
        while chunk := connection.recv(65536):
            chunks.append(chunk)
            if b"\n" in chunk:
                break
    return b"".join(chunks).partition(b"\n")[0]


def compact_task(task):
    view = {"id": task["id"], "title": task["title"], "state": task["state"]}
    if task.get("ownerFingerprint"):
        view["owner"] = task["ownerFingerprint"]
    if task.get("routedToFingerprint"):
        view["assignedTo"] = task["routedToFingerprint"]
    if task.get("reportsToHandle"):
        view["askedBy"] = task["reportsToHandle"]
    view.update({key: task[key] for key in TEXTS if task.get(key)})
    view.update({key: True for key in FLAGS if task.get(key)})
    if task.get("priority"):
        view["priority"] = task["priority"]
    if task["resources"]:
        view["resources"] = task["resources"]
    if "claimLeaseSecondsRemaining" in task:
        view["claimLeaseSecondsRemaining"] = task["claimLeaseSecondsRemaining"]
    if task.get("waitsOn"):
        view["waitsOn"] = task["waitsOn"]
        view["ready"] = task.get("ready", True)
    progress = [line for line in task["log"] if not line.startswith((GIST, FOR))]
    if progress:
        view["lastProgress"] = progress[-1]
    if len(progress) > 1:
        view["logCount"] = len(progress)
    gists = [line for line in task["log"] if line.startswith(GIST)]
    if gists:
        view["summary"] = gists[-1].removeprefix(GIST).strip()
    return view


def briefing(tasks):
    board = {"yours": [], "forYou": [], "readyToClaim": [], "waiting": []}
    hidden = 0
    for task in sorted(tasks, key=lambda task: -task.get("priority", 0)):
        if task["state"] in ("done", "rejected"):
            hidden += 1
            continue
        free = not task.get("ownerFingerprint") and not task.get("blocked")
        bucket = "readyToClaim" if free and task.get("ready", True) else "waiting"
        board[bucket].append(compact_task(task))
    if hidden:
        board["hint"] = f"{hidden} finished tasks hidden"
    return board


def result_text(response):
    if "tasks" in response:
        text = compact(briefing(response["tasks"]))
    else:
        text = response.get("message", "Done.")
    tag = response.get("threadTag")
    return f"{text}\n\n(thread {tag})" if tag else text


def call_tool(params):
    request = {
        **params.get("arguments", {}),
        "protocolVersion": 1,
        "token": current_token(),
        "sessionID": os.environ.get("QUILLPOST_SESSION_ID", ""),
        "method": params["name"],
    }
    text = result_text(json.loads(exchange(request)))
    return {"content": [{"type": "text", "text": text}], "isError": False}


def main():
    with open(os.environ["QUILLPOST_BENCH_TOOLS"], encoding="utf-8") as file:
        tools = json.load(file)["tools"]
    for line in sys.stdin.buffer:
        request = json.loads(line)
        method = request.get("method")
        if method == "initialize":
            result = {
                "protocolVersion": "2024-11-05",
                "capabilities": {"tools": {"listChanged": False}},
                "serverInfo": {"name": "quillpost-teamwork", "version": "1.0.0"},
                "instructions": "A shared board.",
            }
        elif method == "ping":
            result = {}
        elif method == "tools/list":
            result = {"tools": tools}
        elif method == "tools/call":
            result = call_tool(request.get("params", {}))
        else:
            continue
        answer = {"jsonrpc": "2.0", "result": result, "id": request.get("id")}
        sys.stdout.buffer.write(compact(answer).encode() + b"\n")
        sys.stdout.buffer.flush()


if __name__ == "__main__":
    main()
