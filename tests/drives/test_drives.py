#!/usr/bin/python3
"""disc-drives: drives are listed, shown, made and deleted, and their trays move."""
import json
import os
import subprocess
import unicodedata
import unittest

from drives_case import COMMAND, DrivesCase


def width(text):
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


class Drives(DrivesCase):
    # ---- list and show ----------------------------------------------------------------------------------------

    def test_the_first_drive_is_listed_as_programs_see_it(self):
        lines = self.succeed("list").splitlines()
        self.assertEqual(lines[0].split(), ["Name", "Drive", "Medium", "State", "Used", "Free"])
        self.assertEqual(lines[1].split("  "), ["drive-1", "Virtual Disc Drive 1", "DVD+RW", "blank", "0 KB", "4.70 GB"])
        self.assertEqual(len(lines), 2)

    def test_no_drive_at_all_is_said(self):
        os.makedirs(self.drives)
        open(self.drive("none"), "w").close()
        self.assertEqual(self.succeed("list"), 'There is no drive; make one with "disc-drives create NAME".\n')
        self.assertEqual(self.answer("list"), {"drives": []})
        self.refuse('There is no drive "x"; make one with "disc-drives create"', "show", "x")

    def test_fifty_drives_are_listed_in_order(self):
        for number in range(50):
            os.makedirs(self.drive(f"d{number:02}"))
            with open(self.drive(f"d{number:02}", "drive.json"), "w") as file:
                json.dump({"format": 1, "vendor": "V", "product": f"P{number}", "firmwareRevision": "1"}, file)
        lines = self.succeed("list").splitlines()
        self.assertEqual([line.split()[0] for line in lines[1:]], [f"d{number:02}" for number in range(50)])
        listed = self.answer("list")["drives"]
        self.assertEqual([each["displayName"] for each in listed], [f"V P{number}" for number in range(50)])
        self.assertTrue(all(each["medium"] is None and not each["busy"] for each in listed))

    def test_columns_stand_below_each_other_whatever_the_script(self):
        for name in ("grüße", "日本語のドライブ", "e\u0301t\u0113", "plain"):
            self.succeed("create", name, "--kind", "CD-R")
        lines = self.succeed("list").splitlines()
        column = width(lines[0][:lines[0].index("Medium")])
        for line in lines[1:]:
            self.assertEqual(width(line[:line.index("CD-R")]), column, lines)

    def test_control_characters_do_not_reach_the_terminal(self):
        self.succeed("create", "safe", "--product", "a\x1b[2Jb\u0085c")
        for command in ("list", "show"):
            said = self.succeed(command)
            self.assertIn("a?[2Jb?c", said)
            self.assertNotIn("\x1b", said)

    def test_show_tells_all_of_a_drive_and_its_medium(self):
        self.used("reader", "DVD-RAM")
        said = self.succeed("show", "reader")
        for fact in ("reader\n", "Virtual reader, revision 1.00", self.drive("reader"), "closed",
                     "DVD-RAM, complete, can be overwritten, erased", "2x, 3x, 5x", self.drive("reader", "medium.iso"),
                     "Holiday", "data"):
            self.assertIn(fact, said)

    def test_show_finds_a_drive_by_folder_and_by_the_name_that_programs_show(self):
        self.succeed("create", "one", "--vendor", "ACME", "--product", "Writer")
        for name in ("one", self.drive("one"), "ACME Writer"):
            self.assertEqual(self.shown(name)["name"], "one")

    def test_a_shown_name_that_two_drives_have_means_neither(self):
        for name in ("one", "two"):
            self.succeed("create", name, "--product", "Same")
        self.refuse('There is no drive "Virtual Same"; there are: one, two', "show", "Virtual Same")

    def test_json_tells_programs_the_same(self):
        self.used("reader", "DVD-RAM")
        shown = self.shown("reader")
        self.assertEqual(shown["id"], self.drive("reader"))
        self.assertTrue(shown["usable"] and shown["virtual"])
        self.assertFalse(shown["trayOpen"] or shown["busy"])
        medium = shown["medium"]
        self.assertEqual((medium["kind"], medium["class"], medium["state"]), ("DVD-RAM", "DVD", "complete"))
        self.assertTrue(medium["erasable"] and medium["overwritable"])
        blocks = os.path.getsize(self.drive("reader", "medium.iso")) // 2048
        self.assertEqual(medium["usedBlocks"], blocks)
        track = medium["sessions"][0]["tracks"][0]
        self.assertEqual((track["number"], track["mode"], track["startBlock"], track["blocks"], track["volumeName"]),
                         (1, "data", 0, blocks, "Holiday"))

    def test_json_may_stand_behind_the_command(self):
        self.assertEqual(len(json.loads(self.succeed("list", "--json"))["drives"]), 1)

    def test_a_drive_in_use_says_so(self):
        self.succeed("create", "burner")
        self.busy("burner")
        self.assertIn("in use", self.succeed("list"))
        self.assertTrue(self.shown("burner")["busy"])

    def test_broken_drives_are_listed_with_the_reason(self):
        self.succeed("create", "good")
        for name, text in (("damaged", "{"), ("later", '{"format": 99}')):
            os.makedirs(self.drive(name))
            with open(self.drive(name, "drive.json"), "w") as file:
                file.write(text)
        said = self.succeed("list")
        self.assertRegex(said, r"(?m)^damaged +unusable$")
        self.assertRegex(said, r"(?m)^The drive in .*damaged.* can't be used: its drive.json is damaged\.$")
        self.assertRegex(said, r"(?m)^The drive in .*later.* can't be used: its drive.json is of a later version\.$")
        listed = {each["name"]: each for each in self.answer("list")["drives"]}
        self.assertFalse(listed["later"]["usable"])
        self.assertIn("later version", listed["later"]["problem"]["message"])
        self.assertIn("damaged", self.succeed("show", "damaged"))
        self.refuse("is of a later version", "eject", "later")

    def test_media_that_cannot_be_read_say_why(self):
        for name, text in (("damaged", "{"), ("later", '{"format": 99}')):
            self.succeed("create", name)
            with open(self.drive(name, "medium.json"), "w") as file:
                file.write(text)
        self.assertRegex(self.succeed("list"), r"(?m)^damaged .* unreadable$")
        self.assertIn("it is not JSON", self.succeed("show", "damaged"))
        self.assertIn("its format is of a later version", self.shown("later")["problem"]["message"])

    # ---- create -------------------------------------------------------------------------------------------------

    def test_a_drive_is_made_as_it_is_wished_for(self):
        said = self.succeed("create", "burner", "--kind", "cd-rw", "--capacity", "650 MB", "--vendor", "ACME",
                            "--product", "Fast", "--firmware", "2.3")
        self.assertEqual(said, f'Made the drive "burner" in {self.drive("burner")}, with a blank CD-RW in it.\n')
        shown = self.shown("burner")
        self.assertEqual((shown["vendor"], shown["product"], shown["firmwareRevision"]), ("ACME", "Fast", "2.3"))
        self.assertEqual(shown["medium"]["capacityBlocks"], 650_000_000 // 2048)
        self.assertEqual(self.shown("burner")["medium"]["state"], "blank")

    def test_create_makes_no_other_drive(self):
        self.succeed("create", "only")
        self.assertEqual([each["name"] for each in self.answer("list")["drives"]], ["only"])

    def test_every_writable_kind_can_be_in_a_new_drive(self):
        kinds = ("CD-R", "CD-RW", "DVD-R", "DVD-R DL", "DVD-RW", "DVD-RAM", "DVD+R", "DVD+R DL", "DVD+RW", "BD-R",
                 "BD-RE")
        for number, kind in enumerate(kinds):
            made = self.answer("create", f"d{number}", "--kind", kind)
            self.assertEqual(made["medium"]["kind"], kind)

    def test_a_drive_without_a_medium(self):
        self.assertIn("with no medium in it", self.succeed("create", "empty", "--kind", "none"))
        self.assertIsNone(self.shown("empty")["medium"])
        self.assertIn("no medium", self.succeed("list"))
        self.refuse("has no capacity", "create", "other", "--kind", "none", "--capacity", "1GB")

    def test_capacities_as_people_write_them(self):
        for number, (text, blocks) in enumerate((("359847", 359847), ("100blocks", 100), ("4.7GB", 2294921),
                                                 ("650MiB", 332800), ("1 kib", None), ("2KiB", 1), ("100 kb", 48))):
            arguments = ("create", f"d{number}", "--kind", "DVD+RW", "--capacity", text)
            if blocks is None:
                self.refuse("is less than a block", *arguments)
            else:
                self.assertEqual(self.answer(*arguments)["medium"]["capacityBlocks"], blocks, text)

    def test_capacities_that_are_none(self):
        for text, why in (("much", "is no capacity"), ("12 TB", "is no capacity"), ("-5MB", "is no capacity"),
                          ("nan", "is no capacity"), ("1e99", "more than any disc holds"),
                          ("0", "less than a block"), ("1GB", "more than a CD-R can hold")):
            self.refuse(why, "create", "burner", "--kind", "CD-R", f"--capacity={text}")
        self.assertFalse(os.path.exists(self.drive("burner")))

    def test_kinds_that_are_none_or_cannot_be_blank(self):
        self.refuse('no medium of the kind "DVD"; there are: CD-ROM, CD-R, .*BD-RE', "create", "x", "--kind", "DVD")
        self.refuse("A blank DVD-ROM could never be written", "create", "x", "--kind", "DVD-ROM")

    def test_names_that_are_none(self):
        for name in ("", ".hidden", "a/b", "..", "none", "a\nb", "x" * 101):
            self.refuse("can't be a drive's name", "create", name)
        self.assertFalse(os.path.exists(self.path("b")))

    def test_a_name_that_is_taken(self):
        self.succeed("create", "burner", "--kind", "CD-R")
        self.refuse('There is a drive "burner" already', "create", "burner")
        self.assertEqual(self.shown("burner")["medium"]["kind"], "CD-R")

    def test_a_folder_for_drives_that_is_a_file(self):
        with open(self.drives, "w"):
            pass
        self.refuse("(?i)folder", "list")
        self.refuse("(?i)folder|can't be made", "create", "x")

    def test_no_folder_for_drives_is_named(self):
        done = self.run_command("list", DISC_DRIVES="", HOME="", XDG_DATA_HOME="")
        self.assertEqual(done.returncode, 1)
        self.assertIn("set DISC_DRIVES to a folder", done.stderr)

    # ---- delete -------------------------------------------------------------------------------------------------

    def test_a_blank_drive_is_deleted_without_asking(self):
        self.succeed("create", "burner")
        self.assertEqual(self.succeed("delete", "burner"), 'Deleted the drive "burner".\n')
        self.assertEqual(os.listdir(self.drives), [])

    def test_a_drive_with_data_is_deleted_by_force_only(self):
        self.used("old")
        self.refuse(r'The DVD\+RW in "old" holds .* Give --force', "delete", "old")
        self.assertTrue(os.path.exists(self.drive("old", "medium.iso")))
        self.assertEqual(self.answer("delete", "old", "--force"), {"deleted": "old"})
        self.assertFalse(os.path.exists(self.drive("old")))

    def test_a_drive_with_data_on_an_open_tray_is_not_deleted_either(self):
        self.used("old")
        self.succeed("eject", "old")
        self.refuse("Give --force", "delete", "old")

    def test_on_a_terminal_a_person_is_asked(self):
        self.used("old")
        status, screen = self.on_terminal("delete", "old", answer=b"n\n")
        self.assertEqual(status, 1)
        self.assertRegex(screen, r'The DVD\+RW in "old" holds .*\. Delete drive and medium\? \[y/N\] ')
        self.assertIn("Nothing was changed.", screen)
        self.assertEqual(self.on_terminal("delete", "old", answer=b"\n")[0], 1)
        self.assertEqual(self.on_terminal("delete", "old", answer=b"\x04")[0], 1)
        self.assertTrue(os.path.exists(self.drive("old", "medium.iso")))
        status, screen = self.on_terminal("delete", "old", answer=b"Yes\n")
        self.assertEqual(status, 0, screen)
        self.assertFalse(os.path.exists(self.drive("old")))

    def test_ctrl_c_at_the_question_changes_nothing(self):
        self.used("old")
        status, screen = self.interrupted("delete", "old")
        self.assertEqual(status, 130, screen)
        self.assertIn("interrupted", screen)
        self.assertTrue(os.path.exists(self.drive("old", "medium.iso")))

    def test_a_drive_in_use_is_not_deleted(self):
        self.succeed("create", "burner")
        self.busy("burner")
        self.refuse("is in use by another program; try again later", "delete", "burner")
        self.assertTrue(os.path.exists(self.drive("burner", "drive.json")))

    def test_a_broken_drive_is_deleted_by_force_only(self):
        os.makedirs(self.drive("broken"))
        with open(self.drive("broken", "drive.json"), "w") as file:
            file.write("{")
        self.refuse("can't be told.* Give --force", "delete", "broken")
        self.succeed("delete", "broken", "-f")
        self.assertFalse(os.path.exists(self.drive("broken")))

    def test_what_a_killed_process_left_goes(self):
        """At the next create, delete or list; what still lives is left alone."""
        self.succeed("create", "one")
        dead = self.dead_process()
        stays = [f".deleted-{os.getpid()}-x", f".new-{os.getpid()}-abcdef", ".new-of-mine", f".newer-{dead}-x"]
        for name in stays:
            os.makedirs(self.drive(name))
        for command in (("create", "two"), ("delete", "two"), ("list",), ("--json", "list")):
            for name in (f".deleted-{dead}-old", f".new-{dead}-abcdef"):
                os.makedirs(self.drive(name, "below"))
            self.succeed(*command)
            self.assertEqual(sorted(name for name in os.listdir(self.drives) if name != "two"), sorted(stays + ["one"]))

    def test_a_drive_that_is_not_there(self):
        self.succeed("create", "one")
        for command in ("show", "delete", "eject", "open", "close", "verify", "erase"):
            self.refuse('There is no drive "two"; there are: one', command, "two")

    # ---- trays ----------------------------------------------------------------------------------------------------

    def test_an_empty_tray_opens_and_closes(self):
        self.succeed("create", "burner", "--kind", "none")
        self.assertEqual(self.succeed("open", "burner"), 'The tray of "burner" is open.\n')
        self.assertTrue(self.shown("burner")["trayOpen"])
        self.assertTrue(self.answer("open", "burner")["trayOpen"], "twice is no fault")
        self.assertEqual(self.succeed("close", "burner"), 'The tray of "burner" is closed.\n')
        self.assertFalse(self.shown("burner")["trayOpen"])

    def test_open_refuses_a_tray_with_a_medium(self):
        self.succeed("create", "burner")
        self.refuse("eject it instead", "open", "burner")

    def test_eject_brings_the_medium_out_and_close_takes_it_in(self):
        self.used("old")
        self.assertEqual(self.succeed("eject", "old"), 'The tray of "old" is open, with the medium on it.\n')
        self.assertRegex(self.succeed("list"), r"(?m)^old .* DVD\+RW  tray open ")
        self.assertEqual(self.shown("old")["medium"]["state"], "complete")
        self.succeed("close", "old")
        self.assertEqual(self.shown("old")["medium"]["kind"], "DVD+RW")

    def test_a_tray_in_use_stays_closed(self):
        self.succeed("create", "burner", "--kind", "none")
        self.busy("burner")
        self.refuse("in use", "open", "burner")
        self.refuse("in use", "eject", "burner")

    # ---- the command line -------------------------------------------------------------------------------------------

    def test_help_is_there_for_the_tool_and_each_command(self):
        general = self.succeed("--help")
        commands = ("list", "show", "create", "delete", "insert", "blank-medium", "eject", "open", "close", "export",
                    "verify", "erase")
        self.assertIn("Exit status: 0 done, 1 failed", general)
        self.assertIn("Examples:", general)
        for command in commands:
            self.assertRegex(general, rf"(?m)^  {command} ")
            self.assertRegex(self.succeed(command, "--help"), rf"(?s)Examples:\n  disc-drives (--json )?{command}")

    def test_wrong_arguments_are_told_from_failures(self):
        for arguments in ((), ("burn",), ("create",), ("list", "--what"), ("insert", "one"),
                          ("eject", "x", "--to", "y", "--discard")):
            done = self.run_command(*arguments)
            self.assertEqual(done.returncode, 2, (arguments, done.stdout, done.stderr))
            self.assertIn("--help", done.stderr, arguments)
            self.assertEqual(done.stdout, "")

    def test_errors_are_json_for_programs_as_well(self):
        done = self.run_command("--json", "show", "nobody")
        self.assertEqual(done.returncode, 1)
        error = json.loads(done.stdout)["error"]
        self.assertEqual(error["code"], 0x80020023 - (1 << 32))
        self.assertIn('There is no drive "nobody"', error["message"])
        self.assertIn(error["message"], done.stderr)

    def test_output_that_nobody_reads_is_a_failure(self):
        for words in (["list"], ["--json", "list"]):
            with open("/dev/full", "w") as full:
                done = subprocess.run([COMMAND, *words], stdout=full, stderr=subprocess.PIPE, text=True,
                                      env=self.environment(), check=False)
            self.assertEqual(done.returncode, 1, done.stderr)
            self.assertRegex(done.stderr, "^disc-drives: .*output can't be written.*\n$")


if __name__ == "__main__":
    unittest.main()
