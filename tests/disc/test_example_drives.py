#!/usr/bin/python3
"""The example programs on drives as a newcomer has them: after another burn, with the tray open, with the wrong disc."""
import os
import re
import shutil
import subprocess
import unittest

from examples_case import LIMIT, OPTIONS, ROOT, ExamplesCase

TOOL = os.environ["DISC_DRIVES_COMMAND"]
# What burns, and what it has to be told beside the drive; SOUND and IMAGE stand for files, FOLDER for a folder.
BURNING = {"burn-folder.bas": ["FOLDER"], "burn-image.bas": ["IMAGE"], "virtual-tree.bas": [],
           "generated-files.bas": ["20"], "generated-track.bas": [], "audio-cd.bas": ["SOUND"],
           "append-session.bas": ["FOLDER"], "backup.bas": ["FOLDER"]}
ON_CD = ("generated-track.bas", "audio-cd.bas")
ADDING = ("append-session.bas", "backup.bas")


class ExampleDrives(ExamplesCase):
    def setUp(self):
        super().setUp()
        self.files = {"FOLDER": self.source, "SOUND": os.path.join(self.scratch, "tone.wav"),
                      "IMAGE": os.path.join(self.scratch, "disc.iso")}

    def words(self, program):
        image, sound = self.files["IMAGE"], self.files["SOUND"]
        if "IMAGE" in BURNING[program] and not os.path.exists(image):
            subprocess.run(["genisoimage", "-quiet", "-R", "-o", image, self.source], check=True, capture_output=True)
        if "SOUND" in BURNING[program] and not os.path.exists(sound):
            subprocess.run(["sox", "-n", "-r", "44100", "-c", "2", "-b", "16", sound, "synth", "4", "sine", "440"], check=True)
        return [self.files.get(word, word) for word in BURNING[program]]

    def tool(self, *words):
        subprocess.run([TOOL, *words], check=True, capture_output=True, timeout=LIMIT, env=self.environment())

    def does_what_it_says(self, program, *arguments):
        """The program refuses and names a command, which is run; then it does its work."""
        done = self.run_program(program, *arguments)
        self.assertEqual(done.returncode, 1, done.stdout)
        path = os.path.dirname(TOOL) + os.pathsep + os.environ["PATH"]
        subprocess.run(["sh", "-c", done.stderr.split(" with: ")[1]], check=True, capture_output=True, timeout=LIMIT,
                       cwd=self.scratch, env=dict(self.environment(), PATH=path), stdin=subprocess.DEVNULL)
        os.remove(os.path.join(self.scratch, "blank.medium"))
        return self.succeed(program, *arguments)

    # ---- one drive, one program after the other ---------------------------------------------------------------

    def first_burn(self):
        self.succeed("burn-folder.bas", os.path.join(ROOT, "examples", "hello-disc"), "HELLO DISC")

    def test_after_the_first_burn_programs_overwrite_and_say_so(self):
        for program in BURNING:
            if program in ON_CD + ADDING:
                continue
            for tray in ("closed", "open"):
                with self.subTest(program=program, tray=tray):
                    self.first_burn()
                    if tray == "open":
                        self.tool("eject", "drive-1")
                    said = self.succeed(program, *self.words(program))
                    self.assertRegex(said, "(?m)^The disc( in Virtual Disc Drive 1)? holds data, which is overwritten\\.$")
                    self.assertIn("DVD+RW: can be overwritten", self.succeed("list-drives.bas"))

    def test_after_the_first_burn_the_first_program_works(self):
        for tray in ("closed", "open"):
            self.first_burn()
            if tray == "open":
                self.tool("eject", "drive-1")
            done = self.run_program("first.bas", cwd=ROOT)
            self.assertEqual((done.stdout, done.stderr, done.returncode), ("Virtual Disc Drive 1: DRStatusStateDone\n", "", 0))
        shutil.rmtree(os.path.join(self.drives, "drive-1"))
        self.make_drive(kind="CD-R", capacityBlocks=10)
        done = self.run_program("first.bas", cwd=ROOT)
        self.assertRegex(done.stdout, "^Virtual Disc Drive 1: DRStatusStateFailed\n.* needs .*\n$")
        self.assertNotIn("Tray", self.succeed("list-drives.bas"))

    def test_the_first_program_is_what_the_readme_shows_and_prints_what_it_says(self):
        def read(*path):
            with open(os.path.join(ROOT, *path), encoding="utf-8") as file:
                return file.read()
        shown, printed = re.search(r"(?s)```basic\n(.*?)```\n\n`./run examples/first.bas` prints:\n\n```\n(.*?)```",
                                   read("README.md")).groups()
        self.assertEqual(read("examples", "first.bas").split("\n", 1)[1], shown)
        self.assertEqual(self.run_program("first.bas", cwd=ROOT).stdout, printed)

    def test_after_the_first_burn_erase_makes_room_for_sessions(self):
        for program in ADDING:
            self.first_burn()
            self.tool("eject", "drive-1")
            self.refuse("nothing can be added to the disc .*; erase.bas makes it blank, or insert a blank one with: disc-drives",
                        program, self.source)
            self.succeed("erase.bas", "--yes")
            self.succeed(program, self.source)
            self.succeed(program, self.source)

    def test_after_the_first_burn_the_command_that_is_named_gets_another_disc(self):
        for program in (*ON_CD, *ADDING):
            with self.subTest(program=program):
                self.first_burn()
                self.tool("eject", "drive-1", "--discard", "--force")  # nobody is here who could say that data may go
                self.does_what_it_says(program, *self.words(program))
                shutil.rmtree(os.path.join(self.drives, "drive-1"))

    # ---- words that are none -------------------------------------------------------------------------------------

    # An empty text as a path is the folder that the program is run in; nobody means to burn it.
    def test_an_empty_word_is_no_folder_no_file_and_no_drive(self):
        self.first_burn()
        before = self.medium()
        panels = [] if "--without-companion" in OPTIONS else [("burn-with-panels.bas", "")]  # whose classes are the companion's
        for program, *words in (("burn-folder.bas", ""), ("burn-folder.bas", "", "NAME"), *panels,
                                ("append-session.bas", ""), ("backup.bas", ""), ("burn-image.bas", ""),
                                ("erase.bas", "--yes", ""), ("copy-disc.bas", "", "drive-1"), ("copy-disc.bas", "drive-1", "")):
            with self.subTest(program=program, words=words):
                self.refuse("^Usage: " + program, program, *words, status=2)
        self.refuse("no sound file", "audio-cd.bas", "", lines=2)
        self.assertEqual(self.medium(), before)

    # ---- discs that won't do -------------------------------------------------------------------------------------

    def test_a_full_disc_is_not_said_to_be_overwritten(self):
        for program in BURNING:
            with self.subTest(program=program):
                self.make_drive(kind="CD-R", capacityBlocks=359847)
                self.succeed("burn-folder.bas", self.source)
                before = self.medium()
                said = self.refuse("; insert a blank one with: disc-drives blank-medium [-+A-Z]+ blank.medium && disc-drives insert "
                                   "'drive-1' blank.medium$", program, *self.words(program))
                self.assertNotIn("overwritten", said)
                self.assertEqual(self.medium(), before)
                shutil.rmtree(os.path.join(self.drives, "drive-1"))

    def test_an_empty_drive_with_a_difficult_name_gets_a_disc(self):
        self.make_drive("Anna's drive", "Empty")
        for program in BURNING:
            with self.subTest(program=program):
                self.does_what_it_says(program, "--drive=Anna's drive", *self.words(program))
                self.tool("eject", "Anna's drive", "--discard", "--force")

    # ---- names of drives -----------------------------------------------------------------------------------------

    def test_a_drive_has_the_name_of_its_folder_and_the_one_that_it_shows(self):
        self.make_drive("aaa", "First")
        burner = self.make_drive("burner", "Second", kind="CD-RW", capacityBlocks=359847)
        # One way for all programs, so each tries one of the names.
        for number, program in enumerate(BURNING):
            name = ("burner", "Virtual Second", burner)[number % 3]
            with self.subTest(program=program, name=name):
                self.succeed(program, "--drive=" + name, *self.words(program))
                self.assertNotEqual(self.medium("burner")["sessions"], [])
                self.succeed("erase.bas", "--yes", name)
                self.assertEqual(self.medium("burner")["sessions"], [])

    def test_every_program_looks_for_drives_in_the_same_way(self):
        found = {}
        for program in (*BURNING, "copy-disc.bas", "erase.bas"):
            with open(os.path.join(ROOT, "examples", program), encoding="utf-8") as file:
                source = file.read()
            for function in ("DriveNamed", "HowToInsert"):
                text = re.search(rf"(?ms)^Function {function}\(.*?^End Function$", source).group()
                found.setdefault(function, {}).setdefault(text, []).append(program)
        self.assertEqual([len(texts) for texts in found.values()], [1, 1], found)

    def test_a_name_that_no_drive_has_is_refused(self):
        for program in BURNING:
            self.refuse("there is no drive Other; list-drives.bas shows", program, "--drive=Other", *self.words(program))
            self.refuse("^Usage: " + program, program, "--drive=", *self.words(program), status=2)
        self.refuse("there is no drive Drive-1;", "erase.bas", "--yes", "Drive-1")

    def test_a_name_that_two_drives_show_means_neither(self):
        for name in ("a", "b"):
            self.make_drive(name, "Twin", kind="DVD+RW", capacityBlocks=2295104)
        self.refuse("several drives are called Virtual Twin; take a path", "burn-folder.bas", "--drive=Virtual Twin", self.source)
        self.succeed("burn-folder.bas", "--drive=b", self.source)
        self.assertEqual([self.medium(name)["state"] for name in ("a", "b")], ["blank", "complete"])
        self.assertIn("from Virtual Twin to Virtual Twin", self.succeed("copy-disc.bas", "b", "a"))
        self.assertIn("The disc in Virtual Twin holds data, which is overwritten.\n", self.succeed("copy-disc.bas", "b", "a"))


if __name__ == "__main__":
    unittest.main()
