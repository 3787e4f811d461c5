#!/usr/bin/env python3
"""Plays a session of two agents and a person on a board of its own, and checks every answer.

    demo.py BUILD [--serve | --page]

BUILD is the folder with the built programs. With --serve a board of your own is then served until
Ctrl-C, and kept. With --page the session is played slowly with the board's page open in the browser,
where the charter says what is going on, and the question is left to whoever looks on. Whoever wants to know how an agent's harness talks to quillpost-teamwork can read
this file from top to bottom: Seat is all that a harness has to do, play() is what agents do,
first through tools and then, in playByShell(), with commands alone.
"""

import contextlib
import json
import os
import re
import select
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import textwrap
import time

PATIENCE = 30  # seconds for one answer, which takes milliseconds
STEP = 1.6  # seconds between two steps for whoever looks on
READING = 6  # seconds to read what a chapter is about
THINKING = 60  # seconds to answer a question on the page
NOTHING_WAITS, KEEP_GOING = 0, 2  # what the stop hook ends with
HOOK_LINE = "board changed, call wait_for_changes"

isColourful = sys.stdout.isatty() and not os.environ.get("NO_COLOR") and (
    os.environ.get("TERM") != "dumb")
width = min(shutil.get_terminal_size((100, 24)).columns, 120)
colours = {"Ada": 36, "Bo": 35, "person": 33, "title": 1, "dim": 2, "good": 32, "bad": 31}


class Failure(Exception):
    """A step that did not come out as expected."""


# --- The transcript -------------------------------------------------------------------------------


def paint(style, text):
    return f"\033[{colours[style]}m{text}\033[0m" if isColourful else text


onlooker = None  # the board whose page somebody looks at, if one is


def pause(seconds):
    if onlooker:
        signal.alarm(0)
        time.sleep(seconds)
        signal.alarm(PATIENCE)


def title(text, explanation):
    if onlooker:
        onlooker.caption(f"{text}. {explanation}")
    print("\n" + paint("title", text))
    for line in textwrap.wrap(explanation, width - 2):
        print(paint("dim", line))
    print()


def say(who, sign, text, style=None):
    """Who, what way it goes (→ asks, ← is answered), and what: in full, but for asides."""
    if who and sign in ("→", "$") and style != "dim":
        pause(STEP)
    asides = 1 if style == "dim" else None
    margin = (paint(who, f"{who:6}") if who else " " * 6) + " " + paint("dim", sign)
    for line in textwrap.wrap(text, max(width - 11, 20), max_lines=asides, placeholder=" …"):
        print(f"  {margin} {paint(style, line) if style else line}", flush=True)
        margin = " " * 8


def check(isExpected, wanted, got):
    if not isExpected:
        raise Failure(f"expected {wanted}\nbut got  {got}")


def written(value):
    return json.dumps(value, ensure_ascii=False)


# --- What came back -------------------------------------------------------------------------------


def parsed(text):
    """An answer is JSON or plain words, and ends with the tag of the thread, set apart."""
    check(re.search(r"\n\n\(thread T-[a-z0-9]{6}\)$", text), "the thread's tag at the end", text)
    return json.JSONDecoder().raw_decode(text)[0] if text.startswith("{") else text


def find(reply, path):
    """What stands at a path such as "obligations.clear"; of tasks and the like only the names."""
    for key in path.split("."):
        reply = reply.get(key) if isinstance(reply, dict) else None
    if not isinstance(reply, list):
        return reply
    names = ("id", "kind", "discussionID")
    return [next((row[name] for name in names if name in row), row) if isinstance(row, dict)
            else row for row in reply]


def show(who, text, expected):
    """Checks an answer and prints its gist. `expected` is what the words begin with, or what stands
    at which path of the JSON. Gives the answer, parsed."""
    reply = parsed(text)
    if isinstance(expected, str):
        check(isinstance(reply, str) and expected in reply.split("\n")[0], expected, text)
        say(who, "←", reply.split("\n")[0])
        advice = re.search(r"^Next: (.*)", reply, re.MULTILINE)
        if advice:
            say("", " ", "next: " + advice[1], "dim")
        return reply
    for path, value in expected.items():
        check(find(reply, path) == value, f"{path}: {written(value)}", text)
    say(who, "←", ", ".join(f"{path}: {written(value)}" for path, value in expected.items()))
    for reason in reply.get("wakeReasons", []):
        say("", " ", f"woken: {reason['summary']}")
    if reply.get("nextStep"):
        say("", " ", "next: " + reply["nextStep"], "dim")
    return reply


# --- The three parties ----------------------------------------------------------------------------


def start(cleanup, command, **options):
    """A process that does not outlive the demo, whatever becomes of it."""
    process = subprocess.Popen(command, encoding="utf-8", **options)

    def end():
        with process:  # closes the pipes and waits
            process.kill()

    cleanup.callback(end)
    return process


class Board:
    """A quillpost-board that serves in a folder, and the person who commands it. Without a folder
    it is the one that agents look in by themselves."""

    def __init__(self, cleanup, build, folder=None):
        self.program = os.path.join(build, "quillpost-board")
        self.where = ["--dir", folder] if folder else []
        signal.alarm(PATIENCE)
        self.process = start(cleanup, [self.program, "serve", *self.where],
                             stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)
        say("person", "$", shlex.join(["quillpost-board", "serve", *self.where]))
        greeting = self.process.stderr.readline().strip()
        check("listening on" in greeting, "a board that listens", greeting)
        say("", " ", greeting)

    def command(self, *words, expect):
        """What the person types, and what the board says to it."""
        signal.alarm(PATIENCE)
        say("person", "$", shlex.join(["quillpost-board", *words]))
        done = subprocess.run(
            [self.program, *self.where, *words], stdin=subprocess.DEVNULL,
            capture_output=True, encoding="utf-8", check=False)
        said = done.stdout + done.stderr
        check(done.returncode == 0 and expect in said, expect, said)
        for line in said.rstrip().split("\n"):
            fits = words[0] == "seat" or len(line) <= width - 11
            shown = line if fits else line[: width - 12] + "…"
            print(f"           {shown}".rstrip(), flush=True)
        return said

    def openPage(self, cleanup):
        """Shows the board in the browser, and plays slowly from here on."""
        global onlooker
        process = start(cleanup, [self.program, *self.where, "page", "--open"],
                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        address = process.stdout.readline().strip()
        check(address.startswith("http://127.0.0.1:"), "the page's address", address)
        print("\n" + paint("good", f"Look at {address}") + "\n", flush=True)
        onlooker = self
        pause(READING)
        return process

    def caption(self, words):
        """Says on the page what comes next."""
        subprocess.run([self.program, *self.where, "charter", "--", words],
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
        pause(READING)

    def answer(self, task, option):
        """The person's answer: a command's, unless somebody who looks on clicks one first."""
        deadline = time.monotonic() + THINKING
        if onlooker:
            print(paint("good", "\nAnswer the question on the page; in a minute it is answered for you.\n"),
                  flush=True)
        while onlooker and time.monotonic() < deadline:
            asks = subprocess.run([self.program, *self.where, "show", "--mine"], check=False,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL).returncode
            if asks == 0:
                return
            pause(0.5)
        self.command("answer", task, option, expect="Answered")

    def seat(self, *words):
        """A new seat: the handle that others reach it by, and the variables that make the agent of
        a terminal sit on it."""
        said = self.command("seat", *words, expect="This seat answers to")
        lines = [line for line in said.splitlines() if line.startswith("export QUILLPOST_")]
        variables = dict(shlex.split(line)[1].split("=", 1) for line in lines)
        return re.search(r"answers to (\w+)", said)[1], variables

    def close(self):
        self.process.terminate()
        status = self.process.wait(PATIENCE)
        check(status == 0, "the board to end with 0", status)


class Seat:
    """An agent, as its harness sees it: a quillpost-teamwork process and lines of JSON."""

    def __init__(self, cleanup, name, build, board, runtime):
        self.cleanup = cleanup
        self.name = name
        self.handle, variables = board.seat()
        self.program = os.path.join(build, "quillpost-teamwork")
        mine = {key: value for key, value in os.environ.items() if not key.startswith("QUILLPOST_")}
        path = os.pathsep.join([build, os.environ.get("PATH", os.defpath)])
        self.environment = {**mine, "PATH": path, "XDG_RUNTIME_DIR": runtime, **variables}
        self.lastID = 0
        self.process = start(cleanup, [self.program], env=self.environment,
                             stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def send(self, method, params):
        signal.alarm(PATIENCE)
        self.lastID += 1
        line = written({"jsonrpc": "2.0", "id": self.lastID, "method": method, "params": params})
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        return line

    def receive(self):
        line = self.process.stdout.readline()
        check(line, "a line of JSON", "the end of the program's output")
        return json.loads(line)

    def request(self, method, params):
        """One request and its answer, both shown as they go over the pipes."""
        say(self.name, "→", self.send(method, params), "dim")
        answer = self.receive()
        check(answer.get("id") == self.lastID and "result" in answer, "a result", answer)
        say("", "←", written(answer), "dim")
        return answer["result"]

    def call(self, tool, expect, **arguments):
        """One tool call. `expect` is what must come back, see show()."""
        self.begin(tool, arguments, {})
        return self.end(expect)

    def begin(self, tool, arguments, more):
        shown = ", ".join(f"{name}: {written(value)}" for name, value in arguments.items())
        say(self.name, "→", f"{tool}({shown})")
        self.send("tools/call", {"name": tool, "arguments": arguments, **more})

    def end(self, expect, who=""):
        answer = self.receive()
        check(answer.get("id") == self.lastID and "result" in answer, "a result", answer)
        return show(who, answer["result"]["content"][0]["text"], expect)

    def listen(self, quietFor=0):
        """Begins a wait, and sees that it holds for as long as nothing happens. Whoever asks for
        progress is told that the program listens by now."""
        if onlooker and quietFor:
            # The chapter's caption has moved the board as well; it is no news after this.
            self.send("tools/call", {"name": "list_tasks", "arguments": {}})
            self.receive()
            # Whoever looks on may answer at once.
            quietFor = 0
        self.begin("wait_for_changes", {"timeoutSeconds": 25}, {"_meta": {"progressToken": "w"}})
        note = self.receive()
        check(note.get("method") == "notifications/progress", "a sign of progress", note)
        say("", "…", note["params"]["message"], "dim")
        early, _, _ = select.select([self.process.stdout], [], [], quietFor)
        check(not quietFor or not early, "a wait that holds", "an answer before anything happened")

    def wake(self, expect):
        """Ends the wait that listen() began."""
        return self.end(expect, self.name)

    def shell(self, line, expect):
        """One command of the agent's, and what it prints."""
        signal.alarm(PATIENCE)
        say(self.name, "$", line)
        done = subprocess.run(["/bin/sh", "-c", line], env=self.environment, encoding="utf-8",
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)
        check(done.returncode == 0, "status 0", done.stdout + done.stderr)
        return show("", done.stdout.removesuffix("\n"), expect)

    def listenByShell(self, quietFor=0):
        """Begins a wait in the background, and sees that it holds while nothing happens. It starts
        from what the seat's last command has seen, so that nothing is lost in between."""
        signal.alarm(PATIENCE)
        if onlooker and quietFor:
            # The chapter's caption has moved the board as well; it is no news after this.
            subprocess.run(["/bin/sh", "-c", "qp tasks"], env=self.environment, check=True,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        say(self.name, "$", "qp wait &")
        self.waiting = start(self.cleanup, ["/bin/sh", "-c", "exec qp wait"], env=self.environment,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        with contextlib.suppress(subprocess.TimeoutExpired):
            status = self.waiting.wait(quietFor) if quietFor else None
            check(status is None, "a wait that holds", f"status {status} before anything happened")

    def wakeByShell(self, expect):
        """The end of the wait that listenByShell() began: a harness starts a turn with it."""
        text, _ = self.waiting.communicate(timeout=PATIENCE)
        check(self.waiting.returncode == 0, "status 0", f"status {self.waiting.returncode}")
        return show(self.name, text.removesuffix("\n"), expect)

    def stop(self, status):
        """The agent wants to end its turn, so its harness runs the stop hook."""
        signal.alarm(PATIENCE)
        say(self.name, "$", "quillpost-teamwork --wake-stop-hook")
        hook = subprocess.run(
            [self.program, "--wake-stop-hook"], env=self.environment, input="{}\n",
            capture_output=True, encoding="utf-8", check=False)
        line = hook.stderr.strip()
        check(hook.returncode == status and (HOOK_LINE in line) == (status == KEEP_GOING),
              f"status {status}", f"status {hook.returncode} {line}")
        say("", "←", f"status {status}: " + (line or "the agent may stop"),
            "bad" if status == KEEP_GOING else "good")

    def close(self):
        """The program ends with its input."""
        self.process.stdin.close()
        status = self.process.wait(PATIENCE)
        check(status == 0, "the program to end with 0", status)


# --- The session ----------------------------------------------------------------------------------


def play(board, ada, bo):
    title("2. Two agents take their seats",
          "Each agent has its own quillpost-teamwork, which speaks MCP: a line of JSON for each "
          "request and each answer. After the first two only what matters of them is shown.")
    hello = {"protocolVersion": "2024-11-05", "capabilities": {}}
    told = ada.request("initialize", {**hello, "clientInfo": {"name": "demo", "version": "1"}})
    check(told["serverInfo"]["name"] == "quillpost-teamwork", "the server's name", told)
    listed = ada.request("tools/list", {})["tools"]
    names = [tool["name"] for tool in listed]
    check(names[0] == "register" and len(set(names)) == len(names), "the list of tools", names)
    ada.call("register", {"yourHandle": ada.handle, "leaseSecondsRemaining": 900}, name="Ada",
             role="planner")
    bo.call("register", {"yourHandle": bo.handle, "leaseSecondsRemaining": 900}, name="Bo",
            role="executor")

    title("3. A goal, and tasks for it",
          "The board tells whoever asks what to do next. The page waits for the list of bread.")
    ada.call("read_plan", {"otherLocalAgents": 1, "goalLocked": False})
    ada.call("set_goal", "The goal is set.",
             description="The bakery's website shows today's bread", nonGoals="no online orders")

    def file(*waitsOn, **task):
        expected = "waiting on other tasks" if waitsOn else "READY"
        more = {"waitsOn": list(waitsOn)} if waitsOn else {}
        return re.search(r"\bt\d{6}\b", ada.call("add_task", expected, **task, **more))[0]

    bread = file(title="Publish bread.json", body="Read the till, write what is left. No prices.")
    page = file(bread, title="Show the bread on the front page")
    hours = file(title="Say when the bakery is closed")
    bo.call("list_tasks", {"readyToClaim": [bread, hours], "waiting": [page]})

    title("4. Each claims a task",
          "A claim is a lease: nobody else takes the task while its agent gives signs of life.")
    ada.call("claim_task", f"You hold {bread}", taskID=bread)
    bo.call("claim_task", "is held by", taskID=bread)
    bo.call("claim_task", f"You hold {hours}", taskID=hours)
    ada.call("update_task", bread, taskID=bread,
             progress="worktree bread, branch bread-json: till is read, DONE; next: the writer")

    title("5. A question that only the person can answer",
          "Bo asks on the task and listens. The answer ends the wait at once.")
    bo.call("update_task", hours, taskID=hours, blocked=True, blockerKind="decision",
            blockerQuestion="Which day is the bakery closed?",
            blockerOptions=["Monday", "Tuesday"])
    bo.listen(quietFor=1)
    if not onlooker:
        board.command("show", expect="Which day")
    board.answer(hours, "2")
    bo.wake({"wakeReasons": ["blockerAnswered"]})
    bo.call("complete_task", f"Completed {hours}", taskID=hours,
            summary="The footer says: closed on Tuesdays. Looked at it in two browsers.")

    return bread, page


def playByShell(board, ada, bo, bread, page):
    title("6. The same seats, from a shell",
          "From here on no tool is called. Whoever runs commands has the whole board in qp, with "
          "the same answers; a wait is a command that ends when the board moves.")
    ada.shell("qp register Ada --role planner", {"yourHandle": ada.handle})
    bo.shell("qp register Bo --role executor", {"yourHandle": bo.handle})
    ada.shell("qp tasks", {"yours": [bread], "waiting": [page], "doneCount": 1})
    bo.shell("qp tasks", {"yours": [], "waiting": [bread, page], "doneCount": 1})

    title("7. A difference of opinion",
          "An agent that owes an answer is not let go: its stop hook ends with status 2.")
    question = "A loaf is sold out: hide it or grey it out? I would hide it."
    debate = ada.shell(f"qp discuss '{question}' --address-to Bo",
                       {"state": "open", "yourTurn": False})["id"]
    bo.stop(KEEP_GOING)
    bo.listenByShell()
    bo.wakeByShell({"wakeReasons": ["discussionOpened"], "obligations.oweReply": [debate]})
    bo.shell(f"qp reply {debate} 'Grey it out: people shall see that we bake it.'",
             {"state": "open", "yourTurn": False})
    ada.listenByShell()
    ada.wakeByShell({"wakeReasons": ["discussionReply"], "obligations.oweReply": [debate]})
    ada.shell(f"qp resolve {debate} 'A sold-out loaf stays on the page, greyed out.'",
              {"state": "resolved"})
    bo.listenByShell()
    bo.wakeByShell({"wakeReasons": ["discussionResolved"], "obligations.clear": True})

    title("8. What is done makes more READY",
          "Bo has nothing to do and listens. Ada's completion opens the task that waited for it.")
    bo.stop(NOTHING_WAITS)
    bo.listenByShell(quietFor=1)
    ada.shell(f"qp done {bread} 'bread.json holds what is left, every minute. Compared with the "
              "till.'", f"Completed {bread}")
    bo.wakeByShell({"changed": True, "goalComplete": False})
    bo.shell("qp tasks", {"readyToClaim": [page], "doneCount": 2})
    bo.shell(f"qp claim {page}", f"You hold {page}")
    bo.shell("echo 'The front page shows the bread; what is sold out is grey. Tested with both.' | "
             f"qp done {page} -", f"Completed {page}")

    title("9. The goal is met, and both may go",
          "Agents propose, the person confirms. Then nothing keeps the agents any more.")
    ada.shell("qp propose-complete", "Completion is proposed.")
    board.command("confirm-goal", expect="The goal is complete.")
    for seat in (ada, bo):
        seat.stop(KEEP_GOING)
        seat.listenByShell()
        seat.wakeByShell({"goalComplete": True, "resolved": True, "obligations.clear": True})
        seat.shell("qp leave", "You have left the board.")
        seat.stop(NOTHING_WAITS)
    board.command("show", expect="GOAL COMPLETE")


def playHands(board, ada):
    title("10. Hands that start",
          "The person allows a helper in exactly these words. Ada asks for its hands, the board "
          "starts it in the background, and Ada is woken with what came of it.")
    board.command("reopen-goal", expect="open again")
    script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "demo_helper.py")
    board.command("helper", "allow", "counter", "--explanation", "adds up loaves", "--with-tools",
                  "--", sys.executable, script, expect="The squad is on.")
    ada.shell("qp register Ada --role planner", {"yourHandle": ada.handle})
    asked = ada.shell("qp hands --title 'Count the loaves' --brief '3 loaves of rye, 4 loaves of "
                      "wheat. Done is one number.'", "is handed to")
    helper = re.search(r"is handed to (\w+)", asked)[1]
    kinds = []
    while "helperEnded" not in kinds:
        ada.listenByShell()
        kinds += find(ada.wakeByShell({"goalComplete": False}), "wakeReasons")
    check("handedTaskDone" in kinds, "to be woken with the result", kinds)
    board.command("show", helper, expect="That makes 7.")
    ada.shell(f"qp stop {helper}", f"Stopped {helper}.")
    ada.shell("qp leave", "You have left the board.")


def serve(cleanup, build, program):
    """Leaves a board to the person: their own, of which nothing is ever deleted here."""
    title("A board of your own, until Ctrl-C",
          "It is kept in the file that it names, and is there again the next time it is served.")
    board = Board(cleanup, build)
    print("\nIn the harness's MCP configuration:\n")
    print(json.dumps({"mcpServers": {"teamwork": {"command": program}}}, indent=2))
    print("\nAs the harness's stop hook:\n\n" + shlex.join([program, "--wake-stop-hook"]))
    print("\nThese say what it is for, start an agent on it, and show it:\n")
    for words in (["goal", "WHAT IT IS FOR"], ["run", "HARNESS"], ["watch"]):
        print(shlex.join([board.program, *words]), flush=True)
    signal.alarm(0)
    with contextlib.suppress(KeyboardInterrupt):
        board.process.wait()


def lookOn(process):
    """Leaves the page to whoever looks on."""
    title("That was a day on the board",
          "The page stays open until Ctrl-C in the terminal: look at who did what, at the history, and "
          "open a task.")
    signal.alarm(0)
    with contextlib.suppress(KeyboardInterrupt):
        process.wait()


def run(build, staysOpen, hasPage):
    with contextlib.ExitStack() as cleanup:
        # Short, because a socket's path may have no more than 103 bytes.
        folder = tempfile.mkdtemp(prefix="quillpost.", dir="/tmp")
        cleanup.callback(shutil.rmtree, folder)
        try:
            begin = time.monotonic()
            title("1. A board, and two seats at it",
                  "quillpost-board plays the app. A seat is three variables in a terminal's "
                  "environment; others know it by its handle.")
            board = Board(cleanup, build, folder)
            browsed = board.openPage(cleanup) if hasPage else None
            # Where the seats remember what they have seen from one command to the next.
            runtime = tempfile.mkdtemp(prefix="quillpost.")
            cleanup.callback(shutil.rmtree, runtime)
            ada = Seat(cleanup, "Ada", build, board, runtime)
            bo = Seat(cleanup, "Bo", build, board, runtime)
            bread, page = play(board, ada, bo)
            playByShell(board, ada, bo, bread, page)
            playHands(board, ada)
            ada.close()
            bo.close()
            if browsed:
                lookOn(browsed)
                return
            print("\n" + paint("good", "Every step came out as expected") +
                  f", in {time.monotonic() - begin:.1f} seconds.", flush=True)
            board.close()
            left = [name for name in os.listdir(folder) if not name.startswith("board.db")]
            check(not left, "no socket and no token left", left)
            if staysOpen:
                serve(cleanup, build, ada.program)
        finally:
            # Nothing interrupts the tidying up.
            signal.alarm(0)
            for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                signal.signal(number, signal.SIG_IGN)


def interrupted(number, _frame):
    if number == signal.SIGALRM:
        raise Failure(f"no answer within {PATIENCE} seconds")
    sys.exit(128 + number)


def main():
    words = [word for word in sys.argv[1:] if word not in ("--serve", "--page")]
    if len(words) != 1 or words[0].startswith("-") or len(sys.argv) > 3:
        sys.exit("usage: demo.py BUILD [--serve | --page]")
    for number in (signal.SIGALRM, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, interrupted)
    sys.stdout.reconfigure(encoding="utf-8")
    try:
        run(os.path.abspath(words[0]), "--serve" in sys.argv, "--page" in sys.argv)
    except KeyboardInterrupt:
        return 128 + signal.SIGINT
    except (Failure, OSError, ValueError) as failure:
        sys.stdout = open(os.devnull, "w") if isinstance(failure, BrokenPipeError) else sys.stdout
        print(paint("bad", f"\nThe demo failed: {failure}"), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
