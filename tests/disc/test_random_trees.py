#!/usr/bin/python3
"""Random trees, hundreds of them: every file system of each disc shows what its source has, whoever reads it.

Names, kinds, sizes, bytes, modes, times and links are compared, by one reader of each file system; DISC_TREES=1000 burns that
many trees and lets all readers have a look. What fails names its seed: DISC_TREES_SEED=7 burns that tree alone.
"""
import os
import random
import subprocess
import time
import unittest

import jury
from examples_case import ExamplesCase
from random_tree import Tree

PROGRAM = """
Function TextFile(name As String, text As String) As DRFileQRX
    Dim bytes As New MemoryBlock(Len(text))
    If Len(text) > 0 Then bytes.StringValue(0, Len(text)) = text
    Return DRFileQRX.virtualFileWithName(name, bytes)
End Function

Sub Burn(label As String, drive As Integer, root As DRFolderQRX, isLeftOpen As Boolean)
    Dim burn As New DRBurnQRX(DRDeviceQRX.device(drive))
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    burn.appendable = isLeftOpen
    burn.writeLayout(DRTrackQRX.trackForRootFolder(root))
    Dim state As String
    Do
        App.DoEvents(1)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Print label + Chr(9) + state
    If burn.status.HasKey(DRBurnQRX.DRErrorStatusKey) Then
        Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
        Print label + Chr(9) + problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey)
    End If
End Sub
"""
LATEST = {"UTC": 4260000000, "Europe/Berlin": 2100000000, "America/St_Johns": 2100000000}  # the year 2104, and one with rules
HFS_LATEST = 2212122495  # it counts 32 bits of seconds from 1904
COUNT = int(os.environ.get("DISC_TREES", "0"))
SEED = os.environ.get("DISC_TREES_SEED")


class RandomTrees(ExamplesCase):
    def make(self, seeds, zone):
        """The trees, two of a seed where a second session is to come, and where their discs are."""
        discs = []
        for at, seed in enumerate(seeds):
            dice = random.Random(seed)
            trees = [Tree(dice, self.source, LATEST[zone], f"Seed{seed}", plain=seed % 2 == 1)]
            if seed % 2 == 1:
                trees.append(Tree(dice, self.source, LATEST[zone], f"Seed{seed}again", True, trees[0]))
            self.make_drive(f"drive-{at:04}", f"Disc Drive {at}", kind="DVD+RW", capacityBlocks=2295104)
            discs.append((seed, dice, trees))
        return discs

    def burn(self, discs):
        program = PROGRAM + "".join(tree.program(at) for at, (_, _, trees) in enumerate(discs) for tree in trees)
        program += "".join(f"{tree.label}()\n" for _, _, trees in discs for tree in trees)
        trees = {tree.label: tree for _, _, trees in discs for tree in trees}
        said = {}
        for line in self.succeed(self.write("random.bas", program.encode(), self.scratch)).split("\n"):
            label, _, rest = line.partition("\t")
            if rest.count("\t") == 2:
                number, system, name = rest.split("\t")
                trees[label].named(int(number), system, name)
            elif label:
                said.setdefault(label, []).append(rest)
        for label in trees:
            with self.subTest(label):
                self.assertEqual(said.get(label), ["DRStatusStateDone"])

    def compare(self, who, wanted, found, unseen=()):
        """What a reader tells is right, and it tells of everything."""
        astray = sorted(found.keys() - wanted), sorted(wanted.keys() - found)
        self.assertEqual(astray, ([], []), f"{who}: too much, and too little")
        for path, entry in found.items():
            truth = dict(wanted[path], size=len(wanted[path].get("data") or b""))
            for what, value in entry.items():
                if what not in unseen and truth.get(what) is not None:
                    self.assertEqual(value, truth[what], f"{who}: {what} of {path!r}")

    def judge_rr(self, image, wanted, readers):
        if "bsdtar" in readers:
            self.compare("bsdtar", wanted, jury.rr_bsdtar(image))
        if "isoinfo" in readers:
            low = {path: dict(entry, mode=entry.get("mode") and entry["mode"] & 0o777) for path, entry in wanted.items()}
            self.compare("isoinfo", low, jury.rr_isoinfo(image))
        if "pycdlib" in readers:
            self.compare("pycdlib", wanted, jury.rr_pycdlib(image))

    def judge_joliet(self, image, wanted, readers):
        if "7zz" in readers:
            self.compare("7zz, Joliet", wanted, jury.joliet_7zz(image), ("mode",))
        if "bsdtar" in readers and all(len(path.encode("utf-16-be")) < 1000 for path in wanted):  # longer ones it refuses
            self.compare("bsdtar, Joliet", wanted, jury.joliet_bsdtar(image), ("mode",))
        if "pycdlib" in readers:
            self.compare("pycdlib, Joliet", wanted, jury.joliet_pycdlib(image))
        if "isoinfo" in readers:
            self.assertEqual(jury.joliet_isoinfo(image), len(wanted), "isoinfo, Joliet")

    def judge_udf(self, image, wanted, readers, others):
        # It reads no volume with symbolic links, nor one that something else than its last file ends: an item of others, or HFS+.
        links = any(entry["kind"] == "l" for entry in wanted.values())
        filled = any(entry.get("data") for entry in wanted.values())
        if "7zz" in readers and filled and not links and not others and jury.hfs_start(image) == 0:
            self.compare("7zz, UDF", wanted, jury.udf_7zz(image))
        if "pycdlib" in readers:
            self.compare("pycdlib, UDF", wanted, jury.udf_pycdlib(image))
        if "grub" in readers:
            for path, entry in list(wanted.items())[:3]:
                if entry["kind"] == "f" and entry["data"]:
                    self.assertEqual(jury.grub(image, "loop0", path), entry["data"], f"grub, UDF: {path!r}")
        if "udfinfo" in readers:
            counted = jury.udf_udfinfo(image)
            self.assertEqual(counted["d"], 1 + sum(entry["kind"] == "d" for entry in wanted.values()), "udfinfo")

    def judge_hfs(self, image, wanted, readers):
        fitting = {path: dict(entry, time=entry["time"] if entry.get("time") and entry["time"] <= HFS_LATEST else None)
                   for path, entry in wanted.items()}
        # It refuses to unpack links that lead upwards.
        if "7zz" in readers and not any(entry["kind"] == "l" and entry["target"].startswith(".") for entry in wanted.values()):
            seen = {path: dict(entry, data=b"" if entry.get("several") else entry.get("data")) for path, entry in fitting.items()}
            self.compare("7zz, HFS+", seen, jury.hfs_7zz(image))
        if "fls" in readers:
            self.compare("fls", fitting, jury.hfs_fls(image))
        if "grub" in readers and jury.hfs_start(image):  # else it takes the disc for another file system's
            for path, entry in list(wanted.items())[:3]:
                # It knows no names that are taken apart.
                if entry["kind"] == "f" and not entry["several"] and jury.apart(path) == path and entry["data"]:
                    self.assertEqual(jury.grub(image, "loop0,apple3", path), entry["data"], f"grub: {path!r}")

    READERS = {"rr": ("bsdtar", "isoinfo", "pycdlib"), "joliet": ("7zz", "bsdtar", "pycdlib", "isoinfo"),
               "udf": ("7zz", "pycdlib", "udfinfo", "grub"), "hfs": ("7zz", "fls", "grub")}

    def judge(self, at, dice, trees):
        image = self.image(f"drive-{at:04}")
        for system, readers in self.READERS.items():
            if trees[0].root.mask & {"rr": 1, "joliet": 2, "udf": 4, "hfs": 8}[system]:
                wanted = {}
                for tree in trees:
                    wanted.update(tree.shown(system))
                asked = readers if COUNT or SEED else [dice.choice(readers)]
                if system == "udf":
                    self.judge_udf(image, wanted, asked, any(not item.effective() & 4 for item in trees[0].items))
                else:
                    getattr(self, "judge_" + system)(image, wanted, asked)

    def check(self, part, zone):
        """A quarter of all seeds; or the one that is asked for."""
        os.environ["TZ"] = os.environ["GNUSTEP_TZ"] = zone  # of this process, of the program, and of its platform
        time.tzset()
        first = part * 1000000
        seeds = [int(SEED)] if SEED else list(range(first, first + (COUNT or 200) // 4))
        for start in range(0, len(seeds), 20):
            discs = self.make(seeds[start:start + 20], zone)
            self.burn(discs)
            for at, (seed, dice, trees) in enumerate(discs):
                with self.subTest(seed=seed, zone=zone):
                    self.judge(at, dice, trees)
            self.clear()

    def clear(self):
        subprocess.run(["chmod", "-R", "u+rwX", self.source], check=True)
        subprocess.run(["rm", "-rf", self.source, self.drives], check=True)
        os.makedirs(self.drives)

    def test_in_utc(self):
        self.check(1, "UTC")

    def test_in_utc_again(self):
        self.check(2, "UTC")

    def test_in_berlin(self):
        self.check(3, "Europe/Berlin")

    def test_in_newfoundland(self):
        self.check(4, "America/St_Johns")


if __name__ == "__main__":
    unittest.main()
