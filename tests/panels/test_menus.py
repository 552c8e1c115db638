#!/usr/bin/python3
"""The menus of the burn setup panel, and drives that come and go while it is up."""
import unittest

from cases import Case
from display import wait_for

# Tells at once which drive is chosen; {events} is more of the class.
CHOICE = """
Class Setup
    Inherits DRBurnSetupPanelQRX
    Event DeviceSelectionChanged(device As DRDeviceQRX)
        If device Is Nil Then
            Print "none"
        Else
            Print device.displayName
        End If
        StdOut.Flush
    End Event
    {events}
End Class
Dim setup As New Setup
Try
    Print setup.runSetupPanel
Catch e As RuntimeException
    Print "raised: " + e.Message
End Try
Dim burn As DRBurnQRX = setup.burnObject
If Not (burn Is Nil) Then
    Print burn.device.displayName
    Print Round(burn.requestedBurnSpeed)
    Print burn.completionAction
    Print burn.verifyDisc
End If
"""
# Tells which drives are compared, and answers {best}.
BEST = """
    Function NameOf(device As DRDeviceQRX) As String
        If device Is Nil Then Return "nil"
        Return device.displayName
    End Function
    Event determineBestDevice(deviceA As DRDeviceQRX, deviceB As DRDeviceQRX) As DRDeviceQRX
        Print NameOf(deviceA) + " or " + NameOf(deviceB)
        StdOut.Flush
        Return {best}
    End Event
"""
# Places on the panel: the menu of drives, the button that shows more, and the menu of speeds that it shows.
DRIVES, EXPANDER, SPEEDS = (250, 63), (70, 110), (250, 97)
EJECT, MAXIMUM = "DRBurnCompletionActionEject", "65535"


class Panels(Case):
    def choice(self, events="", **kinds):
        for name, kind in kinds.items():
            self.drives.create(name, kind)
        return self.run_program(None, text=CHOICE.format(events=events))

    def test_the_mouse_chooses_a_drive(self):
        program = self.choice(Amber="CD-RW", Birch="DVD+RW", Cedar="BD-RE")
        window = self.display.wait_window("Burn a Disc")
        program.wait_lines(["Virtual Amber"])
        self.display.open_menu(window, *DRIVES)
        self.picture("burn-setup-drives")
        self.display.close_menu()
        self.display.choose(window, *DRIVES, 2)
        program.wait_lines(["Virtual Amber", "Virtual Cedar"])
        self.display.choose(window, *DRIVES, -1)
        program.wait_lines(["Virtual Amber", "Virtual Cedar", "Virtual Birch"])
        self.display.choose(window, *DRIVES, 0)  # the same again is no change
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[3:], ["1", "Virtual Birch", MAXIMUM, EJECT, "True"])

    def test_keys_choose_a_drive(self):
        program = self.choice(Amber="CD-RW", Birch="DVD+RW", Cedar="BD-RE")
        self.display.wait_window("Burn a Disc")
        self.display.keys("space")  # the menu has the keys first
        self.display.settle()
        self.display.keys("Down", "Down", "space")
        program.wait_lines(["Virtual Amber", "Virtual Cedar"])
        self.display.settle()
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:4], ["1", "Virtual Cedar"])

    def test_a_drive_that_comes_is_in_the_menu_and_the_choice_stays(self):
        program = self.choice(Birch="DVD+RW")
        window = self.display.wait_window("Burn a Disc")
        program.wait_lines(["Virtual Birch"])
        self.drives.create("Cedar", "BD-RE")
        # Pulled open again and again until it has two rows, as a person looks whether the new drive is there.
        for _ in range(30):
            self.display.choose(window, *DRIVES, 1)
            if len(program.lines()) > 1:
                break
        program.wait_lines(["Virtual Birch", "Virtual Cedar"])
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:4], ["1", "Virtual Cedar"])

    def test_a_drive_that_comes_with_a_better_disc_is_chosen(self):
        program = self.choice(Amber="none")
        self.display.wait_window("Burn a Disc")
        program.wait_lines(["Virtual Amber"])
        self.picture("burn-setup-no-disc")
        self.drives.create("Birch", "DVD+RW")
        program.wait_lines(["Virtual Amber", "Virtual Birch"])
        self.display.settle()
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[2:4], ["1", "Virtual Birch"])

    def test_when_the_chosen_drive_goes_another_takes_its_place_and_at_last_none(self):
        program = self.choice(Amber="CD-RW", Birch="DVD+RW")
        window = self.display.wait_window("Burn a Disc")
        program.wait_lines(["Virtual Amber"])
        self.drives.command("delete", "Amber")
        program.wait_lines(["Virtual Amber", "Virtual Birch"])
        self.drives.keep_empty()
        self.drives.command("delete", "Birch")
        program.wait_lines(["Virtual Amber", "Virtual Birch", "none"])
        self.drives.create("Cedar", "BD-RE")
        program.wait_lines(["Virtual Amber", "Virtual Birch", "none", "Virtual Cedar"])
        self.display.settle()
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[4:6], ["1", "Virtual Cedar"])

    def test_a_drive_that_goes_while_the_menu_is_open_cant_be_chosen(self):
        program = self.choice(Amber="CD-RW", Birch="DVD+RW")
        window = self.display.wait_window("Burn a Disc")
        program.wait_lines(["Virtual Amber"])
        self.display.open_menu(window, *DRIVES)
        self.display.point(window, DRIVES[0], DRIVES[1] + 26)
        self.display.settle()
        before = self.display.picture()
        self.drives.command("delete", "Birch")
        wait_for("the row to go", lambda: self.display.picture() != before)
        self.display.settle()
        self.display.release()
        self.display.settle()
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[:3], ["Virtual Amber", "1", "Virtual Amber"])

    def test_a_disc_that_another_process_takes_out_and_puts_back_is_seen(self):
        program = self.choice("""
    Event DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean
        Print device.mediaIsPresent
        StdOut.Flush
        Return device.mediaIsPresent
    End Event
""", Amber="CD-RW")
        window = self.display.wait_window("Burn a Disc")
        program.wait_lines(["Virtual Amber", "True"])
        self.drives.command("eject", "Amber")
        program.wait_lines(["Virtual Amber", "True", "False"])
        self.display.settle()
        self.display.keys("Return")  # nothing to burn on
        self.drives.command("close", "Amber")
        program.wait_lines(["Virtual Amber", "True", "False", "True"])
        self.display.settle()
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[4], "1")

    def test_a_drive_that_the_program_does_not_want_is_in_no_menu(self):
        program = self.choice("""
    Event DeviceCouldBeTarget(device As DRDeviceQRX) As Boolean
        Return device.displayName <> "Virtual Birch"
    End Event
""", Amber="CD-RW", Birch="DVD+RW", Cedar="BD-RE")
        window = self.display.wait_window("Burn a Disc")
        self.display.choose(window, *DRIVES, 1)
        program.wait_lines(["Virtual Amber", "Virtual Cedar"])
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)

    def test_the_expander_shows_a_menu_of_the_discs_speeds(self):
        program = self.choice(Amber="CD-RW")
        window = self.display.wait_window("Burn a Disc")
        before = self.height("Burn a Disc")
        self.display.click(window, *EXPANDER)
        self.display.settle()
        expanded = self.height("Burn a Disc")
        self.assertGreater(expanded, before)
        self.display.open_menu(window, *SPEEDS)
        self.picture("burn-setup-speeds")
        self.display.close_menu()
        self.display.choose(window, *SPEEDS, 2)  # maximum, then the fastest, then that below
        self.display.settle()
        self.picture("burn-setup-speed-chosen")
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        # 16x of 176.4 KB/s each
        self.assertEqual(program.lines(), ["Virtual Amber", "1", "Virtual Amber", "2822", EJECT, "True"])

    def test_what_was_chosen_stays_when_the_options_are_hidden(self):
        program = self.choice(Amber="CD-RW")
        window = self.display.wait_window("Burn a Disc")
        before = self.height("Burn a Disc")
        self.display.click(window, *EXPANDER)
        self.display.settle()
        expanded = self.height("Burn a Disc")
        self.display.click(window, 250, 170)  # verify
        self.display.click(window, 250, 218)  # mount
        self.display.choose(window, *SPEEDS, 1)
        self.display.click(window, EXPANDER[0], EXPANDER[1] + expanded - before)
        self.display.settle()
        self.assertEqual(self.height("Burn a Disc"), before)
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[3:], ["4234", "DRBurnCompletionActionMount", "False"])

    def test_a_program_says_which_of_two_drives_is_the_better_one(self):
        program = self.choice(BEST.format(best="deviceB"), Amber="CD-RW", Birch="DVD+RW")
        self.display.wait_window("Burn a Disc")
        compared = ["nil or Virtual Amber", "Virtual Amber or Virtual Birch", "Virtual Birch"]
        program.wait_lines(compared)
        self.drives.create("Cedar", "none")  # a drive that comes is compared with the one that is chosen
        compared += ["Virtual Birch or Virtual Cedar", "Virtual Cedar"]
        program.wait_lines(compared)
        self.drives.command("delete", "Cedar")  # and all that are left when that one goes
        compared += ["nil or Virtual Amber", "Virtual Amber or Virtual Birch", "Virtual Birch"]
        program.wait_lines(compared)
        self.display.settle()
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[len(compared):][:2], ["1", "Virtual Birch"])

    def test_a_program_that_finds_no_drive_better_leaves_the_first(self):
        self.first_is_left("Nil", "")

    def test_a_drive_that_is_in_no_menu_is_not_the_better_one(self):
        self.first_is_left("DRDeviceQRX.device(2)", """
    Event DeviceCouldBeTarget(device As DRDeviceQRX) As Boolean
        Return device.displayName <> "Virtual Cedar"
    End Event
""")

    def first_is_left(self, best, more):
        program = self.choice(BEST.format(best=best) + more,
                              Amber="CD-RW", Birch="DVD+RW", Cedar="BD-RE")
        self.display.wait_window("Burn a Disc")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        lines = program.lines()
        self.assertEqual(lines[0:2], ["nil or Virtual Amber", "nil or Virtual Birch"])
        self.assertEqual(lines[-5:-3], ["1", "Virtual Amber"])

    def test_an_event_that_raises_while_the_panel_is_up_leaves_it_usable(self):
        program = self.choice("""
    Event DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean
        If device.displayName = "Virtual Birch" Then Raise New RuntimeException("no opinion of Birch")
        Return True
    End Event
""", Amber="CD-RW", Birch="DVD+RW")
        window = self.display.wait_window("Burn a Disc")
        self.display.choose(window, *DRIVES, 1)
        program.wait_lines(["Virtual Amber", "Virtual Birch"])
        self.display.settle()
        self.display.choose(window, *DRIVES, -1)
        program.wait_lines(["Virtual Amber", "Virtual Birch", "Virtual Amber"])
        self.display.settle()
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        # What was raised meanwhile is the program's when the panel has gone; what was chosen counts all the same.
        self.assertEqual(program.lines()[3:5], ["raised: no opinion of Birch", "Virtual Amber"])


if __name__ == "__main__":
    unittest.main()
