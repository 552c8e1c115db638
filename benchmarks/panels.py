#!/usr/bin/python3
"""panels.py: opening a setup panel, and the loop's pauses while a disc is burned under a progress panel.

Usage: benchmarks/panels.py [--build FOLDER] [--drives 10] [--megabytes 500]
Builds nothing: `ninja -C FOLDER panel-benchmark disc-basic disc-drives` first. Brings its own display and drives.
"""
import argparse
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
words = argparse.ArgumentParser()
words.add_argument("--build", default=os.path.join(ROOT, "build", "release"))
words.add_argument("--drives", type=int, default=10)
words.add_argument("--megabytes", type=int, default=500)
chosen = words.parse_args()
binaries = os.path.join(os.path.abspath(chosen.build), "bin")
os.environ["DISC_BASIC"] = os.path.join(binaries, "disc-basic")
os.environ["DISC_DRIVES_COMMAND"] = os.path.join(binaries, "disc-drives")
sys.path.insert(0, os.path.join(ROOT, "tests", "panels"))
from display import Display, Drives  # noqa: E402


def run(display, drives, *arguments):
    done = subprocess.run([os.path.join(binaries, "panel-benchmark"), *arguments], check=True, stdout=subprocess.PIPE,
                          text=True, env=dict(display.environment, DISC_DRIVES=drives.folder))
    return [float(figure) for figure in done.stdout.split()]


display = Display()
drives = Drives()
try:
    drives.create("drive-1", "DVD+RW")
    one = run(display, drives, "open")
    for number in range(2, chosen.drives + 1):
        drives.create(f"drive-{number}", "DVD+RW")
    many = run(display, drives, "open")
    print(f"open, 1 drive:   first {one[0]:.0f} ms, then {one[1]:.0f} ms, at most {one[2]:.0f} ms")
    print(f"open, {chosen.drives} drives: first {many[0]:.0f} ms, then {many[1]:.0f} ms, at most {many[2]:.0f} ms "
          f"({many[1] / one[1]:.2f} times as long as with 1)")
    drives.grow(chosen.megabytes)
    idle, burning, took, done = run(display, drives, "pause", drives.source)
    if not done:
        sys.exit("the burn failed")
    print(f"longest pause of the loop: {idle:.0f} ms without a burn, {burning:.0f} ms while {chosen.megabytes} MB were "
          f"burned and verified in {took / 1000:.1f} s")
finally:
    drives.remove()
    display.close()
