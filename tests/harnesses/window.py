#!/usr/bin/env python3
"""Runs a command in a terminal of its own, and answers what a program asks of a terminal.

    window.py COMMAND [ARGUMENT...]

What the command shows goes to standard output as it comes; what comes on standard input is typed.
"""

import fcntl
import os
import pty
import select
import struct
import sys
import termios

ROWS, COLUMNS = 50, 160
# What programs ask a terminal before they draw anything, and what a plain one answers.
ANSWERS = [
    (b"\033[6n", b"\033[1;1R"),
    (b"\033[c", b"\033[?62;c"),
    (b"\033[?u", b"\033[?0u"),
    (b"\033]10;?", b"\033]10;rgb:ffff/ffff/ffff\033\\"),
    (b"\033]11;?", b"\033]11;rgb:0000/0000/0000\033\\"),
]


def main():
    child, terminal = pty.fork()
    if child == 0:
        fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", ROWS, COLUMNS, 0, 0))
        os.execvp(sys.argv[1], sys.argv[1:])
    listened = [terminal, 0]
    while True:
        ready, _, _ = select.select(listened, [], [])
        if terminal in ready:
            try:
                shown = os.read(terminal, 65536)
            except OSError:
                shown = b""
            if not shown:
                break
            os.write(1, shown)
            for question, answer in ANSWERS:
                os.write(terminal, answer * shown.count(question))
        if 0 in ready:
            typed = os.read(0, 4096)
            if typed:
                os.write(terminal, typed)
            else:
                listened.remove(0)
    _, status = os.waitpid(child, 0)
    return os.waitstatus_to_exitcode(status)


if __name__ == "__main__":
    sys.exit(main())
