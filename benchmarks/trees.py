#!/usr/bin/env python3
"""Trees of every making against genisoimage, with UDF and without, and xorriso: times, and peak memory.

    benchmarks/trees.py [--rounds 5] [--scale 1.0] [--folder DIR] [--only times,memory] [--build build/release]

Files on disk: 20,000 of 4 KiB, one of 1 GiB, 200 of 5 MiB. 20,000 files of 4 KiB whose bytes a program's events make,
against peers that read the same files from disk. 100,000 files of 100 bytes made in memory, by a BASIC program and by a C++
program over the plug-in's tables: peak memory, beside xorriso's for the same tree on disk. How it is measured: burn.py,
whose folders, rounds and commands these are. The aims are of the whole size: at --scale 0.05, to try the script, a burn is
mostly its program's start.
"""
import argparse
import os
import random
import shutil
import statistics
import sys
import tempfile

import burn

PROGRAM = os.path.join(burn.ROOT, "benchmarks/trees.bas")
ISO, UDF = 1 | 2, 1 | 2 | 4  # with Joliet; and as a bridge
AIMS = {"20,000 small": 0.6, "1 GiB": 0.9, "200 x 5 MiB": 0.9}
PRODUCED_AIM = 0.3


class Bench(burn.Bench):
    def program(self, *words, measure=burn.run):
        return measure([burn.HOST, "run", PROGRAM, *(str(word) for word in words)], self.environment())

    def tables(self, *words, measure=burn.run):
        return measure([os.path.join(os.path.dirname(burn.HOST), "tree-benchmark"), *(str(word) for word in words)],
                       self.environment())

    def peers(self, source):
        target = os.path.join(self.out, "peer.iso")
        shell = lambda text: burn.run(["sh", "-c", f"{text} -R -J -iso-level 3 -o '{target}' '{source}' 2>&1 && sync '{target}'"])
        return {
            "genisoimage": lambda: shell("genisoimage -quiet"),
            "genisoimage -udf": lambda: shell("genisoimage -quiet -udf"),
            "xorriso": lambda: shell("xorriso -as mkisofs -quiet"),
        }


def times(bench, title, rounds, ours, peers, aim):
    """ours: name to command and the peer that it is measured against."""
    commands = {**{name: command for name, (command, _) in ours.items()}, **peers}
    walls = {name: [] for name in commands}
    for counted in range(-1, rounds):
        order = list(commands)
        random.shuffle(order)
        for name in order:
            bench.fresh()
            wall, _ = commands[name]()
            if counted >= 0:  # the first round warms up
                walls[name].append(wall)
    middle = {name: statistics.median(found) for name, found in walls.items()}
    print(f"\n{title}")
    for name, found in walls.items():
        line = f"  {name:20}{middle[name]:9.3f}{min(found):9.3f}{max(found):9.3f}"
        if name in ours:
            peer = ours[name][1]
            ratio = middle[name] / middle[peer]
            line += f"   {ratio:.2f} x {peer} (aim {aim}){'' if ratio <= aim else '  MISSED'}; {middle[name] / middle['xorriso']:.2f} x xorriso"
        print(line, flush=True)


def memory(bench, source, count):
    bench.fresh()
    peer = burn.peak_memory(["xorriso", "-as", "mkisofs", "-quiet", "-R", "-J", "-o", os.path.join(bench.out, "peer.iso"), source], None)
    print(f"\npeak memory, {count} virtual files: xorriso, from disk, {peer:.1f} MiB")
    for name, ours in (("BASIC", lambda: bench.program("virtual", count, 100, measure=burn.peak_memory)),
                       ("C++ over the tables", lambda: bench.tables("virtual", count, 100, measure=burn.peak_memory))):
        bench.fresh()
        peak = ours()
        print(f"  {name:20}{peak:8.1f} MiB   {peak / peer:.2f} x xorriso (aim 1){'' if peak <= peer else '  MISSED'}", flush=True)


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--rounds", type=int, default=5)
    options.add_argument("--scale", type=float, default=1.0)
    options.add_argument("--folder", help="where to work; needs about 7 GiB (default: the system's temporary folder)")
    options.add_argument("--only", default="times,memory", help="which parts, of all")
    options.add_argument("--build", default=os.path.join(burn.ROOT, "build/release"),
                         help="where what is measured was built")
    options = options.parse_args()
    burn.HOST, burn.TOOL = (os.path.join(options.build, "bin", name) for name in ("disc-basic", "disc-drives"))
    for program in ("genisoimage", "xorriso"):
        if not shutil.which(program):
            sys.exit(f"trees.py: {program} is missing; install it with apt-get install {program}")
    if not os.path.exists(os.path.join(options.build, "bin/tree-benchmark")):
        sys.exit(f"trees.py: build first, with ninja -C {options.build} disc-basic disc-drives tree-benchmark")
    with tempfile.TemporaryDirectory(dir=options.folder, prefix="disc-bench-") as scratch:
        bench = Bench(scratch)
        sets = burn.make_sets(scratch, options.scale)
        if "times" in options.only.split(","):
            for name, aim in AIMS.items():
                ours = {"burn": (lambda name=name: bench.program("real", sets[name], ISO), "genisoimage"),
                        "burn with UDF": (lambda name=name: bench.program("real", sets[name], UDF), "genisoimage -udf")}
                times(bench, name, options.rounds, ours, bench.peers(sets[name]), aim)
            count = int(20000 * options.scale)
            times(bench, "20,000 produced", options.rounds,
                  {"BASIC": (lambda: bench.program("produced", count, 4096), "genisoimage"),
                   "C++ over the tables": (lambda: bench.tables("produced", count, 4096), "genisoimage")},
                  bench.peers(sets["20,000 small"]), PRODUCED_AIM)
        if "memory" in options.only.split(","):
            memory(bench, sets["100,000 small"], int(100000 * options.scale))


if __name__ == "__main__":
    main()
