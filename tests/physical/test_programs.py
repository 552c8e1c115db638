#!/usr/bin/python3
"""Programs as a person runs them, on a drive: the whole line from BASIC to SCSI commands."""
import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "recorder"))
from harness import DEVICE, RecorderTest  # noqa: E402

HERE = os.path.dirname(os.path.abspath(__file__))
EXAMPLES = os.path.join(os.path.dirname(os.path.dirname(HERE)), "examples")
HOST = os.environ["DISC_BASIC"]
# The library comes before a sanitizer's runtime, which it has no part in.
SANITIZER = "verify_asan_link_order=0:" + os.environ.get("ASAN_OPTIONS", "")


class Case(RecorderTest):
    def environment(self):
        drives = os.path.join(self.scratch, "drives")
        os.makedirs(drives, exist_ok=True)
        return dict(super().environment(), DISC_DRIVES=drives, DISC_PHYSICAL="1", ASAN_OPTIONS=SANITIZER)

    def example(self, name, *arguments):
        return self.tool(HOST, "run", os.path.join(EXAMPLES, name), *arguments)

    def burns(self, medium):
        self.insert(medium)
        data = self.noise(1_500_000)
        self.file("Holiday/noise.bin", data)
        said = self.example("burn-folder.bas", os.path.join(self.scratch, "Holiday"))
        self.assertIn("every byte was read back and is right", said)
        self.tool("xorriso", "-osirrox", "on", "-indev", DEVICE, "-extract", "/noise.bin", "back")
        with open(os.path.join(self.scratch, "back"), "rb") as file:
            self.assertEqual(file.read(), data)

    def test_burn_folder_on_cdr(self):
        self.burns("CD-R")

    def test_burn_folder_on_cdrw_and_erase(self):
        self.burns("CD-RW")
        self.example("erase.bas", "--yes")
        self.assertEqual(self.tracks(), [])
        self.assertIn("CD-RW: blank", self.example("list-drives.bas"))

    def test_burn_folder_on_dvd_plus_rw_and_erase(self):
        self.burns("DVD+RW")
        self.example("erase.bas", "--yes")
        self.assertIn("DVD+RW: blank", self.example("list-drives.bas"))

    def test_a_drive_for_reading_leaves_room_for_a_virtual_one(self):
        """As a newcomer's virtual machine is: its drive only reads, and there is a disc in it."""
        self.insert("CD-ROM", canWrite=False)
        self.file("Holiday/letter.txt", b"Dear reader,\n")
        listed = self.example("list-drives.bas")
        self.assertIn("DVD+RW: blank", listed)
        self.assertNotIn("TESTLAB", listed)
        self.assertIn("every byte was read back and is right",
                      self.example("burn-folder.bas", os.path.join(self.scratch, "Holiday")))

    def test_append_session_and_burn_image(self):
        self.insert("CD-R")
        self.file("one/first.txt", b"first")
        self.file("two/second.txt", b"second")
        self.assertIn("as session 1;", self.example("append-session.bas", os.path.join(self.scratch, "one")))
        self.assertIn("as session 2;", self.example("append-session.bas", os.path.join(self.scratch, "two")))
        listed = self.tool("xorriso", "-indev", DEVICE, "-find", "/", "-type", "f")
        self.assertIn("'/first.txt'", listed)
        self.assertIn("'/second.txt'", listed)
        image = os.path.join(self.scratch, "disc.iso")
        self.tool("xorriso", "-outdev", "stdio:" + image, "-map", os.path.join(self.scratch, "two"), "/")
        self.insert("DVD-R")
        self.assertIn("every byte was read back and is right", self.example("burn-image.bas", image))
        self.assertIn("'/second.txt'", self.tool("xorriso", "-indev", DEVICE, "-find", "/", "-type", "f"))

    def refuses(self, sentence, name, *arguments):
        done = self.run_tool(HOST, "run", os.path.join(EXAMPLES, name), *arguments)
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn(sentence, done.stdout)

    def test_the_first_program_overwrites_nothing_in_a_recorder(self):
        self.file("Holiday/letter.txt", b"Dear reader")
        os.symlink(EXAMPLES, os.path.join(self.scratch, "examples"))
        self.insert("DVD+RW")
        self.assertEqual(self.example("first.bas"), "TESTLAB MMC RECORDER: DRStatusStateDone\n")
        self.example("burn-folder.bas", os.path.join(self.scratch, "Holiday"))
        before = self.sectors(0, 1000, 2048)
        self.refuses("TESTLAB MMC RECORDER: the disc is not blank; put in a blank one\n", "first.bas")
        self.assertEqual(self.sectors(0, 1000, 2048), before)

    def test_a_recorder_is_named_by_its_path_and_gets_its_disc_from_a_hand(self):
        self.file("Holiday/letter.txt", b"Dear reader")
        folder = os.path.join(self.scratch, "Holiday")
        self.insert("")
        self.refuses("there is no disc in TESTLAB MMC RECORDER; insert one and try again", "burn-folder.bas",
                     "--drive=" + DEVICE, folder)
        self.insert("CD-R")
        for name, drive in (("burn-folder.bas", DEVICE), ("append-session.bas", "TESTLAB MMC RECORDER")):
            self.assertIn("TESTLAB MMC RECORDER", self.example(name, "--drive=" + drive, folder))
            self.refuses("the disc in TESTLAB MMC RECORDER holds data and can't be overwritten; insert a blank one and try again",
                         "burn-folder.bas", "--drive=" + DEVICE, folder)
            if name == "burn-folder.bas":
                self.refuses("nothing can be added to the disc in TESTLAB MMC RECORDER; insert a blank one and try again",
                             "append-session.bas", folder)
                self.insert("CD-R")

    def test_sense_reaches_a_program(self):
        self.insert("DVD+RW", faults={"writeErrors": [600]})
        path = self.file("noise.bin", self.noise(3_000_000))
        said = self.tool(HOST, "run", os.path.join(HERE, "sense.bas"), path)
        self.assertEqual(said.splitlines(), [
            "DRStatusStateFailed",
            'The disc in "TESTLAB MMC RECORDER" could not be written; try another disc.',
            "Medium Error", "Write error", "18 3 12"])
        # The burn was told nothing else, and the library had let go of the drive before it was over.
        self.assertTrue(self.state()["trayOpen"])


if __name__ == "__main__":
    unittest.main()
