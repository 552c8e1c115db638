"""What the tests of the example programs share: drives of their own, and disc-basic with or without the companion."""
import json
import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
HOST = os.environ["DISC_BASIC"]
OPTIONS = os.environ.get("DISC_BASIC_OPTIONS", "").split()
# Sanitized builds are slow; nothing here is timed.
LIMIT = 150


class ExamplesCase(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.mkdtemp(prefix="disc-test-")
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        self.drives = os.path.join(self.scratch, "drives")
        self.source = os.path.join(self.scratch, "Holiday")
        os.makedirs(self.drives)
        self.temporary = tempfile.mkdtemp(dir=self.scratch)  # no other test's short-lived files are there
        self.write("letter.txt", b"Dear reader,\n")

    def write(self, name, data, folder=None):
        path = os.path.join(folder or self.source, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def environment(self):
        return dict(os.environ, DISC_DRIVES=self.drives, TMPDIR=self.temporary, LC_ALL="C.UTF-8")

    def command(self, program, *arguments):
        return [HOST, *OPTIONS, "run", os.path.join(ROOT, "examples", program), *arguments]

    def run_program(self, program, *arguments, **options):
        return subprocess.run(self.command(program, *arguments), capture_output=True, text=True, timeout=LIMIT,
                              stdin=subprocess.DEVNULL, env=self.environment(), check=False, **options)

    def succeed(self, program, *arguments):
        done = self.run_program(program, *arguments)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertEqual(done.stderr, "")
        return done.stdout

    def refuse(self, sentence, program, *arguments, status=1, lines=1):
        """The program ends with one line that says why."""
        done = self.run_program(program, *arguments)
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        self.assertEqual(len(done.stderr.splitlines()), lines, done.stderr)
        self.assertRegex(done.stderr, sentence)
        return done.stdout

    def make_drive(self, name="drive-1", product="Disc Drive 1", **facts):
        """A drive, with a medium of one's own when its facts are given."""
        folder = os.path.join(self.drives, name)
        os.makedirs(folder)
        with open(os.path.join(folder, "drive.json"), "w", encoding="utf-8") as file:
            json.dump({"format": 1, "vendor": "Virtual", "product": product, "firmwareRevision": "1.00"}, file)
        if facts:
            with open(os.path.join(folder, "medium.json"), "w", encoding="utf-8") as file:
                json.dump({"format": 1, "state": "blank", "sessions": [], **facts}, file)
        return folder

    def medium(self, drive="drive-1"):
        with open(os.path.join(self.drives, drive, "medium.json"), encoding="utf-8") as file:
            return json.load(file)

    def image(self, drive="drive-1"):
        return os.path.join(self.drives, drive, "medium.iso")

    def no_drive(self):
        with open(os.path.join(self.drives, "none"), "w", encoding="utf-8"):
            pass

    def files_on(self, image):
        """Names and contents, as another program reads them."""
        out = tempfile.mkdtemp(dir=self.scratch)
        subprocess.run(["bsdtar", "-xf", image, "-C", out], check=True)
        found = {}
        for folder, _, names in os.walk(out):
            for name in names:
                with open(os.path.join(folder, name), "rb") as file:
                    found[os.path.relpath(os.path.join(folder, name), out)] = file.read()
        subprocess.run(["chmod", "-R", "u+w", out], check=True)
        return found
