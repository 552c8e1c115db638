#!/usr/bin/python3
"""Burns that are stopped at a certain place, by a person or by the program, and programs that hear of little."""
import unittest

from cases import DONE, FAILED, Case
from display import wait_for

# {events} are those of the class; {meanwhile} is done in every turn of the loop.
BURN = """
Class Progress
    Inherits DRBurnProgressPanelQRX
    finished As Boolean
    {events}
End Class
Dim progress As New Progress
Function StateOf(burn As DRBurnQRX) As String
    Return burn.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
End Function
Function IsOver(burn As DRBurnQRX) As Boolean
    Return StateOf(burn) = DRBurnQRX.DRStatusStateDone Or StateOf(burn) = DRBurnQRX.DRStatusStateFailed
End Function
{before}
progress.beginProgressPanelForBurn(burn, track)
While Not IsOver(burn) Or progress.visible
    App.DoEvents
    {meanwhile}
Wend
Print StateOf(burn)
StdOut.Flush
"""
ONLY_DID_FINISH = """
    Event burnProgressPanelDidFinish()
        Print "did finish"
    End Event
"""
BURN_DID_FINISH = """
    Event burnProgressPanelBurnDidFinish(burn As DRBurnQRX) As Boolean
        Print "burn did finish"
        Return False
    End Event
"""
STOPPED_AT_ONCE = """
    goesOn As Boolean
    Event burnProgressPanelWillBegin()
        Print "will begin"
        If goesOn Then Return
        stopBurn
        stopBurn
    End Event
"""
NONE = "DRStatusStateNone"


class Panels(Case):
    def burning(self, events="", before="", meanwhile=""):
        return self.steps(BURN.format(events=events, before=before, meanwhile=meanwhile))

    def test_the_program_stops_without_a_question_and_no_failure_is_shown(self):
        program = self.burning(BURN_DID_FINISH.replace("Print", "Step"), before="progress.stopBurn\nDim stopped As Boolean", meanwhile="""
    If track.Reached = "writing" And Not stopped Then
        stopped = True
        Print "stopping"
        progress.stopBurn
        progress.stopBurn
    End If
""")
        # It does not wait for what makes the data, which still waits for a word.
        program.wait_lines(["writing", "stopping", "burn did finish"])
        self.stays(program, "Burning", "Escape", "Tab", "space", "Return")  # nothing is asked any more
        self.picture("burn-progress-stopping")
        self.after("burn did finish")
        program.wait_lines(["writing", "stopping", "burn did finish", FAILED])
        self.after("writing")
        self.assertEqual(program.end(), 0, program.errors)

    def test_a_burn_that_is_stopped_before_it_is_begun_writes_nothing(self):
        program = self.burning(STOPPED_AT_ONCE + BURN_DID_FINISH + ONLY_DID_FINISH, before="""
progress.beginProgressPanelForBurn(burn, track)
Print StateOf(burn)
Print progress.visible
Print burn.device.mediaIsBlank
progress.goesOn = True
""")
        self.after("writing")
        self.after("verifying")
        self.assertEqual(program.end(), 0, program.errors)
        # The same burn and the same panel are good for another time.
        self.assertEqual(program.lines(), ["will begin", "burn did finish", "did finish", NONE, "False", "True",
                                           "will begin", "writing", "verifying", "burn did finish", "did finish", DONE])

    def test_a_person_stops_with_the_buttons_and_no_failure_is_shown(self):
        program = self.burning(BURN_DID_FINISH)
        program.wait_lines(["writing"])
        window = self.display.wait_window("Burning")
        self.picture("burn-progress")
        before = self.height("Burning")
        self.display.click(window, 438, 133)
        wait_for("the question", lambda: self.height("Burning") != before)
        self.display.settle()
        self.picture("burn-progress-question")
        self.display.click(window, 280, self.height("Burning") - 33)
        program.wait_lines(["writing", "burn did finish", FAILED])
        self.after("writing")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[1:], ["burn did finish", FAILED])

    def test_a_burn_that_ends_while_the_question_stands_there_is_done(self):
        program = self.burning(BURN_DID_FINISH)
        program.wait_lines(["writing"])
        self.display.wait_window("Burning", moving=True)
        self.after("writing")
        program.wait_lines(["writing", "verifying"])
        self.display.settle()
        self.picture("burn-progress-verifying")
        before = self.height("Burning")
        self.display.wait_window("Burning", moving=True)
        self.display.keys("Escape")
        wait_for("the question", lambda: self.height("Burning") != before)
        self.after("verifying")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:], ["burn did finish", DONE])

    def test_a_second_construction_raises_and_the_burn_that_ends_is_the_programs_own_object(self):
        program = self.burning("""
    mine As DRBurnQRX
    Event burnProgressPanelBurnDidFinish(burn As DRBurnQRX) As Boolean
        Print burn Is mine
        Return False
    End Event
""", before="""
progress.mine = burn
Try
    progress.Constructor
Catch e As RuntimeException
    Print e.Message
End Try
""")
        self.after("writing")
        self.after("verifying")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["Constructor called too often. Object is already initialized.", "writing",
                                           "verifying", "True", DONE])

    def test_the_window_under_a_sheet_asks_before_a_burn_is_stopped_and_cant_be_closed(self):
        program = self.steps(BURN.format(events=ONLY_DID_FINISH, meanwhile="", before="""
Dim window As New NSWindowQRX("Photos", New NSRectQRX(200, 100, 640, 480))
window.show
""").replace("PanelForBurn(burn, track)", "SheetForBurn(burn, track, window)") + """
Step(Str(window.visible))
While window.visible
    App.DoEvents
Wend
""")
        program.wait_lines(["writing"])
        self.display.wait_window("Burning", moving=True)
        before = self.height("Burning")
        self.click_cross("Photos")
        wait_for("the question", lambda: self.height("Burning") != before)
        self.click_cross("Photos")  # asks no second time
        self.stays(program, "Burning")
        self.assertIsNotNone(self.display.window("Photos"))
        self.display.keys("Escape")
        self.after("writing")
        self.after("verifying")
        program.wait_lines(["writing", "verifying", "did finish", DONE, "True"])
        self.after("True")
        wait_for("the window alone", lambda: self.display.window("Burning") is None)
        self.click_cross("Photos")  # as before the sheet
        self.assertEqual(program.end(), 0, program.errors)

    def test_a_program_that_only_hears_of_the_end(self):
        program = self.burning(ONLY_DID_FINISH)
        program.wait_lines(["writing"])
        self.display.wait_window("Burning", moving=True)
        self.after("writing")
        self.after("verifying")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:], ["did finish", DONE])

    def test_a_program_that_hears_of_nothing(self):
        program = self.burning()
        program.wait_lines(["writing"])
        self.display.wait_window("Burning", moving=True)
        self.after("writing")
        self.after("verifying")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:], [DONE])

    def test_a_failure_is_shown_to_the_person_when_the_program_only_hears_of_the_end(self):
        program = self.burning(ONLY_DID_FINISH, before="Call DRDeviceQRX.device(0).ejectMedia")
        self.display.wait_window("Burning")
        self.assertEqual(program.lines(), [])
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["did finish", FAILED])

    def test_a_failure_is_shown_to_the_person_when_the_program_hears_of_nothing(self):
        program = self.burning(before="Call DRDeviceQRX.device(0).ejectMedia\nDim told As Boolean", meanwhile="""
    If IsOver(burn) And Not told Then Print "over"
    told = IsOver(burn)
""")
        program.wait_lines(["over"])  # before that the cross would ask whether to stop
        window = self.display.wait_window("Burning")
        self.assertIsNone(program.process.poll())
        self.display.cross(window)
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["over", FAILED])

    def test_without_a_track_nothing_is_begun_and_the_panel_is_good_for_another(self):
        program = self.burning(BURN_DID_FINISH + ONLY_DID_FINISH, before="""
Dim nothing As DRTrackQRX
Try
    progress.beginProgressPanelForBurn(burn, nothing)
Catch e As RuntimeException
    Print "raised"
End Try
Print progress.visible
""")
        self.after("writing")
        self.after("verifying")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["raised", "False", "writing", "verifying", "burn did finish",
                                           "did finish", DONE])


if __name__ == "__main__":
    unittest.main()
