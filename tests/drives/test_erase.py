#!/usr/bin/python3
"""disc-drives erase: what becomes blank, what is asked before, and what an interruption leaves."""
import fcntl
import os
import signal
import subprocess
import time
import unittest

from drives_case import COMMAND, LIMIT, DrivesCase


class Erase(DrivesCase):
    def test_a_rewritable_medium_is_erased(self):
        for kind, option in (("CD-RW", ()), ("DVD+RW", ("--complete",))):
            self.used(kind, kind)
            self.refuse("holds .* Give --force, and nobody will be asked: Erase it", "erase", kind)
            self.assertEqual(self.succeed("erase", kind, "--force", *option).splitlines()[-1],
                             f'The medium in "{kind}" is blank.')
            medium = self.shown(kind)["medium"]
            self.assertEqual((medium["state"], medium["usedBlocks"]), ("blank", 0))

    def interrupted_at_the_medium(self, lease, *option):
        """Ctrl-C while the erase waits for the medium's file, which another program has a lease of until the command is
        about to end; gives what was said. A lease to read holds up who wants to write, one to write everybody."""
        with open(self.drive("one", "medium.iso"), "r+b" if lease == fcntl.F_WRLCK else "rb") as image:
            fcntl.fcntl(image, fcntl.F_SETSIG, signal.SIGURG)  # its own signal ends who doesn't expect it
            fcntl.fcntl(image, fcntl.F_SETLEASE, lease)
            erasing = subprocess.Popen([COMMAND, "erase", "one", "--force", *option], stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, env=self.environment())
            self.addCleanup(erasing.kill)
            self.addCleanup(erasing.stderr.close)
            self.wait_until(erasing, lambda: fcntl.fcntl(image, fcntl.F_GETLEASE) != lease)
            erasing.send_signal(signal.SIGINT)
            said = next(line for line in erasing.stderr if line.startswith("disc-drives: "))
            # All that is left to the first thread is to wait for the erase, which it has told to stop.
            self.wait_until(erasing, lambda: self.sleeps(erasing.pid))
            fcntl.fcntl(image, fcntl.F_SETLEASE, fcntl.F_UNLCK)
        self.assertEqual(erasing.communicate(timeout=LIMIT)[1], "")
        self.assertEqual(erasing.returncode, 130, said)
        return said

    def wait_until(self, process, happened):
        while not happened():
            self.assertIsNone(process.poll(), "it waits")
            time.sleep(0.002)

    @staticmethod
    def sleeps(process):
        with open(f"/proc/{process}/task/{process}/stat", encoding="ascii") as file:
            return file.read().rpartition(")")[2].split()[0] == "S"

    def test_an_erase_that_is_interrupted_while_it_overwrites_leaves_the_medium_incomplete(self):
        self.used("one", "DVD+RW")
        with open(self.drive("one", "medium.iso"), "ab") as image:
            image.write(b"old" * 1_000_000)
        size = os.path.getsize(self.drive("one", "medium.iso"))
        self.assertEqual(self.interrupted_at_the_medium(fcntl.F_RDLCK, "--complete"),
                         "disc-drives: interrupted; the medium may be erased in part; erase it again before it is used.\n")
        self.assertEqual(self.shown("one")["medium"]["state"], "incomplete")
        with open(self.drive("one", "medium.iso"), "rb") as image:
            data = image.read()
        self.assertEqual((len(data), data[:1 << 20].count(0), data[1 << 20:].count(0)), (size, 1 << 20, 0), "one piece is gone")
        self.assertIn("is blank", self.succeed("erase", "one", "--force"))

    def test_a_quick_erase_that_is_interrupted_goes_to_its_end(self):
        self.used("one", "DVD+RW")
        self.assertIn("may be erased in part; erase it again", self.interrupted_at_the_medium(fcntl.F_WRLCK))
        self.assertEqual(self.shown("one")["medium"]["state"], "blank")
        self.assertEqual(sorted(os.listdir(self.drive("one"))), ["drive.json", "lock", "medium.json"])

    def test_media_that_cannot_be_erased(self):
        self.used("once", "CD-R")
        self.refuse("(?i)can't be erased", "erase", "once", "--force")
        self.assertEqual(self.shown("once")["medium"]["state"], "complete")
        self.succeed("create", "empty", "--kind", "none")
        self.refuse("(?i)no disc", "erase", "empty")

    def test_a_person_is_asked_before_erasing(self):
        self.used("one")
        self.assertEqual(self.on_terminal("erase", "one", answer=b"n\n")[0], 1)
        self.assertEqual(self.shown("one")["medium"]["state"], "complete")
        self.assertEqual(self.on_terminal("erase", "one", answer=b"y\n")[0], 0)
        self.assertEqual(self.shown("one")["medium"]["state"], "blank")


if __name__ == "__main__":
    unittest.main()
