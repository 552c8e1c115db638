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

# A program goes on, step by step, when the test says so: steps print what they are called.
STEP = """
Sub Step(what As String)
    Print what
    StdOut.Flush
    While Not GetFolderItem("{scratch}/after " + what).Exists
        App.DoEvents
    Wend
End Sub
"""

# A track that is written and compared as far as most of it, until the test says so.
PACED = """
Class Paced
    Inherits DRTrackQRX
    Reached As String
    Rested As String
    Sub Constructor()
        Super.Constructor
        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = 20000
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeDVDData
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeDVDData
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormDVDData
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatDVDData
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeDVDData
        settings.Value(DRTrackQRX.DRVerificationTypeKey) = DRTrackQRX.DRVerificationTypeReceiveData
        properties = settings
    End Sub
    Sub Pause(what As String)
        If Reached <> what Then Print what
        Reached = what
        StdOut.Flush
        While Not GetFolderItem("{scratch}/after " + what).Exists
            Sleep(10)
        Wend
    End Sub
    ' So that a panel sees something of what was done so far.
    Sub Rest(what As String)
        If Rested <> what Then Sleep(300)
        Rested = what
    End Sub
    Event estimateLengthOfTrack() As UInt64
        Return 20000
    End Event
    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Return True
    End Event
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        If address >= 8000 Then Rest("writing")
        If address >= 12000 Then Pause("writing")
        Return Bufferlen
    End Event
    Event prepareTrackForVerification() As Boolean
        Return True
    End Event
    Event verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        If address >= 8000 Then Rest("verifying")
        If address >= 12000 Then Pause("verifying")
        Return True
    End Event
End Class
Dim track As New Paced
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.verifyDisc = True
burn.Overwrite = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
"""
FAILED, DONE = "DRStatusStateFailed", "DRStatusStateDone"


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

    def names_on_disc(self, drive="drive-1"):
        return subprocess.run(["bsdtar", "-tf", self.drives.image(drive)], capture_output=True, text=True,
                              check=True).stdout.split()

    def height(self, title):
        """How high the window is: that tells a question from what stood there before."""
        window = self.display.window(title)
        geometry = self.display.tool("xdotool", "getwindowgeometry", "--shell", window) if window else ""
        return next((int(line[7:]) for line in geometry.split() if line.startswith("HEIGHT=")), None)

    def click_cross(self, title):
        """With the mouse: the keys are another window's."""
        window = self.display.window(title)
        geometry = self.display.tool("xdotool", "getwindowgeometry", "--shell", window).split()
        width = next(int(line[6:]) for line in geometry if line.startswith("WIDTH="))
        self.display.click(window, width - 10, -10)

    def steps(self, text, *arguments, **options):
        """A program with steps, and with paced tracks where its text wants them."""
        needed = STEP + (PACED if "Paced" in text or "track" in text else "")
        return self.run_program(None, *arguments, text=needed.format(scratch=self.drives.scratch) + text, **options)

    def after(self, what):
        """Lets the program go on after that step."""
        with open(os.path.join(self.drives.scratch, "after " + what), "w", encoding="utf-8"):
            pass

    def stays(self, program, title, *keys):
        """The keys change nothing: the window stays, and the program with it."""
        window = self.display.wait_window(title, moving=True)
        self.display.keys(*keys)
        self.display.settle()
        self.assertIsNone(program.process.poll())
        self.assertEqual(self.display.window(title), window)

    def progress(self, *, speed, end="BurnOnce(progress)\n", told="False"):
        return self.run_program(None, self.drives.source, text=PROGRESS.format(speed=speed, told=told) + end)
