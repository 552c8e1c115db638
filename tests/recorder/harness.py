"""A recorder in a folder of its own, for tests: its state as a dictionary, its data, and programs that run with it."""
import json
import os
import shutil
import subprocess
import tempfile
import unittest

LIBRARY = os.environ["RECORDER"]
DEVICE = "/dev/sr0"


class RecorderTest(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.mkdtemp(prefix="recorder-test-")
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        self.folder = os.path.join(self.scratch, "recorder")
        os.mkdir(self.folder)

    def insert(self, medium, **state):
        """A new medium; the drive forgets everything else."""
        for name in os.listdir(self.folder):
            os.remove(os.path.join(self.folder, name))
        self.write_state(dict(state, medium=medium))

    def write_state(self, state):
        with open(os.path.join(self.folder, "recorder.json"), "w", encoding="utf-8") as file:
            json.dump(state, file)

    def state(self):
        with open(os.path.join(self.folder, "recorder.json"), encoding="utf-8") as file:
            return json.load(file)

    def change(self, **values):
        self.write_state(dict(self.state(), **values))

    def tracks(self):
        return self.state()["tracks"]

    def sectors(self, start, count, size):
        """What lies on the medium, past every program. A CD's data begins 150 blocks before block 0."""
        path = os.path.join(self.folder, "data")
        if not os.path.exists(path):
            return b""
        with open(path, "rb") as file:
            file.seek((start + (150 if size == 2352 else 0)) * size)
            return file.read(count * size)

    def environment(self):
        return dict(os.environ, LD_PRELOAD=LIBRARY, DISC_RECORDER=self.folder, LC_ALL="C.UTF-8", HOME=self.scratch)

    def run_tool(self, *command, **options):
        return subprocess.run(command, env=self.environment(), cwd=self.scratch, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace", timeout=150, check=False,
                              stdin=subprocess.DEVNULL, **options)

    def tool(self, *command):
        """A program that must succeed; answers what it said."""
        done = self.run_tool(*command)
        self.assertEqual(done.returncode, 0, f"{' '.join(command)}\n{done.stdout}")
        return done.stdout

    def file(self, name, data):
        path = os.path.join(self.scratch, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)
        return path

    @staticmethod
    def noise(count, seed=1):
        """Bytes that don't repeat, so that a block in a wrong place shows."""
        blocks = []
        for index in range((count + 7) // 8):
            seed = (seed * 6364136223846793005 + 1442695040888963407) % 2**64
            blocks.append(((seed >> 20) ^ index << 44).to_bytes(8, "big"))
        return b"".join(blocks)[:count]
