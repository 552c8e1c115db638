#!/usr/bin/python3
"""The panels as a person uses them: windows on a display, keys and clicks, and what then is on the disc."""
import os
import shutil
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from display import ROOT, Display, Drives, Program, wait_for  # noqa: E402

BURN = os.path.join(ROOT, "examples", "burn-with-panels.bas")
ERASE = os.path.join(ROOT, "examples", "erase-with-panel.bas")
# Where pictures of the panels go, when somebody wants to look at them.
PICTURES = os.environ.get("PANEL_PICTURES")

SETUP = """
Dim setup As New DRBurnSetupPanelQRX
setup.setCanSelectTestBurn(True)
Print setup.runSetupPanel
Dim burn As DRBurnQRX = setup.burnObject
If Not (burn Is Nil) Then
    Print burn.verifyDisc
    Print burn.appendable
    Print burn.completionAction
    Print burn.Testing
    Print burn.Overwrite
    Print burn.requestedBurnSpeed < 60000
End If
"""

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


class Panels(unittest.TestCase):
    def setUp(self):
        self.drives = Drives()
        self.addCleanup(self.drives.remove)
        self.display = Display()
        self.addCleanup(self.display.close)

    def run_program(self, path, *arguments, text=None):
        program = Program(self.display, self.drives, path, *arguments, text=text)
        self.addCleanup(program.kill)
        return program

    def picture(self, name, moving=False):
        if PICTURES:
            if not moving:
                self.display.settle()
            self.display.shot(os.path.join(PICTURES, name + ".png"))

    def names_on_disc(self):
        return subprocess.run(["bsdtar", "-tf", self.drives.image()], capture_output=True, text=True,
                              check=True).stdout.split()

    # ---- burning

    def test_return_burns_and_the_events_come_in_order(self):
        program = self.run_program(BURN, self.drives.source)
        self.display.wait_window("Burn a Disc")
        self.picture("burn-setup")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["Drive: Virtual Disc Drive 1", "Burning.",
                                           "The burn ended: DRStatusStateDone"])
        self.assertIn("./LETTER.TXT", [name.upper() for name in self.names_on_disc()])

    def test_escape_cancels_and_leaves_the_disc_blank(self):
        program = self.run_program(BURN, self.drives.source)
        self.display.wait_window("Burn a Disc")
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-1], "Cancelled.")
        self.assertFalse(os.path.exists(self.drives.image()))

    def test_the_cross_of_the_window_cancels(self):
        program = self.run_program(None, text=SETUP)
        self.display.cross(self.display.wait_window("Burn a Disc"))
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])

    def test_a_click_on_burn_confirms(self):
        program = self.run_program(None, text=SETUP)
        self.display.click(self.display.wait_window("Burn a Disc"), 438, 110)
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["1", "True", "False", "DRBurnCompletionActionEject", "False", "False",
                                           "False"])

    def test_options_reached_with_keys_are_those_of_the_burn(self):
        program = self.run_program(None, text=SETUP)
        window = self.display.wait_window("Burn a Disc")
        self.display.keys("Tab", "Tab", "space")  # drives, eject, options
        self.display.settle()
        self.picture("burn-setup-options")
        # Backwards from the options' button: mount, eject, test, verify, appendable.
        self.display.keys("shift+Tab", "space", "shift+Tab", "shift+Tab", "space", "shift+Tab", "space",
                          "shift+Tab", "space")
        self.display.settle()
        self.picture("burn-setup-chosen")
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["1", "False", "True", "DRBurnCompletionActionMount", "True", "False",
                                           "False"])

    def test_ejecting_disables_burn_and_closing_enables_it_again(self):
        program = self.run_program(None, text=SETUP)
        window = self.display.wait_window("Burn a Disc")
        self.display.keys("Tab", "space")  # Eject
        self.display.settle()
        self.picture("burn-setup-open")
        self.display.focus(window)
        self.display.keys("Return")
        self.display.settle()
        self.assertIsNone(program.process.poll())
        self.assertEqual(self.display.window("Burn a Disc"), window)
        self.display.focus(window)
        self.display.keys("space")  # the same button, which says Close now
        self.display.settle()
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[0], "1")

    def test_a_drive_that_goes_is_replaced_by_none(self):
        program = self.run_program(None, text=SETUP)
        window = self.display.wait_window("Burn a Disc")
        os.rename(self.drives.path(), os.path.join(self.drives.scratch, "gone"))
        with open(os.path.join(self.drives.folder, "none"), "w", encoding="utf-8"):
            pass
        before = self.display.picture()
        wait_for("the menu without a drive", lambda: self.display.picture() != before)
        self.display.settle()
        self.picture("burn-setup-no-drive")
        self.display.focus(window)
        self.display.keys("Return")
        self.display.settle()
        self.assertIsNone(program.process.poll())
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])

    def test_an_event_that_raises_leaves_the_panel_usable(self):
        program = self.run_program(None, text="""
Class Setup
    Inherits DRBurnSetupPanelQRX
    Event DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean
        Raise New RuntimeException("no opinion")
    End Event
End Class
Dim setup As New Setup
Try
    Print setup.runSetupPanel
Catch e As RuntimeException
    Print "raised: " + e.Message
End Try
""")
        self.display.wait_window("Burn a Disc")
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["raised: no opinion"])

    # ---- progress

    def progress(self, *, speed, end="BurnOnce(progress)\n", told="False"):
        return self.run_program(None, self.drives.source, text=PROGRESS.format(speed=speed, told=told) + end)

    def test_one_panel_runs_one_burn_after_the_other(self):
        program = self.progress(speed=60000, end="BurnOnce(progress)\nBurnOnce(progress)\n")
        self.assertEqual(program.end(), 0, program.errors)
        once = ["will begin", "burn did finish", "did finish", "DRStatusStateDone"]
        self.assertEqual(program.lines(), once + once)

    def test_stopping_asks_and_a_no_goes_on(self):
        self.drives.grow(12)
        program = self.progress(speed=1385)
        self.display.wait_window("Burning", moving=True)
        self.picture("burn-progress", moving=True)
        before = self.height("Burning")
        self.display.keys("Escape")
        wait_for("the question", lambda: self.height("Burning") != before)
        self.picture("burn-progress-question", moving=True)
        self.display.keys("Return")  # keep burning
        wait_for("the burn to go on", lambda: self.height("Burning") == before)
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-1], "DRStatusStateDone")

    def test_closing_the_window_asks_and_a_yes_aborts_in_order(self):
        self.drives.grow(60)
        program = self.progress(speed=1385)
        window = self.display.wait_window("Burning", moving=True)
        before = self.height("Burning")
        self.display.cross(window, moving=True)
        wait_for("the question", lambda: self.height("Burning") != before)
        self.display.keys("Tab", "space")  # the other button: stop
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["will begin", "burn did finish", "did finish", "DRStatusStateFailed"])

    def height(self, title):
        """How high the window is: that tells a question from what stood there before."""
        window = self.display.window(title)
        geometry = self.display.tool("xdotool", "getwindowgeometry", "--shell", window) if window else ""
        return next((line for line in geometry.split() if line.startswith("HEIGHT")), None)

    def test_a_failure_is_shown_until_it_was_read(self):
        program = self.run_program(None, self.drives.source, text=PROGRESS.format(speed=60000, told="False") + """
Call DRDeviceQRX.device(0).ejectMedia
BurnOnce(progress)
""")
        window = self.display.wait_window("Burning")
        self.display.settle()
        self.picture("burn-progress-failed")
        self.assertIsNone(program.process.poll())
        self.assertEqual(self.display.window("Burning"), window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["will begin", "burn did finish", "did finish", "DRStatusStateFailed"])

    def test_a_drive_that_is_unplugged_while_it_burns_is_a_failure_that_is_shown(self):
        self.drives.grow(6)
        program = self.progress(speed=1385)
        self.display.wait_window("Burning", moving=True)
        with open(os.path.join(self.drives.folder, "none"), "w", encoding="utf-8"):
            pass  # or another drive would be made
        shutil.rmtree(self.drives.path())
        before = self.height("Burning")
        wait_for("the failure", lambda: self.height("Burning") != before)
        self.assertIsNone(program.process.poll())
        self.display.wait_window("Burning")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-1], "DRStatusStateFailed")

    def test_a_failure_that_the_program_tells_is_not_told_again(self):
        program = self.progress(speed=60000, told="True",
                                end="Call DRDeviceQRX.device(0).ejectMedia\nBurnOnce(progress)\n")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-1], "DRStatusStateFailed")

    def test_what_cant_be_begun_raises_and_the_panel_is_good_for_another(self):
        program = self.progress(speed=60000, end="""
Dim none() As DRTrackQRX
Dim empty As DRBurnQRX
Dim used As New DRBurnQRX(DRDeviceQRX.device(0))
Try
    progress.beginProgressPanelForBurn(empty, none)
Catch e As RuntimeException
    Print "no burn"
End Try
Try
    progress.beginProgressPanelForBurn(used, none)
Catch e As RuntimeException
    Print "no track"
End Try
Try
    progress.beginProgressSheetForBurn(used, none, Nil)
Catch e As RuntimeException
    Print "no window"
End Try
BurnOnce(progress)
""")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["no burn", "will begin", "did finish", "no track", "no window",
                                           "will begin", "burn did finish", "did finish", "DRStatusStateDone"])

    def test_a_sheet_hangs_on_its_window(self):
        self.drives.grow(6)
        program = self.progress(speed=1385, end="""
Dim window As New NSWindowQRX("Photos", New NSRectQRX(200, 100, 640, 480))
window.show
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.requestedBurnSpeed = 1385
progress.Description = "Burning the photos of the summer, all six hundred of them, and the letters that belong to them"
progress.VerboseProgressStatus = True
progress.beginProgressSheetForBurn(burn, DRTrackQRX.trackForRootFolder(GetFolderItem(App.Arguments(0))), window)
While Not progress.finished
    App.DoEvents
Wend
Print burn.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
Print window.visible
""")
        self.display.wait_window("Burning", moving=True)
        self.picture("burn-progress-sheet", moving=True)
        self.assertIsNotNone(self.display.window("Photos"))
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-2:], ["DRStatusStateDone", "True"])

    # ---- erasing

    def test_a_written_disc_is_erased(self):
        burnt = self.progress(speed=60000)
        self.assertEqual(burnt.end(), 0, burnt.errors)
        self.assertTrue(os.path.exists(self.drives.image()))
        program = self.run_program(ERASE)
        self.display.wait_window("Erase a Disc")
        self.picture("erase-setup")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["Erasing.", "The erase ended: DRStatusStateDone"])
        self.assertFalse(os.path.exists(self.drives.image()))

    # ---- no display

    def test_without_a_display_the_programs_say_so(self):
        for path in (BURN, ERASE):
            program = Program(None, self.drives, path, *([self.drives.source] if path == BURN else []))
            self.addCleanup(program.kill)
            self.assertEqual(program.end(), 1)
            self.assertIn("no display", program.errors)

    def test_a_display_that_does_not_answer_is_none(self):
        self.display.environment["DISPLAY"] = ":731"
        program = self.run_program(ERASE)
        self.assertEqual(program.end(), 1)
        self.assertIn("no display", program.errors)


if __name__ == "__main__":
    unittest.main()
