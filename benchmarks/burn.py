#!/usr/bin/env python3
"""burn.py: burns side by side with the programs that people use for it, whole processes, one run.

    benchmarks/burn.py [--rounds 5] [--scale 1.0] [--folder DIR] [--only sets,kinds,memory,drives,abort] [--all-kinds]

Three sets: one file of 1 GiB, 20,000 files of 4 KiB in 200 folders, 200 files of 5 MiB. In every round each command
runs once, in random order, on files that are in the page cache. Every figure is durable: the peers are followed by a
sync of their image, and our burn does not say that it is done before its data is synced. Quoted are medians, and the
ratios of medians. Then every kind of medium burns what fits on a CD, 100,000 files show how much memory they take, and
50 drives how long it takes to list them. --scale 0.1 makes everything a tenth of its size, to try the script.
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
TOOL = os.path.join(ROOT, "build/release/bin/disc-drives")
KINDS = ("CD-R", "CD-RW", "DVD-R", "DVD-R DL", "DVD-RW", "DVD-RAM", "DVD+R", "DVD+R DL", "DVD+RW", "BD-R", "BD-RE")
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
        "600 MB": [("one", int(600e6 * scale))],
        "100,000 small": [(f"folder{i // 100:04}/file{i:06}", 100) for i in range(int(100000 * scale))],
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
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=env)
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
    if process.returncode:
        sys.exit(f"{' '.join(command)}\nended with {process.returncode}")
    return peak / 1024


class Bench:
    def __init__(self, scratch):
        self.out = os.path.join(scratch, "out")
        self.image = os.path.join(scratch, "image.iso")

    def fresh(self):
        shutil.rmtree(self.out, ignore_errors=True)
        os.makedirs(os.path.join(self.out, "drives"))

    def insert(self, kind):
        self.fresh()
        run([TOOL, "create", "drive", "--kind", kind], self.environment())

    def environment(self):
        return dict(os.environ, DISC_DRIVES=os.path.join(self.out, "drives"))

    def ours(self, source, how, measure=run):
        return measure([HOST, "run", PROGRAM, source, how], self.environment())

    def memory(self, source, kind):
        self.insert(kind)
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


def make_image(bench, source):
    subprocess.run(["genisoimage", "-quiet", "-R", "-J", "-iso-level", "3", "-o", bench.image, source],
                   check=True, stderr=subprocess.DEVNULL)
    subprocess.run(["sync"], check=True)


def compare(bench, name, source, rounds, commands=None, prepare=lambda command: None):
    make_image(bench, source)
    commands = commands or bench.commands(source)
    walls = {command: [] for command in commands}
    for counted in range(-1, rounds):
        order = list(commands)
        random.shuffle(order)
        for command in order:
            bench.fresh()
            prepare(command)
            wall, _ = commands[command]()
            if counted >= 0:  # the first round warms up
                walls[command].append(wall)
    middle = {command: statistics.median(times) for command, times in walls.items()}
    print(f"\n{name}\n  {'':16}{'median':>9}{'min':>9}{'max':>9}{'/genisoimage':>14}{'/cp':>7}")
    for command, times in walls.items():
        print(f"  {command:16}{middle[command]:9.3f}{min(times):9.3f}{max(times):9.3f}"
              f"{middle[command] / middle['genisoimage']:14.2f}{middle[command] / middle['cp image']:7.2f}", flush=True)


def every_kind(bench, source, rounds):
    """Each kind of medium, without and with verifying, beside the same peers."""
    peers = {name: command for name, command in bench.commands(source).items() if name in ("genisoimage", "cp image")}
    for kind in KINDS:
        commands = {f"{kind}": lambda: bench.ours(source, "plain"), f"{kind} + verify": lambda: bench.ours(source, "verify"),
                    **peers}
        compare(bench, f"600 MB on {kind}", source, rounds, commands,
                lambda command, kind=kind: bench.insert(kind) if command.startswith(kind) else None)


def memory(bench, sets, kind):
    empty = bench.memory(sets["empty"], kind)
    for name in ("20,000 small", "100,000 small"):
        ours = bench.memory(sets[name], kind)
        bench.fresh()
        peer = peak_memory(["xorriso", "-as", "mkisofs", "-quiet", "-R", "-J", "-o", os.path.join(bench.out, "peer.iso"),
                            sets[name]], None)
        print(f"\npeak memory, {name} on {kind}: {ours:.1f} MiB ({empty:.1f} MiB for an empty disc); xorriso {peer:.1f} MiB")


def listing(bench, rounds):
    """50 drives: the whole command, beside the command that does nothing but start."""
    bench.fresh()
    for number in range(50):
        run([TOOL, "create", f"drive-{number}", "--kind", KINDS[number % len(KINDS)]], bench.environment())
    times = {what: [] for what in ("list", "--help")}
    for _ in range(rounds * 4):
        for what, walls in times.items():
            walls.append(run([TOOL, what], bench.environment())[0] * 1000)
    print(f"\nlisting 50 drives: median {statistics.median(times['list']):.1f} ms, worst {max(times['list']):.1f} ms; "
          f"the command alone {statistics.median(times['--help']):.1f} ms")


def abort(bench, sets, rounds, kinds):
    """From a program's abort to an idle drive that has ejected the disc, a third into the burn."""
    for kind in kinds or ("DVD+RW", "BD-R"):  # one that stays as it was, and one that is then incomplete
        idle = []
        for _ in range(rounds):
            bench.insert(kind)
            idle += [float(said) for said in bench.ours(sets["1 GiB"], "abort")[1].split()[-1:]]
        if len(idle) < rounds:
            print(f"\nabort to idle, {kind}: {rounds - len(idle)} burns were over before a third of them was seen; "
                  "take a larger --scale", flush=True)
        if idle:
            print(f"\nabort to idle, {kind}: min {min(idle):.1f} ms, median {statistics.median(idle):.1f} ms, "
                  f"worst {max(idle):.1f} ms", flush=True)


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--rounds", type=int, default=5)
    options.add_argument("--scale", type=float, default=1.0)
    options.add_argument("--folder", help="where to work; needs about 9 GiB (default: the system's temporary folder)")
    options.add_argument("--only", default="sets,kinds,memory,drives,abort", help="which parts, of all")
    options.add_argument("--build", help="where what is measured was built (default: build/release)")
    options.add_argument("--all-kinds", action="store_true", help="abort and memory with every kind of medium")
    options = options.parse_args()
    kinds = KINDS if options.all_kinds else ()
    options.only = options.only.split(",")
    if options.build:
        global HOST, TOOL
        HOST, TOOL = (os.path.join(options.build, "bin", name) for name in ("disc-basic", "disc-drives"))
    for program in ("genisoimage", "xorriso"):
        if not shutil.which(program):
            sys.exit(f"burn.py: {program} is missing; install it with apt-get install {program}")
    if not os.path.exists(HOST):
        sys.exit("burn.py: build first, with ./run")
    with tempfile.TemporaryDirectory(dir=options.folder, prefix="disc-bench-") as scratch:
        bench = Bench(scratch)
        sets = make_sets(scratch, options.scale)
        if "sets" in options.only:
            for name in ("1 GiB", "20,000 small", "200 x 5 MiB"):
                compare(bench, name, sets[name], options.rounds)
        if "kinds" in options.only:
            every_kind(bench, sets["600 MB"], options.rounds)
        if "memory" in options.only:
            for kind in kinds or ("DVD+RW",):
                memory(bench, sets, kind)
        if "drives" in options.only:
            listing(bench, options.rounds)
        if "abort" in options.only:
            abort(bench, sets, options.rounds, kinds)


if __name__ == "__main__":
    main()
