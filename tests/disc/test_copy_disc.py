#!/usr/bin/python3
"""What copy-disc refuses, and what it leaves behind then: nothing."""
import os
import subprocess
import unittest

from examples_case import HOST, LIMIT, OPTIONS, ExamplesCase

HERE = os.path.dirname(os.path.abspath(__file__))


class CopyDisc(ExamplesCase):
    def burn_torn(self, drive, how):
        done = subprocess.run([HOST, *OPTIONS, "run", os.path.join(HERE, "torn.bas"), drive, how], capture_output=True,
                              text=True, timeout=LIMIT, env=self.environment(), check=False)
        self.assertEqual((done.stdout, done.stderr, done.returncode), ("DRStatusStateFailed\n", "", 0))

    def test_a_disc_that_is_not_whole_is_no_copy_of_anything(self):
        for number, (kind, how) in enumerate((("DVD+R", "ends"), ("DVD+R", "differs"), ("CD-R", "ends"),
                                              ("DVD+RW", "differs"))):
            with self.subTest(kind=kind, how=how):
                first, second = f"First {number}", f"Second {number}"
                self.make_drive(f"a{number}", first, kind=kind, capacityBlocks=359847)
                target = self.make_drive(f"b{number}", second, kind="DVD-RW", capacityBlocks=2298496)
                self.burn_torn("Virtual " + first, how)
                self.assertEqual(self.medium(f"a{number}")["state"], "incomplete")
                before = sorted(os.listdir(target))
                self.refuse(f"^copy-disc: the disc in Virtual {first} isn't whole: its burn was stopped or failed; burn it "
                            "again$", "copy-disc.bas", "Virtual " + first, "Virtual " + second)
                self.assertEqual(self.medium(f"b{number}")["state"], "blank")
                self.assertEqual(sorted(os.listdir(target)), before)
                self.assertEqual(os.listdir(self.temporary), [])

    def test_an_empty_drive_gets_the_disc_that_a_copy_needs(self):
        self.make_drive("a", "First")
        self.make_drive("b", "Second")
        self.refuse("^copy-disc: there is no disc in Virtual First; put the disc to be copied in$", "copy-disc.bas", "a", "b")
        for number, (source, wanted) in enumerate((
                ("CD-R", "CD-R"), ("CD-RW", "CD-RW"), ("CD-ROM", "CD-RW"), ("DVD-R", "DVD-R"), ("DVD-R DL", "'DVD-R DL'"),
                ("DVD-RW", "DVD-RW"), ("DVD-RAM", "DVD-RAM"), ("DVD-ROM", r"DVD\+RW"), ("DVD+R", r"DVD\+R"),
                ("DVD+R DL", r"'DVD\+R DL'"), ("DVD+RW", r"DVD\+RW"), ("BD-R", "BD-R"), ("BD-RE", "BD-RE"), ("BD-ROM", "BD-RE"))):
            with self.subTest(source=source):
                self.make_drive(f"a{number}", f"A {number}", kind=source, capacityBlocks=359847, state="complete",
                                image="medium.iso", sessions=[{"tracks": [{"mode": "data", "startBlock": 0, "blocks": 100}]}])
                self.refuse("^copy-disc: there is no disc in Virtual Second; insert one with: disc-drives blank-medium "
                            f"{wanted} blank.medium && disc-drives insert 'b' blank.medium$", "copy-disc.bas", f"a{number}", "b")

    # Where nobody says where short-lived files go. Nothing can be made in the folder that the program is run in.
    def test_without_a_folder_for_it_the_sheet_goes_to_the_usual_one(self):
        environment = {name: value for name, value in self.environment().items() if name != "TMPDIR"}
        self.environment = lambda: environment
        for name, product in (("a", "First"), ("b", "Second")):
            self.make_drive(name, product, kind="DVD+R", capacityBlocks=359847)
        for number in range(2):
            self.write(f"added {number}.bin", b"added")
            self.succeed("append-session.bas", self.source)
        done = self.run_program("copy-disc.bas", "a", "b", cwd="/proc")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.make_drive("c", "Third", kind="CD-R", capacityBlocks=359847)
        sound = os.path.join(self.scratch, "tone.wav")
        subprocess.run(["sox", "-n", "-r", "44100", "-c", "2", "-b", "16", sound, "synth", "4", "sine", "440"], check=True)
        done = self.run_program("audio-cd.bas", "--drive=c", sound, cwd="/proc")
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    # The sheet that tells where sessions begin goes when the burn refuses, too.
    def test_no_sheet_stays_behind_a_refusal(self):
        self.make_drive("a", "First", kind="DVD+R", capacityBlocks=359847)
        for number in range(2):
            self.write(f"added {number}.bin", os.urandom(100_000))
            self.succeed("append-session.bas", self.source)
        self.make_drive("b", "Second", kind="DVD-R", capacityBlocks=359847)
        self.refuse("^copy-disc: Track 2 is data that counts from block", "copy-disc.bas", "Virtual First",
                    "Virtual Second")
        self.make_drive("c", "Third", kind="DVD+R", capacityBlocks=10)
        self.refuse("^copy-disc: ", "copy-disc.bas", "Virtual First", "Virtual Third")
        for drive in ("b", "c"):
            self.assertEqual(self.medium(drive)["state"], "blank")
        self.assertEqual(os.listdir(self.temporary), [])


if __name__ == "__main__":
    unittest.main()
