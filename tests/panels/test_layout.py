#!/usr/bin/python3
"""The panels measured: every text fits, nothing lies over anything else, and all of it fits a screen."""
import os
import unittest

from cases import Case


class Panels(Case):
    def measured(self, texts, *more):
        self.drives.create("Amber", "CD-RW", "--vendor", "MANUFACT", "--product", "A DRIVE OF RANK")
        return self.run_program(texts, *more, host=os.environ["DISC_PANEL_LAYOUT"])

    def all_fits(self, lines):
        self.assertEqual([line for line in lines if not line.endswith(": fits")], [])
        # 14 sentences on three setup panels, 24 states of two progress panels, and a title
        self.assertEqual(len(lines), 14 * 3 + 24 * 2 + 1)

    def test_everything_fits(self):
        program = self.measured("plain")
        self.assertEqual(program.end(), 0, program.errors)
        self.all_fits(program.lines())

    def test_longer_texts_fit_too(self):
        program = self.measured("long")
        self.assertEqual(program.end(), 0, program.errors)
        self.all_fits(program.lines())

    def test_the_largest_panel_is_wholly_on_the_screen_with_its_frame(self):
        program = self.measured("long", "show")
        window = self.display.wait_window("Burn a Disc und noch e", moving=True)
        self.display.settle()
        self.picture("burn-setup-long")
        left, top, right, bottom = self.display.used()
        self.assertTrue(0 < left < right < 1024 and 0 < top < bottom < 768, (left, top, right, bottom))
        self.display.focus(window)
        self.display.keys("Escape")
        self.assertEqual(program.end(), 0, program.errors)


if __name__ == "__main__":
    unittest.main()
