#!/usr/bin/python3
"""disc-drives: media that a person wrote, closed or changed meanwhile, and discs with more than one file system."""
import json
import os
import subprocess
import unittest

from drives_case import COMMAND, LIMIT, DrivesCase


class OddMedia(DrivesCase):
    # ---- insert -------------------------------------------------------------------------------------------------

    # Each file gets a new name; two would get the same.
    def test_a_description_whose_files_would_get_one_name_is_refused(self):
        self.used("one")
        before, listed = self.medium("one"), sorted(os.listdir(self.drive("one")))
        for number, names in enumerate((("medium.iso", "medium.new.iso"), ("mine.iso", "medium.new.100.iso"))):
            folder = self.path(f"shelf{number}")
            os.makedirs(folder)
            tracks = []
            for place, name in enumerate(names):
                with open(os.path.join(folder, name), "wb") as file:
                    file.write(bytes([place]) * 2048 * 100)
                tracks.append({"mode": "data", "startBlock": 20_000 * place, "blocks": 100, "file": name})
            with open(os.path.join(folder, "medium.json"), "w") as file:
                json.dump({"format": 1, "kind": "CD-R", "capacityBlocks": 300_000, "state": "complete", "image": names[0],
                           "sessions": [{"tracks": [track]} for track in tracks]}, file)
            self.refuse("names two files that would both become .*; rename", "--json", "insert", "one", folder, "--force")
        self.assertEqual(self.medium("one"), before)
        self.assertEqual(sorted(os.listdir(self.drive("one"))), listed)

    def test_an_image_that_may_not_be_read_is_said_to_be_that(self):
        self.succeed("create", "reader")
        image = self.image()
        os.chmod(image, 0)
        command = [COMMAND, "insert", "reader", image]
        if os.geteuid() == 0:  # nothing is unreadable for root
            command = ["setpriv", "--bounding-set=-dac_override,-dac_read_search", *command]
        done = subprocess.run(command, capture_output=True, text=True, timeout=LIMIT, env=self.environment(), check=False)
        if "setpriv" in done.stderr:
            self.skipTest("setpriv may give up no right here")
        self.assertEqual((done.returncode, done.stderr),
                         (1, f'disc-drives: "{image}" can\'t be read. (Permission denied)\n'))

    # ---- what is saved meanwhile --------------------------------------------------------------------------------

    def save(self, *path):
        with open(self.path(*path), "w", encoding="utf-8") as file:
            file.write("mine")

    def is_mine(self, *path):
        with open(self.path(*path), encoding="utf-8", errors="replace") as file:
            self.assertEqual(file.read(), "mine")

    def test_what_was_not_asked_about_is_not_replaced(self):
        for number, command in enumerate((("export", "one"), ("eject", "one", "--to"))):
            self.used("one")
            folder = f"desk{number}"
            os.makedirs(self.path(folder))
            self.save(folder, "medium.json")
            status, screen = self.while_asked(lambda: self.save(folder, "medium.iso"), *command, self.path(folder))
            self.assertEqual(status, 1, screen)
            self.assertIn("has files of these names: medium.json.", screen)
            self.assertRegex(screen, 'medium.iso" was made by another program meanwhile, and is not overwritten')
            for name in ("medium.json", "medium.iso"):
                self.is_mine(folder, name)
            self.assertEqual(sorted(os.listdir(self.path(folder))), ["medium.iso", "medium.json"])
            self.assertEqual(self.shown("one")["medium"]["state"], "complete")
            self.succeed(*command, self.path(folder), "--force")
            self.succeed("delete", "one", "--force")

    def test_of_several_files_none_is_put_beside_one_that_was_saved_meanwhile(self):
        with open(self.path("song.bin"), "wb") as file:
            file.write(os.urandom(2352 * 1000))
        with open(self.path("song.cue"), "w", encoding="ascii") as file:
            file.write('FILE "song.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n')
        self.succeed("create", "one", "--kind", "none")
        self.succeed("insert", "one", self.path("song.cue"))
        os.makedirs(self.path("desk"))
        self.save("desk", "medium.json")
        status, screen = self.while_asked(lambda: self.save("desk", "medium.cue"), "export", "one", self.path("desk"))
        self.assertEqual(status, 1, screen)
        self.assertEqual(sorted(os.listdir(self.path("desk"))), ["medium.cue", "medium.json"])
        for name in ("medium.cue", "medium.json"):
            self.is_mine("desk", name)

    def test_a_file_that_a_link_names_is_asked_about(self):
        os.symlink("a disk that is not there", self.path("blank.medium"))
        self.refuse("There is a file .* already", "blank-medium", "CD-R", self.path("blank.medium"))
        self.assertTrue(os.path.islink(self.path("blank.medium")))
        self.succeed("blank-medium", "CD-R", self.path("blank.medium"), "--force")

    # ---- verify -------------------------------------------------------------------------------------------------

    def test_verify_says_which_folders_it_did_not_look_into(self):
        source = self.path("Holiday")
        os.makedirs(source)
        self.save("Holiday", "letter.txt")
        image = self.path("bridge.iso")
        subprocess.run(["genisoimage", "-quiet", "-udf", "-R", "-o", image, source], check=True, capture_output=True)
        self.succeed("create", "one", "--kind", "none")
        self.succeed("insert", "one", image)
        self.assertIn("one: The folders that track 1 has in UDF were not looked into.\n", self.succeed("verify", "one"))
        self.assertEqual(self.answer("verify", "one")["drives"][0]["tracks"][0]["notLookedInto"], ["UDF"])
        with open(image, "r+b") as file:  # where HFS+ has its header
            file.seek(1024)
            file.write(b"H+")
        self.succeed("insert", "one", image, "--force")
        self.assertEqual(self.answer("verify", "one")["drives"][0]["tracks"][0]["notLookedInto"], ["HFS+", "UDF"])
        self.succeed("insert", "one", self.image(), "--force")
        self.assertNotIn("looked into", self.succeed("verify", "one"))

    # A map leads to HFS+ where it does not begin with the disc.
    def test_verify_says_that_it_did_not_look_into_hfs_plus_of_a_disc_that_was_burned(self):
        program = self.path("burn.bas")
        with open(program, "w", encoding="utf-8") as file:
            file.write("\n".join((
                'Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("DISC")',
                "root.explicitFilesystemMask = DRFSObjectQRX.DRFilesystemInclusionMaskISO9660 Or DRFSObjectQRX.DRFilesystemInclusionMaskHFSPlus",
                "Dim data As New MemoryBlock(5)",
                'root.addChild(DRFileQRX.virtualFileWithName("file", data))',
                "Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))",
                "burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount",
                "burn.writeLayout(DRTrackQRX.trackForRootFolder(root))",
                "Do",
                "    App.DoEvents(10)",
                "Loop Until burn.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateDone",
            )))
        self.succeed("create", "one", "--kind", "CD-R")
        subprocess.run([os.environ["DISC_BASIC"], "run", program], env=self.environment(), check=True, timeout=LIMIT)
        self.assertIn("one: The folders that track 1 has in HFS+ were not looked into.\n", self.succeed("verify", "one"))


if __name__ == "__main__":
    unittest.main()
