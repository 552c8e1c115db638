#!/usr/bin/python3
"""What a program changes of a setup panel: its sentence, its button, who reserves the disc, and what it calls."""
import unittest

from cases import Case
from display import wait_for

# {events} are those of the class, {before} comes before the panel is shown and {later} after it.
SETUP = """
Class Setup
    Inherits DRBurnSetupPanelQRX
    {events}
End Class
Dim setup As New Setup
{before}
Print setup.runSetupPanel
{later}
"""
# Answers what the drive is good for, and makes of the sentence what {prompt} does.
SUITABLE = """
    Event DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean
        {prompt}
        Return {answer}
    End Event
"""
# As another process sees the reservation of the disc, when it wants that itself.
RESERVING = """
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
drive.acquireMediaReservation
For i As Integer = 1 To 2
    Step(Str(i))
    Print drive.mediaIsReserved
Next
"""
OTHER_BUTTON, EXPANDER = (438, 63), (70, 110)
SENTENCE = (396, 30, 84, 18)


class Panels(Case):
    def setup_panel(self, events="", before="", later=""):
        return self.steps(SETUP.format(events=events, before=before, later=later))

    def sight(self, program, *keys, size=(500, 143)):
        """What a person sees of the panel; the keys end it."""
        window = self.display.wait_window("Burn a Disc")
        seen = self.display.part(window, *size, 0, 0)
        colours = self.display.colours(window, *SENTENCE)
        self.display.keys(*keys)
        self.assertEqual(program.end(), 0, program.errors)
        return seen, colours

    def test_a_sentence_that_is_not_changed_is_the_panels_own_and_an_empty_one_is_none(self):
        own, colours = self.sight(self.setup_panel(), "Escape")
        self.assertGreater(colours, 1)
        for prompt in ("", "prompt = prompt"):
            seen, _ = self.sight(self.setup_panel(SUITABLE.format(prompt=prompt, answer="True")), "Escape")
            self.assertEqual(seen, own, prompt)
        program = self.setup_panel(SUITABLE.format(prompt='prompt = ""', answer="True"))
        seen, colours = self.sight(program, "Return")
        self.assertNotEqual(seen, own)
        self.assertEqual(colours, 1)
        self.assertEqual(program.lines(), ["1"])  # without a sentence the disc is as good

    def test_an_unsuitable_disc_says_the_programs_sentence_and_cant_be_confirmed(self):
        program = self.setup_panel(SUITABLE.format(prompt='prompt = "Not this one."', answer="False"))
        self.stays(program, "Burn a Disc", "Return")
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])

    def test_a_click_on_cancel_cancels(self):
        program = self.setup_panel()
        self.display.click(self.display.wait_window("Burn a Disc"), 344, 110)
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])

    def test_the_button_of_the_tray_opens_an_empty_drive_and_closes_it(self):
        self.drives.create("Amber", "none")
        program = self.setup_panel()
        window = self.display.wait_window("Burn a Disc")
        for tray in ("open", "closed"):
            self.display.click(window, *OTHER_BUTTON)
            wait_for(tray, lambda: f"Tray        {tray}" in self.drives.command("show", "Amber"))
            self.display.settle()
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)

    def test_the_title_of_the_default_button_and_its_way_back(self):
        own, _ = self.sight(self.setup_panel(), "Escape")
        title = 'setup.setDefaultButtonTitle("Make the disc")\n'
        program = self.setup_panel(before=title)
        seen, _ = self.sight(program, "Return")
        self.assertNotEqual(seen, own)
        self.assertEqual(program.lines(), ["1"])
        back = "setup.setDefaultButtonTitle(DRBurnSetupPanelQRX.DRBurnSetupPanelDefaultButtonDefaultTitle)"
        seen, _ = self.sight(self.setup_panel(before=title + back), "Escape")
        self.assertEqual(seen, own)

    def test_the_panel_reserves_the_disc_while_it_is_shown(self):
        self.reserved("", ["False", "True"])

    def test_a_program_that_reserves_by_itself_keeps_the_panel_from_it(self):
        self.reserved("""
    Event SetupPanelShouldHandleMediaReservations() As Boolean
        Return False
    End Event
""", ["True", "True"])

    def reserved(self, events, expected):
        self.drives.create("Amber", "CD-R")
        program = self.setup_panel(events, later='Step("the end")')
        self.display.wait_window("Burn a Disc")
        other = self.steps(RESERVING, name="other")
        other.wait_lines(["1"])
        self.after("1")
        other.wait_lines(["1", expected[0], "2"])
        self.display.keys("Escape")
        program.wait_lines(["0", "the end"])  # the panel is still there, and shown no more
        self.after("2")
        self.assertEqual(other.end(), 0, other.errors)
        self.assertEqual(other.lines(), ["1", expected[0], "2", expected[1]])
        self.after("the end")
        self.assertEqual(program.end(), 0, program.errors)

    def test_the_options_are_shown_when_a_program_calls_for_them(self):
        for calls, expanded in (1, True), (2, False):
            program = self.setup_panel(before="setup.expand\n" * calls)
            self.display.wait_window("Burn a Disc")
            self.assertEqual(self.height("Burn a Disc") > 200, expanded)
            self.display.keys("Escape")
            self.assertEqual(program.end(), 0, program.errors)

    def test_the_actions_of_the_controls_change_nothing_by_themselves(self):
        program = self.setup_panel(before="""
setup.burnSpeed
setup.appendable
setup.completionAction
setup.testBurn
setup.verifyBurn
""", later="""
Dim burn As DRBurnQRX = setup.burnObject
Print burn.requestedBurnSpeed = DRDeviceQRX.DRDeviceBurnSpeedMax
Print burn.appendable
Print burn.completionAction
Print burn.Testing
Print burn.verifyDisc
""")
        self.display.wait_window("Burn a Disc")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["1", "True", "False", "DRBurnCompletionActionEject", "False", "True"])

    def test_ejecting_closing_and_opening_from_a_program(self):
        self.drives.create("Amber", "CD-RW")
        program = self.setup_panel(before="setup.eject\nsetup.open\nsetup.close\nPrint DRDeviceQRX.device(0).trayIsOpen",
                                   later="""
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
setup.open ' with a disc inside it stays closed
Print drive.trayIsOpen
setup.eject
Print drive.trayIsOpen
setup.close
Print drive.trayIsOpen
Print drive.mediaIsPresent
""")
        self.display.wait_window("Burn a Disc")
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["False", "0", "False", "True", "False", "True"])

    def test_a_second_construction_raises_nothing_and_makes_the_panel_anew(self):
        own, _ = self.sight(self.setup_panel(), "Escape")
        program = self.setup_panel("""
    Event DeviceSelectionChanged(device As DRDeviceQRX)
        Print device.displayName ' told once
    End Event
""", before="""
setup.setDefaultButtonTitle("Make the disc")
setup.Constructor
""", later="Print setup.burnObject.device.displayName")
        seen, _ = self.sight(program, "Return")
        self.assertEqual(seen, own)
        self.assertEqual(program.lines(), ["Virtual Disc Drive 1", "1", "Virtual Disc Drive 1"])

    def test_an_event_ejects_closes_and_ends_the_panel(self):
        self.drives.create("Amber", "CD-RW")
        program = self.setup_panel("""
    Event DeviceSelectionChanged(device As DRDeviceQRX)
        Me.ok ' nobody has looked at the disc yet
        Me.eject
        Print device.trayIsOpen
        Me.close
        Print device.trayIsOpen
        Print Me.runSetupPanel ' it is being shown
    End Event
    Event DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean
        If device.mediaIsPresent Then Me.cancel
        Return True
    End Event
""", later="Print setup.burnObject Is Nil")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["True", "False", "0", "0", "True"])


if __name__ == "__main__":
    unittest.main()
