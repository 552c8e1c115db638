#!/usr/bin/python3
"""The burn setup panel as a person uses it: windows on a display, keys and clicks, and what then is on the disc."""
import os
import unittest

from cases import BURN, Case


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


class Panels(Case):
    def test_return_burns_and_the_events_come_in_order(self):
        program = self.run_program(BURN, self.drives.source)
        self.display.wait_window("Burn a Disc")
        self.picture("burn-setup")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["Drive: Virtual Disc Drive 1", "Burning.",
                                           "The burn ended: DRStatusStateDone"])
        self.assertIn("LETTER.TXT", [name.upper() for name in self.names_on_disc()])

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
        before = self.display.picture()
        os.rename(self.drives.path(), os.path.join(self.drives.scratch, "gone"))
        self.drives.keep_empty()
        self.wait_for_another_picture(before)
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


if __name__ == "__main__":
    unittest.main()
