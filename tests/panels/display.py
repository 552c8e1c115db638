"""display.py: a display of the test's own with a window manager, and a person's hands on it."""
import os
import re
import shutil
import subprocess
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
HOST = os.environ["DISC_BASIC"]
DRIVES_COMMAND = os.environ["DISC_DRIVES_COMMAND"]
# Generous: machines are slow when much runs at once. Nothing waits longer than it must.
LIMIT = float(os.environ.get("PANEL_LIMIT", "60"))


def wait_for(what, condition, limit=LIMIT):
    """Waits until the condition answers something true, and answers that."""
    end = time.monotonic() + limit
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"waited {limit} s in vain for {what}")
        time.sleep(0.05)


class Display:
    """Xvfb picks a free number by itself; all windows are decorated as on a person's desktop."""

    def __init__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1024x768x24",
                                        "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as numbers:
            self.name = ":" + numbers.readline().strip()
        self.environment = dict(os.environ, DISPLAY=self.name)
        self.manager = subprocess.Popen(["openbox"], env=self.environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        wait_for("the window manager",
                 lambda: self.tool("xdotool", "get_num_desktops").strip().isdigit())

    def close(self):
        for process in (self.manager, self.server):
            process.kill()
            process.wait()

    def tool(self, *words):
        return subprocess.run(words, env=self.environment, capture_output=True, text=True, check=False).stdout

    def window(self, title):
        """The visible window of that title, or None."""
        found = self.tool("xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}$").split()
        return found[-1] if found else None

    def wait_window(self, title, moving=False):
        try:
            window = wait_for(f"the window {title}", lambda: self.window(title))
        except AssertionError as problem:
            found = self.tool("xdotool", "search", "--name", ".").split()
            names = {self.tool("xdotool", "getwindowname", one).strip() for one in found}
            raise AssertionError(f"{problem}; there are, shown or not: {names}") from None
        self.focus(window, moving)
        return window

    def focus(self, window, moving=False):
        """Keys go to the window; what is drawn is drawn, unless its picture never rests."""
        def has_it():
            if self.tool("xdotool", "getwindowfocus").strip() == window:
                return True
            self.tool("xdotool", "windowactivate", window)
            return False
        wait_for("the keys' way to the window", has_it)
        wait_for("the window to be drawn", lambda: self.colours(window) > 1)
        if not moving:
            self.settle()

    def settle(self):
        """Waits until the picture stays as it is."""
        before = None
        for _ in range(100):
            now = self.picture()
            if now == before:
                return
            before = now
            time.sleep(0.15)

    def picture(self):
        return subprocess.run(["import", "-window", "root", "rgb:-"], env=self.environment,
                              capture_output=True, check=False).stdout

    def shot(self, path):
        """For people to look at: the part of the screen that holds windows."""
        subprocess.run(["import", "-window", "root", "-trim", "+repage", "-colors", "64", path],
                       env=self.environment, check=True)

    def keys(self, *names):
        for name in names:
            self.tool("xdotool", "key", name)
            time.sleep(0.1)

    def point(self, window, x, y):
        """At a place in the window's contents."""
        self.tool("xdotool", "mousemove", "--window", window, str(x), str(y))
        time.sleep(0.1)

    def press(self, window, x, y):
        self.point(window, x, y)
        self.tool("xdotool", "mousedown", "1")
        time.sleep(0.12)

    def release(self):
        self.tool("xdotool", "mouseup", "1")
        time.sleep(0.1)

    def click(self, window, x, y):
        """A person's finger stays down for a moment."""
        self.press(window, x, y)
        self.release()

    def part(self, window, width, height, x, y):
        """The picture of a part of the window's contents."""
        return subprocess.run(["import", "-window", window, "-crop", f"{width}x{height}+{x}+{y}", "+repage",
                               "rgb:-"], env=self.environment, capture_output=True, check=True).stdout

    def colours(self, window, width=10000, height=10000, x=0, y=0):
        """How many there are in that part of the window's contents; 1: nothing is drawn there."""
        found = subprocess.run(["import", "-window", window, "-crop", f"{width}x{height}+{x}+{y}", "+repage",
                                "-format", "%k", "info:-"], env=self.environment, capture_output=True, text=True,
                               check=False).stdout
        return int(found) if found else 0

    def used(self):
        """Left, top, right and bottom of what is on the screen, the windows' frames included."""
        self.settle()
        box = subprocess.run(["import", "-window", "root", "-trim", "info:-"], env=self.environment,
                             capture_output=True, text=True, check=True).stdout
        width, height, left, top = map(int, re.search(r" (\d+)x(\d+) 1024x768\+(\d+)\+(\d+) ", box).groups())
        return left, top, left + width, top + height

    def open_menu(self, window, x, y):
        """Until it is let go."""
        before = self.picture()
        self.press(window, x, y)
        wait_for("the menu to open", lambda: self.picture() != before)
        self.settle()

    def close_menu(self):
        """What the pointer is on is chosen."""
        before = self.picture()
        self.release()
        wait_for("the menu to close", lambda: self.picture() != before)
        self.settle()

    def choose(self, window, x, y, rows):
        """Of a menu: pulled open, and let go so many rows below (above: negative) what was chosen before."""
        self.open_menu(window, x, y)
        self.point(window, x, y + 26 * rows)
        self.settle()
        self.close_menu()

    def cross(self, window, moving=False):
        """What the cross of the window's frame does: asks the program to close it."""
        self.focus(window, moving)
        self.keys("alt+F4")


class Drives:
    """A folder of drives, each with the medium that it is given."""

    def __init__(self):
        self.scratch = tempfile.mkdtemp(prefix="disc-test-")
        self.folder = os.path.join(self.scratch, "drives")
        os.makedirs(self.folder)
        self.source = os.path.join(self.scratch, "Letters")
        os.makedirs(self.source)
        with open(os.path.join(self.source, "letter.txt"), "w", encoding="utf-8") as file:
            file.write("Dear reader,\n")

    def path(self, drive="drive-1"):
        return os.path.join(self.folder, drive)

    def image(self, drive="drive-1"):
        return os.path.join(self.path(drive), "medium.iso")

    def command(self, *words):
        """As another process does it to a drive; what it printed, whether or not that worked."""
        done = subprocess.run([DRIVES_COMMAND, *words], env=dict(os.environ, DISC_DRIVES=self.folder),
                              capture_output=True, text=True, check=False)
        return done.stdout + done.stderr

    def create(self, name, kind, *words):
        printed = self.command("create", name, "--kind", kind, *words)
        assert "Made the drive" in printed, printed

    def keep_empty(self):
        """Without a drive there is none: in an empty folder the system would make one."""
        with open(os.path.join(self.folder, "none"), "w", encoding="utf-8"):
            pass

    def grow(self, megabytes):
        with open(os.path.join(self.source, "large"), "wb") as file:
            file.write(os.urandom(1 << 20) * megabytes)

    def remove(self):
        shutil.rmtree(self.scratch, ignore_errors=True)


class Program:
    """A BASIC program that runs on the display; its output is read when it has ended, or as it comes."""

    def __init__(self, display, drives, path, *arguments, text=None, host=HOST, name="program"):
        if text is not None:
            path = os.path.join(drives.scratch, name + ".bas")
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        self.log = os.path.join(drives.scratch, name + ".log")
        # With a home of its own, nobody's settings change what is drawn, or are waited for.
        environment = dict(display.environment if display else os.environ, DISC_DRIVES=drives.folder,
                           HOME=drives.scratch)
        if not display:
            environment.pop("DISPLAY", None)
        self.output = open(self.log, "wb")
        self.process = subprocess.Popen([host, path, *arguments], env=environment, stdin=subprocess.DEVNULL,
                                        stdout=self.output, stderr=subprocess.PIPE, text=True)

    def end(self):
        """Its exit status, once it has ended."""
        try:
            _, self.errors = self.process.communicate(timeout=LIMIT)
        except subprocess.TimeoutExpired:
            self.kill()
            raise AssertionError("the program does not end; it printed:\n" + self.text()) from None
        return self.process.returncode

    def text(self):
        with open(self.log, encoding="utf-8") as file:
            return file.read()

    def lines(self):
        return self.text().splitlines()

    def wait_lines(self, expected):
        """Waits until exactly these lines were printed."""
        try:
            wait_for("the lines", lambda: self.lines() == expected)
        except AssertionError as problem:
            raise AssertionError(f"{problem}: {expected}; there are {self.lines()}") from None

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.communicate()
        self.output.close()
