#!/usr/bin/python3
"""Erasing with the two erase panels."""
import os
import unittest

from cases import ERASE, Case

# Erases once with what was chosen; tells what kind of erase that was, and whether the panel is there at its end. The
# panel stays until a file is there, because an erase may be faster than an eye.
THOROUGH = """
Class Progress
    Inherits DREraseProgressPanelQRX
    finished As Boolean
    Event eraseProgressPanelEraseDidFinish(erase As DREraseQRX) As Boolean
        Print Me.visible
        While Not GetFolderItem(App.Arguments(0)).Exists
            App.DoEvents
        Wend
        Print erase.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
        Return False
    End Event
    Event eraseProgressPanelDidFinish()
        Print Me.visible
        finished = True
    End Event
End Class
Dim setup As New DREraseSetupPanelQRX
Print setup.runSetupPanel
Dim erase As DREraseQRX = setup.eraseObject
If erase Is Nil Then Quit
Print erase.eraseType
Dim progress As New Progress
progress.beginProgressPanelForErase(erase)
While Not progress.finished
    App.DoEvents
Wend
"""

WITH_PANEL = """
Step("confirmed")
Dim erase As DREraseQRX = setup.eraseObject
Step("asked for")
Dim progress As New DREraseProgressPanelQRX
progress.beginProgressPanelForErase(erase)
Dim state As String = DRBurnQRX.DRStatusStateNone
While state <> DRBurnQRX.DRStatusStateDone And state <> DRBurnQRX.DRStatusStateFailed
    App.DoEvents
    state = erase.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
Wend
Print state
"""
BUSY = "in use by another program"


class Panels(Case):
    def burn(self, drive):
        burnt = self.run_program(None, self.drives.source, text=f"""
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.writeLayout(DRTrackQRX.trackForRootFolder(GetFolderItem(App.Arguments(0))))
While burn.status.Value(DRBurnQRX.DRStatusStateKey) <> DRBurnQRX.DRStatusStateDone
    App.DoEvents
Wend
""")
        self.assertEqual(burnt.end(), 0, burnt.errors)
        self.assertTrue(os.path.exists(self.drives.image(drive)))

    def test_a_written_disc_is_erased(self):
        self.drives.create("Amber", "DVD+RW")
        self.burn("Amber")
        program = self.run_program(ERASE)
        self.display.wait_window("Erase a Disc")
        self.picture("erase-setup")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["Erasing.", "The erase ended: DRStatusStateDone"])
        self.assertFalse(os.path.exists(self.drives.image("Amber")))

    def thoroughly(self, choose):
        self.drives.create("Amber", "DVD+RW", "--capacity", "600MB")
        self.burn("Amber")
        seen = os.path.join(self.drives.scratch, "seen")
        program = self.run_program(None, seen, text=THOROUGH)
        window = self.display.wait_window("Erase a Disc")
        choose(window)
        self.display.settle()
        self.picture("erase-setup-complete")
        self.display.focus(window)
        self.display.keys("Return")
        self.display.wait_window("Erasing", moving=True)
        self.picture("erase-progress", moving=True)
        with open(seen, "w", encoding="utf-8"):
            pass
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["1", "DREraseTypeComplete", "True", "DRStatusStateDone", "False"])
        self.assertIn("blank", self.drives.command("show", "Amber"))
        self.assertFalse(os.path.exists(self.drives.image("Amber")))

    def test_a_click_erases_completely(self):
        self.thoroughly(lambda window: self.display.click(window, 250, 112))

    def test_keys_erase_completely(self):
        self.thoroughly(lambda window: self.display.keys("Tab", "Tab", "Tab", "space"))

    def test_cancelling_leaves_the_disc_as_it_is(self):
        self.drives.create("Amber", "DVD+RW")
        self.burn("Amber")
        program = self.run_program(None, text=THOROUGH)
        self.display.wait_window("Erase a Disc")
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])
        self.assertTrue(os.path.exists(self.drives.image("Amber")))

    def erasing(self, steps, before=""):
        self.drives.create("Amber", "DVD+RW")
        return self.steps(f"""
Dim setup As New DREraseSetupPanelQRX
{before}
Print setup.runSetupPanel
{steps}
Step("the end")
""")

    def ejected(self):
        """As another process does it; whether it may."""
        return BUSY not in self.drives.command("eject", "Amber")

    def test_the_drive_is_kept_from_ok_until_the_erase_has_ended(self):
        program = self.erasing(WITH_PANEL)
        self.display.wait_window("Erase a Disc")
        self.display.keys("Return")
        program.wait_lines(["1", "confirmed"])
        self.assertFalse(self.ejected())
        self.after("confirmed")
        program.wait_lines(["1", "confirmed", "asked for"])
        self.assertFalse(self.ejected())
        self.after("asked for")
        # The panels and the erase are still there.
        program.wait_lines(["1", "confirmed", "asked for", "DRStatusStateDone", "the end"])
        self.assertTrue(self.ejected())
        self.assertIn("open", self.drives.command("show", "Amber"))
        self.after("the end")
        self.assertEqual(program.end(), 0, program.errors)

    def test_an_erase_that_is_never_started_keeps_the_drive_until_it_goes(self):
        program = self.erasing("""
Dim erase As DREraseQRX = setup.eraseObject
Dim another As DREraseQRX = setup.eraseObject
Step("two")
erase = Nil
Step("one")
another = Nil
""")
        self.display.wait_window("Erase a Disc")
        self.display.keys("Return")
        program.wait_lines(["1", "two"])
        self.assertFalse(self.ejected())
        self.after("two")
        program.wait_lines(["1", "two", "one"])
        self.assertFalse(self.ejected())
        self.after("one")
        program.wait_lines(["1", "two", "one", "the end"])
        self.assertTrue(self.ejected())
        self.after("the end")
        self.assertEqual(program.end(), 0, program.errors)

    def test_ok_before_the_panel_is_shown_and_after_it_was_cancelled_takes_no_drive(self):
        program = self.erasing("""
setup.ok
Print setup.eraseObject Is Nil
""", before='setup.ok\nStep("begun")')
        program.wait_lines(["begun"])
        self.assertTrue(self.ejected())
        self.drives.command("close", "Amber")
        self.after("begun")
        self.display.wait_window("Erase a Disc")
        self.display.keys("Escape")
        program.wait_lines(["begun", "0", "True", "the end"])
        self.assertTrue(self.ejected())
        self.after("the end")
        self.assertEqual(program.end(), 0, program.errors)

    def test_a_panel_that_is_shown_again_lets_go_of_what_was_confirmed_before(self):
        program = self.erasing("""
Step("confirmed")
Print setup.runSetupPanel
Print setup.eraseObject Is Nil
""")
        self.display.wait_window("Erase a Disc")
        self.display.keys("Return")
        program.wait_lines(["1", "confirmed"])
        self.assertFalse(self.ejected())
        self.after("confirmed")
        self.display.wait_window("Erase a Disc")
        self.display.keys("Escape")
        program.wait_lines(["1", "confirmed", "0", "True", "the end"])
        self.assertTrue(self.ejected())
        self.after("the end")
        self.assertEqual(program.end(), 0, program.errors)

    def test_what_cant_be_erased_cant_be_confirmed(self):
        self.drives.create("Amber", "CD-R")
        program = self.run_program(None, text=THOROUGH)
        self.display.wait_window("Erase a Disc")
        self.picture("erase-setup-unsuitable")
        self.display.keys("Return")
        self.display.settle()
        self.assertIsNone(program.process.poll())
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])


if __name__ == "__main__":
    unittest.main()
