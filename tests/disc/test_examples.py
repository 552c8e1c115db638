#!/usr/bin/python3
"""The example programs do what they say, with the companion plug-in and without it."""
import os
import shutil
import subprocess
import time
import unittest

from examples_case import HOST, LIMIT, OPTIONS, ExamplesCase

HERE = os.path.dirname(os.path.abspath(__file__))


class Examples(ExamplesCase):
    # ---- list-drives ------------------------------------------------------------------------------------------

    def test_list_drives_shows_what_a_person_wants_to_know(self):
        self.assertEqual(self.succeed("list-drives.bas").splitlines(), [
            "Virtual Disc Drive 1",
            "  Revision    1.00",
            "  Connected   ATAPI, internal",
            "  Writes      CD-R, CD-RW, DVD-R, DVD-R DL, DVD-RW, DVD-RAM, DVD+R, DVD+R DL, DVD+RW, BD-R, BD-RE",
            "  Where       " + os.path.join(self.drives, "drive-1"),
            "  Medium      DVD+RW: blank, can be erased",
            "  Room        0.0 MB used, 4.70 GB free"])

    def test_list_drives_names_every_kind_of_medium(self):
        kinds = ("CD-ROM", "CD-R", "CD-RW", "DVD-ROM", "DVD-R", "DVD-R DL", "DVD-RW", "DVD-RAM", "DVD+R", "DVD+R DL",
                 "DVD+RW", "BD-ROM", "BD-R", "BD-RE")
        for number, kind in enumerate(kinds):
            self.make_drive(f"d{number:02}", kind, kind=kind, capacityBlocks=1000)
        lines = self.succeed("list-drives.bas").splitlines()
        shown = [line.split(":")[0][14:] for line in lines if line.startswith("  Medium")]
        self.assertEqual(shown, list(kinds))

    def test_list_drives_tells_of_no_drive_no_medium_and_an_open_tray(self):
        self.no_drive()
        self.assertEqual(self.succeed("list-drives.bas"), "There is no drive that can write discs; disc-drives list names those in use.\n")
        self.make_drive()
        self.assertIn("  Medium      none\n", self.succeed("list-drives.bas"))

    def test_list_drives_tells_a_disc_whose_burn_was_cut_off(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        done = subprocess.run([HOST, *OPTIONS, "run", os.path.join(HERE, "torn.bas"), "Virtual Disc Drive 1", "ends"],
                              capture_output=True, text=True, timeout=LIMIT, env=self.environment(), check=True)
        self.assertEqual(done.stdout, "DRStatusStateFailed\n")
        self.assertIn("  Medium      CD-R: incomplete, because its burn was stopped or failed\n", self.succeed("list-drives.bas"))

    def test_list_drives_tells_of_a_drive_that_another_program_has(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.assertNotIn("In use", self.succeed("list-drives.bas"))
        program = self.write("hold.bas", b"Print DRDeviceQRX.device(0).acquireExclusiveAccess\nStdOut.Flush\nCall StdIn.ReadLine\n",
                             self.scratch)
        with subprocess.Popen([HOST, *OPTIONS, "run", program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                              env=self.environment()) as holder:
            self.assertEqual(holder.stdout.readline(), "True\n")
            self.assertIn("  In use      by a program\n", self.succeed("list-drives.bas"))
            holder.communicate("\n", timeout=LIMIT)

    # ---- burn-folder ------------------------------------------------------------------------------------------

    def test_burn_folder_burns_with_every_option(self):
        self.make_drive("a", "First", kind="CD-RW", capacityBlocks=359847)
        self.make_drive("b", "Second", kind="CD-RW", capacityBlocks=359847)
        said = self.succeed("burn-folder.bas", "--drive=Virtual Second", "--no-verify", "--then=eject", "--speed=52",
                            self.source, "Summer")
        self.assertIn('as "Summer"', said)
        self.assertRegex(said, r"Burned in [0-9.]+ seconds; it was not read back\.")
        self.assertIn("The disc was ejected.", said)
        self.assertNotIn("Verifying", said)
        self.assertEqual(self.medium("a")["state"], "blank")
        self.assertEqual(self.medium("b")["sessions"][0]["tracks"][0]["volumeName"], "Summer")
        self.assertIn("  Tray        open", self.succeed("list-drives.bas"))

    def test_burn_folder_goes_no_faster_than_asked_for(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.write("some.bin", bytes(3_000_000))
        began = time.monotonic()
        said = self.succeed("burn-folder.bas", "--speed=8", self.source)
        self.assertGreater(time.monotonic() - began, 3_000_000 / (8 * 176_400))
        self.assertIn("every byte was read back and is right", said)

    def test_burn_folder_refuses_options_that_are_none(self):
        for option in ("--fast", "--speed=much", "--speed=0", "--speed=-1", "--drive=", "--then=sleep", "--no-verify=1"):
            self.refuse("^Usage: burn-folder.bas ", "burn-folder.bas", option, self.source, status=2)
        self.refuse("^Usage: ", "burn-folder.bas", self.source, "name", "more", status=2)
        self.refuse("there is no drive Other; list-drives.bas shows", "burn-folder.bas", "--drive=Other", self.source)
        self.assertEqual(os.listdir(self.drives), ["drive-1"])
        self.assertEqual(self.medium()["state"], "blank")

    # ---- erase --------------------------------------------------------------------------------------------------

    def test_erase_makes_a_rewritable_disc_blank(self):
        for number, (kind, options) in enumerate((("CD-RW", ()), ("DVD-RW", ("--complete",)), ("BD-RE", ()))):
            self.make_drive("drive-1", kind=kind, capacityBlocks=300000)
            self.succeed("burn-folder.bas", self.source)
            said = self.succeed("erase.bas", "--yes", *options)
            self.assertRegex(said.splitlines()[-1], r"^The disc in Virtual Disc Drive 1 is blank, after [0-9.]+ seconds\.$")
            medium = self.medium()
            self.assertEqual((medium["state"], medium["kind"], medium["sessions"]), ("blank", kind, []))
            self.assertFalse(os.path.exists(self.image()))
            self.succeed("burn-folder.bas", self.source)
            shutil.rmtree(os.path.join(self.drives, "drive-1"))

    def test_erase_asks_before_data_is_lost(self):
        self.succeed("burn-folder.bas", self.source)
        self.refuse(r"the disc in Virtual Disc Drive 1 holds [0-9.]+ MB; give --yes to erase it", "erase.bas")
        self.assertEqual(self.medium()["state"], "complete")
        self.succeed("erase.bas", "--yes", "Virtual Disc Drive 1")
        self.succeed("erase.bas")
        self.assertEqual(self.medium()["state"], "blank")

    def test_erase_says_what_it_cannot(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.succeed("burn-folder.bas", self.source)
        before = self.medium()
        self.refuse("(?i)can't be erased", "erase.bas", "--yes")
        self.assertEqual(self.medium(), before)
        self.refuse("there is no drive Other", "erase.bas", "Other")
        self.refuse("^Usage: erase.bas", "erase.bas", "--all", status=2)
        self.make_drive("drive-0", "Empty")
        self.refuse("there is no disc in Virtual Empty", "erase.bas", "Virtual Empty")

    # ---- append-session -------------------------------------------------------------------------------------------

    def test_append_session_adds_to_what_is_there(self):
        for kind in ("CD-R", "DVD+R", "DVD+RW", "BD-R"):
            self.make_drive(kind=kind, capacityBlocks=359847)
            first = self.succeed("append-session.bas", self.source).splitlines()
            self.assertRegex(first[0], r"^Sessions on the disc in Virtual Disc Drive 1: 0, with room for 737\.0 MB more\.$")
            self.assertLessEqual(set(first[1:-1]), {"Writing …", "Closing the session …", "Verifying …"})
            self.assertRegex(first[-1], r"^Added Holiday as session 1; [0-9.]+ MB are left\.$")
            other = os.path.join(self.scratch, "More")
            self.write("second.txt", b"more", other)
            second = self.succeed("append-session.bas", other).splitlines()
            self.assertRegex(second[0], r": 1, with room for [0-9.]+ MB more\.$")
            self.assertRegex(second[-1], "^Added More as session 2;")
            medium = self.medium()
            self.assertEqual((medium["state"], len(medium["sessions"])), ("appendable", 2))
            start = medium["sessions"][1]["tracks"][0]["startBlock"]
            listed = subprocess.run(["isoinfo", "-T", str(start), "-J", "-f", "-i", self.image()],
                                    capture_output=True, text=True, check=True).stdout
            self.assertEqual(sorted(name.split(";")[0] for name in listed.split()), ["/letter.txt", "/second.txt"], kind)
            shutil.rmtree(os.path.join(self.drives, "drive-1"))

    def session_files(self, session):
        """The files that a session shows, with their contents, as another program reads them."""
        start = str(self.medium()["sessions"][session]["tracks"][0]["startBlock"])
        here = ["isoinfo", "-R", "-T", start, "-i", self.image()]
        names = os.fsdecode(subprocess.run([*here, "-f"], capture_output=True, check=True).stdout).splitlines()
        return {name: subprocess.run([*here, "-x", name], capture_output=True, check=True).stdout for name in names}

    def test_backup_leaves_out_what_is_excluded_and_keeps_the_earlier_ones(self):
        self.make_drive(kind="DVD+R", capacityBlocks=2295104)
        for name in ("src/main.c", "src/main.o", "src/notes.old.txt", ".git/config", "empty.txt"):
            self.write(name, b"" if name == "empty.txt" else name.encode())
        os.symlink("src/main.c", os.path.join(self.source, "way"))
        folder = os.path.join(self.source, "src")
        os.chmod(folder, 0o2750)
        os.utime(folder, (1000000000, 1000000000))
        words = ("--exclude=*.o", "--exclude=.git", "--exclude=n*.old.*t", self.source)
        said = self.succeed("backup.bas", *words).splitlines()
        self.assertRegex(said[0], r'^Backed up 4 files, \d+ bytes, as "\d{4}-\d\d-\d\d \d\d\.\d\d\.\d\d"\.$')
        self.assertEqual(said[1], "Left out: 3")
        listed = subprocess.run(["bsdtar", "-tvf", self.image()], capture_output=True, text=True, check=True,
                                env=dict(os.environ, TZ="UTC", LC_ALL="C.UTF-8")).stdout.splitlines()
        line = next(line for line in listed if line.rstrip("/").endswith("/Holiday/src"))
        self.assertRegex(line, r"^drwxr-s--- .* Sep +9 +2001 ")  # as the folder itself, not what a made one has
        self.write("src/main.c", b"changed")
        time.sleep(1.1)  # a copy is named after its second
        self.succeed("backup.bas", *words)
        days = []
        for session, text in enumerate((b"src/main.c", b"changed")):
            files = self.session_files(session)
            days = sorted(name for name in files if name.count("/") == 1)
            self.assertEqual(len(days), session + 1)
            inside = {name.removeprefix(days[-1]): data for name, data in files.items() if name.startswith(days[-1] + "/")}
            self.assertEqual(sorted(inside), ["/Holiday", "/Holiday/empty.txt", "/Holiday/letter.txt", "/Holiday/src",
                                              "/Holiday/src/main.c", "/Holiday/way", "/listing.txt"])
            self.assertEqual(inside["/Holiday/src/main.c"], text)
            listing = inside["/listing.txt"].decode().splitlines()
            self.assertRegex(listing[1], r"^4 files, \d+ bytes$")
            self.assertEqual(sorted(line.split("  ")[-1] for line in listing[3:]),
                             ["Holiday/empty.txt", "Holiday/letter.txt", "Holiday/src/main.c", "Holiday/way"])
            self.assertIn(" %d  Holiday/src/main.c" % len(text), inside["/listing.txt"].decode())
        self.assertEqual(self.session_files(1)[days[0] + "/Holiday/src/main.c"], b"src/main.c")

    def test_backup_leaves_out_only_names_of_the_same_letters(self):
        for name in ("data.o", "DATA.O", "Notes.Old.Txt", "notes.old.txt", "Ä.txt", "ä.txt"):
            self.write(name, b"bytes")
        said = self.succeed("backup.bas", "--exclude=*.o", "--exclude=no*.old.*t", "--exclude=ä*", self.source)
        self.assertIn("Left out: 3\n", said)
        names = {os.path.basename(name) for name in self.session_files(0)}
        self.assertLessEqual({"DATA.O", "Notes.Old.Txt", "Ä.txt", "letter.txt"}, names)
        self.assertFalse(names & {"data.o", "notes.old.txt", "ä.txt"})

    def test_backup_lists_the_size_of_a_file_whose_name_is_no_text(self):
        with open(os.path.join(os.fsencode(self.source), b"caf\xe9 \xff.txt"), "wb") as file:
            file.write(bytes(1234))
        self.write("\uefe9.txt", bytes(4321))  # a name with such a character stays one
        self.succeed("backup.bas", self.source)
        listing = next(data for name, data in self.session_files(0).items() if name.endswith("/listing.txt")).decode()
        self.assertRegex(listing, r"(?m)^\d{4}-\d\d-\d\d +1,234  Holiday/caf. ..txt$")
        self.assertRegex(listing, r"(?m)^\d{4}-\d\d-\d\d +4,321  Holiday/")
        self.assertIn("3 files, 5,568 bytes\n", listing)

    def test_backup_names_a_folder_that_it_cannot_read(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.write("closed/secret.txt", b"secret")
        command = self.command("backup.bas", self.source)
        closed = os.path.join(self.source, "closed")
        os.chmod(closed, 0)
        self.addCleanup(os.chmod, closed, 0o700)
        if os.geteuid() == 0:  # nothing is unreadable for root
            subprocess.run(["chmod", "-R", "a+rwX", self.scratch], check=True)
            os.chmod(closed, 0)
            command = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", *command]
        done = subprocess.run(command, capture_output=True, text=True, timeout=LIMIT, check=False,
                              env=dict(self.environment(), HOME=self.scratch))
        if "setpriv" in done.stderr or "cannot open" in done.stderr.lower():
            self.skipTest("the build folder is not open to nobody")
        # The plug-in's log says what was raised, and the program why it ends.
        self.assertEqual((done.returncode, done.stdout), (1, ""), done.stderr)
        self.assertRegex(done.stderr.splitlines()[-1], "^backup: .*closed.*can't be read")
        self.assertNotIn("uncaught", done.stderr)
        self.assertEqual(self.medium()["state"], "blank")

    def test_backup_refuses_what_can_t_be(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        for words in ((), ("--exclude=", self.source), ("--drive=", self.source), (self.source, self.source)):
            self.refuse("^Usage: backup.bas", "backup.bas", *words, status=2)
        self.refuse("there is no folder /no/such", "backup.bas", "/no/such")
        self.refuse("there is no drive Other", "backup.bas", "--drive=Other", self.source)
        self.succeed("burn-folder.bas", self.source)
        self.refuse("nothing can be added to the disc", "backup.bas", self.source)

    def test_append_session_refuses_a_disc_that_is_closed(self):
        self.make_drive(kind="CD-R", capacityBlocks=359847)
        self.succeed("burn-folder.bas", self.source)
        self.refuse("nothing can be added to the disc", "append-session.bas", self.source)
        self.refuse(r"^Usage: append-session.bas \[--drive=NAME\] FOLDER$", "append-session.bas", status=2)
        self.refuse("there is no folder /no/such", "append-session.bas", "/no/such")


if __name__ == "__main__":
    unittest.main()
