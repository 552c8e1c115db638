#!/usr/bin/env python3
"""The command disc-basic: options, files that are no programs, signals, and programs that are odd or large."""
import os
import pty
import signal
import subprocess
import tempfile
import time
import unittest

DISC_BASIC = os.environ["DISC_BASIC"]


class Command(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def file(self, content, name="program.bas"):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())
        return path

    def run_words(self, *words, limit=60, environment=None):
        done = subprocess.run([DISC_BASIC, *words], capture_output=True, timeout=limit, check=False, stdin=subprocess.DEVNULL,
                              env={**os.environ, **(environment or {})})
        return done.returncode, done.stdout.decode(errors="replace"), done.stderr.decode(errors="replace")

    def run_text(self, content, limit=60):
        return self.run_words("--without-plugins", self.file(content), limit=limit)

    def good(self, content, output):
        code, out, err = self.run_text(content)
        self.assertEqual((code, out, err), (0, output, ""))

    def refused(self, content, sentence):
        code, out, err = self.run_text(content)
        self.assertEqual((code, out), (2, ""), err)
        self.assertIn(sentence, err)
        return err

    # ---- options

    def test_help_shows_examples(self):
        code, out, err = self.run_words("--help")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("disc-basic list DRDeviceQRX", out)

    def test_version_is_printed(self):
        code, out, _ = self.run_words("--version")
        self.assertEqual(code, 0)
        self.assertRegex(out, r"^disc-basic \d+\.\d+\.\d+\n$")

    def test_run_may_be_left_out_and_options_after_program_are_its_own(self):
        path = self.file("For Each a As String In App.Arguments\nPrint a\nNext\n")
        self.assertEqual(self.run_words("--without-plugins", "run", path, "--help", "-x"), (0, "--help\n-x\n", ""))
        self.assertEqual(self.run_words("--without-plugins", "--", path, "list"), (0, "list\n", ""))

    def test_unknown_option_is_refused(self):
        code, out, err = self.run_words("--fast")
        self.assertEqual((code, out), (2, ""))
        self.assertEqual(err, "There is no option --fast; see disc-basic --help.\n")

    def test_no_program_is_told(self):
        code, _, err = self.run_words()
        self.assertEqual(code, 2)
        self.assertIn("Name a program to run", err)

    def test_missing_plugin_file_is_refused(self):
        code, _, err = self.run_words("--plugin", "/nowhere/Plug.so", self.file("Print 1\n"))
        self.assertEqual(code, 2)
        self.assertIn("/nowhere/Plug.so", err)

    def test_file_that_is_no_plugin_is_refused(self):
        text = self.file("not a library", "Plug.so")
        code, _, err = self.run_words("--plugin", text, self.file("Print 1\n"))
        self.assertEqual(code, 2)
        self.assertIn("Plug.so", err)

    def test_list_shows_one_class_with_its_declarations(self):
        code, out, _ = self.run_words("--without-plugins", "list", "dictionary")
        self.assertEqual(code, 0)
        self.assertTrue(out.startswith("Dictionary\n"))
        self.assertRegex(out, r"(?m)^  property +Count")
        code, out, _ = self.run_words("--without-plugins", "list", "BinaryStream")
        self.assertEqual(code, 0)
        self.assertRegex(out, r"(?m)^  property +Position As Int64$")
        code, _, err = self.run_words("--without-plugins", "list", "Dictionery")
        self.assertEqual(code, 2)
        self.assertIn("There is no class Dictionery", err)

    def test_list_without_plugins_is_told(self):
        code, _, err = self.run_words("--without-plugins", "list")
        self.assertEqual(code, 2)
        self.assertIn("No plug-in is loaded", err)

    # ---- files that are no programs

    def test_missing_program_is_refused(self):
        code, _, err = self.run_words("--without-plugins", "/nowhere/x.bas")
        self.assertEqual(code, 2)
        self.assertIn("Cannot open the program /nowhere/x.bas: No such file or directory", err)

    def test_folder_is_refused(self):
        code, _, err = self.run_words("--without-plugins", self.folder.name)
        self.assertEqual(code, 2)
        self.assertIn("is a folder, not a program", err)

    def test_zero_bytes_are_refused(self):
        self.refused(b"Print 1\0\n", "is a binary file, not a program: it contains zero bytes.")

    def test_utf16_is_refused(self):
        self.refused("Print 1\n".encode("utf-16"), "is UTF-16 text; save the program as UTF-8.")

    def test_other_encodings_are_refused_with_the_place(self):
        err = self.refused("Print 1\nPrint \"caf\xe9\"\n".encode("latin-1"), "this byte is not UTF-8 text")
        self.assertIn("program.bas:2:11: error:", err)

    def test_unreadable_program_is_refused(self):
        if os.geteuid() == 0:
            self.skipTest("everything is readable for root")
        path = self.file("Print 1\n")
        os.chmod(path, 0)
        code, _, err = self.run_words("--without-plugins", path)
        self.assertEqual(code, 2)
        self.assertIn("Permission denied", err)

    # ---- odd but good programs

    def test_empty_program_runs(self):
        self.good("", "")
        self.good("\n\n' only a comment", "")

    def test_crlf_cr_and_byte_order_mark_are_understood(self):
        self.good(b"\xef\xbb\xbfPrint 1\r\nIf True Then\r\n  Print _\r\n 2\r\nEnd If", "1\n2\n")
        self.good(b"Print 1\rPrint 2\r", "1\n2\n")

    def test_program_of_10000_lines_runs(self):
        lines = ["Dim n As Integer"] + [f"n = n + {i % 7}" for i in range(10000)] + ["Print n"]
        self.good("\n".join(lines), f"{sum(i % 7 for i in range(10000))}\n")

    def test_very_long_line_runs(self):
        self.good("Print Len(\"" + "x" * 1000000 + "\")\n", "1000000\n")

    def test_error_in_very_long_line_shows_the_part_around_it(self):
        err = self.refused("Print \"" + "x" * 100000 + "\" nonsense\n", "Expected the end of the statement but found 'nonsense'.")
        self.assertLess(len(err), 1000)
        self.assertIn("nonsense", err.splitlines()[1])
        self.assertEqual(err.splitlines()[2].index("^"), err.splitlines()[1].index("nonsense"))

    def test_caret_stands_below_the_character_also_after_wide_bytes(self):
        err = self.refused("Print \"äöü\" + nonsense\n", ":1:15: error: There is no 'nonsense'")
        self.assertEqual(err.splitlines()[2].index("^"), err.splitlines()[1].index("nonsense"))

    # ---- nesting

    def test_deep_parentheses_are_refused(self):
        self.refused("Print " + "(" * 100000 + "1" + ")" * 100000, "This is nested too deeply")
        self.good("Print " + "(" * 150 + "1" + ")" * 150, "1\n")

    def test_deep_blocks_are_refused(self):
        self.refused("If True Then\n" * 5000 + "Print 1\n" + "End If\n" * 5000, "This is nested too deeply")

    def test_deep_signs_and_nots_are_refused(self):
        self.refused("Print " + "-" * 100000 + "1", "This is nested too deeply")
        self.refused("Print " + "Not " * 100000 + "True", "This is nested too deeply")

    def test_expression_of_too_many_parts_is_refused(self):
        self.refused("Print 1" + " + 1" * 50000, "This expression has too many parts")
        self.good("Print 1" + " + 1" * 900, "901\n")

    def test_many_else_ifs_run(self):
        arms = "".join(f"ElseIf n = {i} Then\nPrint {i}\n" for i in range(1, 3000))
        self.good(f"Dim n As Integer = 2500\nIf n = 0 Then\nPrint 0\n{arms}End If\n", "2500\n")

    def test_half_programs_never_crash(self):
        with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "language", "routines.bas"), encoding="utf-8") as file:
            text = file.read()
        for cut in range(0, len(text), 37):
            code, _, err = self.run_text(text[:cut])
            self.assertIn(code, (0, 1, 2), f"cut at {cut}: {err}")

    # ---- signals

    def start(self, text):
        """A program that has begun; nothing comes in, and that never ends."""
        reading, writing = os.pipe()
        self.addCleanup(os.close, writing)
        with open(reading, "rb") as nothing:
            running = subprocess.Popen([DISC_BASIC, "--without-plugins", self.file(text)], stdout=subprocess.PIPE,
                                       stderr=subprocess.PIPE, stdin=nothing)
        self.addCleanup(running.kill)
        self.assertEqual(running.stdout.readline(), b"ready\n")
        return running

    CLEANING = """
Class Burn
    Sub Destructor()
        Print "aborted"
    End Sub
End Class
Dim b As New Burn
Try
    StdOut.WriteLine "ready"
    StdOut.Flush
    %s
Catch e As RuntimeException
    Print "never"
Finally
    Print "finally"
End Try
Print "never"
"""

    # What is interrupted would never end by itself: that it ends is what shows that it was.
    ENDLESS_SLEEP = "Sleep 2000000000"

    def interrupted(self, body, number=signal.SIGINT, status=130, waits=True):
        running = self.start(self.CLEANING % body)
        while waits and not self.sleeps(running.pid):
            self.assertIsNone(running.poll(), "it waits")
            time.sleep(0.002)
        running.send_signal(number)
        out, err = running.communicate(timeout=100)
        self.assertEqual((running.returncode, out, err), (status, b"finally\naborted\n", b"Interrupted.\n"))

    @staticmethod
    def sleeps(process):
        with open(f"/proc/{process}/stat", encoding="ascii") as file:
            return file.read().rpartition(")")[2].split()[0] == "S"

    def test_interrupt_wakes_sleep_and_cleans_up(self):
        self.interrupted(self.ENDLESS_SLEEP)

    def test_interrupt_leaves_endless_loop(self):
        self.interrupted("While True\nWend", waits=False)

    def test_interrupt_wakes_waiting_for_input(self):
        self.interrupted("Print StdIn.ReadLine")

    def test_terminate_cleans_up_too(self):
        self.interrupted(self.ENDLESS_SLEEP, signal.SIGTERM, 143)

    def test_second_interrupt_does_not_stop_the_clean_up(self):
        running = self.start("Try\nPrint \"ready\"\nStdOut.Flush\nWhile True\nWend\nFinally\n"
                             "Dim t As Double = Microseconds\nWhile Microseconds - t < 1000000\nWend\nPrint \"cleaned\"\nEnd Try\n")
        running.send_signal(signal.SIGINT)
        time.sleep(0.3)
        running.send_signal(signal.SIGINT)
        out, _ = running.communicate(timeout=20)
        self.assertEqual((running.returncode, out), (130, b"cleaned\n"))

    def test_many_interrupts_end_even_the_clean_up(self):
        running = self.start("Try\nPrint \"ready\"\nStdOut.Flush\nWhile True\nWend\nFinally\n"
                             "Dim t As Double = Microseconds\nWhile Microseconds - t < 4000000\nWend\nPrint \"cleaned\"\nEnd Try\n")
        for _ in range(6):
            running.send_signal(signal.SIGINT)
            time.sleep(0.1)
        out, _ = running.communicate(timeout=20)
        self.assertEqual((running.returncode, out), (130, b""))

    def test_endless_clean_up_is_bounded(self):
        running = self.start("Try\nPrint \"ready\"\nStdOut.Flush\nSleep 60000\nFinally\nWhile True\nWend\nEnd Try\n")
        running.send_signal(signal.SIGINT)
        running.communicate(timeout=20)
        self.assertEqual(running.returncode, 130)

    # ---- output

    def test_full_output_is_told(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([DISC_BASIC, "--without-plugins", self.file("Print 1\n")], stdout=full, stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"standard output can't be written: No space left on device", done.stderr)

    def test_terminal_is_recognised(self):
        master, slave = pty.openpty()
        done = subprocess.run([DISC_BASIC, "--without-plugins", self.file("Print System.IsTerminal, System.TerminalWidth > 0\n")],
                              stdout=slave, stdin=subprocess.DEVNULL, check=False)
        os.close(slave)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(os.read(master, 100).split(), [b"True", b"True"])
        os.close(master)

    def test_leaks_are_named_when_asked_for(self):
        path = self.file("Dim a() As Variant\na.Append a\nPrint 1\n")
        # An array that holds itself is the one cycle that is not freed: a leak detector is right about it.
        code, out, err = self.run_words("--without-plugins", "--leaks", path, environment={"ASAN_OPTIONS": "detect_leaks=0"})
        self.assertEqual((code, out), (0, "1\n"))
        self.assertIn("still alive at the end", err)
        path = self.file("Dim d As New Dictionary\nd.Value(\"a\") = New Date\nPrint 1\n")
        self.assertEqual(self.run_words("--without-plugins", "--leaks", path), (0, "1\n", ""))


if __name__ == "__main__":
    unittest.main()
