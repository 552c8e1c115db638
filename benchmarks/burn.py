#!/usr/bin/env python3
"""burn.py: burns side by side with the programs that people use for it, whole processes, one run.

    benchmarks/burn.py [--rounds 5] [--scale 1.0] [--folder DIR]

Three sets: one file of 1 GiB, 20,000 files of 4 KiB in 200 folders, 200 files of 5 MiB. In every round each command
runs once, in random order, on files that are in the page cache. Every figure is durable: the peers are followed by a
sync of their image, and our burn does not say that it is done before its data is synced. Quoted are medians, and the
ratios of medians. --scale 0.1 makes everything a tenth of its size, to try the script.
"""
import argparse
import os
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
HOST = os.path.join(ROOT, "build/release/bin/disc-basic")
PROGRAM = os.path.join(ROOT, "benchmarks/burn.bas")


def fill(folder, sizes):
    block = random.Random(1).randbytes(1 << 20)
    for path, size in sizes:
        full = os.path.join(folder, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "wb") as file:
            while size > 0:
                file.write(block[:min(size, len(block))])
                size -= len(block)


def make_sets(folder, scale):
    sets = {
        "1 GiB": [("one", int((1 << 30) * scale))],
        "20,000 small": [(f"folder{i // 100:03}/file{i:05}", 4096) for i in range(int(20000 * scale))],
        "200 x 5 MiB": [(f"file{i:03}", int((5 << 20) * scale)) for i in range(200)],
        "empty": [],
    }
    made = {}
    for name, sizes in sets.items():
        made[name] = os.path.join(folder, name.replace(" ", "-").replace(",", ""))
        os.makedirs(made[name])
        fill(made[name], sizes)
    return made


def run(command, env=None):
    """Wall seconds of one run, and what it printed."""
    with tempfile.TemporaryFile() as output:
        start = time.perf_counter()
        process = subprocess.Popen(command, stdout=output, stderr=subprocess.STDOUT, env=env)
        process.wait()
        wall = time.perf_counter() - start
        output.seek(0)
        text = output.read().decode(errors="replace")
    if process.returncode:
        sys.exit(f"{' '.join(command)}\nended with {process.returncode}:\n{text}")
    return wall, text


def peak_memory(command, env):
    """Peak memory (MiB) of one run, watched from outside: what wait4 tells includes this script before the exec."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, env=env)
    peak = 0
    while process.poll() is None:
        try:
            with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
                if status.readline().split()[1] == os.path.basename(command[0]):
                    found = [line for line in status if line.startswith("VmHWM:")]
                    peak = max(peak, int(found[0].split()[1]) if found else 0)
        except OSError:
            pass
        time.sleep(0.001)
    return peak / 1024


class Bench:
    def __init__(self, scratch):
        self.out = os.path.join(scratch, "out")
        self.image = os.path.join(scratch, "image.iso")

    def fresh(self):
        shutil.rmtree(self.out, ignore_errors=True)
        os.makedirs(os.path.join(self.out, "drives"))

    def ours(self, source, how, measure=run):
        env = dict(os.environ, DISC_DRIVES=os.path.join(self.out, "drives"))
        return measure([HOST, "run", PROGRAM, source, how], env)

    def memory(self, source):
        self.fresh()
        return self.ours(source, "plain", peak_memory)

    def commands(self, source):
        target = os.path.join(self.out, "peer.iso")
        shell = lambda text: run(["sh", "-c", f"{text} && sync '{target}'"])
        return {
            "burn": lambda: self.ours(source, "plain"),
            "burn + verify": lambda: self.ours(source, "verify"),
            "genisoimage": lambda: shell(f"genisoimage -quiet -R -J -iso-level 3 -o '{target}' '{source}' 2>&1"),
            "xorriso": lambda: shell(f"xorriso -as mkisofs -quiet -R -J -iso-level 3 -o '{target}' '{source}'"),
            "cp image": lambda: shell(f"cp '{self.image}' '{target}'"),
        }


def compare(bench, name, source, rounds):
    subprocess.run(["genisoimage", "-quiet", "-R", "-J", "-iso-level", "3", "-o", bench.image, source],
                   check=True, stderr=subprocess.DEVNULL)
    subprocess.run(["sync"], check=True)
    commands = bench.commands(source)
    walls = {command: [] for command in commands}
    for counted in range(-1, rounds):
        order = list(commands)
        random.shuffle(order)
        for command in order:
            bench.fresh()
            wall, _ = commands[command]()
            if counted >= 0:  # the first round warms up
                walls[command].append(wall)
    middle = {command: statistics.median(times) for command, times in walls.items()}
    print(f"\n{name}\n  {'':16}{'median':>9}{'min':>9}{'max':>9}{'/genisoimage':>14}{'/cp':>7}")
    for command, times in walls.items():
        print(f"  {command:16}{middle[command]:9.3f}{min(times):9.3f}{max(times):9.3f}"
              f"{middle[command] / middle['genisoimage']:14.2f}{middle[command] / middle['cp image']:7.2f}", flush=True)


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--rounds", type=int, default=5)
    options.add_argument("--scale", type=float, default=1.0)
    options.add_argument("--folder", help="where to work; needs about 7 GiB (default: the system's temporary folder)")
    options = options.parse_args()
    for program in ("genisoimage", "xorriso"):
        if not shutil.which(program):
            sys.exit(f"burn.py: {program} is missing; install it with apt-get install {program}")
    if not os.path.exists(HOST):
        sys.exit("burn.py: build first, with ./run")
    with tempfile.TemporaryDirectory(dir=options.folder, prefix="disc-bench-") as scratch:
        bench = Bench(scratch)
        sets = make_sets(scratch, options.scale)
        for name in ("1 GiB", "20,000 small", "200 x 5 MiB"):
            compare(bench, name, sets[name], options.rounds)
        empty, small = bench.memory(sets["empty"]), bench.memory(sets["20,000 small"])
        print(f"\npeak memory: {empty:.1f} MiB for an empty disc, {small - empty:.1f} MiB more for 20,000 files")
        idle = []
        for _ in range(options.rounds):
            bench.fresh()
            idle.append(float(bench.ours(sets["1 GiB"], "abort")[1].split()[-1]))
        print(f"abort to idle: median {statistics.median(idle):.1f} ms, worst {max(idle):.1f} ms")


if __name__ == "__main__":
    main()
