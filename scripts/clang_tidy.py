#!/usr/bin/env python3
"""Runs clang-tidy over the programs' sources, two parts at a time, or over the sources named.

  scripts/clang_tidy.py BUILD                 all sources of src/ and board/
  scripts/clang_tidy.py BUILD src/base/a.cpp  these

BUILD is a build directory with compile_commands.json. Sources are joined into parts of some thousand
lines, across folders, and a part is looked at as one: most of the time goes into the headers of
libraries, which are then read once and not once for each source. A part whose sources do not go
together is halved. What was found clean is kept in BUILD/clean, and looked at again when the
sources, a header of ours that they include, the configuration or the compile command has changed.
"""

import concurrent.futures
import hashlib
import json
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
CONFIGURATION = (ROOT / ".clang-tidy").read_text(encoding="utf-8")
# Together they include much twice, and a local name may be another source's: the formatter and the
# compiler see to both in each source.
JOINED = ["--checks=-readability-duplicate-include,-clang-diagnostic-shadow"]
# How many lines a part has about. The headers of each take as long as 3,000 lines of ours.
PART_LINES = 9000
# Where a program starts, of which a part could have one only: the second is called `main1`, and so on.
START = re.compile(r"^int main\b")
PROCESSORS = 2
# The states of one function that the analyzer follows before it lets go of it. With its own limit of
# 225,000 it takes four fifths of the whole time, with this one a sixth.
DEPTH = ["-Xclang", "-analyzer-config", "-Xclang", "max-nodes=10000"]
# What the compiler tells here at no cost, where a check of its own is slow.
MORE = [f"--extra-arg={word}" for word in [*DEPTH, "-Wreserved-identifier",
                                                "-Wreserved-macro-identifier"]]
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
TEXTS = {}


def text_of(path):
    if path not in TEXTS:
        TEXTS[path] = path.read_text(encoding="utf-8") if path.is_file() else None
    return TEXTS[path]


def with_headers(sources):
    """The sources and every header of ours that they include, each once and in order."""
    found, ahead = {}, list(sources)
    while ahead:
        path = ahead.pop()
        if path in found or text_of(path) is None:
            continue
        found[path] = text_of(path)
        for name in INCLUDE.findall(found[path]):
            ahead += [ROOT / "src" / name, ROOT / "tests" / name, ROOT / name]
    return sorted(found.items())


class Build:
    """A build directory, and what clang-tidy has said of sources that it compiles."""

    def __init__(self, directory):
        self.directory = directory
        with open(directory / "compile_commands.json", encoding="utf-8") as commands:
            self.commands = {pathlib.Path(entry["file"]): entry for entry in json.load(commands)}
        self.clean = directory / "clean"
        self.clean.mkdir(exist_ok=True)
        self.version = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True,
                                      text=True).stdout

    def arguments(self, sources):
        """What these are compiled with, without the compiler, the sources and the objects; each
        word once, so that the sources of several folders find all their headers."""
        told = {}
        for source in sources:
            words = shlex.split(self.commands[source]["command"])
            while not re.search(r"(\+\+|cc|clang)(-\d+)?$", words[0]):
                del words[0]
            at = words.index("-o")
            words = [word for word in words[1:at] + words[at + 2:]
                     if word not in ("-c", str(source))]
            # What stands as two words is one option.
            for place in [i for i, word in enumerate(words) if word == "-isystem"][::-1]:
                words[place:place + 2] = ["-isystem" + words[place + 1]]
            told.update(dict.fromkeys(words))
        return list(told)

    def mark(self, sources):
        """The file that is there when these sources were found clean as they are."""
        told = hashlib.sha256()
        facts = [CONFIGURATION, self.version, *MORE, *self.arguments(sources)]
        for path, text in with_headers(sources):
            facts += [str(path), text]
        for fact in facts:
            told.update(fact.encode() + b"\0")
        return self.clean / told.hexdigest()

    def run(self, file, sources, options=()):
        """What clang-tidy says of `file`, compiled as `sources` are; nothing when it is clean."""
        ended = subprocess.run(
            ["clang-tidy", "--quiet", f"--config={CONFIGURATION}", *MORE, *options,
             str(file), "--",
             *self.arguments(sources)],
            check=False, capture_output=True, text=True, cwd=self.directory)
        return ended.stdout or ended.stderr if ended.returncode else ""

    def check(self, sources):
        """What is wrong with them; nothing when they are clean."""
        mark = self.mark(sources)
        if mark.exists():
            return ""
        said = self.joined(sources) if len(sources) > 1 else self.run(sources[0], sources)
        if said is None:
            half = len(sources) // 2
            said = self.check(sources[:half]) + self.check(sources[half:])
        if not said:
            mark.touch()
        return said

    def joined(self, sources):
        """What is wrong with all of them in one file, told by the places where they are; None when
        they cannot be compiled so."""
        name = str(sources[0].relative_to(ROOT)).replace("/", "_")
        file = self.directory / f"from_{name}"
        lines, places, starts = [], [None], 0
        for source in sources:
            for number, line in enumerate(text_of(source).splitlines(), 1):
                if START.match(line):
                    line = START.sub(f"int main{starts or ''}", line)
                    starts += 1
                lines.append(line)
                places.append(f"{source.relative_to(ROOT)}:{number}")
        file.write_text("\n".join(lines) + "\n", encoding="utf-8")
        said = self.run(file, sources, JOINED)
        if "[clang-diagnostic-error" in said:
            return None
        return re.sub(re.escape(str(file)) + r":(\d+)", lambda found: places[int(found[1])], said)


def parts(sources):
    """The sources in order, in lists of about `PART_LINES` lines, as many for each processor."""
    lines = {source: len(text_of(source).splitlines()) for source in sources}
    total = sum(lines.values())
    count = PROCESSORS * max(1, round(total / PROCESSORS / PART_LINES))
    joined, done = [[] for _ in range(count)], 0
    for source in sources:
        joined[count * done // total].append(source)
        done += lines[source]
    return [part for part in joined if part]


def main():
    build = Build(pathlib.Path(sys.argv[1]).resolve())
    if len(sys.argv) > 2:
        groups = [[pathlib.Path(name).resolve()] for name in sys.argv[2:]]
    else:
        groups = parts([source for source in sorted(build.commands)
                        if source.is_relative_to(ROOT / "src")
                        or source.is_relative_to(ROOT / "board")])
    unknown = [str(path) for group in groups for path in group if path not in build.commands]
    if unknown:
        sys.exit(f"no target compiles {', '.join(unknown)}")
    status = 0
    with concurrent.futures.ThreadPoolExecutor(PROCESSORS) as pool:
        for done in concurrent.futures.as_completed([pool.submit(build.check, group)
                                                     for group in groups]):
            if said := done.result():
                print(said, end="", flush=True)
                status = 1
    sys.exit(status)


if __name__ == "__main__":
    main()
