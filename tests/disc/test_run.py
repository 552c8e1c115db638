#!/usr/bin/python3
"""The script that a newcomer starts with: what it runs, and that a first look keeps its hands off others' discs."""
import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


class Run(unittest.TestCase):
    def setUp(self):
        # A tree of its own, in which nothing has to be installed or built, and disc-basic tells how it was called.
        self.scratch = tempfile.mkdtemp(prefix="disc-test-")
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        shutil.copy(os.path.join(ROOT, "run"), self.scratch)
        self.script("tools/setup", "true")
        self.script("tools/build", "true")
        self.script("build/release/bin/disc-basic", 'echo "$DISC_PHYSICAL $DISC_DRIVES"; for each; do echo "$each"; done; exit ${STATUS:-0}')

    def script(self, name, line):
        path = os.path.join(self.scratch, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\n" + line + "\n")
        os.chmod(path, 0o755)

    def environment(self, **variables):
        """What a newcomer has, and not what ./test says to its own builds."""
        ours = ("DISC_PHYSICAL", "DISC_DRIVES", "DISC_TESTS", "DISC_CMAKE_ARGS")
        return {**{name: value for name, value in os.environ.items() if name not in ours}, **variables}

    def run_it(self, *arguments, **variables):
        return subprocess.run([os.path.join(self.scratch, "run"), *arguments], capture_output=True, text=True, timeout=60,
                              env=self.environment(**variables), check=False)

    def test_without_arguments_it_burns_onto_a_virtual_disc_of_its_own(self):
        burn = ["0 " + os.path.join(self.scratch, "build/first-look"), os.path.join(self.scratch, "examples/burn-folder.bas"), os.path.join(self.scratch, "examples/hello-disc"),
                "HELLO DISC"]
        for variables in ({}, {"DISC_PHYSICAL": "1", "DISC_DRIVES": "/mine"}):
            done = self.run_it(**variables)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            lines = done.stdout.splitlines()
            self.assertEqual(lines[:4], burn)
            self.assertIn(f'export PATH="{self.scratch}/build/release/bin:$PATH"', lines[-1])
        done = self.run_it(STATUS="1")
        self.assertEqual((done.returncode, done.stdout.splitlines()), (1, burn))

    # What stands behind a preset without "--target" is not looked at: everything would be built, tests too.
    def test_only_what_is_run_is_built(self):
        shutil.copy(os.path.join(ROOT, "tools", "build"), os.path.join(self.scratch, "tools"))
        self.script("fake/cmake", 'echo "$@" >>told')
        done = self.run_it("mine.bas", PATH=os.path.join(self.scratch, "fake") + os.pathsep + os.environ["PATH"])
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertRegex(done.stdout, r"(?s)^Configuring the release build\n.*\nmine\.bas\n$")
        with open(os.path.join(self.scratch, "told"), encoding="utf-8") as file:
            self.assertEqual(file.read().splitlines(), [
                "--preset release", "--build --preset release --target disc-basic DiscRecordingPlugin disc-drives"])

    def test_a_build_that_takes_long_is_told_and_one_that_fails_shows_why(self):
        shutil.copy(os.path.join(ROOT, "tools", "build"), os.path.join(self.scratch, "tools"))
        self.script("build/release/build.ninja", "")
        path = os.path.join(self.scratch, "fake") + os.pathsep + os.environ["PATH"]
        said = os.path.join(self.scratch, "said")
        self.script("fake/cmake", f"until grep -q Building '{said}'; do sleep 0.1; done")
        with open(said, "w", encoding="utf-8") as file:
            subprocess.run([os.path.join(self.scratch, "run"), "mine.bas"], stdout=file, check=True, timeout=60,
                           env=self.environment(PATH=path))
        with open(said, encoding="utf-8") as file:
            self.assertEqual(file.read(), "Building the release build (a few minutes the first time)\n \nmine.bas\n")
        self.script("fake/cmake", "echo one line of the compiler; exit 1")
        done = self.run_it("mine.bas", PATH=path)
        self.assertEqual(done.returncode, 1)
        self.assertNotIn("mine.bas", done.stdout)
        self.assertRegex(done.stderr, "^one line of the compiler\nbuild: 'cmake --build .*' failed\n$")

    def test_a_program_is_run_as_it_is_given(self):
        done = self.run_it("mine.bas", "two words", STATUS="3")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (3, " \nmine.bas\ntwo words\n", ""))
        self.assertEqual(self.run_it("mine.bas", DISC_PHYSICAL="1", DISC_DRIVES="/mine").stdout, "1 /mine\nmine.bas\n")


if __name__ == "__main__":
    unittest.main()
