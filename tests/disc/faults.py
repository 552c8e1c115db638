#!/usr/bin/python3
"""faults.py: cuts burns off at random points, on every kind of medium, and counts what became of the media.

    tests/disc/faults.py [--count 1000] [--seed N] [--fault kill,append,space,limit,readonly,source,producer] [--build build/release]

Faults: "kill" ends the process at a random point of the burn, "append" of a second session; "space" lets the
computer's disk fill up at a random byte; "limit" is a limit on the size of files; "readonly" makes the medium's files,
or the whole drive, read-only before the burn or at a random step of it; "source" shortens, grows or removes
the file that is being read; "producer" raises an exception in the program where it should give a file's bytes. After
each, the medium must be as it was, or hold all that was to be burned, or be openly incomplete: its state says so,
`disc-drives verify` says so, and another program reads what is on it. Then the next burn must work, where the kind
allows one. Exit status 1 as soon as a medium is silently wrong, with the drive's folder kept.
"""
import argparse
import collections
import json
import os
import random
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
REWRITABLE = {"CD-RW": 359847, "DVD-RW": 2297888, "DVD-RAM": 2236704, "DVD+RW": 2295104, "BD-RE": 12219392}
WRITE_ONCE = {"CD-R": 359847, "DVD-R": 2298496, "DVD-R DL": 4171712, "DVD+R": 2295104, "DVD+R DL": 4173824,
              "BD-R": 12219392}
OVERWRITABLE = ("DVD-RAM", "DVD+RW", "BD-RE")
FAULTS = ("kill", "append", "space", "limit", "readonly", "source", "producer")
LIMIT = 120
STEPS = 30  # calls that change something in a drive's folder while these sources are burned, and a few more


class Wrong(Exception):
    """A medium that is not what it says, or a burn that does not end as it should."""


class Bench:
    def __init__(self, scratch, build, seed):
        self.random = random.Random(seed)
        self.scratch = scratch
        self.host = os.environ.get("DISC_BASIC") or os.path.join(build, "bin/disc-basic")
        self.tool = os.environ.get("DISC_DRIVES_COMMAND") or os.path.join(build, "bin/disc-drives")
        self.full = os.environ.get("DISC_NO_SPACE") or os.path.join(build, "lib/no_space.so")
        self.locked = os.environ.get("DISC_READ_ONLY") or os.path.join(build, "lib/read_only.so")
        self.sources = {name: self.source(name, size) for name, size in (("old", 300_000), ("new", 6_000_000),
                                                                        ("next", 100_000), ("large", 48_000_000))}
        # What a second session shows: its own files, and those of the first that have other names.
        self.sources["both"] = shutil.copytree(self.sources["old"], os.path.join(scratch, "both"))
        shutil.copytree(self.sources["new"], self.sources["both"], dirs_exist_ok=True)
        self.lengths = {}
        self.counts = collections.Counter()

    def source(self, name, size):
        folder = os.path.join(self.scratch, name)
        os.makedirs(os.path.join(folder, "folder"))
        for file, share in ((f"{name}.txt", 100), ("folder/half.bin", size // 2), ("rest.bin", size // 2)):
            with open(os.path.join(folder, file), "wb") as out:
                out.write(self.random.randbytes(share))
        return folder

    # ---- a drive, and what is in it ---------------------------------------------------------------------------

    def fresh(self, kind):
        self.drives = tempfile.mkdtemp(dir=self.scratch, prefix="drives-")
        self.folder = os.path.join(self.drives, "drive")
        os.makedirs(self.folder)
        with open(os.path.join(self.folder, "drive.json"), "w", encoding="utf-8") as file:
            json.dump({"format": 1, "vendor": "Virtual", "product": "Drive", "firmwareRevision": "1.00"}, file)
        with open(os.path.join(self.folder, "medium.json"), "w", encoding="utf-8") as file:
            json.dump({"format": 1, "kind": kind, "capacityBlocks": {**REWRITABLE, **WRITE_ONCE}[kind],
                       "state": "blank", "sessions": []}, file)

    def state(self):
        with open(os.path.join(self.folder, "medium.json"), encoding="utf-8") as file:
            return json.load(file)["state"]

    def environment(self, **more):
        return {**os.environ, "DISC_DRIVES": self.drives, "LC_ALL": "C.UTF-8", **more}

    def holds(self):
        """The name of the source whose files are on the medium, as another program reads them; all of them."""
        if self.state() == "blank":
            return "blank"
        out = tempfile.mkdtemp(dir=self.scratch)
        image = os.path.join(self.folder, "medium.iso")
        subprocess.run(["bsdtar", "-xf", image, "-C", out], stderr=subprocess.DEVNULL, check=False)
        found = [name for name, folder in self.sources.items()
                 if subprocess.run(["diff", "-rq", folder, out], capture_output=True, check=False).returncode == 0]
        subprocess.run(["chmod", "-R", "u+w", out], check=True)
        shutil.rmtree(out)
        return found[0] if found else "neither"

    # ---- burns ------------------------------------------------------------------------------------------------

    def start(self, source, words="overwrite", environment=None, **more):
        process = subprocess.Popen([self.host, "run", os.path.join(HERE, "report.bas"), words + ",wait", source],
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                   env=self.environment(**(environment or {})), **more)
        if process.stdout.readline() != "ready\n":
            raise Wrong("the program did not start: " + process.stderr.read())
        return process

    @staticmethod
    def go(process):
        process.stdin.write("\n")
        process.stdin.flush()

    def end(self, process):
        out, said = process.communicate(timeout=LIMIT)
        if process.returncode != 0 or not out:
            raise Wrong(f"the program ended with {process.returncode}: {out}{said}")
        return out.splitlines()[-1].split("|")

    def burn(self, name, **more):
        process = self.start(self.sources[name], **more)
        self.go(process)
        return self.end(process)

    def measure(self, kind):
        """Seconds that a whole burn takes, from the start of the program's burn to its end."""
        if kind in self.lengths:
            return
        self.fresh(kind)
        process = self.start(self.sources["new"])
        began = time.monotonic()
        self.go(process)
        if self.end(process) != ["DRStatusStateDone"]:
            raise Wrong("a burn without a fault failed")
        self.lengths[kind] = time.monotonic() - began
        shutil.rmtree(self.drives)

    # ---- faults: each answers what the program was told, or nothing when it was killed --------------------------

    def append(self, kind):
        return self.kill(kind, "append")

    def kill(self, kind, words="overwrite"):
        longest = self.lengths[kind]
        process = self.start(self.sources["new"], words)
        self.go(process)
        time.sleep(self.random.uniform(0, longest))
        process.send_signal(signal.SIGKILL)
        process.communicate()
        return None

    def burn_with(self, library, **environment):
        return self.burn("new", environment={"LD_PRELOAD": library, "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") +
                                             ":verify_asan_link_order=0", **environment})

    def space(self, _kind):
        after = self.random.choice((0, 200, self.random.randrange(7_000_000)))
        return self.burn_with(self.full, NO_SPACE_AFTER=str(after))

    def readonly(self, _kind):
        # The last of the steps come when all has been written.
        after = self.random.choice((0, self.random.randrange(STEPS), self.random.randrange(STEPS)))
        return self.burn_with(self.locked, READ_ONLY_AFTER=str(after),
                              READ_ONLY_WHAT=self.random.choice(("medium", "drive")),
                              READ_ONLY_ERROR=self.random.choice(("EROFS", "EACCES")))

    def limit(self, _kind):
        most = self.random.choice((0, 300, self.random.randrange(7_000_000)))
        return self.burn("new", restore_signals=False,
                         preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (most, most)))

    def source_changes(self, _kind):
        changing = os.path.join(self.scratch, "changing")
        shutil.copytree(self.sources["large"], changing)
        file = os.path.join(changing, "rest.bin")
        process = self.start(changing, "overwrite,paced")
        self.go(process)
        deadline = time.monotonic() + LIMIT
        while not [name for name in os.listdir(self.folder) if name.endswith(".iso") and "new" in name] \
                and self.state() != "incomplete":
            if process.poll() is not None or time.monotonic() > deadline:
                raise Wrong("the burn was not met under way")
            time.sleep(0.005)
        how = self.random.choice(("shorter", "longer", "gone"))
        if how == "gone":
            os.remove(file)
        else:
            os.truncate(file, 1_000_000 if how == "shorter" else 40_000_000)
        told = self.end(process)
        shutil.rmtree(changing)
        # What is already open can be read to its end although its name is gone.
        if told[0] != "DRStatusStateFailed" and how != "gone":
            raise Wrong(f"a source that is {how} was burned as if nothing had happened: {told}")
        return told

    def producer(self, _kind):
        raises = self.random.choice((0, self.random.randrange(3_000_000)))
        told = self.burn("new", words=f"overwrite,raises={raises}")
        if told[0] != "DRStatusStateFailed" or "produced.bin" not in told[2]:
            raise Wrong(f"a producer that raises: {told}")
        return told

    # ---- afterwards -------------------------------------------------------------------------------------------

    def verify(self):
        said = subprocess.run([self.tool, "--json", "verify", "drive"], capture_output=True, text=True,
                              env=self.environment(), check=False)
        try:
            return said.returncode, json.loads(said.stdout)
        except ValueError:
            raise Wrong("disc-drives verify: " + said.stderr) from None

    def judge(self, kind, before, told):
        """What became of the medium; raises Wrong for what must never be."""
        status, said = self.verify()
        if "drives" not in said:
            raise Wrong(f"verify: {said}")
        state = said["drives"][0]["state"]
        if state == "incomplete":
            if status != 1 or "incomplete" not in said["drives"][0]["problem"]:
                raise Wrong("verify does not say that the medium is incomplete")
            if kind in REWRITABLE:
                raise Wrong("a re-writable medium lost what was on it")
            outcome = "openly incomplete"
        elif status != 0:
            raise Wrong(f"verify: {said}")
        else:
            held = self.holds()
            if held not in (before, "new", "large"):
                raise Wrong(f"the medium says {state}, but holds {held}")
            outcome = "as before" if held == before else "the new one"
        if told and told[0] == "DRStatusStateFailed" and outcome == "the new one":
            raise Wrong(f"a burn that failed changed the medium: {told}")
        if told and told[0] == "DRStatusStateDone" and outcome != "the new one":
            raise Wrong(f"a burn that was done is not on the medium: {told}")
        if told and told[0] == "DRStatusStateFailed" and not told[2].endswith("."):
            raise Wrong(f"no sentence: {told}")
        return outcome

    def burn_again(self, kind, outcome):
        again = self.burn("next")
        blank = outcome == "as before" and kind in WRITE_ONCE
        if kind in REWRITABLE or blank:
            if again != ["DRStatusStateDone"] or self.holds() != "next" or self.verify()[0] != 0:
                raise Wrong(f"the next burn: {again}")
            return "the next burn worked"
        if again[0] != "DRStatusStateFailed" or again[1] != "80020044":
            raise Wrong(f"a written medium that can't be overwritten: {again}")
        return "the next burn was refused"

    def judge_appended(self, kind):
        """The same for a second session: the first one must be there as it was, whatever became of the second."""
        status, said = self.verify()
        state = said["drives"][0]["state"]
        held = self.holds()
        # What can be overwritten shows its newest session at once; of the others a plain reader sees the first.
        if held not in (("old", "both") if kind in OVERWRITABLE else ("old",)):
            raise Wrong(f"the first session is not there: {held}")
        if (status == 0) != (state == "appendable"):
            raise Wrong(f"verify: {said}")
        if state == "incomplete":
            return "openly incomplete"
        return "as before" if len(said["drives"][0]["tracks"]) == 1 else "the new one"

    def append_again(self, kind, outcome):
        if outcome != "openly incomplete":
            if self.burn("next", words="append") != ["DRStatusStateDone"] or self.verify()[0] != 0:
                raise Wrong("the next session")
            return "the next session worked"
        return self.burn_again(kind, outcome)

    def once(self, fault, kind):
        if fault in ("kill", "append"):
            self.measure(kind)
        self.fresh(kind)
        before = "blank"
        if fault == "append":
            if self.burn("old", words="append") != ["DRStatusStateDone"]:
                raise Wrong("the first session")
            before = "old"
        elif kind in REWRITABLE and self.random.random() < 0.7:
            if self.burn("old") != ["DRStatusStateDone"]:
                raise Wrong("the first burn")
            before = "old"
        told = {"kill": self.kill, "space": self.space, "limit": self.limit,
                "readonly": self.readonly, "source": self.source_changes,
                "producer": self.producer, "append": self.append}[fault](kind)
        if fault == "append":
            outcome = self.judge_appended(kind)
            after = self.append_again(kind, outcome)
        else:
            outcome = self.judge(kind, before, told)
            after = self.burn_again(kind, outcome)
        left = [name for name in os.listdir(self.folder) if "new" in name]
        if left:
            raise Wrong(f"left behind: {left}")
        shutil.rmtree(self.drives)
        self.counts[fault, "re-writable" if kind in REWRITABLE else "write-once", outcome, after] += 1


    def table(self):
        print(f"\n{'fault':10}{'medium':13}{'afterwards':19}{'and then':27}{'count':>6}")
        for (fault, sort, outcome, after), count in sorted(self.counts.items()):
            print(f"{fault:10}{sort:13}{outcome:19}{after:27}{count:6}")


def main():
    options = argparse.ArgumentParser(
        description=__doc__.split("\n\n", 1)[0], formatter_class=argparse.RawDescriptionHelpFormatter,
        epilog=__doc__.split("\n\n", 2)[2] + """
examples:
  faults.py --fault kill,append --count 1000   a thousand processes killed at random points of their burns
  faults.py --fault kill --count 1000          the same, without second sessions
  faults.py --count 70 --seed 4                some of every fault, the same ones each time""")
    options.add_argument("--count", type=int, default=1000, help="faults in all (1000), in turn on every kind of medium")
    options.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 30),
                         help="of the random points; it is printed")
    options.add_argument("--fault", default=",".join(FAULTS), help="which, with commas between them (all)")
    options.add_argument("--build", default=os.path.join(ROOT, "build/release"), help="the build folder (build/release)")
    options = options.parse_args()
    faults = options.fault.split(",")
    if unknown := set(faults) - set(FAULTS):
        sys.exit(f"faults.py: there is no fault {', '.join(sorted(unknown))}; there are {', '.join(FAULTS)}")
    scratch = tempfile.mkdtemp(prefix="disc-faults-")
    bench = Bench(scratch, options.build, options.seed)
    kinds = [*REWRITABLE, *WRITE_ONCE]
    print(f"{options.count} faults, seed {options.seed}", flush=True)
    for number in range(options.count):
        kind = kinds[number % len(kinds)]
        fault = faults[number // len(kinds) % len(faults)] if options.count >= len(kinds) else faults[number % len(faults)]
        try:
            bench.once(fault, kind)
        except (Wrong, subprocess.SubprocessError, OSError) as problem:
            print(f"\nfault {number + 1}, {fault} on {kind}: {problem}\nthe drive is kept in {bench.drives}")
            bench.table()
            return 1
        if sys.stdout.isatty():
            print(f"\r{number + 1}", end="", flush=True)
    bench.table()
    print(f"{sum(bench.counts.values())} faults, no medium silently wrong")
    shutil.rmtree(scratch)
    return 0


if __name__ == "__main__":
    sys.exit(main())
