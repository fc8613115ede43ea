#!/usr/bin/env python3
"""`orlf fetch` and `orlf archive` on terminals: the bar of a download, header fields that are typed
and not shown, and what signals leave behind.

    fetch_terminal.py ORLF
"""

import http.server
import os
import signal
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest

from terminal_run import DEADLINE, Run

ORLF = sys.argv.pop(1)
PIECE = b"x" * 100000


class Server(http.server.ThreadingHTTPServer):
    """Sends /N in so many pieces, five a second; /held begins and then waits to be closed."""

    daemon_threads = True

    class Handler(http.server.BaseHTTPRequestHandler):
        protocol_version = "HTTP/1.1"

        def do_GET(self):
            self.server.tokens.append(self.headers.get("Token"))
            count = 1000 if self.path == "/held" else int(self.path[1:])
            self.send_response(200)
            self.send_header("Content-Length", str(count * len(PIECE)))
            self.end_headers()
            for number in range(count):
                self.wfile.write(PIECE)
                if self.path == "/held" and number == 300:
                    self.server.is_done.wait(DEADLINE)
                    return
                if count > 1 and self.path != "/held":
                    time.sleep(0.2)

        def log_message(self, *_):
            pass

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Server.Handler)
        self.tokens = []
        self.is_done = threading.Event()
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def handle_error(self, *_):
        """Clients that go away are what the tests are about."""

    def url(self, path):
        return f"http://127.0.0.1:{self.server_address[1]}/{path}"


def echoes(terminal):
    return bool(termios.tcgetattr(terminal)[3] & termios.ECHO)


class FetchTerminal(unittest.TestCase):
    def setUp(self):
        self.server = Server()
        self.folder = tempfile.TemporaryDirectory()
        self.downloads = tempfile.TemporaryDirectory()
        self.file = os.path.join(self.folder.name, "file")
        with open(self.file, "w") as old:
            old.write("old")

    def tearDown(self):
        self.server.is_done.set()
        self.server.shutdown()
        self.server.server_close()
        self.folder.cleanup()
        self.downloads.cleanup()

    def run_on_terminal(self, *words, act=None):
        return Run(ORLF, *words, columns=100, act=act, TMPDIR=self.downloads.name)

    def check_nothing_is_left(self):
        self.assertEqual(os.listdir(self.folder.name), ["file"])
        with open(self.file) as kept:
            self.assertEqual(kept.read(), "old")
        self.assertEqual(os.listdir(self.downloads.name), [])

    def test_shows_how_far_a_download_is(self):
        run = self.run_on_terminal("fetch", self.server.url("6"), "-o", self.file)
        self.assertEqual(run.status, 0, run.written)
        self.assertEqual(os.path.getsize(self.file), 6 * len(PIECE))
        lines = [frame for frame in run.frames() if b"Fetching" in frame]
        self.assertTrue(lines, run.frames())
        for line in lines:
            self.assertRegex(line, rb"^[|/\\-] Fetching http://127\.0\.0\.1:\d+/6 +(\[#*-*\] +\d+%|)")
        self.assertTrue(any(b"%" in line for line in lines), lines)
        self.assertEqual(run.screen(), b"")

    def interrupt_fetch(self, stop, *words):
        def act(run, master):
            end = time.monotonic() + DEADLINE
            while time.monotonic() < end and not any(
                    os.path.getsize(os.path.join(self.downloads.name, name))
                    for name in os.listdir(self.downloads.name)):
                time.sleep(0.02)
            self.assertEqual(len(os.listdir(self.folder.name)), 2, "a file beside the old one")
            stop(run, master)

        run = self.run_on_terminal("fetch", self.server.url("held"), "-o", self.file, *words, act=act)
        self.check_nothing_is_left()
        return run

    def test_leaves_the_old_file_alone_at_ctrl_c(self):
        run = self.interrupt_fetch(lambda _, master: os.write(master, b"\x03"))
        self.assertEqual(run.status, -signal.SIGINT)
        self.assertIn(run.screen(), (b"", b"^C"))

    def test_leaves_the_old_file_alone_at_other_signals(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            run = self.interrupt_fetch(lambda run, _: run.process.send_signal(number), "--quiet")
            self.assertEqual(run.status, -number)

    def test_takes_an_archive_away_that_is_not_finished(self):
        packed = os.path.join(self.downloads.name, "packed")
        os.mkdir(packed)
        # Random bytes are slow to pack; names of one file are quick to make.
        with open(os.path.join(packed, "0"), "wb") as first:
            first.write(os.urandom(1 << 24))
        for name in range(1, 200):
            os.link(os.path.join(packed, "0"), os.path.join(packed, str(name)))

        def act(_, master):
            end = time.monotonic() + DEADLINE
            while len(os.listdir(self.folder.name)) < 2 and time.monotonic() < end:
                time.sleep(0.01)
            os.write(master, b"\x03")

        run = self.run_on_terminal("archive", packed, os.path.join(self.folder.name, "made"), act=act)
        self.assertEqual(run.status, -signal.SIGINT, run.written)
        self.assertEqual(os.listdir(self.folder.name), ["file"])

    def test_does_not_show_a_header_that_is_typed(self):
        def act(run, master):
            run.wait_for(rb"which is not shown: ")
            self.assertFalse(echoes(master))
            time.sleep(0.5)  # longer than a job goes without a display of its progress
            self.assertEqual(run.screen(), b"Header field (Name: value), which is not shown:")
            os.write(master, b"Token: hush-hush\n")

        run = self.run_on_terminal("fetch", self.server.url("1"), "--header", "-", act=act)
        self.assertEqual(run.status, 0, run.written)
        self.assertEqual(run.output, PIECE)
        self.assertEqual(self.server.tokens, ["hush-hush"])
        self.assertNotIn(b"hush-hush", run.written)

    def test_gives_the_terminal_back_at_ctrl_c(self):
        was_given_back = []

        def act(run, master):
            run.wait_for(rb"which is not shown: ")
            os.write(master, b"Tok\x03")
            run.process.wait(DEADLINE)
            was_given_back.append(echoes(master))

        run = self.run_on_terminal("fetch", self.server.url("1"), "--retry-auth", "-", act=act)
        self.assertEqual(run.status, -signal.SIGINT)
        self.assertEqual(was_given_back, [True])
        self.assertEqual(self.server.tokens, [])

    def test_asks_nobody_without_a_terminal(self):
        run = subprocess.run([ORLF, "fetch", self.server.url("1"), "--header", "-"],
                             stdin=subprocess.DEVNULL, capture_output=True, start_new_session=True)
        self.assertEqual(run.returncode, 2)
        self.assertEqual(run.stderr, b"orlf fetch: --header: there is no terminal to ask at\n")
        self.assertEqual(self.server.tokens, [])


if __name__ == "__main__":
    unittest.main()
