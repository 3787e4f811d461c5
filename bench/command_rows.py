"""The rows of the command line: what one command costs from start to end, what a wait keeps, and
beside them a public board tool for agents, a compiled JavaScript program that keeps tasks in files,
where it is installed."""

import json
import subprocess
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
MIB = 1 << 20
MILLISECOND = 1e6  # nanoseconds
# Lines of output: a command that says little is waited for when its input has been closed; what
# lists tasks says more than a pipe holds, and is read to its end.
NOT_READ, TO_ITS_END = 0, 1_000_000
QUIET_FEED = {
    "kind": "changes",
    "changes": {"rev": 7, "changed": False, "goal": "", "goalComplete": False,
                "pendingGoalComplete": False, "changeKinds": [], "tasks": []},
}
MOVED = {"kind": "written", "message": "Noted.", "rev": 9, "threadTag": "T-q7x2k9"}
TASK_FILE = """---
id: TASK-{number}
title: Task number {number} of a board
status: To Do
assignee: []
created_date: '2026-01-01 00:00'
labels: []
dependencies: []
ordinal: {number}000
---

## Description

<!-- SECTION:DESCRIPTION:BEGIN -->
Parse what is on the lease of number {number}, and say what it holds.
<!-- SECTION:DESCRIPTION:END -->
"""


def make_replies(bench):
    """What the app answers beyond what the other rows need."""
    for name, reply in (("quiet", QUIET_FEED), ("moved", MOVED)):
        text = json.dumps(reply)
        bench.reply_file(name).write_text(text)
        bench.replies[name] = len(text)


def find_tool():
    """The board tool, or none."""
    found = sorted(HERE.glob("peers/board/node_modules/backlog.md-*/backlog"))
    return str(found[0]) if found else None


def tool_board(bench, tool, count):
    """A board of the tool's with so many tasks, made when it is first asked for."""
    folder = bench.directory / f"board{count}"
    if folder.exists():
        return folder
    folder.mkdir()
    subprocess.run([tool, "init", "bench", "--defaults", "--no-git", "--integration-mode", "none"],
                   cwd=folder, check=True, capture_output=True, timeout=120)
    tasks = folder / "backlog" / "tasks"
    tasks.mkdir(exist_ok=True)
    for number in range(1, count + 1):
        (tasks / f"task-{number} - Task-number-{number}.md").write_text(
            TASK_FILE.format(number=number))
    return folder


class CommandRows:
    """Adds its rows to the table of a bench, whose kinds of row and of goal it is given."""

    def __init__(self, bench, kinds):
        self.bench = bench
        self.kinds = kinds
        self.qp = str(bench.build / "qp")
        self.seat = [str(bench.build / "quillpost-teamwork")]
        self.hook = [str(bench.tools / "hook")]
        self.tool = None if bench.quick else find_tool()

    def run(self):
        # Where a seat's memory lies is a file system in memory on most systems.
        in_memory = "/dev/shm" if Path("/dev/shm").is_dir() else None
        with tempfile.TemporaryDirectory(prefix="qb", dir=in_memory) as runtime:
            self.bench.environment["XDG_RUNTIME_DIR"] = runtime
            self.add_rows()

    def add_rows(self):
        self.check()
        self.claim()
        for count in (10, 1000) if self.bench.quick else (10, 1000, 10_000):
            self.tasks(count)
        if Path("/proc/self/status").exists():
            self.wait()

    def check(self):
        """A command that fails fast must not win."""
        claimed = self.said(["claim", "t100001"], "written")
        listed = self.said(["tasks", "--json"], "tasks1000")
        if "Progress noted." not in claimed or len(listed) < 100_000:
            raise RuntimeError("qp does not do the work")

    def said(self, words, socket):
        ended = subprocess.run([self.qp, *words], capture_output=True, timeout=60, check=True,
                               text=True,
                               env=self.bench.environment | self.bench.socket(socket))
        return ended.stdout

    def work(self, socket, lines, seconds=3.0, **environment):
        return self.kinds.Work(b"", mode="start", lines=lines, seconds=seconds,
                               environment=self.bench.socket(socket) | environment)

    def claim(self):
        name = "qp claim, start to end"
        own = [self.qp, "claim", "t100001"]
        work = self.work("written", NOT_READ)
        self.compare(name, work, own, "bare exchange", self.hook)
        self.compare("the same", work, own, "stop hook", [*self.seat, "--wake-stop-hook"],
                     self.kinds.Goal(1.3))
        if self.tool:
            self.beside_tool(own, "written", 10, ["task", "edit", "1", "-s", "In Progress"])

    def tasks(self, count):
        own = [self.qp, "tasks"]
        socket = f"tasks{count}"
        taken = self.bench.measure(self.work(socket, TO_ITS_END), {"qp": own})["qp"]
        goal = self.kinds.Goal(10, " ms") if count == 1000 else None
        row = self.kinds.Row(f"qp tasks, {count:,} tasks", self.kinds.duration(taken))
        if goal:
            row.goal, row.verdict = str(goal), goal.verdict(taken / MILLISECOND)
        self.bench.rows.append(row)
        if self.tool:
            self.beside_tool(own, socket, count, ["task", "list", "--plain"])

    def compare(self, name, work, own, other_name, other, goal=None):
        # Another command in between moves the board, so that each one has something to remember.
        mover = ["env", f"QUILLPOST_COLLAB_SOCKET={self.bench.directory / 'moved'}", self.qp,
                 "heartbeat"]
        medians = self.bench.measure(work, {"qp": own, other_name: other, "mover": mover})
        ratio = medians["qp"] / medians[other_name]
        row = self.kinds.Row(name, self.kinds.duration(medians["qp"]),
                             f"{other_name}: {self.kinds.duration(medians[other_name])}",
                             f"{ratio:.2f}x" if ratio > 0.1 else f"{ratio:.1g}x")
        if goal:
            row.goal, row.verdict = str(goal), goal.verdict(ratio)
        self.bench.rows.append(row)

    def beside_tool(self, own, socket, count, words):
        """The tool at the same work, on a board of so many tasks."""
        board = tool_board(self.bench, self.tool, count)
        work = self.work(socket, TO_ITS_END, seconds=5, BACKLOG_CWD=str(board))
        self.compare("the same", work, own, "board tool", self.bench.unpinned([self.tool, *words]))

    def wait(self):
        """What a wait keeps once it has heard from the board."""
        environment = self.bench.environment | self.bench.socket("quiet")
        with subprocess.Popen([self.qp, "wait"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              env=environment) as waiting:
            time.sleep(1)
            used = self.kinds.status_of(waiting.pid, "VmRSS")
            waiting.kill()
        goal = self.kinds.Goal(4, " MiB")
        self.bench.rows.append(
            self.kinds.Row("memory of a qp wait", f"{used / MIB:.1f} MiB", "", "", str(goal),
                           goal.verdict(used / MIB)))
