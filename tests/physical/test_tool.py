#!/usr/bin/env python3
"""disc-drives on a recorder that is attached: every command that works on any drive."""
import fcntl
import json
import os
import pty
import signal
import subprocess
import sys
import time
import unittest

HERE = os.path.dirname(os.path.realpath(__file__))
sys.path.insert(0, os.path.join(HERE, os.pardir, "recorder"))
from harness import DEVICE, RecorderTest  # noqa: E402

COMMAND = os.environ["DISC_DRIVES_COMMAND"]
# The recorder comes before the sanitizer's runtime, which it has no part in.
SANITIZER = "verify_asan_link_order=0:" + os.environ.get("ASAN_OPTIONS", "")


class Case(RecorderTest):
    def environment(self):
        drives = os.path.join(self.scratch, "drives")
        os.makedirs(drives, exist_ok=True)
        return dict(super().environment(), DISC_DRIVES=drives, DISC_PHYSICAL="1", ASAN_OPTIONS=SANITIZER,
                    XDG_RUNTIME_DIR=self.scratch)

    def succeed(self, *arguments):
        return self.tool(COMMAND, *arguments)

    def shown(self):
        [drive] = json.loads(self.succeed("--json", "show", DEVICE))["drives"]
        return drive

    def refuse(self, sentence, *arguments):
        done = self.run_tool(COMMAND, *arguments)
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertRegex(done.stdout, sentence)
        return done.stdout

    def burned(self, medium, multi=True):
        """A disc with a file of 300 KB, burned by a program that is not ours."""
        self.insert(medium)
        folder = os.path.dirname(self.file("Holiday/noise.bin", self.noise(300_000)))
        self.tool("xorriso", "-outdev", DEVICE, "-volid", "HOLIDAY", "-close", "off" if multi else "on", "-map", folder, "/")

    def another_program(self):
        """The recorder belongs to somebody else, until that is closed."""
        file = open(os.path.join(self.folder, "exclusive"), "w", encoding="ascii")
        fcntl.flock(file, fcntl.LOCK_EX)
        self.addCleanup(file.close)
        return file

    def test_list_and_show(self):
        self.burned("CD-R")
        row = next(line for line in self.succeed("list").splitlines() if line.startswith(DEVICE))
        self.assertRegex(row, r"TESTLAB MMC RECORDER +CD-R +appendable +[1-9]")
        drive = self.shown()
        self.assertEqual([drive[key] for key in ("name", "id", "vendor", "product", "virtual", "busy", "trayOpen")],
                         [DEVICE, DEVICE, "TESTLAB", "MMC RECORDER", False, False, False])
        medium = drive["medium"]
        self.assertEqual((medium["kind"], medium["state"], medium["erasable"]), ("CD-R", "appendable", False))
        [session] = medium["sessions"]
        self.assertEqual([(track["number"], track["startBlock"], track["volumeName"]) for track in session["tracks"]],
                         [(1, 0, "HOLIDAY")])
        said = self.succeed("show", DEVICE)
        for part in ("Device      /dev/sr0", "TESTLAB MMC RECORDER, revision 1.00", "Tray        closed", "HOLIDAY"):
            self.assertIn(part, said)
        self.assertEqual(self.succeed("show", "TESTLAB MMC RECORDER"), said)

    def test_an_empty_drive(self):
        self.insert("")
        self.assertIn("no medium", self.succeed("list"))
        self.assertIsNone(self.shown()["medium"])
        self.refuse("(?i)no disc", "erase", DEVICE)
        self.refuse("(?i)no (disc|medium)", "verify", DEVICE)

    def test_tray(self):
        self.insert("DVD+RW")
        self.refuse("eject it instead", "open", DEVICE)
        self.succeed("eject", DEVICE)
        self.assertTrue(self.state()["trayOpen"])
        self.assertTrue(self.shown()["trayOpen"])
        self.succeed("close", DEVICE)
        self.assertFalse(self.state()["trayOpen"])
        self.insert("")
        self.succeed("open", DEVICE)
        self.assertTrue(self.state()["trayOpen"])

    def test_verify(self):
        for medium in ("CD-RW", "DVD-R"):
            self.burned(medium)
            self.succeed("verify", DEVICE)
        self.change(faults={"readErrors": [60]})
        self.refuse("(?i)can't be read", "verify", DEVICE)

    def test_verify_sound_that_was_written_track_by_track(self):
        """The two blocks behind such a track belong to nobody."""
        for way in ("-tao", "-sao"):
            self.insert("CD-R")
            sound = [self.file(name, self.noise(2352 * 350, seed)) for seed, name in enumerate(("one.raw", "two.raw"))]
            self.tool("cdrskin", "dev=" + DEVICE, way, "-audio", *sound)
            self.assertEqual([track["blocks"] for track in self.shown()["medium"]["sessions"][0]["tracks"]], [350, 350])
            self.succeed("verify", DEVICE)

    def test_a_drive_that_nobody_may_open(self):
        self.insert("DVD+RW", forbidden=True)
        sentence = 'You may not use the drive "/dev/sr0"; join the group that its device belongs to, and log in again.'
        said = self.succeed("list")
        self.assertRegex(said, r"(?m)^/dev/sr0 .*unusable")
        self.assertIn(sentence, said)
        for command in ("eject", "verify"):
            self.refuse(sentence, command, DEVICE)

    def test_erase(self):
        for medium, option in (("CD-RW", ()), ("DVD+RW", ("--complete",)), ("DVD-RW", ())):
            self.burned(medium)
            self.change(capacity=32768)
            self.refuse("holds .* Give --force, and nobody will be asked: Erase it", "erase", DEVICE, *option)
            self.assertIn("is blank", self.succeed("erase", DEVICE, "--force", *option))
            medium = self.shown()["medium"]
            self.assertEqual((medium["state"], medium["sessions"]), ("blank", []))

    def test_an_erase_of_what_looks_blank_shows_how_far_it_is(self):
        """What is overwritten is the whole disc, whatever is known to be on it."""
        self.burned("DVD+RW")
        self.succeed("erase", DEVICE, "--force")
        self.change(capacity=4096, faults={"slowWrites": 8})
        self.assertEqual(self.shown()["medium"]["usedBlocks"], 0)
        said = self.succeed("erase", DEVICE, "--complete", "--force")
        self.assertEqual(said.splitlines()[:2], ["Erasing …", "  25%"])
        # On a terminal a bar, for what takes longer than a moment; so many writes do, however fast all else is.
        main, side = pty.openpty()
        process = subprocess.Popen([COMMAND, "erase", DEVICE, "--complete", "--force"], stdin=side, stdout=side,
                                   stderr=side, env=self.environment())
        os.close(side)
        screen = b""
        try:
            while part := os.read(main, 65536):
                screen += part
        except OSError:  # the other side has gone
            pass
        os.close(main)
        self.assertEqual(process.wait(150), 0, screen)
        self.assertRegex(screen.decode(), r"\r\[#+-+\] [1-9][0-9]?%  Erasing  0:0[0-9] left")
        self.assertNotIn("Erasing …", screen.decode())

    def test_erase_that_is_interrupted(self):
        """The command ends and says what may be on the medium; the drive goes on by itself, and is done one day."""
        for option in ((), ("--complete",)):
            self.burned("CD-RW")
            self.change(faults={"busyFor": 10**9})
            erasing = subprocess.Popen([COMMAND, "erase", DEVICE, "--force", *option], env=self.environment(),
                                       stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            self.addCleanup(erasing.kill)
            while self.state()["busyPolls"] == 0:
                self.assertIsNone(erasing.poll(), "it blanks")
                time.sleep(0.005)
            erasing.send_signal(signal.SIGINT)
            said, _ = erasing.communicate(timeout=100)
            self.assertEqual(erasing.returncode, 130, said)
            self.assertIn("interrupted; the medium may be erased in part; erase it again before it is used.", said)
            self.assertGreater(self.state()["busyPolls"], 0, "it still blanks")
            self.assertRegex(self.succeed("list"), r"(?m)^/dev/sr0 .*in use")
            self.refuse('The drive "/dev/sr0" is still busy with what was begun before', "erase", DEVICE, "--force")
            self.change(busyPolls=0)
            self.assertEqual(self.shown()["medium"]["state"], "blank")
            self.assertEqual(self.tracks(), [])

    def test_erase_what_is_written_once(self):
        self.burned("CD-R")
        self.refuse("(?i)can't be erased", "erase", DEVICE, "--force")

    def test_erase_asks_for_what_nobody_closed(self):
        """Of a session that is open no table tells, but there is something on the disc."""
        self.insert("CD-RW")
        track = self.file("track.iso", self.noise(2048 * 400))
        self.tool("wodim", "dev=" + DEVICE, "-tao", "-nofix", "-data", track)
        self.assertEqual(self.shown()["medium"]["state"], "incomplete")
        self.refuse("is not blank. Give --force, and nobody will be asked: Erase it", "erase", DEVICE)
        self.assertEqual(len(self.tracks()), 1)
        self.assertIn("is blank", self.succeed("erase", DEVICE, "--force"))
        self.assertEqual(self.tracks(), [])

    def test_a_drive_that_another_program_has(self):
        self.insert("DVD+RW")
        other = self.another_program()
        sentence = 'The drive "/dev/sr0" is in use by another program; try again later.'
        said = self.succeed("list")
        self.assertRegex(said, r"(?m)^/dev/sr0 .*in use")
        self.assertIn(sentence, said)
        drive = self.shown()
        self.assertEqual((drive["usable"], drive["problem"]["code"]), (False, 0x80020021 - 2**32))
        for command in ("eject", "open", "close", "verify"):
            self.refuse(sentence, command, DEVICE)
        self.refuse(sentence, "erase", DEVICE, "--force")
        # It is no virtual one, whoever has it.
        for command in (("delete", DEVICE, "--force"), ("insert", DEVICE, COMMAND), ("export", DEVICE, self.scratch)):
            self.refuse('The drive "/dev/sr0" is no virtual one: it can\'t ', *command)
        other.close()
        self.assertTrue(self.shown()["usable"])
        self.assertNotIn("in use", self.succeed("list"))

    def test_a_disc_that_is_mounted(self):
        self.insert("DVD+RW", mountedAt="/media/My Disc")
        sentence = 'The disc in "/dev/sr0" is mounted at "/media/My Disc"; unmount it, and try again.'
        said = self.succeed("list")
        self.assertRegex(said, r"(?m)^/dev/sr0 .*in use")
        self.assertIn(sentence, said)
        drive = self.shown()
        self.assertEqual((drive["usable"], drive["problem"]["code"]), (False, 0x80020040 - 2**32))
        for arguments in (("erase", DEVICE, "--force"), ("eject", DEVICE), ("verify", DEVICE)):
            self.refuse(sentence, *arguments)
        self.change(mountedAt="")
        self.assertTrue(self.shown()["usable"])


if __name__ == "__main__":
    unittest.main()
