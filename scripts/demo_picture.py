#!/usr/bin/env python3
"""Plays the demo and draws a part of what it shows as docs/demo.svg.

    scripts/demo_picture.py BUILD

BUILD is the folder with the built programs. The part is from the question that only the person can
answer to where the agent goes on.
"""

import html
import os
import pty
import re
import sys

BEGIN, END = "5. A question", "6. The same seats"
WIDTH = 100  # columns of the terminal that is drawn
COLUMN, LINE, MARGIN = 7.8, 18, 16  # in the picture's units
SHADES = {"1": "bold", "2": "dim", "31": "bad", "32": "good", "33": "person", "35": "bo", "36": "ada"}
STYLE = """
  text { font: 13px ui-monospace, SFMono-Regular, Menlo, Consolas, monospace; fill: #d8dee9;
         white-space: pre; }
  .bold { font-weight: 600; fill: #ffffff; } .dim { fill: #8b95a5; } .person { fill: #e5c07b; }
  .ada { fill: #56b6c2; } .bo { fill: #c678dd; } .good { fill: #98c379; } .bad { fill: #e06c75; }
"""


def shown(build):
    """What the demo writes to a terminal of that width, line by line, with its colours."""
    script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "demo_session.py")
    child, terminal = pty.fork()
    if child == 0:
        os.environ.update(TERM="xterm", COLUMNS=str(WIDTH))
        os.environ.pop("NO_COLOR", None)
        os.execv(sys.executable, [sys.executable, script, build])
    output = b""
    while True:
        try:
            piece = os.read(terminal, 65536)
        except OSError:
            break
        if not piece:
            break
        output += piece
    if os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) != 0:
        sys.exit(output.decode())
    return output.decode().replace("\r\n", "\n").split("\n")


def drawn(line, row):
    """A line as text of the picture, each colour a span."""
    spans, shade = [], ""
    for part in re.split(r"(\033\[\d+m)", line):
        code = re.fullmatch(r"\033\[(\d+)m", part)
        if code:
            shade = SHADES.get(code[1], "")
        elif part:
            text = html.escape(part)
            spans.append(f'<tspan class="{shade}">{text}</tspan>' if shade else text)
    y = MARGIN + LINE * (row + 1)
    return f'<text x="{MARGIN}" y="{y}" xml:space="preserve">{"".join(spans)}</text>'


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: demo_picture.py BUILD")
    lines = shown(os.path.abspath(sys.argv[1]))
    first = next(i for i, line in enumerate(lines) if BEGIN in line)
    last = next(i for i, line in enumerate(lines) if END in line)
    part = lines[first:last]
    while not part[-1]:
        part.pop()
    width, height = int(COLUMN * WIDTH + 2 * MARGIN), LINE * len(part) + 3 * MARGIN
    picture = "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}">',
        "<title>A part of the demo: an agent asks, the person answers, the agent goes on</title>",
        f"<style>{STYLE}</style>",
        f'<rect width="{width}" height="{height}" rx="8" fill="#1e222a"/>',
        *(drawn(line, row) for row, line in enumerate(part)),
        "</svg>",
        "",
    ])
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    with open(os.path.join(root, "docs", "demo.svg"), "w", encoding="utf-8") as file:
        file.write(picture)


if __name__ == "__main__":
    main()
