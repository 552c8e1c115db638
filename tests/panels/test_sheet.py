#!/usr/bin/python3
"""Setup panels as sheets on a window."""
import os
import unittest

from cases import Case

BEGUN = ["NSInvalidArgumentException", "begun", "begun"]  # without a window; with one; while it is there
CONFIRMED, CANCELLED = "1, shown: 1, context: ours", "0, shown: 1, context: ours"


class Panels(Case):
    def sheet(self, what, title):
        self.drives.create("Amber", "DVD+RW")
        self.drives.create("Birch", "CD-RW")
        program = self.run_program(what, host=os.environ["DISC_SETUP_SHEET"])
        return program, self.display.wait_window(title)

    def test_return_ends_a_sheet_and_gives_the_burn(self):
        program, window = self.sheet("DRBurnSetupPanel", "Burn a Disc")
        self.picture("burn-setup-sheet")
        self.assertIsNotNone(self.display.window("Photos"))
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), BEGUN + [CONFIRMED, "DRBurn, shown: 0, window: 1"])

    def test_a_click_on_cancel_ends_a_sheet_without_a_burn(self):
        program, window = self.sheet("DRBurnSetupPanel", "Burn a Disc")
        self.display.click(window, 344, 110)
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), BEGUN + [CANCELLED, "none, shown: 0, window: 1"])

    def test_the_window_under_a_sheet_gives_the_keys_back_to_it(self):
        program, window = self.sheet("DRBurnSetupPanel", "Burn a Disc")
        self.display.click(self.display.window("Photos"), 320, 380)
        self.display.settle()
        self.assertEqual(self.display.tool("xdotool", "getwindowfocus").strip(), window)
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), BEGUN + [CANCELLED, "none, shown: 0, window: 1"])

    def test_the_cross_of_the_window_under_a_sheet_is_that_of_the_sheet(self):
        program, _ = self.sheet("DRBurnSetupPanel", "Burn a Disc")
        self.click_cross("Photos")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), BEGUN + [CANCELLED, "none, shown: 0, window: 1"])

    def test_a_delegate_of_the_window_under_a_sheet_decides_whether_it_closes(self):
        program, window = self.sheet("deciding", "Burn a Disc")
        self.click_cross("Photos")
        program.wait_lines(BEGUN + ["asked"])
        self.stays(program, "Burn a Disc")
        self.display.focus(window)
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines()[4:], [CANCELLED, "none, shown: 0, window: 1"])

    def test_a_sheet_follows_the_drives(self):
        program, window = self.sheet("DREraseSetupPanel", "Erase a Disc")
        before = self.display.picture()
        self.drives.command("delete", "Amber")
        self.wait_for_another_picture(before)
        self.display.settle()
        self.display.focus(window)
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), BEGUN + [CONFIRMED, "DRErase, shown: 0, window: 1"])

    def test_a_sheet_whose_delegate_raised_can_be_begun_again(self):
        program, window = self.sheet("raising", "Burn a Disc")
        self.display.keys("Return")
        self.assertEqual(program.end(), 0, program.errors)
        self.assertEqual(program.lines(), [BEGUN[0], "Judgement", "begun", "begun", CONFIRMED,
                                           "DRBurn, shown: 0, window: 1"])


if __name__ == "__main__":
    unittest.main()
