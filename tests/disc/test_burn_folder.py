#!/usr/bin/python3
"""Burns folders as a person does, with the example program, and reads the discs back with other programs."""
import json
import os
import pty
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
HOST = os.environ["DISC_BASIC"]
PROGRAM = os.path.join(ROOT, "examples", "burn-folder.bas")
READBACK = os.path.join(ROOT, "tests", "engine", "readback.py")
# Sanitized builds are slow; nothing here is timed.
LIMIT = 120


class BurnFolder(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.mkdtemp(prefix="disc-test-")
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        self.drives = os.path.join(self.scratch, "drives")
        self.drive = os.path.join(self.drives, "drive-1")
        self.source = os.path.join(self.scratch, "Holiday")
        os.makedirs(self.drives)
        self.write("letter.txt", b"Dear reader,\n")

    def write(self, name, data):
        path = os.path.join(self.source, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def environment(self):
        return dict(os.environ, DISC_DRIVES=self.drives, LC_ALL="C.UTF-8")

    def command(self, *arguments):
        return [HOST, "run", PROGRAM, *arguments]

    def burn(self, *arguments, **options):
        return subprocess.run(self.command(*arguments), capture_output=True, text=True, timeout=LIMIT,
                              env=self.environment(), check=False, **options)

    def medium(self):
        with open(os.path.join(self.drive, "medium.json"), encoding="utf-8") as file:
            return json.load(file)

    def image(self):
        return os.path.join(self.drive, "medium.iso")

    def insert(self, **facts):
        """A drive with a medium of one's own."""
        os.makedirs(self.drive)
        with open(os.path.join(self.drive, "drive.json"), "w", encoding="utf-8") as file:
            json.dump({"format": 1, "vendor": "Virtual", "product": "Disc Drive 1", "firmwareRevision": "1.00"}, file)
        if facts:
            with open(os.path.join(self.drive, "medium.json"), "w", encoding="utf-8") as file:
                json.dump({"format": 1, "state": "blank", "sessions": [], **facts}, file)

    def assert_refused(self, done, sentence, status=1):
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
        self.assertRegex(done.stderr, sentence)
        self.assertFalse(os.path.exists(self.image()), "something was written")

    def assert_reads_back(self):
        readers = subprocess.run([sys.executable, READBACK, self.source, self.image()], capture_output=True, text=True,
                                 check=False)
        self.assertEqual(readers.returncode, 0, readers.stdout + readers.stderr)

    # ---- what works ---------------------------------------------------------------------------------------

    def test_a_folder_is_on_the_disc_as_other_programs_see_it(self):
        self.write("grüße/日本語.txt", "Grüße".encode())
        self.write("empty", b"")
        self.write("a block and a byte", os.urandom(2049))
        self.write("some.bin", os.urandom(3_000_000))
        self.write("n" * 100 + ".txt", b"long")
        os.chmod(os.path.join(self.source, "letter.txt"), 0o640)
        os.symlink("letter.txt", os.path.join(self.source, "link"))
        os.utime(os.path.join(self.source, "empty"), (1_000_000_000, 1_000_000_000))
        done = self.burn(self.source)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn('as "Holiday"', done.stdout)
        self.assertIn("every byte was read back and is right", done.stdout)
        self.assertIn(f"The medium lies in {self.image()}", done.stdout)
        self.assert_reads_back()
        self.assertEqual(self.medium()["state"], "complete")

    def test_the_command_it_names_shows_the_disc(self):
        done = self.burn(self.source)
        command = re.search(r"Look at it with:\s+(.*)", done.stdout).group(1)
        shown = subprocess.run(["sh", "-c", command], capture_output=True, text=True, check=True)
        self.assertIn("letter.txt", shown.stdout)

    def test_the_volume_has_the_name_that_was_given(self):
        done = self.burn(self.source, "Summer 2026")
        self.assertEqual(done.returncode, 0, done.stderr)
        said = subprocess.run(["isoinfo", "-d", "-i", self.image()], capture_output=True, text=True, check=True)
        self.assertRegex(said.stdout, r"(?mi)^Volume id: Summer 2026$")

    def test_a_rewritable_disc_that_holds_data_is_overwritten(self):
        self.burn(self.source)
        os.remove(os.path.join(self.source, "letter.txt"))
        self.write("other.txt", b"another disc")
        done = self.burn(self.source)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("The disc holds data, which is overwritten.", done.stdout)
        self.assert_reads_back()

    def test_without_a_terminal_progress_comes_in_plain_lines(self):
        done = self.burn(self.source)
        self.assertNotIn("\r", done.stdout)
        self.assertRegex(done.stdout, r"(?m)^Done …$")

    def test_what_was_written_is_read_back(self):
        with open(os.path.join(self.source, "big.bin"), "wb") as file:
            file.truncate(2_000_000_000)
        done = self.burn(self.source)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(done.stdout, r"(?m)^Writing …$")
        self.assertRegex(done.stdout, r"(?m)^Verifying …$")

    def test_on_a_terminal_there_is_a_bar(self):
        with open(os.path.join(self.source, "big.bin"), "wb") as file:
            file.truncate(1_500_000_000)
        main, side = pty.openpty()
        process = subprocess.Popen(self.command(self.source), stdin=side, stdout=side, stderr=side,
                                   env=dict(self.environment(), TERM="xterm"))
        os.close(side)
        shown = b""
        while True:
            try:
                part = os.read(main, 65536)
            except OSError:
                break
            if not part:
                break
            shown += part
        os.close(main)
        self.assertEqual(process.wait(LIMIT), 0, shown)
        text = shown.decode()
        self.assertRegex(text, r"\r\[[#-]{30}\] \d+%  (Writing|Verifying|Preparing)")
        self.assertRegex(text, r"MB/s")
        self.assertIn("every byte was read back", text)

    # ---- what is refused, before anything is written --------------------------------------------------------

    def test_no_arguments_show_how_to_use_it(self):
        done = self.burn()
        self.assertEqual(done.returncode, 2)
        self.assertRegex(done.stderr, r"^Usage: burn-folder.bas .*FOLDER \[VOLUME NAME\]$")

    def test_a_folder_that_does_not_exist(self):
        self.assert_refused(self.burn("/no/such/folder"), r"there is no folder /no/such/folder")

    def test_a_file_instead_of_a_folder(self):
        self.assert_refused(self.burn(os.path.join(self.source, "letter.txt")), r"is not a folder")

    def test_a_folder_that_cannot_be_read(self):
        if os.geteuid() != 0:
            os.chmod(self.source, 0)
            self.addCleanup(os.chmod, self.source, 0o700)
            done = self.burn(self.source)
        else:
            # Nothing is unreadable for root: burn as nobody.
            os.chmod(self.source, 0o700)
            for path in (self.scratch, self.drives):
                os.chmod(path, 0o777)
            done = subprocess.run(["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                                   *self.command(self.source)], capture_output=True, text=True, timeout=LIMIT,
                                  env=dict(self.environment(), HOME=self.scratch), check=False)
            if "setpriv" in done.stderr or "cannot open" in done.stderr.lower():
                self.skipTest("the build folder is not open to nobody")
        self.assert_refused(done, r"(?i)read|permission")

    def test_a_disc_that_is_too_small(self):
        self.insert(kind="CD-R", capacityBlocks=359847)
        with open(os.path.join(self.source, "huge.bin"), "wb") as file:
            file.truncate(800_000_000)
        done = self.burn(self.source)
        self.assert_refused(done, r"needs .*MB.* has .*MB")
        self.assertEqual(self.medium()["state"], "blank")

    def test_a_volume_name_that_is_too_long(self):
        self.assert_refused(self.burn(self.source, "x" * 33), r"32")

    def test_a_volume_name_with_characters_that_cannot_be(self):
        self.assert_refused(self.burn(self.source, "a/b"), r"/")
        self.assert_refused(self.burn(self.source, "a\tb"), r"(?i)character")

    def test_no_drive(self):
        with open(os.path.join(self.drives, "none"), "w", encoding="utf-8"):
            pass
        self.assert_refused(self.burn(self.source), r"there is no drive that can write discs")

    def test_no_medium(self):
        self.insert()
        self.assert_refused(self.burn(self.source), r"there is no disc in .*Disc Drive 1.*insert one")

    def test_a_full_write_once_medium_stays_as_it_was(self):
        self.insert(kind="CD-R", capacityBlocks=359847)
        self.assertEqual(self.burn(self.source).returncode, 0)
        with open(self.image(), "rb") as file:
            before = file.read()
        medium = self.medium()
        done = self.burn(self.source)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
        with open(self.image(), "rb") as file:
            self.assertEqual(file.read(), before)
        self.assertEqual(self.medium(), medium)

    # ---- what goes wrong on the way --------------------------------------------------------------------------

    def test_a_file_that_changes_while_it_burns_fails_the_burn_by_name(self):
        self.burn(self.source)
        before = self.medium()
        growing = self.write("growing.log", b"x" * 200_000_000)
        stop = threading.Event()

        def grow():
            with open(growing, "ab") as file:
                while not stop.is_set():
                    file.write(b"more")
                    file.flush()

        writer = threading.Thread(target=grow)
        writer.start()
        try:
            done = self.burn(self.source)
        finally:
            stop.set()
            writer.join()
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("growing.log", done.stderr)
        self.assertEqual(self.medium(), before)

    def start_and_wait_for_writing(self):
        """A burn that is under way: its image grows."""
        self.burn(self.source)
        with open(os.path.join(self.source, "big.bin"), "wb") as file:
            file.truncate(4_000_000_000)
        before = self.medium()
        process = subprocess.Popen(self.command(self.source), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                   env=self.environment())
        growing = os.path.join(self.drive, "medium.new.iso")
        deadline = time.monotonic() + LIMIT
        while not (os.path.exists(growing) and os.stat(growing).st_size > 1_000_000):
            self.assertIsNone(process.poll(), "the burn ended before it could be met")
            self.assertLess(time.monotonic(), deadline)
            select.select([], [], [], 0.002)
        return process, before

    def test_ctrl_c_ends_the_burn_and_the_medium_is_as_before(self):
        process, before = self.start_and_wait_for_writing()
        process.send_signal(signal.SIGINT)
        _, errors = process.communicate(timeout=LIMIT)
        self.assertEqual(process.returncode, 130)
        self.assertEqual(errors.strip(), "Interrupted.")
        self.assertEqual(self.medium(), before)
        self.assertEqual(sorted(os.listdir(self.drive)), ["drive.json", "lock", "medium.iso", "medium.json"])
        os.remove(os.path.join(self.source, "big.bin"))
        self.assert_reads_back()

    def test_after_a_crash_the_medium_is_as_before_and_the_next_burn_works(self):
        process, before = self.start_and_wait_for_writing()
        process.kill()
        process.communicate()
        self.assertEqual(self.medium(), before)
        os.remove(os.path.join(self.source, "big.bin"))
        self.assert_reads_back()
        self.write("next.txt", b"the next disc")
        done = self.burn(self.source)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assert_reads_back()
        self.assertEqual(sorted(os.listdir(self.drive)), ["drive.json", "lock", "medium.iso", "medium.json"])


if __name__ == "__main__":
    unittest.main()
