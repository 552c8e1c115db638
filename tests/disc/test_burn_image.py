#!/usr/bin/python3
"""The example burn-image burns images, sheets and nothing else, with the companion plug-in and without it."""
import os
import subprocess
import unittest

from examples_case import ExamplesCase


class BurnImage(ExamplesCase):
    def test_an_image_is_burned_as_it_is(self):
        image = os.path.join(self.scratch, "holiday.iso")
        subprocess.run(["genisoimage", "-quiet", "-R", "-V", "Holiday", "-o", image, self.source], check=True,
                       capture_output=True)
        self.make_drive(kind="DVD-R", capacityBlocks=2298496)
        said = self.succeed("burn-image.bas", image)
        self.assertRegex(said.splitlines()[-1], r"^Burned holiday.iso, [0-9.]+ MB, in .*; every byte was read back")
        with open(image, "rb") as burned, open(self.image(), "rb") as medium:
            self.assertEqual(medium.read(os.path.getsize(image)), burned.read())

    def test_a_sheet_with_sound(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.write("disc.bin", os.urandom(2352 * 1000), self.scratch)
        sheet = self.write("disc.cue", b'FILE "disc.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n'
                                       b'  TRACK 02 AUDIO\n    INDEX 01 00:06:00\n', self.scratch)
        self.assertRegex(self.succeed("burn-image.bas", sheet), r"(?m)^Burned disc.cue, .*; every byte was read back")
        with open(os.path.join(self.scratch, "disc.bin"), "rb") as sound:
            wanted = sound.read()
        tracks = self.medium()["sessions"][0]["tracks"]
        self.assertEqual([track["mode"] for track in tracks], ["audio", "audio"])
        with open(os.path.join(self.drives, "drive-1", tracks[0]["file"]), "rb") as burned:
            self.assertIn(wanted, burned.read())

    def test_what_is_no_image(self):
        # The platform's log says why, and the program that it is none.
        self.refuse("there is no ISO 9660.*file system in it.\n.* is no image that can be burned", "burn-image.bas",
                    os.path.join(self.source, "letter.txt"), lines=2)
        self.refuse("is a folder; burn-folder.bas burns folders", "burn-image.bas", self.source)
        self.refuse("there is no file /no/such.iso", "burn-image.bas", "/no/such.iso")
        self.refuse(r"^Usage: burn-image.bas \[--drive=NAME\] IMAGE$", "burn-image.bas", status=2)
        sheet = self.write("disc.cue", b'FILE "lost.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n',
                           self.scratch)
        self.refuse("lost.bin.*\n.* is no image that can be burned", "burn-image.bas", sheet, lines=2)

    def test_a_sheet_that_lies_about_lengths_is_refused_before_anything_is_written(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.write("short.bin", bytes(100 * 2352))
        for times, sentence in ((("00:00:00", "00:09:00"), "00:09:00 lies behind the end"),
                                (("00:01:00", "00:00:50"), "00:00:50")):
            sheet = self.write("lies.cue", ('FILE "short.bin" BINARY\n' + "".join(
                "  TRACK %02d AUDIO\n    INDEX 01 %s\n" % (number + 1, time) for number, time in enumerate(times))).encode())
            self.refuse(sentence + ".*\n.* is no image that can be burned", "burn-image.bas", sheet, lines=2)
        self.assertEqual(self.medium()["state"], "blank")


if __name__ == "__main__":
    unittest.main()
