#!/usr/bin/python3
"""Trees made in memory: what each file system of the disc shows of them, read by programs that are not ours."""
import os
import subprocess
import unittest

import pycdlib

from examples_case import ExamplesCase


class Trees(ExamplesCase):
    def virtual_tree(self):
        said = self.succeed("virtual-tree.bas")
        self.assertIn("measurement 1.txt is MEASUREM.TXT in ISO 9660 level 1\n", said)
        self.assertIn("measurement 3.txt is MEAS_002.TXT in ISO 9660 level 1\n", said)
        self.assertIn("Burned Virtual Tree in Virtual Disc Drive 1.\n", said)
        return self.image()

    def bas(self, text):
        return self.write("program.bas", text.encode(), self.scratch)

    def joliet(self, image):
        iso = pycdlib.PyCdlib()
        iso.open(image)
        found = [os.path.join(folder, name).removesuffix(";1") for folder, _, names in iso.walk(joliet_path="/") for name in names]
        iso.close()
        return sorted(found)

    def hfs_plus(self, image):
        """Names as 7zz finds them; it warns that something stands in front."""
        done = subprocess.run(["7zz", "l", "-slt", "-thfs", image], capture_output=True, text=True, check=False)
        names = [line[7:] for line in done.stdout.splitlines() if line.startswith("Path = ")]
        return sorted(name for name in names if name != image)

    def in_hfs_plus(self, image, path):
        return subprocess.run(["grub-fstest", image, "cat", "(loop0,apple3)" + path], capture_output=True,
                              check=True).stdout

    # ---- virtual-tree -----------------------------------------------------------------------------------------

    def test_virtual_tree_in_rock_ridge(self):
        image = self.virtual_tree()
        done = subprocess.run(["bsdtar", "-tvf", image], capture_output=True, text=True, check=True,
                              env=dict(os.environ, TZ="UTC", LC_ALL="C.UTF-8"))
        lines = [line.split(None, 8) for line in done.stdout.splitlines()]
        names = {line[8].removeprefix("./"): line for line in lines}
        self.assertEqual(sorted(names), [
            ".", "letter.txt", "links", "links/again.txt", "links/way to the letter -> ../letter.txt",
            "measurements", "measurements/measurement 1.txt", "measurements/measurement 2.txt",
            "measurements/measurement 3.txt"])
        self.assertEqual(names["letter.txt"][0], "-rw-r-----")
        self.assertEqual(names["letter.txt"][7], "2001")
        files = self.files_on(image)
        self.assertEqual(files["letter.txt"], b"Dear reader,\n")
        self.assertEqual(files["links/again.txt"], b"Dear reader,\n")
        self.assertEqual(files["links/way to the letter"], b"Dear reader,\n")
        self.assertEqual(files["measurements/measurement 3.txt"], b"9\n")

    def test_virtual_tree_in_joliet(self):
        self.assertEqual(self.joliet(self.virtual_tree()), [
            "/The Letter.txt", "/measurements/measurement 1.txt", "/measurements/measurement 2.txt",
            "/measurements/measurement 3.txt"])

    def test_virtual_tree_in_hfs_plus(self):
        image = self.virtual_tree()
        self.assertEqual(self.hfs_plus(image), [
            "Virtual Tree", "Virtual Tree/for Macintosh.txt", "Virtual Tree/letter.txt", "Virtual Tree/links",
            "Virtual Tree/measurements", "Virtual Tree/measurements/measurement 1.txt",
            "Virtual Tree/measurements/measurement 2.txt", "Virtual Tree/measurements/measurement 3.txt"])
        self.assertEqual(self.in_hfs_plus(image, "/letter.txt"), b"Dear reader,\n")
        self.assertEqual(self.in_hfs_plus(image, "/for Macintosh.txt"), b"Only in HFS+\n")

    def test_the_bytes_of_a_file_with_several_names_are_there_once(self):
        image = self.virtual_tree()
        with open(image, "rb") as file:
            self.assertEqual(file.read().count(b"Dear reader,\n"), 1)

    # ---- generated-files --------------------------------------------------------------------------------------

    def test_generated_files_have_the_bytes_that_the_events_made(self):
        said = self.succeed("generated-files.bas", "300")
        self.assertEqual(sorted(said.splitlines()), sorted([
            "Making powers of 2.txt", "Making powers of 3.txt", "Done with powers of 2.txt",
            "Done with powers of 3.txt", "Burned 300 rows in each of 2 tables."]))
        files = self.files_on(self.image())
        for exponent in (2, 3):
            self.assertEqual(files[f"powers of {exponent}.txt"].decode(),
                             "".join(f"{n:10}{n ** exponent:13}\n" for n in range(1, 301)))

    def test_generated_files_of_more_than_one_buffer(self):
        self.succeed("generated-files.bas", "20000")
        self.assertEqual(self.files_on(self.image())["powers of 2.txt"].decode(),
                         "".join(f"{n:10}{n * n:13}\n" for n in range(1, 20001)))


if __name__ == "__main__":
    unittest.main()
