"""cases.py: what the tests of the panels have in common: a display, drives, and programs that run there."""
import os
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from display import ROOT, Display, Drives, Program, wait_for  # noqa: E402

BURN = os.path.join(ROOT, "examples", "burn-with-panels.bas")
ERASE = os.path.join(ROOT, "examples", "erase-with-panel.bas")
# Where pictures of the panels go, when somebody wants to look at them.
PICTURES = os.environ.get("PANEL_PICTURES")

PROGRESS = """
Class Progress
    Inherits DRBurnProgressPanelQRX
    finished As Boolean
    Event burnProgressPanelWillBegin()
        Print "will begin"
    End Event
    Event burnProgressPanelBurnDidFinish(burn As DRBurnQRX) As Boolean
        Print "burn did finish"
        Return {told}
    End Event
    Event burnProgressPanelDidFinish()
        Print "did finish"
        finished = True
    End Event
End Class
Dim progress As New Progress
Sub BurnOnce(progress As Progress)
    Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
    burn.requestedBurnSpeed = {speed}
    burn.Overwrite = True
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    progress.finished = False
    progress.beginProgressPanelForBurn(burn, DRTrackQRX.trackForRootFolder(GetFolderItem(App.Arguments(0))))
    While Not progress.finished
        App.DoEvents
    Wend
    Print burn.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
End Sub
"""


class Case(unittest.TestCase):
    def setUp(self):
        self.drives = Drives()
        self.addCleanup(self.drives.remove)
        self.display = Display()
        self.addCleanup(self.display.close)

    def run_program(self, path, *arguments, **options):
        program = Program(self.display, self.drives, path, *arguments, **options)
        self.addCleanup(program.kill)
        return program

    def picture(self, name, moving=False):
        if PICTURES:
            if not moving:
                self.display.settle()
            self.display.shot(os.path.join(PICTURES, name + ".png"))

    def wait_for_another_picture(self, before):
        wait_for("another picture", lambda: self.display.picture() != before)

    def names_on_disc(self):
        return subprocess.run(["bsdtar", "-tf", self.drives.image()], capture_output=True, text=True,
                              check=True).stdout.split()

    def height(self, title):
        """How high the window is: that tells a question from what stood there before."""
        window = self.display.window(title)
        geometry = self.display.tool("xdotool", "getwindowgeometry", "--shell", window) if window else ""
        return next((int(line[7:]) for line in geometry.split() if line.startswith("HEIGHT=")), None)

    def progress(self, *, speed, end="BurnOnce(progress)\n", told="False"):
        return self.run_program(None, self.drives.source, text=PROGRESS.format(speed=speed, told=told) + end)
