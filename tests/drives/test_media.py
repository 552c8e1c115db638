#!/usr/bin/python3
"""disc-drives: media are made, put into drives, taken out, carried to other programs and checked."""
import json
import os
import shutil
import signal
import struct
import subprocess
import time
import unittest

from drives_case import COMMAND, LIMIT, DrivesCase


class Media(DrivesCase):
    def same(self, one, other):
        with open(one, "rb") as first, open(other, "rb") as second:
            self.assertTrue(first.read() == second.read(), f"{one} and {other} differ")

    def grow(self, name, size):
        """Makes the medium's track larger, without a byte that takes room."""
        medium = self.medium(name)
        medium["sessions"][0]["tracks"][0]["blocks"] = size // 2048
        medium["capacityBlocks"] = max(medium["capacityBlocks"], size // 2048)
        os.truncate(self.drive(name, "medium.iso"), size // 2048 * 2048)
        with open(self.drive(name, "medium.json"), "w") as file:
            json.dump(medium, file)

    # ---- blank-medium and insert ------------------------------------------------------------------------------

    def test_a_blank_medium_is_a_file_that_goes_into_any_drive(self):
        file = self.path("blank.medium")
        self.assertEqual(self.succeed("blank-medium", "cd-r", file, "--capacity", "650MB"),
                         f'A blank CD-R is in "{file}".\n')
        for name in ("one", "two"):
            self.succeed("create", name, "--kind", "none")
            self.assertEqual(self.succeed("insert", name, file), f'A CD-R (blank) is in "{name}".\n')
            medium = self.shown(name)["medium"]
            self.assertEqual((medium["kind"], medium["state"], medium["capacityBlocks"]),
                             ("CD-R", "blank", 650_000_000 // 2048))
        self.assertEqual(sorted(os.listdir(self.scratch)), ["blank.medium", "drives"])

    def test_blank_media_that_cannot_be_made(self):
        self.refuse("could never be written", "blank-medium", "BD-ROM", self.path("x"))
        self.refuse("no medium of the kind", "blank-medium", "floppy", self.path("x"))
        self.refuse("There is no folder", "blank-medium", "CD-R", self.path("no", "x"))
        self.refuse("is a folder; give a file's name", "blank-medium", "CD-R", self.scratch)
        self.refuse("more than a CD-RW can hold", "blank-medium", "CD-RW", self.path("x"), "--capacity", "1GB")
        self.assertEqual(os.listdir(self.scratch), [])

    def test_a_file_is_overwritten_by_force_only(self):
        file = self.path("letter.txt")
        with open(file, "w") as out:
            out.write("Dear reader")
        self.refuse("There is a file .* already.* Give --force", "blank-medium", "CD-R", file)
        with open(file) as kept:
            self.assertEqual(kept.read(), "Dear reader")
        self.assertEqual(self.answer("blank-medium", "CD-R", file, "--force")["medium"]["kind"], "CD-R")

    def test_an_image_becomes_a_medium_that_can_only_be_read(self):
        image = self.image()
        self.succeed("create", "reader", "--kind", "none")
        self.assertEqual(self.succeed("insert", "reader", image), 'A CD-ROM (complete) is in "reader".\n')
        medium = self.shown("reader")["medium"]
        self.assertEqual((medium["state"], medium["appendable"], medium["overwritable"]), ("complete", False, False))
        self.assertEqual(medium["sessions"][0]["tracks"][0]["volumeName"], "Holiday")
        self.same(image, self.drive("reader", "medium.iso"))

    def test_large_images_go_onto_larger_kinds(self):
        self.succeed("create", "reader", "--kind", "none")
        for size, kind in ((800_000_000, "DVD-ROM"), (5_000_000_000, "BD-ROM")):
            image = self.image()
            os.truncate(image, size)
            self.assertEqual(self.answer("insert", "reader", image, "--force")["medium"]["kind"], kind)
            stored = os.stat(self.drive("reader", "medium.iso"))
            self.assertLess(stored.st_blocks * 512, 5_000_000, "holes are copied as holes")
        os.truncate(image, 30_000_000_000)
        self.refuse("larger than a BD-ROM of one layer", "insert", "reader", image, "--force")
        self.refuse("too large for a CD-R", "insert", "reader", image, "--force", "--kind", "CD-R")

    def test_an_image_on_a_kind_of_ones_own_choice(self):
        self.used("burner", "DVD-RW")
        medium = self.shown("burner")["medium"]
        self.assertEqual((medium["kind"], medium["state"], medium["erasable"]), ("DVD-RW", "complete", True))

    def test_an_image_with_half_a_block_is_filled_up(self):
        image = self.image()
        whole = os.path.getsize(image)
        with open(image, "ab") as file:
            file.write(b"x")
        self.succeed("create", "reader", "--kind", "none")
        self.succeed("insert", "reader", image)
        self.assertEqual(os.path.getsize(self.drive("reader", "medium.iso")), whole + 2048)
        self.succeed("verify", "reader")

    def test_files_that_are_no_media(self):
        self.succeed("create", "reader")
        before = self.medium("reader")
        for name, data, why in (("letter.txt", b"Dear reader", "neither a medium's description nor an image"),
                                ("empty", b"", "neither a medium's"),
                                ("broken.medium", b"{", "it is not JSON"),
                                ("later.medium", b'{"format": 99}', "later version"),
                                ("odd.medium", b'{"format": 1, "kind": "MO"}', "no medium is of the kind"),
                                ("lost.medium", b'{"format": 1, "kind": "CD-R", "capacityBlocks": 9, "state": '
                                                b'"complete", "image": "x.iso", "sessions": []}', "can't be found")):
            with open(self.path(name), "wb") as file:
                file.write(data)
            self.refuse(why, "insert", "reader", self.path(name))
        self.refuse("can't be found or read", "insert", "reader", self.path("nothing"))
        self.refuse("can't be found or read", "insert", "reader", self.scratch)
        self.refuse("leave out --kind", "insert", "reader", self.path("broken.medium"), "--kind", "CD-R")
        self.refuse("no medium of the kind", "insert", "reader", self.image(), "--kind", "MO")
        self.assertEqual(self.medium("reader"), before)
        self.assertEqual(sorted(os.listdir(self.drive("reader"))), ["drive.json", "lock", "medium.json"])

    def test_what_is_no_file_system_is_inserted_when_its_kind_is_said(self):
        with open(self.path("raw"), "wb") as file:
            file.write(os.urandom(10000))
        self.succeed("create", "reader", "--kind", "none")
        self.succeed("insert", "reader", self.path("raw"), "--kind", "CD-R")
        self.assertEqual(self.shown("reader")["medium"]["usedBlocks"], 5)
        self.succeed("verify", "reader")

    def album(self):
        """A sheet of two tracks of sound and one of data, as another program might have it; and the sound."""
        sound = os.urandom(2352 * 1500)
        self.image()
        with open(self.path("sound.bin"), "wb") as file:
            file.write(sound)
        with open(self.path("album.cue"), "w") as file:
            file.write('FILE "holiday.iso" BINARY\n  TRACK 01 MODE1/2048\n    INDEX 01 00:00:00\n'
                       'FILE "sound.bin" BINARY\n  TRACK 02 AUDIO\n    PREGAP 00:02:00\n    ISRC DEA123456789\n'
                       '    INDEX 01 00:00:00\n  TRACK 03 AUDIO\n    INDEX 01 00:10:00\n')
        return self.path("album.cue"), sound

    def test_a_sheet_becomes_a_medium_with_its_tracks(self):
        sheet, sound = self.album()
        self.succeed("create", "reader", "--kind", "none")
        self.assertEqual(self.succeed("insert", "reader", sheet), 'A CD-ROM (complete) is in "reader".\n')
        medium = self.shown("reader")["medium"]
        tracks = medium["sessions"][0]["tracks"]
        self.assertEqual([track["mode"] for track in tracks], ["data", "audio", "audio"])
        self.assertEqual((tracks[1]["isrc"], tracks[1]["blocks"], tracks[2]["blocks"]), ("DEA123456789", 750, 750))
        with open(self.drive("reader", "medium.bin"), "rb") as file:
            self.assertTrue(sound in file.read(), "the sound is on the medium")
        said = self.succeed("verify", "reader")
        self.assertEqual(said.count("good"), 3, said)
        self.assertIn("Holiday", said)
        self.assertEqual(sorted(os.listdir(self.drive("reader"))),
                         ["drive.json", "lock", "medium.bin", "medium.cue", "medium.json"])

    def test_a_medium_of_sectors_is_exported_for_other_programs_and_comes_back(self):
        sheet, _ = self.album()
        self.succeed("create", "one", "--kind", "none")
        self.succeed("insert", "one", sheet, "--kind", "CD-R")
        self.succeed("export", "one", self.path("shelf"))
        self.assertEqual(sorted(os.listdir(self.path("shelf"))), ["medium.bin", "medium.cue", "medium.json"])
        listed = subprocess.run(["cd-info", "--no-header", "--no-device-info", "--no-cddb", "--cue-file",
                                 self.path("shelf", "medium.cue")], capture_output=True, text=True, check=False).stdout
        self.assertRegex(listed, r"(?m)^ +1: .* data ")
        self.assertRegex(listed, r"(?m)^ +3: .* audio ")
        self.succeed("create", "two", "--kind", "none")
        self.succeed("insert", "two", self.path("shelf"))
        self.assertEqual(self.medium("two"), self.medium("one"))
        self.same(self.drive("one", "medium.bin"), self.drive("two", "medium.bin"))
        self.succeed("verify", "two")

    def test_sectors_that_are_damaged_are_found(self):
        sheet, _ = self.album()
        self.succeed("create", "one", "--kind", "none")
        self.succeed("insert", "one", sheet)
        self.patch(20 * 2352 + 100, b"changed")(self.drive("one", "medium.bin"))
        done = self.run_command("verify", "one")
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("error detection code", done.stdout)

    def test_sheets_that_lie(self):
        sheet, _ = self.album()
        self.succeed("create", "one", "--kind", "none")
        for text in ('FILE "lost.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n',
                     'FILE "sound.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 50:00:00\n', "TRACK 01 AUDIO\n", ""):
            with open(sheet, "w") as file:
                file.write(text)
            self.refuse("album.cue|lost.bin|sound.bin", "insert", "one", sheet)
            self.assertEqual(sorted(os.listdir(self.drive("one"))), ["drive.json", "lock"])

    def test_a_medium_with_data_is_replaced_by_force_only(self):
        self.used("burner")
        self.succeed("blank-medium", "CD-R", self.path("blank"))
        self.refuse("holds .* Give --force, and nobody will be asked: Replace it", "insert", "burner",
                    self.path("blank"))
        self.assertEqual(self.shown("burner")["medium"]["state"], "complete")
        self.succeed("insert", "burner", self.path("blank"), "--force")
        self.assertEqual(self.shown("burner")["medium"]["state"], "blank")
        self.assertEqual(sorted(os.listdir(self.drive("burner"))), ["drive.json", "lock", "medium.json"])

    def test_on_a_terminal_a_person_is_asked(self):
        self.used("burner")
        other = self.image("other.iso", "Other")
        status, screen = self.on_terminal("insert", "burner", other, answer=b"no\n")
        self.assertEqual((status, "Replace it? [y/N] " in screen), (1, True), screen)
        self.assertEqual(self.shown("burner")["medium"]["sessions"][0]["tracks"][0]["volumeName"], "Holiday")
        self.assertEqual(self.on_terminal("insert", "burner", other, answer=b"y\n")[0], 0)
        self.assertEqual(self.shown("burner")["medium"]["sessions"][0]["tracks"][0]["volumeName"], "Other")

    def test_a_medium_that_cannot_be_read_is_replaced_by_force_only(self):
        for damage in ('{"format": 1, "kind": "CD', '{"format": 99, "kind": "a later one"}'):
            self.used("burner")
            with open(self.drive("burner", "medium.json"), "w") as file:
                file.write(damage)
            self.refuse("can't be told. Give --force, and nobody will be asked: Replace it", "insert", "burner",
                        self.path("holiday.iso"))
            with open(self.drive("burner", "medium.json")) as file:
                self.assertEqual(file.read(), damage)
            self.assertIn('is in "burner"', self.succeed("insert", "burner", self.path("holiday.iso"), "--force"))
            self.succeed("verify", "burner")
            self.assertEqual(sorted(os.listdir(self.drive("burner"))),
                             ["drive.json", "lock", "medium.iso", "medium.json"])
            self.succeed("delete", "burner", "--force")

    def test_consent_is_for_the_medium_that_was_asked_about(self):
        """Who answers a question has seen one medium; another one that is there by then is not lost."""
        other = self.image("other.iso", "Other")
        for command in (("insert", "one", self.path("holiday.iso")), ("eject", "one", "--discard"), ("delete", "one"),
                        ("erase", "one")):
            self.used("one")
            status, screen = self.while_asked(
                lambda: self.succeed("insert", "one", other, "--kind", "DVD+RW", "--force"), *command)
            self.assertEqual(status, 1, screen)
            self.assertIn("is not the one any more that was asked about; nothing was changed", screen)
            self.assertEqual(self.shown("one")["medium"]["sessions"][0]["tracks"][0]["volumeName"], "Other")
            self.assertEqual(self.on_terminal(*command, answer=b"y\n")[0], 0)
            if command[0] != "delete":
                self.succeed("delete", "one", "--force")

    def test_an_open_tray_closes_with_what_was_put_on_it(self):
        self.succeed("create", "reader", "--kind", "none")
        self.succeed("open", "reader")
        self.succeed("insert", "reader", self.image())
        self.assertFalse(self.shown("reader")["trayOpen"])

    def test_a_drive_in_use_is_given_nothing(self):
        self.succeed("create", "burner")
        self.busy("burner")
        self.refuse("in use by another program", "insert", "burner", self.image())

    # ---- taking out ---------------------------------------------------------------------------------------------

    def test_an_exported_medium_goes_into_another_drive_as_it_was(self):
        self.used("one", "DVD-RAM")
        shelf = self.path("shelf", "holiday")
        self.assertEqual(self.succeed("export", "one", shelf),
                         f'The DVD-RAM lies in "{shelf}" as medium.json, medium.iso.\n')
        self.assertEqual(sorted(os.listdir(shelf)), ["medium.iso", "medium.json"])
        self.same(self.drive("one", "medium.iso"), os.path.join(shelf, "medium.iso"))
        self.succeed("create", "two", "--kind", "none")
        self.succeed("insert", "two", shelf)
        self.assertEqual(self.medium("two"), self.medium("one"))
        self.succeed("insert", "two", os.path.join(shelf, "medium.json"), "--force")
        self.same(self.drive("one", "medium.iso"), self.drive("two", "medium.iso"))

    def test_other_programs_read_an_exported_medium(self):
        self.used("one")
        self.succeed("export", "one", self.path("shelf"))
        listed = subprocess.run(["bsdtar", "-tf", self.path("shelf", "medium.iso")], capture_output=True, text=True,
                                check=True)
        self.assertIn("letter.txt", listed.stdout)

    def test_a_blank_medium_is_exported_without_data(self):
        self.succeed("create", "one", "--kind", "CD-RW")
        said = self.answer("export", "one", self.path("shelf"))
        self.assertEqual((said["files"], said["state"]), (["medium.json"], "blank"))

    def test_a_folder_that_is_not_empty_is_written_to_by_force_only(self):
        self.used("one")
        os.makedirs(self.path("shelf"))
        with open(self.path("shelf", "medium.iso"), "w") as file:
            file.write("mine")
        self.refuse("has files of these names: medium.iso. Give --force", "export", "one", self.path("shelf"))
        with open(self.path("shelf", "medium.iso")) as file:
            self.assertEqual(file.read(), "mine")
        self.succeed("export", "one", self.path("shelf"), "--force")
        self.same(self.drive("one", "medium.iso"), self.path("shelf", "medium.iso"))
        os.makedirs(self.path("desk"))
        with open(self.path("desk", "letter.txt"), "w"):
            pass
        self.refuse("is not empty.* Give --force", "export", "one", self.path("desk"))
        self.assertEqual(os.listdir(self.path("desk")), ["letter.txt"])

    def test_exports_that_cannot_be(self):
        self.succeed("create", "empty", "--kind", "none")
        self.refuse('There is no disc in "Virtual empty"', "export", "empty", self.path("shelf"))
        self.used("one")
        with open(self.path("file"), "w"):
            pass
        self.refuse("is no folder", "export", "one", self.path("file"))
        self.refuse("can't be made", "export", "one", self.path("file", "below"))

    def test_the_disk_is_full(self):
        self.used("one")
        self.grow("one", 400_000_000)
        with open(self.drive("one", "medium.iso"), "r+b") as file:
            file.seek(300_000_000)
            file.write(os.urandom(1_000_000))
        done = subprocess.run(["sh", "-c", f'ulimit -f 1000; trap "" XFSZ; exec "$@"', "sh", COMMAND, "export", "one",
                               self.path("shelf")], capture_output=True, text=True, env=self.environment(), check=False)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertRegex(done.stderr.splitlines()[-1], "can't be written")
        self.assertEqual(os.listdir(self.path("shelf")), [])

    def test_ejecting_to_a_folder_takes_the_medium_along(self):
        self.used("one")
        said = self.succeed("eject", "one", "--to", self.path("shelf"))
        self.assertEqual(said, f'The medium lies in "{self.path("shelf")}"; the tray is open.\n')
        self.assertIsNone(self.shown("one")["medium"])
        self.assertEqual(sorted(os.listdir(self.drive("one"))), ["drive.json", "lock", "tray"])
        self.succeed("insert", "one", self.path("shelf"))
        self.assertEqual(self.shown("one")["medium"]["state"], "complete")

    def test_no_file_of_a_persons_is_replaced_unasked(self):
        """What lies in the folder by the name of one of the medium's files, with or without a medium's description."""
        sheet, _ = self.album()
        for number, mine in enumerate(("medium.json", "medium.bin", "medium.cue", "medium.iso")):
            self.succeed("create", "one", "--kind", "none")
            self.succeed("insert", "one", self.path("holiday.iso") if mine == "medium.iso" else sheet, "--kind", "CD-R")
            folder = self.path(f"desk{number}")
            os.makedirs(folder)
            os.symlink("a disk that is not there", os.path.join(folder, mine))
            for command in (("eject", "one", "--to", folder), ("export", "one", folder)):
                self.refuse(f"has files of these names: {mine}. Give --force, and nobody will be asked: Overwrite them",
                            *command)
                status, screen = self.on_terminal(*command, answer=b"n\n")
                self.assertEqual(status, 1, screen)
                self.assertEqual(screen.count("[y/N]"), 1)
                self.assertEqual(os.listdir(folder), [mine])
                self.assertTrue(os.path.islink(os.path.join(folder, mine)))
            self.assertEqual(self.shown("one")["medium"]["state"], "complete")
            self.assertEqual(self.on_terminal("eject", "one", "--to", folder, answer=b"y\n")[0], 0)
            self.succeed("insert", "one", folder)
            self.refuse("has files of these names: medium.json, medium", "eject", "one", "--to", folder)
            self.succeed("delete", "one", "--force")
        os.makedirs(self.path("other"))
        with open(self.path("other", "letter.txt"), "w"):
            pass
        self.used("one")
        self.succeed("eject", "one", "--to", self.path("other"))
        self.assertEqual(sorted(os.listdir(self.path("other"))), ["letter.txt", "medium.iso", "medium.json"])

    def test_no_medium_is_taken_to_where_drives_are(self):
        """Its own folder above all: there its files would be gone with the medium."""
        self.used("one")
        self.used("two", "CD-R")
        os.symlink(self.drive("one"), self.path("link"))
        elsewhere = self.path("elsewhere")
        shutil.copytree(self.drive("two"), elsewhere)
        before = self.medium("one"), self.medium("two")
        shutil.copy(self.drive("one", "medium.iso"), self.path("kept.iso"))
        for folder in (self.drive("one"), self.drive("two"), self.drive("two", "below", "it"), self.drives,
                       self.drive("new"), self.path("link"), self.drive("one", "..", "two"), elsewhere):
            for command in (("eject", "one", "--to", folder), ("export", "one", folder),
                            ("blank-medium", "CD-R", os.path.join(folder, "medium.json"))):
                self.refuse("belongs to the drives; choose a folder elsewhere", *command, "--force")
        self.assertEqual((self.medium("one"), self.medium("two")), before)
        self.same(self.drive("one", "medium.iso"), self.path("kept.iso"))
        self.assertEqual(sorted(os.listdir(self.drives)), ["one", "two"])
        self.succeed("verify")

    def test_what_looks_like_ours_in_a_persons_folder_stays(self):
        """What a killed export left is known by what is in it."""
        self.used("one")
        dead = self.dead_process()
        mine, ours = self.path("shelf", f".staging-{dead}-mine"), self.path("shelf", f".staging-{dead}-ours")
        for folder, file in ((mine, "letter.txt"), (ours, ".disc-drives")):
            os.makedirs(folder)
            with open(os.path.join(folder, file), "w"):
                pass
        self.succeed("export", "one", self.path("shelf"), "--force")
        self.assertEqual(sorted(os.listdir(self.path("shelf"))), [os.path.basename(mine), "medium.iso", "medium.json"])
        self.assertEqual(os.listdir(mine), ["letter.txt"])
        os.makedirs(self.drive("one", f".staging-{dead}-old"))
        os.makedirs(self.drive("one", f".staging-{os.getpid()}-alive"))
        self.succeed("insert", "one", self.path("holiday.iso"), "--force")
        self.assertEqual(sorted(os.listdir(self.drive("one"))),
                         [f".staging-{os.getpid()}-alive", "drive.json", "lock", "medium.iso", "medium.json"])

    def test_a_medium_is_thrown_away_by_force_only(self):
        self.used("one")
        self.refuse("Give --force.*: Throw it away", "eject", "one", "--discard")
        self.assertTrue(os.path.exists(self.drive("one", "medium.iso")))
        self.succeed("eject", "one", "--discard", "--force")
        self.assertIsNone(self.shown("one")["medium"])
        self.refuse("There is no disc", "eject", "one", "--discard", "--force")

    # ---- verify ---------------------------------------------------------------------------------------------------

    def test_a_good_medium_is_called_good(self):
        self.used("one")
        said = self.succeed("verify", "one")
        self.assertRegex(said, r"(?m)^ +1 +1  data +\d+ KB +1  Holiday  good$")
        self.assertIn("one: Every block of the DVD+RW can be read, and is as described.", said)
        told = self.answer("verify", "one")
        self.assertTrue(told["good"])
        track = told["drives"][0]["tracks"][0]
        self.assertEqual((track["files"], track["fileSystem"], track["volumeName"]), (1, True, "Holiday"))

    def test_all_drives_are_verified_when_none_is_named(self):
        self.used("one")
        self.succeed("create", "two")
        self.succeed("create", "three", "--kind", "none")
        said = self.succeed("verify")
        self.assertIn("two: The DVD+RW is blank.", said)
        self.assertIn("three: There is no medium to verify.", said)
        os.truncate(self.drive("one", "medium.iso"), 4096)
        self.assertEqual(self.run_command("verify").returncode, 1)

    def test_a_drive_in_use_keeps_no_other_from_being_verified(self):
        for name in ("one", "two", "three"):
            self.used(name)
        self.busy("two")
        done = self.run_command("verify")
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertRegex(done.stdout, r"(?m)^two: The drive .* is in use by another program; try again later\.$")
        for name in ("one", "three"):
            self.assertIn(f"{name}: Every block of the DVD+RW can be read", done.stdout)
        told = json.loads(self.run_command("--json", "verify").stdout)
        self.assertEqual([told["good"]] + [(each["name"], each["good"]) for each in told["drives"]],
                         [False, ("one", True), ("three", True), ("two", False)])

    def test_no_medium_to_verify(self):
        self.succeed("create", "one", "--kind", "none")
        self.refuse("There is no disc in \"one\" to verify", "verify", "one")

    def damage(self, change):
        """A drive whose medium was changed behind its back; what verify finds."""
        shutil.rmtree(self.drives, ignore_errors=True)
        self.succeed("create", "one", "--kind", "none")
        files = [(f"folder{number}/file{number}.txt", b"x" * 5000) for number in range(5)]
        self.succeed("insert", "one", self.image(files=files), "--kind", "DVD+RW")
        change(self.drive("one", "medium.iso"))
        done = self.run_command("verify", "one")
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertFalse(json.loads(self.run_command("--json", "verify", "one").stdout)["good"])
        return done.stdout

    def patch(self, offset, data):
        def change(path):
            with open(path, "r+b") as file:
                file.seek(offset)
                file.write(data)
        return change

    def test_a_medium_that_is_cut_short_is_found(self):
        said = self.damage(lambda path: os.truncate(path, 50 * 2048))
        self.assertRegex(said, "ends after 50 of|can't be read|shorter")

    def test_a_medium_without_its_file_is_found(self):
        done = self.damage(os.remove)
        self.assertIn("one: ", done)

    def test_a_file_system_that_is_not_there_is_found(self):
        self.assertIn('its file system "Holiday" is not there', self.damage(self.patch(16 * 2048, b"\0" * 2048)))

    def test_folders_that_are_damaged_are_found(self):
        self.assertIn("two numbers that should be the same", self.damage(self.patch(16 * 2048 + 156 + 2, b"\xff")))
        self.assertIn("behind the end", self.damage(
            self.patch(16 * 2048 + 156 + 2, struct.pack("<I", 1 << 30) + struct.pack(">I", 1 << 30))))
        self.assertIn("no end", self.damage(self.patch(18 * 2048, b"\0" * 2048)))
        self.assertRegex(self.damage(self.patch(16 * 2048 + 80, struct.pack("<I", 1 << 20) + struct.pack(">I", 1 << 20))),
                         r"1048576 blocks long, but only \d+ were written")

    def test_a_byte_that_changed_is_found_in_its_track(self):
        source = os.path.join(self.scratch, "sound.bin")
        with open(source, "wb") as file:
            file.write((bytes(range(256)) * 9000)[:2352 * 900])
        sheet = os.path.join(self.scratch, "sound.cue")
        with open(sheet, "w", encoding="utf-8") as file:
            file.write('FILE "sound.bin" BINARY\n' + "".join(
                f"  TRACK {number:02} AUDIO\n    INDEX 01 00:{(number - 1) * 4:02}:00\n" for number in (1, 2, 3)))
        self.succeed("create", "one", "--kind", "none")
        self.succeed("insert", "one", sheet)
        said = self.answer("verify", "one")
        self.assertEqual([track["compared"] for track in said["drives"][0]["tracks"]], [True] * 3)
        self.patch(400 * 2352 + 77, b"?")(self.drive("one", "medium.bin"))
        done = self.run_command("verify", "one")
        self.assertEqual(done.returncode, 1)
        self.assertEqual([line.rsplit("  ", 1)[-1] for line in done.stdout.splitlines() if " audio " in line],
                         ["good", "its bytes are not those that were burned", "good"])
        self.assertIn("one: The CD-ROM is not as described.", done.stdout)
        # A description without sums is one of before, or of an image that was not burned here.
        medium = self.medium("one")
        for track in medium["sessions"][0]["tracks"]:
            del track["xxh3"]
        with open(self.drive("one", "medium.json"), "w", encoding="utf-8") as file:
            json.dump(medium, file)
        self.succeed("verify", "one")

    def test_a_folder_that_holds_itself_is_found(self):
        def change(path):
            with open(path, "r+b") as file:
                data = bytearray(file.read())
                root = struct.unpack_from("<I", data, 16 * 2048 + 156 + 2)[0]
                at = root * 2048
                for _ in range(2):  # itself and its parent
                    at += data[at]
                struct.pack_into("<I", data, at + 2, root)
                struct.pack_into(">I", data, at + 6, root)
                file.seek(0)
                file.write(data)
        self.assertIn("a folder stands in two places", self.damage(change))

    def test_an_incomplete_medium_is_called_that_openly(self):
        self.used("one", "CD-R")
        medium = self.medium("one")
        medium["state"] = "incomplete"
        with open(self.drive("one", "medium.json"), "w") as file:
            json.dump(medium, file)
        done = self.run_command("verify", "one")
        self.assertEqual(done.returncode, 1)
        self.assertIn("one: The medium is incomplete: a burn was cut off or failed. Don't trust what is on it.",
                      done.stdout)
        self.assertRegex(self.succeed("list"), r"(?m)^one .* incomplete ")
        self.assertIn("can't be trusted", self.succeed("show", "one"))
        self.assertIn("It is incomplete", self.succeed("export", "one", self.path("shelf")))

    def test_a_description_that_claims_more_than_the_medium_holds(self):
        self.used("one", "CD-R")
        medium = self.medium("one")
        medium["capacityBlocks"] = 20
        with open(self.drive("one", "medium.json"), "w") as file:
            json.dump(medium, file)
        done = self.run_command("verify", "one")
        self.assertEqual(done.returncode, 1)
        self.assertIn("behind the end of the medium", done.stdout)

    def test_a_drive_in_use_is_not_verified(self):
        self.used("one")
        self.busy("one")
        self.refuse("in use", "verify", "one")

    def test_long_work_shows_how_far_it_is(self):
        self.used("one")
        self.grow("one", 4_600_000_000)
        done = self.run_command("verify", "one")
        self.assertEqual(done.stderr, "Reading one …\n  25%\n  50%\n  75%\n  100%\n", done.stdout)
        self.assertEqual(self.run_command("--json", "verify", "one").stderr, "")

    def test_on_a_terminal_long_work_has_a_bar(self):
        """Only what takes longer than a moment does; so much does on every machine, and nobody waits for its end here."""
        self.used("one", "BD-RE")
        self.grow("one", 120_000_000_000)
        status, screen = self.interrupted("verify", "one", at=b"%  Reading one")
        self.assertEqual(status, 130, screen)
        self.assertRegex(screen, r"\r\[#*-+\] [0-9]{1,2}%  Reading one  [0-9.]+ [MG]B/s  [0-9]+:[0-9]{2} left +\r")
        self.assertNotIn("Reading one …", screen)
        self.assertIn("disc-drives: interrupted; nothing was left half-done.", screen)

    def test_a_tracks_size_is_that_of_its_sectors(self):
        with open(self.path("song.bin"), "wb") as file:
            file.write(os.urandom(2352 * 1000))
        with open(self.path("song.cue"), "w") as file:
            file.write('FILE "song.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n')
        self.succeed("create", "one", "--kind", "none")
        self.succeed("insert", "one", self.path("song.cue"))
        for command in ("show", "verify"):
            self.assertRegex(self.succeed(command, "one"), r"(?m)^ +1 +1  audio .*2\.4 MB")

    # ---- cut off ----------------------------------------------------------------------------------------------------

    def test_cut_off_at_any_point_an_exchange_leaves_one_medium_or_the_other(self):
        self.used("one")
        before = self.medium("one")
        other = self.image("other.iso", "Other", [("big", os.urandom(30_000_000))])
        outcomes = {signal.SIGINT: set(), signal.SIGKILL: set()}
        for number in range(24):
            process = subprocess.Popen([COMMAND, "insert", "one", other, "--kind", "DVD+RW", "--force"],
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                       env=self.environment())
            time.sleep(0.004 * (number // 2))
            how = signal.SIGINT if number % 2 == 0 else signal.SIGKILL
            process.send_signal(how)
            process.communicate(timeout=LIMIT)
            now = self.medium("one")
            outcomes[how].add(process.returncode)
            self.assertEqual(json.loads(self.run_command("--json", "verify", "one").stdout)["good"], True, now)
            volume = self.medium("one")["sessions"][0]["tracks"][0]["volumeName"]
            self.assertIn(volume, ("Holiday", "Other"))
            if how == signal.SIGINT:
                left = [name for name in os.listdir(self.drive("one")) if name.startswith(f".staging-{process.pid}-")]
                self.assertEqual(left, [])
            if volume == "Other":
                self.succeed("insert", "one", self.path("holiday.iso"), "--kind", "DVD+RW", "--force")
        self.assertTrue(outcomes[signal.SIGKILL] & {-9}, "none was cut off")
        self.succeed("insert", "one", other, "--kind", "DVD+RW", "--force")
        self.assertEqual(sorted(os.listdir(self.drive("one"))), ["drive.json", "lock", "medium.iso", "medium.json"])
        self.assertNotEqual(self.medium("one"), before)


if __name__ == "__main__":
    unittest.main()
