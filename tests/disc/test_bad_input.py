#!/usr/bin/python3
"""What a program is told when drive, medium or wish are not as they should be: the code, and a sentence."""
import fcntl
import json
import os
import shutil
import subprocess
import unittest

from examples_case import HOST, LIMIT, OPTIONS, ExamplesCase

REPORT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "report.bas")

# The codes as programs see them.
ACCESS, BUSY, INVALID = "80020020", "80020021", "80020023"
NOT_PRESENT, NOT_WRITABLE, NOT_BLANK, MEDIUM_INVALID = "80020041", "80020042", "80020044", "80020046"
NOT_ALLOWED, TOO_MANY_TRACKS, TRACK_REUSED = "80020061", "80020064", "8002006F"


class BadInput(ExamplesCase):
    def start(self, what, source=None):
        return subprocess.Popen([HOST, *OPTIONS, "run", REPORT, what, source or self.source], stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=self.environment())

    def learn(self, process, line=""):
        """The lines that a program prints, after it was given a line."""
        out, errors = process.communicate(line + "\n", timeout=LIMIT)
        self.assertEqual((process.returncode, errors), (0, ""), out)
        return out.splitlines()

    def assert_told(self, line, code, sentence):
        state, told, message = line.split("|")
        self.assertEqual((state, told), ("DRStatusStateFailed", code), line)
        self.assertRegex(message, sentence)
        self.assertRegex(message, r"^[A-Z].*[.]$", "a sentence for people")

    def burn_fails(self, code, sentence, what="plain"):
        lines = self.learn(self.start(what))
        self.assertEqual(len(lines), 1, lines)
        self.assert_told(lines[0], code, sentence)

    # ---- drives -------------------------------------------------------------------------------------------------

    def test_no_drive(self):
        self.no_drive()
        self.assertEqual(self.learn(self.start("plain")), ["no drive"])

    def test_a_drive_that_goes_away_before_the_burn(self):
        folder = self.make_drive(kind="CD-RW", capacityBlocks=359847)
        process = self.start("wait")
        self.assertEqual(process.stdout.readline(), "ready\n")
        os.rename(folder, os.path.join(self.scratch, "elsewhere"))
        self.assert_told(self.learn(process)[-1], INVALID, 'The drive "Virtual Disc Drive 1" is no longer there')

    def test_a_drive_that_comes_back_is_another_one(self):
        folder = self.make_drive(kind="CD-RW", capacityBlocks=359847)
        process = self.start("wait")
        self.assertEqual(process.stdout.readline(), "ready\n")
        shutil.copytree(folder, folder + ".copy")
        shutil.rmtree(folder)
        os.rename(folder + ".copy", folder)
        self.assert_told(self.learn(process)[-1], INVALID, "no longer there")

    def test_a_drive_that_another_process_keeps_for_itself(self):
        folder = self.make_drive(kind="CD-RW", capacityBlocks=359847)
        with open(os.path.join(folder, "lock"), "w") as lock:
            fcntl.lockf(lock, fcntl.LOCK_EX)
            self.burn_fails(BUSY, "is in use by another program; try again later")
        self.assertEqual(self.learn(self.start("plain")), ["DRStatusStateDone"])

    def test_two_burns_of_one_program_on_one_drive(self):
        self.make_drive(kind="CD-RW", capacityBlocks=359847)
        self.write("some.bin", bytes(2_000_000))
        other, first = self.learn(self.start("again,slow"))
        self.assert_told(other, BUSY, "is already writing; wait until it is done")
        self.assertEqual(first, "DRStatusStateDone")
        self.assertEqual(self.files_on(self.image())["some.bin"], bytes(2_000_000))

    def test_two_programs_that_burn_on_one_drive(self):
        self.make_drive(kind="DVD+RW", capacityBlocks=2295104)
        self.write("some.bin", bytes(5_000_000))
        running = [self.start("slow,overwrite,wait") for _ in range(2)]
        for process in running:
            self.assertEqual(process.stdout.readline(), "ready\n")
        for process in running:
            process.stdin.write("\n")
            process.stdin.flush()
        lines = sorted(self.learn(process)[-1] for process in running)
        self.assertEqual(lines[0], "DRStatusStateDone")
        self.assert_told(lines[1], BUSY, "in use by another program")
        self.assertEqual(self.files_on(self.image())["some.bin"], bytes(5_000_000))

    def test_a_drive_whose_folder_is_damaged_or_of_a_later_version_is_none(self):
        for text in ("", "{", "[]", '{"format": 99, "vendor": "Virtual"}'):
            folder = self.make_drive(kind="CD-R", capacityBlocks=359847)
            with open(os.path.join(folder, "drive.json"), "w") as file:
                file.write(text)
            self.no_drive()
            self.assertEqual(self.learn(self.start("plain")), ["no drive"], text)
            self.assertEqual(self.medium()["state"], "blank")
            shutil.rmtree(folder)

    def test_a_folder_of_drives_that_is_none(self):
        os.rmdir(self.drives)
        with open(self.drives, "w"):
            pass
        out, errors = self.start("plain").communicate(timeout=LIMIT)
        self.assertEqual(out, "no drive\n")
        self.assertRegex(errors, r"No drives can be found: The folder .* for drives can't be made\.$")

    # ---- media --------------------------------------------------------------------------------------------------

    def test_no_medium(self):
        self.make_drive()
        self.burn_fails(NOT_PRESENT, 'There is no disc in "Virtual Disc Drive 1"; put one in')

    def test_a_medium_whose_description_is_damaged_or_of_a_later_version(self):
        folder = self.make_drive(kind="CD-R", capacityBlocks=359847)
        good = json.dumps(self.medium())
        for text, why in (("{", "it is not JSON"), ('{"format": 99}', "its format is of a later version"),
                          (good.replace("CD-R", "MO"), "no medium is of the kind"),
                          (good.replace("blank", "melted"), "melted"),
                          (good.replace("359847", '"many"'), "wrong type")):
            with open(os.path.join(folder, "medium.json"), "w") as file:
                file.write(text)
            self.burn_fails(MEDIUM_INVALID, "medium.json is damaged: .*" + why)
            with open(os.path.join(folder, "medium.json")) as file:
                self.assertEqual(file.read(), text, "what can't be read is not touched")

    def test_a_medium_that_can_only_be_read(self):
        for kind in ("CD-ROM", "DVD-ROM", "BD-ROM"):
            folder = self.make_drive(kind=kind, capacityBlocks=1000)
            self.burn_fails(NOT_WRITABLE, f"The {kind} in .* can only be read; put in a disc that can be written")
            shutil.rmtree(folder)

    def test_a_medium_that_is_full_or_closed(self):
        for kind in ("CD-R", "DVD-R", "DVD+R", "BD-R"):
            folder = self.make_drive(kind=kind, capacityBlocks=359847)
            self.assertEqual(self.learn(self.start("plain")), ["DRStatusStateDone"])
            before = self.medium()
            self.burn_fails(NOT_BLANK, f"The {re_escape(kind)} in .* is not blank", "overwrite")
            self.assertEqual(self.medium(), before)
            shutil.rmtree(folder)

    def test_a_used_medium_that_nobody_said_may_be_overwritten(self):
        self.make_drive(kind="DVD+RW", capacityBlocks=2295104)
        self.assertEqual(self.learn(self.start("plain")), ["DRStatusStateDone"])
        before = self.medium()
        self.burn_fails(NOT_BLANK, "is not blank; put in a blank disc, or ask for it to be overwritten")
        self.assertEqual(self.medium(), before)

    # ---- layouts ------------------------------------------------------------------------------------------------

    def test_two_tracks_on_what_holds_one_in_a_session(self):
        for kind in ("DVD+R", "DVD-RW", "BD-RE"):
            folder = self.make_drive(kind=kind, capacityBlocks=359847)
            self.burn_fails(TOO_MANY_TRACKS, "A session has 2 tracks, but the .* holds one in each", "tracks")
            self.assertEqual(self.medium()["state"], "blank")
            shutil.rmtree(folder)

    def test_the_same_track_twice(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.burn_fails(TRACK_REUSED, "The same track stands in the layout twice", "same")
        self.assertEqual(self.medium()["state"], "blank")

    def test_a_test_burn_writes_nothing(self):
        self.make_drive(kind="DVD-R", capacityBlocks=359847)
        before = self.medium()
        self.assertEqual(self.learn(self.start("test")), ["DRStatusStateDone"])
        self.assertEqual(self.medium(), before)
        self.assertFalse(os.path.exists(self.image()))

    def test_no_room_on_the_medium(self):
        self.make_drive(kind="CD-R", capacityBlocks=1000)
        self.write("some.bin", bytes(3_000_000))
        self.burn_fails(NOT_ALLOWED, r"The data needs .* MB, but the CD-R .* has only 2\.0 MB free")
        self.assertEqual(self.medium()["state"], "blank")


def re_escape(text):
    return text.replace("+", r"\+")


if __name__ == "__main__":
    unittest.main()
