#!/usr/bin/python3
"""disc-drives: media whose tracks have subchannel data, from sheets that bring them; carried, checked and erased."""
import os
import random
import subprocess
import sys
import unittest

from drives_case import DrivesCase

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "engine", "subchannel"))
import subchannels  # noqa: E402


class Subchannels(DrivesCase):
    BLOCKS = (450, 400)

    def songs(self):
        """A sheet of two songs with pictures, and what its file holds: samples and symbols."""
        random.seed(17)
        count = sum(self.BLOCKS)
        sectors = [random.randbytes(2352) for _ in range(count)]
        symbols = [random.randbytes(96) for _ in range(count)]
        with open(self.path("songs.bin"), "wb") as file:
            file.write(b"".join(a + b for a, b in zip(sectors, symbols, strict=True)))
        with open(self.path("songs.cue"), "w", encoding="ascii") as file:
            file.write('CATALOG 0123456789012\nFILE "songs.bin" BINARY\n  TRACK 01 CDG\n    INDEX 01 00:00:00\n'
                       "  TRACK 02 CDG\n    ISRC USRC17607839\n    INDEX 00 00:05:00\n    INDEX 01 00:06:00\n")
        users = bytes(byte & 0x3F for byte in b"".join(symbols))
        return self.path("songs.cue"), b"".join(sectors), users

    def bytes_of(self, path):
        with open(path, "rb") as file:
            return file.read()

    def told(self, *command, cwd=None):
        done = subprocess.run(command, capture_output=True, text=True, check=False, cwd=cwd, errors="replace",
                              stdin=subprocess.DEVNULL)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def inserted(self):
        sheet, sectors, symbols = self.songs()
        self.succeed("create", "one", "--kind", "none")
        self.succeed("insert", "one", sheet, "--kind", "CD-RW")
        return sectors, symbols

    def test_a_sheet_of_songs_with_pictures_becomes_a_medium_with_all_of_them(self):
        sectors, symbols = self.inserted()
        self.assertEqual(sorted(os.listdir(self.drive("one"))),
                         ["drive.json", "lock", "medium.bin", "medium.cue", "medium.json", "medium.sub"])
        self.assertTrue(self.bytes_of(self.drive("one", "medium.bin")) == sectors)
        self.assertTrue(subchannels.symbols_of(self.drive("one", "medium.sub")) == symbols)
        self.assertEqual(subchannels.told(self.bytes_of(self.drive("one", "medium.sub"))), [
            "track 1 index 1: 375 sectors from 00:02:00, 00:00:00 up, control 0",
            "track 2 index 0: 75 sectors from 00:07:00, 00:00:74 down, control 0, P",
            "track 2 index 1: 400 sectors from 00:08:00, 00:00:00 up, control 0",
            "catalog 0123456789012, 9 times", "recording USRC17607839, 4 times"])
        tracks = self.shown("one")["medium"]["sessions"][0]["tracks"]
        self.assertEqual([track["subchannel"] for track in tracks], ["raw", "raw"])
        self.assertIn("audio, subchannel", self.succeed("show", "one"))
        self.assertEqual(self.succeed("verify", "one").count("good"), 2)

    def test_other_programs_read_the_sectors_as_if_nothing_lay_beside_them(self):
        sectors, _ = self.inserted()
        self.succeed("export", "one", self.path("shelf"))
        shelf = self.path("shelf")
        self.assertEqual(sorted(os.listdir(shelf)), ["medium.bin", "medium.cue", "medium.json", "medium.sub"])
        self.told("bchunk", "-r", "medium.bin", "medium.cue", "cut", cwd=shelf)
        cut = [self.bytes_of(os.path.join(shelf, f"cut{number:02}.cdr")) for number in (1, 2)]
        self.assertTrue(cut[0] == sectors[:375 * 2352], len(cut[0]))
        self.assertTrue(cut[1] == sectors[450 * 2352:], len(cut[1]))
        listed = self.told("cd-info", "--no-header", "--no-device-info", "--no-cddb", "--cue-file", "medium.cue", cwd=shelf)
        self.assertRegex(listed, r"(?m)^ +2: 00:08:00 .* audio ")
        self.assertIn("0123456789012", listed)
        toc = self.told("cdrdao", "show-toc", "medium.cue", cwd=shelf)
        self.assertIn("ISRC US RC1 76 07839", toc)

    def test_a_medium_that_was_exported_comes_back_whole(self):
        self.inserted()
        self.succeed("export", "one", self.path("shelf"))
        self.succeed("create", "two", "--kind", "none")
        self.succeed("insert", "two", self.path("shelf"))
        self.assertEqual(self.medium("two"), self.medium("one"))
        for name in ("medium.bin", "medium.sub", "medium.cue"):
            self.assertTrue(self.bytes_of(self.drive("one", name)) == self.bytes_of(self.drive("two", name)), name)
        self.succeed("verify", "two")
        # And by its sheet, as a copy.
        self.succeed("create", "three", "--kind", "none")
        self.succeed("insert", "three", os.path.join(self.path("shelf"), "medium.cue"), "--kind", "CD-R")
        self.assertTrue(self.bytes_of(self.drive("three", "medium.sub")) == self.bytes_of(self.drive("one", "medium.sub")))
        os.remove(os.path.join(self.path("shelf"), "medium.sub"))
        self.refuse("medium.sub", "insert", "three", self.path("shelf"), "--force")
        self.refuse(r'the file "medium.sub" is not there', "insert", "three",
                    os.path.join(self.path("shelf"), "medium.cue"), "--force")

    def test_files_of_names_of_a_persons_own_stay_together(self):
        self.inserted()
        self.succeed("export", "one", self.path("shelf"))
        shelf = self.path("shelf")
        for ending in ("bin", "sub"):
            os.rename(os.path.join(shelf, "medium." + ending), os.path.join(shelf, "songs." + ending))
        with open(os.path.join(shelf, "medium.json"), encoding="utf-8") as file:
            text = file.read()
        with open(os.path.join(shelf, "medium.json"), "w", encoding="utf-8") as file:
            file.write(text.replace("medium.bin", "songs.bin").replace("medium.sub", "songs.sub"))
        self.succeed("create", "two", "--kind", "none")
        self.succeed("insert", "two", shelf)
        track = self.medium("two")["sessions"][0]["tracks"][0]
        self.assertEqual(track["subchannelFile"], track["file"].removesuffix(".bin") + ".sub")
        self.succeed("verify", "two")

    def test_symbols_that_changed_are_found(self):
        self.inserted()
        for at, sentence in ((100 * 96 + 30, "its bytes are not those that were burned"),
                             (100 * 96 + 14, "its subchannel Q is not what its code says")):
            whole = self.bytes_of(self.drive("one", "medium.sub"))
            changed = bytearray(whole)
            changed[at] ^= 1
            with open(self.drive("one", "medium.sub"), "wb") as file:
                file.write(changed)
            done = self.run_command("verify", "one")
            self.assertEqual(done.returncode, 1, done.stdout)
            self.assertIn(sentence, done.stdout)
            with open(self.drive("one", "medium.sub"), "wb") as file:
                file.write(whole)
        self.succeed("verify", "one")
        os.truncate(self.drive("one", "medium.sub"), 300 * 96)
        self.assertIn("its subchannels are not there", self.run_command("verify", "one").stdout)

    def test_an_erased_medium_has_none(self):
        for options in ((), ("--complete",)):
            self.inserted()
            self.succeed("erase", "one", "--force", *options)
            self.assertEqual(sorted(os.listdir(self.drive("one"))), ["drive.json", "lock", "medium.json"])
            self.succeed("delete", "one", "--force")


if __name__ == "__main__":
    unittest.main()
