#!/usr/bin/env python3
"""The runner of program tests finds every way in which a program can do something else than it says."""
import os
import subprocess
import sys
import tempfile
import unittest

RUNNER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "run_program.py")


def run(text):
    with tempfile.NamedTemporaryFile("w", suffix=".bas") as file:
        file.write(text)
        file.flush()
        done = subprocess.run([sys.executable, RUNNER, "--option=--without-plugins", os.environ["DISC_BASIC"], file.name],
                              capture_output=True, text=True, check=False)
        return done.returncode, done.stdout


class Runner(unittest.TestCase):
    def check(self, text, status, said):
        code, output = run(text)
        self.assertEqual(code, status, output)
        self.assertIn(said, output)

    def test_good_program_passes(self):
        self.check("Print 1 ' expect: 1\n", 0, "1 lines as expected")

    def test_other_output_fails(self):
        self.check("Print 2 ' expect: 1\n", 1, "line 1: expected '1', printed '2'")

    def test_missing_output_fails(self):
        self.check("' expect: 1\n", 1, "printed nothing")

    def test_extra_output_fails(self):
        self.check("Print 1 ' expect: 1\nPrint 2\n", 1, "printed without being expected: '2'")

    def test_nothing_expected_fails(self):
        self.check("Dim a As Integer\n", 1, "it tests nothing")

    def test_missing_error_fails(self):
        self.check("Print 1 ' expect error: IOException: x\n", 1, "expected the uncaught")

    def test_error_on_other_line_fails(self):
        self.check("' expect error: DivisionByZeroException: \\ divides by zero\nDim z As Integer\nz = 1 \\ z\n", 1,
                   "line 1: expected the uncaught")

    def test_unexpected_parse_error_fails(self):
        self.check("Print 1 ' expect: 1\nPrint x\n", 1, "reported without being expected")

    def test_wrong_status_fails(self):
        self.check("Print 1 ' expect: 1\nQuit 3\n", 1, "expected exit status 0, got 3")

    def test_endless_program_fails(self):
        self.check("' time limit: 0.5\nWhile True\nWend\n' expect: 1\n", 1, "did not end within 0.5 s")

    def test_missing_command_skips(self):
        self.check("' needs: no-such-command-anywhere\n", 77, "skipped")


if __name__ == "__main__":
    unittest.main()
