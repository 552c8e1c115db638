#!/usr/bin/python3
"""What copy-disc refuses, and what it leaves behind then: nothing."""
import os
import subprocess
import tempfile
import unittest

from examples_case import HOST, LIMIT, OPTIONS, ExamplesCase

HERE = os.path.dirname(os.path.abspath(__file__))


class CopyDisc(ExamplesCase):
    def setUp(self):
        super().setUp()
        # For the sheets that copy-disc makes: no other test's are among them.
        self.temporary = tempfile.mkdtemp(dir=self.scratch)

    def environment(self):
        return dict(super().environment(), TMPDIR=self.temporary)

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
