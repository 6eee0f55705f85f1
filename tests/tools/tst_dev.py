# SPDX-License-Identifier: MIT
"""Tests of ./dev with tools that only pretend: what a person reads while it works."""

import os
import re
import shutil
import subprocess
import tempfile
import threading
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "dev")
REAL_TOOLS = ["bash", "cat", "dirname", "env", "getconf", "grep", "head", "mkdir", "rm", "sed",
              "tail", "uname"]
MOST_SECONDS = 30

# Its builds last until somebody writes into the pipe.
CMAKE = """#!/bin/bash
[ "$1" = --build ] || exit 0
echo "[1/2] Building"
read -r < "$PIPE"
"""


@unittest.skipUnless(shutil.which("bash"), "there is no bash")
class Dev(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        shutil.copy(SCRIPT, self.path("dev"))
        os.makedirs(self.path("tools"))
        os.makedirs(self.path("build/release/bin"))
        for tool in REAL_TOOLS:
            real = shutil.which(tool)
            if real is None:
                self.skipTest(f"there is no {tool}")
            os.symlink(real, self.path("tools", tool))
        # Seconds pass at once.
        for tool in ("sleep", "ninja", "c++", "qmake6"):
            self.write(f"tools/{tool}", "#!/bin/bash\n")
        self.write("tools/cmake", CMAKE)
        self.write("build/release/bin/orvquery", '#!/bin/bash\necho "started with $*"\n')
        os.mkfifo(self.path("pipe"))
        self.pipe = os.open(self.path("pipe"), os.O_RDWR)
        self.addCleanup(os.close, self.pipe)

    def path(self, *parts):
        return os.path.join(self.root, *parts)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as out:
            out.write(text)
        os.chmod(self.path(name), 0o755)

    def end_build(self):
        os.write(self.pipe, b"\n")

    def dev(self, *arguments, **environment):
        self.end_build()
        return subprocess.run(
            [shutil.which("bash"), self.path("dev"), *arguments], stdin=subprocess.DEVNULL,
            capture_output=True, text=True, timeout=MOST_SECONDS, check=False,
            env={"PATH": self.path("tools"), "PIPE": self.path("pipe"), **environment})

    def test_progress_without_a_terminal(self):
        running = subprocess.Popen(
            [shutil.which("bash"), self.path("dev"), "run", "--version"],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
            env={"PATH": self.path("tools"), "PIPE": self.path("pipe")})
        # A build of which nothing is told ends all the same.
        patience = threading.Timer(MOST_SECONDS, self.end_build)
        patience.start()
        told = re.compile(r"\[3/3\] Building \(release\) \.\.\. \d+ s \[1/2\]\n")
        lines = []
        for line in running.stderr:
            lines.append(line)
            if told.fullmatch(line):
                self.end_build()
        patience.cancel()
        output = running.communicate()[0]
        self.assertEqual((running.returncode, output), (0, "started with --version\n"))
        self.assertTrue(any(told.fullmatch(line) for line in lines), lines)
        self.assertRegex(lines[-1], r"^\[3/3\] Building \(release\) \.\.\. \d+ s\n$")
        self.assertNotIn("\r", "".join(lines))

    def test_the_reference_is_of_the_installed_headers_and_fails_by_warnings(self):
        os.makedirs(self.path("docs"))
        self.write("docs/Doxyfile", "QUIET = YES\n")
        self.write("CMakeLists.txt", "project(P\n    VERSION 1.2.3\n    LANGUAGES CXX)\n")
        self.write("tools/interface_tables", "#!/bin/bash\n[ \"$*\" = --headers ] && "
                                             "printf 'src/a.h\\nsrc/b.h\\n'\n")
        self.write("tools/doxygen", "#!/bin/bash\ncat > given\nexit \"$ENDS_WITH\"\n")
        for status in (0, 1):
            done = self.dev("reference", ENDS_WITH=str(status))
            self.assertEqual(done.returncode, status, done.stderr)
            with open(self.path("given"), encoding="utf-8") as given:
                self.assertEqual(given.read(), "QUIET = YES\nPROJECT_NUMBER = 1.2.3\n"
                                               "INPUT += src/a.h src/b.h\n")

    def bench(self, *arguments):
        for program in ("bench_parser", "bench_table", "bench_diagram"):
            self.write("build/release/bin/" + program, '#!/bin/bash\necho "${0##*/}:$*"\n')
        done = self.dev("bench", *arguments)
        return done.returncode, done.stdout

    def test_bench_prints_the_table(self):
        self.assertEqual(self.bench(), (0, "bench_table:\n"))

    def test_bench_details_leave_out_the_table(self):
        self.assertEqual(self.bench("details", "--seven"),
                         (0, "bench_diagram:--seven\nbench_parser:--seven\n"))

    def test_bench_knows_its_arguments(self):
        self.assertEqual(self.bench("--seven"), (1, ""))

    def test_events_and_seeds_of_the_soak(self):
        os.makedirs(self.path("build/asan/bin"))
        self.write("build/asan/bin/tst_session",
                   '#!/bin/bash\necho "$ORV_SESSION_EVENTS from $ORV_SESSION_SEED on"\n')
        for arguments, told in (((), "50000 from 1 on"), (("7",), "7 from 1 on"),
                                (("8000", "41"), "8000 from 41 on")):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.dev("soak", *arguments).stdout, told + "\n")

    def test_wrong_arguments_of_the_soak(self):
        for arguments in (("0",), ("x",), ("5", "0"), ("5", "x"), ("5", "1", "2"), ("5 1",)):
            with self.subTest(arguments=arguments):
                run = self.dev("soak", *arguments)
                self.assertEqual((run.returncode, run.stderr),
                                 (1, "usage: ./dev soak [events [seed]]\n"))


if __name__ == "__main__":
    unittest.main()
