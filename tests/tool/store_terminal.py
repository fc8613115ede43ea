#!/usr/bin/env python3
"""Passwords of `orlf store` from terminals and pipes: prompts that show nothing, words that differ,
Ctrl-C, and no terminal at all.

    store_terminal.py ORLF
"""

import os
import pty
import select
import subprocess
import sys
import tempfile
import termios
import time
import unittest

ORLF = sys.argv.pop(1)
DEADLINE = 60


class Terminal:
    """A run of the tool on a terminal of its own, where each prompt is answered."""

    def __init__(self, words, answers):
        self.shown = b""
        process, self.master = pty.fork()
        if process == 0:
            os.execv(ORLF, [ORLF, *words])
        for answer in answers:
            before = self.shown.count(b": ")
            self.wait(lambda: self.shown.count(b": ") > before and not self.echoes())
            self.is_silent = not self.echoes()
            os.write(self.master, answer)
        try:
            while self.read():
                pass
        except OSError:
            pass
        self.echoes_at_end = self.echoes()
        _, status = os.waitpid(process, 0)
        self.code = os.waitstatus_to_exitcode(status)
        os.close(self.master)

    def echoes(self):
        return bool(termios.tcgetattr(self.master)[3] & termios.ECHO)

    def read(self):
        ready, _, _ = select.select([self.master], [], [], 0.02)
        piece = os.read(self.master, 4096) if ready else b""
        self.shown += piece
        return piece or not ready

    def wait(self, holds):
        end = time.monotonic() + DEADLINE
        while not holds():
            self.read()
            if time.monotonic() > end:
                raise AssertionError(f"no prompt: {self.shown!r}")


class StoreTerminal(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.store = os.path.join(self.folder.name, "my.store")

    def tearDown(self):
        self.folder.cleanup()

    def run_piped(self, *words, answer=b""):
        return subprocess.run([ORLF, "store", *words], input=answer, capture_output=True, timeout=DEADLINE,
                              start_new_session=True, check=False)

    def test_asks_twice_and_shows_nothing(self):
        run = Terminal(["store", "create", self.store], [b"hush-1\n", b"hush-1\n"])
        self.assertEqual(run.code, 0, run.shown)
        self.assertTrue(run.is_silent)
        self.assertIn(b"Password of", run.shown)
        self.assertIn(b"Again: ", run.shown)
        self.assertNotIn(b"hush", run.shown)
        run = Terminal(["store", "set", self.store, "bank", "ann"], [b"hush-1\n", b"hush-2\n", b"hush-2\n"])
        self.assertEqual(run.code, 0, run.shown)
        self.assertNotIn(b"hush", run.shown)
        found = self.run_piped("get", self.store, "bank", "ann", "--password-file=-", answer=b"hush-1\n")
        self.assertEqual(found.stdout, b"hush-2\n", found.stderr)

    def test_refuses_two_words_that_differ(self):
        run = Terminal(["store", "create", self.store], [b"hush-1\n", b"hush-2\n"])
        self.assertEqual(run.code, 1, run.shown)
        self.assertIn(b"the two passwords differ", run.shown)
        self.assertFalse(os.path.exists(self.store))

    def test_leaves_the_terminal_as_it_was_at_ctrl_c(self):
        run = Terminal(["store", "create", self.store], [b"hu\x03"])
        self.assertEqual(run.code, -2, run.shown)
        self.assertTrue(run.echoes_at_end)
        self.assertFalse(os.path.exists(self.store))

    def test_needs_a_file_where_there_is_no_terminal(self):
        run = self.run_piped("create", self.store)
        self.assertEqual(run.returncode, 2, run.stderr)
        self.assertIn(b"--password-file FILE is needed", run.stderr)

    def test_reads_the_standard_input(self):
        run = self.run_piped("create", self.store, "--password-file=-", answer=b"hush\r\n")
        self.assertEqual(run.returncode, 0, run.stderr)
        run = self.run_piped("list", self.store, "--password-file=-", answer=b"hush")
        self.assertEqual(run.returncode, 0, run.stderr)
        run = self.run_piped("list", self.store, "--password-file=-", answer=b"other")
        self.assertEqual(run.returncode, 1)
        self.assertNotIn(b"other", run.stderr)


if __name__ == "__main__":
    unittest.main()
