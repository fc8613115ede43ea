"""Runs of the tool on a terminal of their own, for tests."""

import fcntl
import os
import re
import struct
import subprocess
import termios
import threading
import time

ERASE = b"\r\x1b[K"
DEADLINE = 60


def set_width(descriptor, columns):
    fcntl.ioctl(descriptor, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))


class Run:
    """A run of the tool with its messages, and on demand its output, on a terminal of its own."""

    def __init__(self, *words, columns=80, term="xterm", output_too=False, act=None, **variables):
        self.written = b""
        self.mark = 0
        master, slave = os.openpty()
        set_width(slave, columns)

        def take_terminal():
            os.setsid()
            fcntl.ioctl(2, termios.TIOCSCTTY, 0)

        self.process = process = subprocess.Popen(
            words, stdin=slave, stderr=slave,
            stdout=slave if output_too else subprocess.PIPE, preexec_fn=take_terminal,
            env={**os.environ, "TERM": term, **variables})
        os.close(slave)
        reader = threading.Thread(target=self.read, args=(master,))
        reader.start()
        if act:
            act(self, master)
        self.output = None
        if process.stdout:
            with process.stdout as output:
                self.output = output.read()
        self.status = process.wait(DEADLINE)
        reader.join(DEADLINE)
        os.close(master)

    def read(self, master):
        while True:
            try:
                piece = os.read(master, 65536)
            except OSError:
                return
            if not piece:
                return
            self.written += piece

    def wait_for(self, pattern):
        end = time.monotonic() + DEADLINE
        while not re.search(pattern, self.written):
            if time.monotonic() > end:
                raise AssertionError(f"{pattern} never came: {self.written!r}")
            time.sleep(0.01)

    def frames(self):
        """The lines that were drawn one over the other."""
        return [frame for frame in re.split(rb"\r\x1b\[K(?:\x1b\[A\x1b\[K)*", self.written) if frame]

    def screen(self):
        """What stands on the terminal in the end, blank ends left out."""
        rows, row, column = [bytearray()], 0, 0
        for part in re.findall(rb"\x1b\[[KA]|\r|\n|[^\x1b\r\n]+", self.written):
            if part == b"\r":
                column = 0
            elif part == b"\n":
                row += 1
                if row == len(rows):
                    rows.append(bytearray())
            elif part == b"\x1b[K":
                del rows[row][column:]
            elif part == b"\x1b[A":
                row -= 1
            else:
                rows[row][column:column + len(part)] = part
                column += len(part)
        return b"\n".join(bytes(each).rstrip() for each in rows).strip()
