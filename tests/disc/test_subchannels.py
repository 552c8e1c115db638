#!/usr/bin/python3
"""Discs of songs with pictures, as the example programs burn and copy them."""
import os
import random
import sys
import unittest

from examples_case import ROOT, ExamplesCase

sys.path.insert(0, os.path.join(ROOT, "tests", "engine", "subchannel"))
import subchannels  # noqa: E402


class Subchannels(ExamplesCase):
    def bytes_of(self, *path):
        with open(os.path.join(*path), "rb") as file:
            return file.read()

    def test_a_disc_of_songs_with_pictures_is_burned_and_copied_whole(self):
        random.seed(29)
        sectors = [random.randbytes(2352) for _ in range(700)]
        symbols = [random.randbytes(96) for _ in range(700)]
        with open(os.path.join(self.scratch, "songs.bin"), "wb") as file:
            file.write(b"".join(a + b for a, b in zip(sectors, symbols, strict=True)))
        sheet = os.path.join(self.scratch, "songs.cue")
        with open(sheet, "w", encoding="ascii") as file:
            file.write('TITLE "Sing along"\nFILE "songs.bin" BINARY\nTRACK 01 CDG\nTITLE "One"\nINDEX 01 00:00:00\n'
                       'TRACK 02 CDG\nTITLE "Two"\nINDEX 01 00:05:00\n')
        first = self.make_drive("a", "First", kind="CD-R", capacityBlocks=359847)
        second = self.make_drive("b", "Second", kind="CD-RW", capacityBlocks=359847)
        self.succeed("burn-image.bas", sheet)
        self.assertTrue(self.bytes_of(first, "medium.bin") == b"".join(sectors))
        users = bytes(byte & 0x3F for byte in b"".join(symbols))
        self.assertTrue(subchannels.symbols_of(os.path.join(first, "medium.sub")) == users)
        self.assertIn("Copied 2 tracks, ", self.succeed("copy-disc.bas", "Virtual First", "Virtual Second"))
        for name in ("medium.bin", "medium.sub", "medium.cue", "medium.cdt"):
            self.assertTrue(self.bytes_of(first, name) == self.bytes_of(second, name), name)
        self.assertEqual([track["subchannel"] for track in self.medium("b")["sessions"][0]["tracks"]], ["raw", "raw"])


if __name__ == "__main__":
    unittest.main()
