#!/usr/bin/env python3
"""The display of progress on terminals: widths, resizing, TERM=dumb, Ctrl-C, and none at all.

    progress_terminal.py ORLF
"""

import os
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from concurrent.futures import ThreadPoolExecutor

from terminal_run import DEADLINE, ERASE, Run, set_width

ORLF = sys.argv.pop(1)
RESULT = b"3 jobs, 6 parts, 300 steps\n"


def demo(*arguments, seconds="1.2", **options):
    return Run(ORLF, "progress-demo", "--seconds", seconds, *arguments, **options)


def narrow_later(run, master):
    run.wait_for(rb"\d%")
    run.mark = len(run.written)
    set_width(master, 40)


def interrupt(run, master):
    run.wait_for(rb"\d%")
    os.write(master, b"\x03")


def slow_down(run, _):
    """Lets a program run for a fifth of the time, so that it takes long on any machine."""
    end = time.monotonic() + DEADLINE
    while run.process.poll() is None and time.monotonic() < end:
        run.process.send_signal(signal.SIGSTOP)
        time.sleep(0.08)
        run.process.send_signal(signal.SIGCONT)
        time.sleep(0.02)


def piped(*arguments):
    return subprocess.run([ORLF, "progress-demo", "--seconds", "2.2", *arguments],
                          capture_output=True, check=True)


def without_streams():
    """What stands in the place of standard streams that are closed, and how a run without ends."""
    def start(seconds):
        return subprocess.Popen([ORLF, "progress-demo", "--seconds", seconds],
                                preexec_fn=lambda: [os.close(number) for number in (0, 1, 2)])

    with start("600") as process:
        folder = f"/proc/{process.pid}/fd/"
        end = time.monotonic() + DEADLINE
        # Three for the streams, and what the tool makes for itself.
        while len(os.listdir(folder)) < 4 and time.monotonic() < end:
            time.sleep(0.01)
        places = [os.readlink(folder + str(number)) for number in (0, 1, 2)]
        process.kill()
    with start("0") as process:
        return places, process.wait(DEADLINE)


def slow_table(folder):
    """A table that comes in pieces: its rows, and the run that reads it."""
    path = os.path.join(folder, "slow.csv")
    os.mkfifo(path)

    def feed():
        with open(path, "wb", buffering=0) as pipe:
            for _ in range(8):
                pipe.write(b"1,2\n" * 25000)
                time.sleep(0.1)

    feeder = threading.Thread(target=feed)
    feeder.start()
    run = Run(ORLF, "csv", path, columns=100)
    feeder.join(DEADLINE)
    return run


def long_mirror(folder):
    """A folder of many names of one empty file, each of which becomes a file of its own."""
    source, destination = os.path.join(folder, "from"), os.path.join(folder, "to")
    os.makedirs(os.path.join(source, "many"))
    os.mkdir(destination)
    first = os.path.join(source, "many", "0")
    open(first, "w").close()
    for name in range(1, MIRRORED):
        os.link(first, os.path.join(source, "many", str(name)))
    return Run(ORLF, "mirror", source, destination, columns=100, act=slow_down)


MIRRORED = 20000
POOL = ThreadPoolExecutor(15)
IN_MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
FOLDER = tempfile.TemporaryDirectory(dir=IN_MEMORY)
RUNS = {
    "narrow": POOL.submit(demo, columns=40),
    "wide": POOL.submit(demo, seconds="4", columns=200),
    "resized": POOL.submit(demo, columns=200, act=narrow_later),
    "dumb": POOL.submit(demo, seconds="2.2", term="dumb"),
    "interrupted": POOL.submit(demo, seconds="30", act=interrupt),
    "shared": POOL.submit(demo, output_too=True),
    "quiet": POOL.submit(demo, "--quiet"),
    "failing": POOL.submit(demo, "--fail"),
    "short": POOL.submit(demo, seconds="0"),
    "narrowest": POOL.submit(demo, columns=1),
    "closed": POOL.submit(without_streams),
    "piped": POOL.submit(piped),
    "piped quietly": POOL.submit(piped, "--quiet"),
    "table": POOL.submit(slow_table, FOLDER.name),
    "mirror": POOL.submit(long_mirror, FOLDER.name),
}


def run_of(name):
    return RUNS[name].result(2 * DEADLINE)


class Progress(unittest.TestCase):
    def check_line(self, run, columns, wanted):
        frames = run.frames()
        self.assertTrue(any(re.search(wanted, frame) for frame in frames), frames)
        for frame in frames:
            self.assertLess(len(frame), columns, frame)
        self.assertTrue(run.written.endswith(ERASE))
        self.assertEqual(run.screen(), b"")
        self.assertEqual(run.output, RESULT)
        self.assertEqual(run.status, 0)

    def test_fits_forty_columns(self):
        self.check_line(run_of("narrow"), 40, rb"^[|/\\-] \S.* \[#+-*\] +\d+%")

    def test_fits_two_hundred_columns_with_bar_and_rate(self):
        self.check_line(run_of("wide"), 200, rb"^[|/\\-] \S.* \[#+-*\] +\d+%  \d+/s$")

    def test_writes_nothing_into_a_single_column(self):
        self.assertEqual(run_of("narrowest").written, b"")
        self.assertEqual(run_of("narrowest").output, RESULT)

    def test_gives_the_places_of_closed_streams_to_no_file(self):
        self.assertEqual(run_of("closed"), (["/dev/null"] * 3, 1))

    def test_turns_its_spinner_and_names_each_part(self):
        frames = b"\n".join(run_of("wide").frames())
        for turn in b"|/-\\":
            self.assertIn(bytes([turn]) + b" ", frames)
        for part in (b"Collecting amounts", b"Looking for doubles", b"Writing rows"):
            self.assertIn(part, frames)

    def test_follows_the_terminal_that_becomes_narrow(self):
        run = run_of("resized")
        # The line of 199 columns takes five rows now.
        before, erased, after = run.written[run.mark:].partition(ERASE + b"\x1b[A\x1b[K" * 4)
        self.assertTrue(erased, before)
        drawn = [frame for frame in after.split(ERASE) if frame]
        self.assertTrue(drawn)
        for frame in drawn:
            self.assertLess(len(frame), 40, frame)
        self.assertEqual(run.output, RESULT)

    def check_plain(self, text):
        self.assertNotIn(b"\x1b", text)
        lines = text.replace(b"\r\n", b"\n").splitlines()
        self.assertTrue(lines)
        for line in lines:
            self.assertRegex(line, rb"^orlf progress-demo: [^,]+(, \d+%, \d+ of \d+|, \d+)?(, \d+/s)?, \d+ s$")

    def test_writes_plain_lines_on_a_dumb_terminal(self):
        run = run_of("dumb")
        self.check_plain(run.written)
        self.assertEqual(run.output, RESULT)

    def test_writes_plain_lines_into_a_pipe(self):
        run = run_of("piped")
        self.check_plain(run.stderr)
        self.assertEqual(run.stdout, RESULT)

    def test_is_silent_when_told_so(self):
        self.assertEqual(run_of("quiet").written, b"")
        self.assertEqual(run_of("quiet").output, RESULT)
        self.assertEqual(run_of("piped quietly").stderr, b"")
        self.assertEqual(run_of("piped quietly").stdout, RESULT)

    def test_leaves_no_trace_of_a_short_job(self):
        self.assertEqual(run_of("short").written, b"")

    def test_takes_the_line_away_on_control_c(self):
        run = run_of("interrupted")
        self.assertEqual(run.status, -signal.SIGINT)
        self.assertEqual(run.output, b"")
        self.assertIn(run.screen(), (b"", b"^C"))
        self.assertTrue(run.written.endswith(ERASE), run.written[-40:])

    def test_makes_room_for_output_on_the_same_terminal(self):
        self.assertEqual(run_of("shared").screen(), RESULT.strip())
        self.assertIn(b"%", run_of("shared").written)

    def test_makes_room_for_the_message_of_a_failure(self):
        run = run_of("failing")
        self.assertEqual(run.status, 1)
        self.assertEqual(run.screen(), b"orlf progress-demo: Collecting: this job was to fail")

    def test_shows_how_far_a_table_is_read(self):
        run = run_of("table")
        self.assertEqual(run.output, b"1\t2\n" * 200000)
        self.assertTrue(any(re.match(rb"[|/\\-] Reading \S*slow\.csv +[\d.]+ k?B", frame)
                            for frame in run.frames()), run.frames())

    def test_shows_how_far_a_mirror_has_come(self):
        run = run_of("mirror")
        self.assertEqual(run.output, b"Added: 1, replaced: 0, removed: 0\n")
        self.assertEqual(len(os.listdir(os.path.join(FOLDER.name, "to", "many"))), MIRRORED)
        lines = [frame for frame in run.frames() if b"Copying" in frame]
        self.assertTrue(lines, run.frames())
        for line in lines:
            self.assertRegex(line, rb"^[|/\\-] Copying \S*from +\[#*-*\] +\d+%")
        self.assertGreater(len({re.search(rb"(\d+)%", line)[1] for line in lines}), 1, lines)
        self.assertEqual(run.screen(), b"")


if __name__ == "__main__":
    # A background job may be told to ignore it, and its children with it.
    signal.signal(signal.SIGINT, signal.default_int_handler)
    with FOLDER:
        unittest.main()
