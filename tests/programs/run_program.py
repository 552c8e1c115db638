#!/usr/bin/env python3
"""Runs one BASIC program and compares what it does with what its comments say.

Comments, each after an apostrophe:
  expect: TEXT               the next line of standard output; without TEXT an empty line
  expect match: PATTERN      the next line of standard output fits this regular expression
  expect error: TEXT         this line ends the program: "uncaught TEXT" on standard error, exit status 1
  expect parse error: TEXT   this line is reported before the program runs, exit status 2
  expect stderr: TEXT        a line of standard error, in this order among such lines
  expect exit: NUMBER        the exit status; 0 without any of these
  args: WORDS                arguments for the program, split as a shell does
  input: TEXT                one line of standard input
  environment: NAME=TEXT     one environment variable
  time limit: SECONDS        instead of 20
  needs: NAME                skipped (exit status 77) when no such command is installed
The program must print every expected line and no other one. Exit status: 0 good, 1 bad, 77 skipped.
"""
import argparse
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

COMMENT = re.compile(
    r"'\s*(expect(?: match| error| parse error| stderr| exit)?|args|input|environment|time limit|needs):(?: (.*?))?\s*$")


class Expectations:
    def __init__(self, path):
        self.output = []        # (line number, text or compiled pattern)
        self.error = None       # (line number, text)
        self.parse_errors = []  # (line number, text)
        self.stderr = []
        self.exit = None
        self.args = []
        self.input = []
        self.environment = {}
        self.limit = 20.0
        self.needs = []
        with open(path, encoding="utf-8-sig", newline=None) as file:
            for number, line in enumerate(file, 1):
                found = COMMENT.search(line.rstrip("\n"))
                if found:
                    self.add(number, found.group(1), found.group(2) or "")

    def add(self, number, kind, text):
        if kind == "expect":
            self.output.append((number, text))
        elif kind == "expect match":
            self.output.append((number, re.compile(text)))
        elif kind == "expect error":
            if self.error:
                raise SystemExit(f"line {number}: a program ends with one error only")
            self.error = (number, text)
        elif kind == "expect parse error":
            self.parse_errors.append((number, text))
        elif kind == "expect stderr":
            self.stderr.append((number, text))
        elif kind == "expect exit":
            self.exit = int(text)
        elif kind == "args":
            self.args += shlex.split(text)
        elif kind == "input":
            self.input.append(text)
        elif kind == "environment":
            name, _, value = text.partition("=")
            self.environment[name] = value
        elif kind == "time limit":
            self.limit = float(text)
        elif kind == "needs":
            self.needs.append(text)

    def any(self):
        return bool(self.output or self.error or self.parse_errors or self.stderr or self.exit is not None)

    def status(self):
        if self.exit is not None:
            return self.exit
        return 2 if self.parse_errors else 1 if self.error else 0


def check_output(expected, stdout, problems):
    lines = stdout.split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    for (number, wanted), got in zip(expected, lines):
        good = wanted.search(got) if isinstance(wanted, re.Pattern) else got.rstrip() == wanted.rstrip()
        if not good:
            shown = wanted.pattern if isinstance(wanted, re.Pattern) else wanted
            problems.append(f"line {number}: expected {shown!r}, printed {got!r}")
    for number, wanted in expected[len(lines):]:
        problems.append(f"line {number}: expected {wanted!r}, printed nothing")
    for got in lines[len(expected):]:
        problems.append(f"printed without being expected: {got!r}")


def check_errors(expected, name, stderr, problems):
    reported = [(int(line), text) for line, text in
                re.findall(r"^" + re.escape(name) + r":(\d+):\d+: error: (.*)$", stderr, re.M)]
    for wanted in expected.parse_errors:
        if wanted in reported:
            reported.remove(wanted)
        else:
            problems.append(f"line {wanted[0]}: expected the error {wanted[1]!r}")
    for line, text in reported:
        problems.append(f"line {line}: reported without being expected: {text!r}")
    if expected.error:
        number, text = expected.error
        if not re.search(r"^" + re.escape(f"{name}:{number}:") + r"\d+: uncaught " + re.escape(text) + "$", stderr, re.M):
            problems.append(f"line {number}: expected the uncaught {text!r}")
    at = 0
    for number, text in expected.stderr:
        found = stderr.find(text, at)
        if found < 0:
            problems.append(f"line {number}: expected on standard error: {text!r}")
        else:
            at = found + len(text)
    quiet = not (expected.parse_errors or expected.error or expected.stderr)
    if quiet and stderr.strip():
        problems.append("nothing was expected on standard error")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--option", action="append", default=[], help="an option for disc-basic")
    parser.add_argument("disc_basic")
    parser.add_argument("program")
    given = parser.parse_args()
    expected = Expectations(given.program)
    for command in expected.needs:
        if not shutil.which(command):
            print(f"skipped: the command {command} is not installed")
            return 77
    if not expected.any():
        print("the program expects nothing, so it tests nothing")
        return 1
    environment = {**os.environ, "LC_ALL": "C.UTF-8", **expected.environment}
    with tempfile.TemporaryDirectory() as folder:
        environment["SCRATCH"] = folder
        try:
            done = subprocess.run(
                [os.path.abspath(given.disc_basic), *given.option, "run", os.path.abspath(given.program), *expected.args],
                input="".join(line + "\n" for line in expected.input).encode(), capture_output=True,
                env=environment, timeout=expected.limit, cwd=folder, check=False)
        except subprocess.TimeoutExpired as late:
            print(f"did not end within {expected.limit:g} s; printed {late.stdout!r}")
            return 1
    stdout = done.stdout.decode(errors="replace")
    stderr = done.stderr.decode(errors="replace")
    problems = []
    check_output(expected.output, stdout, problems)
    check_errors(expected, os.path.abspath(given.program), stderr, problems)
    if done.returncode != expected.status():
        problems.append(f"expected exit status {expected.status()}, got {done.returncode}")
    for problem in problems:
        print(problem)
    if problems:
        print("--- standard output\n" + stdout + "--- standard error\n" + stderr)
        return 1
    print(f"{len(expected.output)} lines as expected")
    return 0


if __name__ == "__main__":
    sys.exit(main())
