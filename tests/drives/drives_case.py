"""What the tests of disc-drives share: a folder for drives that goes away, the command, and terminals."""
import fcntl
import json
import os
import pty
import select
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

COMMAND = os.environ["DISC_DRIVES_COMMAND"]
# Sanitized builds are slow; nothing here is timed.
LIMIT = 100


class DrivesCase(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.mkdtemp(prefix="disc-drives-test-")
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        self.drives = os.path.join(self.scratch, "drives")

    def path(self, *parts):
        return os.path.join(self.scratch, *parts)

    def drive(self, name, *parts):
        return os.path.join(self.drives, name, *parts)

    def environment(self, **more):
        return {**os.environ, "DISC_DRIVES": self.drives, "LC_ALL": "C.UTF-8", **more}

    def run_command(self, *arguments, **more):
        return subprocess.run([COMMAND, *arguments], capture_output=True, text=True, timeout=LIMIT,
                              stdin=subprocess.DEVNULL, env=self.environment(**more), check=False)

    def succeed(self, *arguments, **more):
        done = self.run_command(*arguments, **more)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def answer(self, *arguments):
        """What a command says to programs."""
        return json.loads(self.succeed("--json", *arguments))

    def refuse(self, sentence, *arguments, status=1):
        """The command fails with one line that says why."""
        done = self.run_command(*arguments)
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        lines = done.stderr.splitlines()
        self.assertEqual(len(lines), 1, done.stderr)
        self.assertTrue(lines[0].startswith("disc-drives: "), done.stderr)
        self.assertRegex(lines[0], sentence)
        return done

    def medium(self, name):
        with open(self.drive(name, "medium.json"), encoding="utf-8") as file:
            return json.load(file)

    def shown(self, name):
        return self.answer("show", name)["drives"][0]

    def image(self, name="holiday.iso", volume="Holiday", files=(("letter.txt", b"Dear reader,\n"),)):
        """An image that another program made."""
        source = tempfile.mkdtemp(dir=self.scratch)
        for file, data in files:
            os.makedirs(os.path.dirname(os.path.join(source, file)), exist_ok=True)
            with open(os.path.join(source, file), "wb") as out:
                out.write(data)
        made = self.path(name)
        subprocess.run(["genisoimage", "-quiet", "-R", "-J", "-V", volume, "-o", made, source], check=True,
                       capture_output=True)
        return made

    @staticmethod
    def dead_process():
        """The number of one that lives no more."""
        process = subprocess.Popen(["true"])
        process.wait(LIMIT)
        return process.pid

    def while_asked(self, deed, *arguments):
        """What another program does meanwhile, and then yes; gives status and screen."""
        def answer(process, main):
            deed()
            os.write(main, b"y\n")
        return self.on_screen(arguments, answer)

    def used(self, name="used", kind="DVD+RW"):
        """A drive with a medium that holds data."""
        self.succeed("create", name, "--kind", "none")
        self.succeed("insert", name, self.image(), "--kind", kind)
        return name

    def busy(self, name):
        """Another process has the drive."""
        file = open(self.drive(name, "lock"), "w", encoding="ascii")
        fcntl.lockf(file, fcntl.LOCK_EX)
        self.addCleanup(file.close)

    def on_terminal(self, *arguments, answer=None):
        """Runs the command on a terminal of its own, answers its question, and gives status and screen."""
        return self.on_screen(arguments, lambda process, main: answer and os.write(main, answer))

    def interrupted(self, *arguments, at=b"[y/N] "):
        """The same, with Ctrl-C for an answer, or as soon as that is shown."""
        return self.on_screen(arguments, lambda process, main: process.send_signal(signal.SIGINT), at)

    def on_screen(self, arguments, answer, at=b"[y/N] "):
        main, side = pty.openpty()
        process = subprocess.Popen([COMMAND, *arguments], stdin=side, stdout=side, stderr=side, close_fds=True,
                                   env=self.environment(TERM="xterm"), start_new_session=True)
        os.close(side)
        shown = b""
        deadline = time.monotonic() + LIMIT
        while time.monotonic() < deadline:
            if not select.select([main], [], [], 1)[0]:
                continue
            try:
                part = os.read(main, 65536)
            except OSError:
                break
            if not part:
                break
            shown += part
            if answer and at in shown:
                answer(process, main)
                answer = None
        os.close(main)
        return process.wait(LIMIT), shown.decode()
