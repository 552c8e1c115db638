#!/usr/bin/python3
"""Burns under the progress panel: what is shown, how it is stopped, and what goes wrong."""
import os
import shutil
import unittest

from cases import PROGRESS, Case
from display import wait_for


# What could not be burned has come out of the drive.
AGAIN = "BurnOnce(progress)\nCall DRDeviceQRX.device(0).closeTray\nBurnOnce(progress)\n"


class Panels(Case):
    def test_one_panel_runs_one_burn_after_the_other(self):
        program = self.progress(speed=60000, end="BurnOnce(progress)\nBurnOnce(progress)\n")
        self.assertEqual(program.end(), 0, program.errors)
        once = ["will begin", "burn did finish", "did finish", "DRStatusStateDone"]
        self.assertEqual(program.lines(), once + once)

    def test_stopping_asks_and_a_no_goes_on(self):
        self.drives.grow(12)
        program = self.progress(speed=1385)
        self.display.wait_window("Burning", moving=True)
        before = self.height("Burning")
        self.display.keys("Escape")
        wait_for("the question", lambda: self.height("Burning") != before)
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
        before = self.height("Burning")
        self.drives.keep_empty()
        shutil.rmtree(self.drives.path())
        wait_for("the failure", lambda: self.height("Burning") != before)
        self.assertIsNone(program.process.poll())
        self.display.wait_window("Burning")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-1], "DRStatusStateFailed")

    def test_a_panel_that_is_shown_again_has_the_size_that_it_had(self):
        self.drives.grow(4)
        program = self.progress(speed=1385, end="BurnOnce(progress)\nStdOut.Flush\nBurnOnce(progress)\n")
        self.display.wait_window("Burning", moving=True)
        first = self.height("Burning")
        wait_for("the second burn", lambda: len(program.lines()) >= 4)
        self.display.wait_window("Burning", moving=True)
        self.assertEqual(self.height("Burning"), first)
        self.assertEqual(program.end(), 0, program.errors)

    def test_another_process_cant_eject_while_it_burns(self):
        self.drives.grow(6)
        program = self.progress(speed=1385)
        self.display.wait_window("Burning", moving=True)
        wait_for("the writing", lambda: os.path.exists(os.path.join(self.drives.path(), "medium.new.iso")))
        self.assertIn("in use by another program", self.drives.command("eject", "drive-1"))
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-1], "DRStatusStateDone")
        self.assertIn("LARGE", [name.upper() for name in self.names_on_disc()])

    def test_a_medium_that_goes_while_it_burns_is_a_failure_and_the_panel_is_good_for_another(self):
        self.drives.grow(6)
        program = self.progress(speed=1385, end=AGAIN)
        self.display.wait_window("Burning", moving=True)
        growing = os.path.join(self.drives.path(), "medium.new.iso")
        wait_for("the writing", lambda: os.path.exists(growing))
        os.remove(growing)
        before = self.height("Burning")
        wait_for("the failure", lambda: self.height("Burning") != before)
        self.assertIsNone(program.process.poll())
        self.display.wait_window("Burning")
        self.picture("burn-progress-medium-gone")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        once = ["will begin", "burn did finish", "did finish"]
        self.assertEqual(program.lines(), once + ["DRStatusStateFailed"] + once + ["DRStatusStateDone"])
        self.assertIn("LARGE", [name.upper() for name in self.names_on_disc()])

    def test_closing_the_window_and_thinking_better_of_it_goes_on(self):
        self.drives.grow(12)
        program = self.progress(speed=1385)
        window = self.display.wait_window("Burning", moving=True)
        before = self.height("Burning")
        self.display.cross(window, moving=True)
        wait_for("the question", lambda: self.height("Burning") != before)
        self.display.cross(window, moving=True)  # asks no second time
        self.display.keys("Escape")
        wait_for("the burn to go on", lambda: self.height("Burning") == before)
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[-1], "DRStatusStateDone")

    def test_an_aborted_disc_can_be_burned_again(self):
        self.drives.grow(40)
        program = self.progress(speed=1385, end=AGAIN)
        window = self.display.wait_window("Burning", moving=True)
        before = self.height("Burning")
        self.display.click(window, 438, 133)  # stop
        wait_for("the question", lambda: self.height("Burning") != before)
        os.remove(os.path.join(self.drives.source, "large"))  # the second burn is a short one
        self.display.keys("Tab", "space")
        self.assertEqual(program.end(), 0, program.errors)
        once = ["will begin", "burn did finish", "did finish"]
        self.assertEqual(program.lines(), once + ["DRStatusStateFailed"] + once + ["DRStatusStateDone"])
        self.assertIn("LETTER.TXT", [name.upper() for name in self.names_on_disc()])

    def test_events_that_raise_do_not_keep_a_burn_from_its_end(self):
        text = PROGRESS
        for word in ("will begin", "burn did finish"):
            text = text.replace(f'Print "{word}"', f'Print "{word}"\nRaise New RuntimeException("{word}")')
        program = self.run_program(None, self.drives.source, text=text.format(speed=60000, told="False") + """
Sub BurnWhateverIsRaised(progress As Progress)
    Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
    burn.Overwrite = True
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    progress.finished = False
    Try
        progress.beginProgressPanelForBurn(burn, DRTrackQRX.trackForRootFolder(GetFolderItem(App.Arguments(0))))
    Catch e As RuntimeException
        Print "raised: " + e.Message
    End Try
    While Not progress.finished
        Try
            App.DoEvents
        Catch e As RuntimeException
            Print "raised: " + e.Message
        End Try
    Wend
    Print burn.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
End Sub
BurnWhateverIsRaised(progress)
BurnWhateverIsRaised(progress)
""")
        self.assertEqual(program.end(), 0, program.errors)
        once = ["will begin", "raised: will begin", "burn did finish", "did finish", "raised: burn did finish",
                "DRStatusStateDone"]
        self.assertEqual(program.lines(), once + once)

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

    def test_an_image_is_burned_and_what_is_none_shows_nothing(self):
        burnt = self.progress(speed=60000)
        self.assertEqual(burnt.end(), 0, burnt.errors)
        image = os.path.join(self.drives.scratch, "letters.iso")
        shutil.copy(self.drives.image(), image)
        program = self.progress(speed=60000, end=f"""
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.Overwrite = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
Print progress.beginProgressPanelForImageFile(burn, "/no/such/image")
Print progress.visible
Print progress.beginProgressPanelForImageFile(burn, "{image}")
Print progress.visible
While Not progress.finished
    App.DoEvents
Wend
Print burn.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
""")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["False", "False", "will begin", "True", "True", "burn did finish",
                                           "did finish", "DRStatusStateDone"])
        self.assertIn("LETTER.TXT", [name.upper() for name in self.names_on_disc()])

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


if __name__ == "__main__":
    unittest.main()
