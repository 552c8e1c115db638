#!/usr/bin/python3
"""The erase progress panel: one erase after the other, what goes wrong, and events that raise."""
import shutil
import unittest

from cases import DONE, FAILED, Case
from display import wait_for

ERASE = """
Class Progress
    Inherits DREraseProgressPanelQRX
    finished As Boolean
    {events}
    Event eraseProgressPanelDidFinish()
        Print "did finish"
        finished = True
    End Event
End Class
Dim progress As New Progress
Sub EraseOnce(progress As Progress)
    Dim erase As New DREraseQRX(DRDeviceQRX.device(0))
    progress.finished = False
    Try
        progress.beginProgressPanelForErase(erase)
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
    Print erase.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
    StdOut.Flush
End Sub
{rest}
"""
EVENTS = """
    Event eraseProgressPanelWillBegin()
        Print "will begin"
        {begun}
    End Event
    Event eraseProgressPanelEraseDidFinish(erase As DREraseQRX) As Boolean
        {ended}
        Return {told}
    End Event
"""
TWICE = "EraseOnce(progress)\nEraseOnce(progress)\n"


class Panels(Case):
    def erasing(self, rest, begun="", ended='Print "erase did finish"', told="False", events=EVENTS, kind="DVD+RW"):
        self.drives.create("Amber", kind)
        return self.steps(ERASE.format(events=events.format(begun=begun, ended=ended, told=told), rest=rest))

    def test_one_panel_runs_one_erase_after_the_other(self):
        program = self.erasing(TWICE)
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["will begin", "erase did finish", "did finish", DONE] * 2)

    def test_a_drive_that_is_unplugged_before_it_erases_is_a_failure_that_is_shown(self):
        program = self.erasing("""
Dim erase As New DREraseQRX(DRDeviceQRX.device(0))
Step("ready")
progress.beginProgressPanelForErase(erase)
While Not progress.finished
    App.DoEvents
Wend
Print erase.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
""")
        program.wait_lines(["ready"])
        self.drives.keep_empty()
        shutil.rmtree(self.drives.path("Amber"))
        self.after("ready")
        self.display.wait_window("Erasing")
        self.picture("erase-progress-unplugged")
        self.assertIsNone(program.process.poll())
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["ready", "will begin", "erase did finish", "did finish", FAILED])

    def test_an_erase_that_fails_is_shown_until_it_was_read(self):
        program = self.erasing(TWICE, kind="CD-R")
        self.display.wait_window("Erasing")
        self.picture("erase-progress-failed")
        once = ["will begin", "erase did finish", "did finish", FAILED]
        self.assertEqual(program.lines(), once[:2])
        self.display.keys("Return")
        wait_for("the second erase", lambda: len(program.lines()) >= 4)
        self.display.cross(self.display.wait_window("Erasing"))
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), once * 2)

    def test_a_failed_erase_that_the_program_tells_is_not_told_again(self):
        program = self.erasing("EraseOnce(progress)\n", told="True", kind="CD-R")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["will begin", "erase did finish", "did finish", FAILED])

    def test_nothing_that_a_person_does_ends_the_panel_while_it_erases(self):
        program = self.erasing("EraseOnce(progress)\n", ended='Step("erase did finish")')
        program.wait_lines(["will begin", "erase did finish"])
        window = self.display.wait_window("Erasing", moving=True)
        self.display.cross(window, moving=True)
        self.stays(program, "Erasing", "Escape", "Return", "space")
        self.after("erase did finish")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:], ["did finish", DONE])

    def test_events_that_raise_do_not_keep_an_erase_from_its_end(self):
        program = self.erasing(TWICE, begun='Raise New RuntimeException("begun")',
                               ended='Raise New RuntimeException("ended")')
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["will begin", "raised: begun", "did finish", "raised: ended", DONE] * 2)

    def test_a_program_that_only_hears_of_the_erases_end(self):
        program = self.erasing(TWICE, events="")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["did finish", DONE] * 2)

    def test_a_program_that_hears_of_nothing_of_an_erase(self):
        program = self.erasing("""
Dim plain As New DREraseProgressPanelQRX
Dim erase As New DREraseQRX(DRDeviceQRX.device(0))
plain.beginProgressPanelForErase(erase)
Print plain.visible
While plain.visible
    App.DoEvents
Wend
Print erase.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
""")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["True", DONE])

    def test_an_erase_that_is_none_is_not_begun(self):
        program = self.erasing("""
Dim none As DREraseQRX
Try
    progress.beginProgressPanelForErase(none)
Catch e As RuntimeException
    Print "no erase"
End Try
Dim window As NSWindowQRX
Try
    progress.beginProgressSheetForErase(New DREraseQRX(DRDeviceQRX.device(0)), window)
Catch e As RuntimeException
    Print "no window"
End Try
Print progress.visible
EraseOnce(progress)
""")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["no erase", "no window", "False", "will begin", "erase did finish",
                                           "did finish", DONE])

    def test_a_second_construction_raises_and_the_erase_that_ends_is_the_programs_own_object(self):
        program = self.erasing("""
Dim mine As New DREraseQRX(DRDeviceQRX.device(0))
Try
    progress.Constructor
Catch e As RuntimeException
    Print e.Message
End Try
progress.mine = mine
progress.beginProgressPanelForErase(mine)
While Not progress.finished
    App.DoEvents
Wend
""", events="    mine As DREraseQRX" + EVENTS, ended="Print erase Is mine")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["Constructor called too often. Object is already initialized.",
                                           "will begin", "True", "did finish"])

    def test_an_erase_hangs_on_its_window_as_a_sheet(self):
        program = self.erasing("""
Dim window As New NSWindowQRX("Photos", New NSRectQRX(200, 100, 640, 480))
window.show
Dim erase As New DREraseQRX(DRDeviceQRX.device(0))
progress.beginProgressSheetForErase(erase, window)
While Not progress.finished
    App.DoEvents
Wend
Print window.visible
""", ended='Step("erase did finish")')
        program.wait_lines(["will begin", "erase did finish"])
        self.display.wait_window("Erasing", moving=True)
        self.display.settle()
        self.picture("erase-progress-sheet")
        self.assertIsNotNone(self.display.window("Photos"))
        self.after("erase did finish")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:], ["did finish", "True"])


if __name__ == "__main__":
    unittest.main()
