#!/usr/bin/python3
"""The options of the burn setup panel, and discs that hold something."""
import json
import os
import unittest

from cases import BURN as EXAMPLE
from cases import Case

SETUP = """
Dim setup As New DRBurnSetupPanelQRX
{before}
Print setup.runSetupPanel
Dim burn As DRBurnQRX = setup.burnObject
If burn Is Nil Then Quit
Print burn.Overwrite
Print burn.appendable
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.writeLayout(DRTrackQRX.trackForRootFolder(GetFolderItem(App.Arguments(0))))
Dim state As String
Do
    App.DoEvents(10)
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state
"""
BURN = """
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.appendable = {appendable}
burn.writeLayout(DRTrackQRX.trackForRootFolder(GetFolderItem(App.Arguments(0))))
Do
    App.DoEvents(10)
Loop Until burn.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateDone
"""
SENTENCE = (396, 36, 84, 18)
HOLDING = """
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Print drive.acquireExclusiveAccess
Step("held")
drive.releaseExclusiveAccess
Step("the end")
"""
# Backwards from the button that shows the options, which has the keys when it was used.
REPLACE = ["shift+Tab"] * 5 + ["space"]


class Panels(Case):
    def burned(self, kind, appendable):
        self.drives.create("Amber", kind)
        burn = self.run_program(None, self.drives.source, text=BURN.format(appendable=appendable))
        self.assertEqual(burn.end(), 0, burn.errors)
        os.rename(os.path.join(self.drives.source, "letter.txt"), os.path.join(self.drives.source, "answer.txt"))

    def setup_panel(self, before=""):
        return self.run_program(None, self.drives.source, text=SETUP.format(before=before))

    def names(self):
        return sorted(name.upper() for name in self.names_on_disc("Amber") if name != ".")

    def test_what_is_on_a_disc_is_replaced_when_that_was_chosen(self):
        self.burned("DVD+RW", "False")
        program = self.setup_panel()
        self.stays(program, "Burn a Disc", "Return")  # not by accident
        window = self.display.wait_window("Burn a Disc")
        self.display.keys("Tab", "Tab", "space")
        self.display.settle()
        self.picture("burn-setup-may-replace")
        self.display.focus(window)
        self.display.keys(*REPLACE)
        self.display.settle()
        self.picture("burn-setup-will-replace")
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["1", "True", "False", "DRStatusStateDone"])
        self.assertEqual(self.names(), ["ANSWER.TXT"])

    def test_taking_the_choice_back_keeps_what_is_on_the_disc(self):
        self.burned("DVD+RW", "False")
        program = self.setup_panel()
        window = self.display.wait_window("Burn a Disc")
        self.display.keys("Tab", "Tab", "space")
        self.display.settle()
        before = self.display.part(window, *SENTENCE)
        self.display.focus(window)
        self.display.keys(*REPLACE)
        self.display.settle()
        self.assertNotEqual(self.display.part(window, *SENTENCE), before)  # it would be replaced
        self.stays(program, "Burn a Disc", "space", "Return")
        self.assertEqual(self.display.part(window, *SENTENCE), before)
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])
        self.assertEqual(self.names(), ["LETTER.TXT"])

    def test_an_open_disc_takes_more(self):
        self.burned("CD-RW", "True")
        program = self.setup_panel()
        self.display.wait_window("Burn a Disc")
        self.picture("burn-setup-append")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["1", "False", "False", "DRStatusStateDone"])
        medium = json.loads(self.drives.command("--json", "show", "Amber"))["drives"][0]["medium"]
        self.assertEqual([session["number"] for session in medium["sessions"]], [1, 2])

    def test_an_open_disc_will_not_do_where_the_program_does_not_append(self):
        self.burned("CD-R", "True")
        program = self.setup_panel("setup.setCanSelectAppendableMedia(False)")
        self.stays(program, "Burn a Disc", "Return")
        self.picture("burn-setup-no-append")
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["0"])

    def test_a_disc_cant_be_left_open_where_the_program_does_not_append(self):
        for flag, left_open in ("True", "True"), ("False", "False"):
            if flag == "True":
                self.drives.create("Amber", "CD-RW")
            program = self.run_program(None, text=f"""
Dim setup As New DRBurnSetupPanelQRX
setup.setCanSelectAppendableMedia({flag})
setup.expand
Print setup.runSetupPanel
Print setup.burnObject.appendable
""")
            window = self.display.wait_window("Burn a Disc")
            self.display.click(window, 250, 148)
            self.display.settle()
            self.display.keys("Return")
            self.assertEqual(program.end(), 0, program.errors)
            self.assertEqual(program.lines(), ["1", left_open])

    def test_a_test_burn_is_no_choice_unless_the_program_offers_it(self):
        heights = []
        for before in "", "setup.setCanSelectTestBurn(False)\n", "setup.setCanSelectTestBurn(True)\n":
            program = self.setup_panel(before + "setup.expand")
            self.display.wait_window("Burn a Disc")
            heights.append(self.height("Burn a Disc"))
            self.display.keys("Escape")
            self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(heights[0], heights[1])
        self.assertEqual(heights[2], heights[0] + 22)  # a row more

    def test_a_drive_that_another_program_holds_cant_be_confirmed_until_it_lets_go(self):
        self.drives.create("Amber", "CD-RW")
        holder = self.steps(HOLDING, name="holder")
        holder.wait_lines(["True", "held"])
        program = self.setup_panel()
        self.stays(program, "Burn a Disc", "Return")
        self.picture("burn-setup-busy")
        before = self.display.picture()
        self.after("held")
        self.wait_for_another_picture(before)
        self.display.settle()
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), ["1", "False", "False", "DRStatusStateDone"])
        self.after("the end")
        self.assertEqual(holder.end(), 0, holder.errors)

    def test_an_event_can_refuse_a_blank_disc_that_another_program_holds(self):
        self.drives.create("Amber", "DVD+RW")
        holder = self.steps(HOLDING, name="holder")
        holder.wait_lines(["True", "held"])
        program = self.run_program(EXAMPLE, self.drives.source)
        self.stays(program, "Burn a Disc", "Return")
        before = self.display.picture()
        self.after("held")
        self.wait_for_another_picture(before)
        self.display.settle()
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[1:], ["Burning.", "The burn ended: DRStatusStateDone"])
        self.after("the end")
        self.assertEqual(holder.end(), 0, holder.errors)


if __name__ == "__main__":
    unittest.main()
