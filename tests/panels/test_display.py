#!/usr/bin/python3
"""Programs with panels where there is no display."""
import unittest

from cases import BURN, ERASE, Case
from display import Program


class Panels(Case):
    def test_without_a_display_the_programs_say_so(self):
        for path in (BURN, ERASE):
            program = Program(None, self.drives, path, *([self.drives.source] if path == BURN else []))
            self.addCleanup(program.kill)
            self.assertEqual(program.end(), 1)
            self.assertIn("no display", program.errors)

    def test_a_display_that_does_not_answer_is_none(self):
        self.display.environment["DISPLAY"] = ":731"
        program = self.run_program(ERASE)
        self.assertEqual(program.end(), 1)
        self.assertIn("no display", program.errors)


if __name__ == "__main__":
    unittest.main()
