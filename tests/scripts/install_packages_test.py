#!/usr/bin/env python3
"""Tests of scripts/install-packages, with stand-ins for the commands that it calls."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parent.parent.parent / "scripts/install-packages"
STAND_INS = {
    "dpkg-query": 'case " $MISSING " in *" ${@: -1} "*) exit 1 ;; *) echo -n installed ;; esac',
    "id": "echo 0",
    "apt-get": 'echo "apt-get $*"',
}


class InstallPackages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "bin").mkdir()
        for name, body in STAND_INS.items():
            (self.root / "bin" / name).write_text(f"#!/usr/bin/env bash\n{body}\n")
            (self.root / "bin" / name).chmod(0o755)

    def boost(self, version):
        """A header of Boost, as each of its versions has one."""
        (self.root / "include/boost").mkdir(parents=True)
        (self.root / "include/boost/version.hpp").write_text(
            f"//  Boost version.hpp\n#define BOOST_VERSION {version}\n"
            '#define BOOST_LIB_VERSION "1_74"\n')

    def run_script(self, *arguments, missing=""):
        path = f"{self.root / 'bin'}:{os.environ['PATH']}"
        return subprocess.run(
            [SCRIPT, *arguments], text=True, capture_output=True,
            env={"PATH": path, "MISSING": missing, "BOOST_INCLUDEDIR": str(self.root / "include")})

    def installed(self, *groups, **arguments):
        """The packages that it asks apt-get for."""
        done = self.run_script(*groups, **arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        calls = [line for line in done.stdout.splitlines() if line.startswith("apt-get install")]
        return [word for call in calls for word in call.split()[2:] if not word.startswith("-")]

    def test_nothing_is_asked_for_when_all_is_there(self):
        self.boost(107400)
        self.assertEqual(self.run_script().stdout, "")

    def test_what_is_missing_is_installed(self):
        self.boost(107400)
        self.assertEqual(self.installed(missing="ccache libicu-dev"), ["ccache", "libicu-dev"])

    def test_a_boost_of_another_package_does(self):
        self.boost(108100)
        self.assertEqual(self.installed(missing="libboost-dev ccache"), ["ccache"])

    def test_an_older_boost_does_not(self):
        self.boost(107300)
        self.assertEqual(self.installed(missing="libboost-dev"), ["libboost-dev"])

    def test_no_boost_at_all(self):
        self.assertEqual(self.installed(missing="libboost-dev"), ["libboost-dev"])

    def test_groups_bring_their_own(self):
        self.boost(107400)
        missing = "clang nettle-dev"
        self.assertEqual(self.run_script(missing=missing).stdout, "")
        self.assertEqual(self.installed("bench", missing=missing), ["nettle-dev"])
        self.assertEqual(self.installed("checks", "bench", missing=missing), ["clang", "nettle-dev"])

    def test_an_unknown_group_is_refused(self):
        self.boost(107400)
        self.assertEqual(self.run_script("more").returncode, 2)


if __name__ == "__main__":
    unittest.main()
