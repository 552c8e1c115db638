#!/usr/bin/python3
"""Audio discs as the example programs make and copy them, read by programs that are not ours."""
import math
import os
import shutil
import struct
import subprocess
import tempfile
import unittest
import wave

from examples_case import ExamplesCase


class Audio(ExamplesCase):
    def sound(self, name, seconds, *options):
        path = os.path.join(self.scratch, name)
        subprocess.run(["sox", "-D", "-n", "-r", "44100", "-c", "2", "-b", "16", path, "synth", str(seconds), "sine",
                        "440-880", "gain", "-6", *options], check=True, capture_output=True)
        return path

    def samples(self, path):
        return subprocess.run(["sox", path, "-t", "raw", "-e", "signed", "-b", "16", "-L", "-"], check=True,
                              capture_output=True).stdout

    def on_disc(self, drive, first, blocks):
        with open(os.path.join(self.drives, drive, "medium.bin"), "rb") as file:
            file.seek(first * 2352)
            return file.read(blocks * 2352)

    def told(self, *command, cwd=None):
        done = subprocess.run(command, capture_output=True, text=True, check=False, cwd=cwd, errors="replace")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def cd(self, name="drive-1", product="Disc Drive 1"):
        return self.make_drive(name, product, kind="CD-RW", capacityBlocks=359847)

    def test_files_become_tracks_with_texts_codes_and_gaps(self):
        folder = self.cd()
        first, second = self.sound("first.flac", 5), self.sound("second song.wav", 4.5)
        subprocess.run(["metaflac", "--set-tag=TITLE=Erstes Stück", "--set-tag=ARTIST=Die Gruppe",
                        "--set-tag=ALBUM=Das Album", "--set-tag=ISRC=DE-ABC-26-12345", first], check=True)
        said = self.succeed("audio-cd.bas", "--gap=2", first, second)
        self.assertEqual([line for line in said.splitlines() if not line.endswith(" …")],
                         ["01  00:05:00  Erstes Stück", "02  00:04:38  second song",
                          "Burned 2 tracks, 00:11:38 in all."])
        self.assertEqual(self.on_disc("drive-1", 0, 375), self.samples(first))
        wanted = self.samples(second)
        self.assertEqual(self.on_disc("drive-1", 375, 150), bytes(150 * 2352))
        self.assertEqual(self.on_disc("drive-1", 525, 338), wanted + bytes(338 * 2352 - len(wanted)))
        info = self.told("cd-info", "--no-header", "--no-device-info", "--no-cddb", "--cue-file",
                         os.path.join(folder, "medium.cue"))
        for text in ("Erstes St", "Die Gruppe", "Das Album", "second song"):
            self.assertIn(text, info)
        toc = self.told("cdrdao", "show-toc", "medium.cue", cwd=folder)
        self.assertIn("ISRC DE ABC 26 12345", toc)

    # The disc is taken out as a sheet and its sectors; bchunk cuts the tracks, without their pre-gaps.
    def cut(self, count):
        out = tempfile.mkdtemp(dir=self.scratch)
        subprocess.run([os.environ["DISC_DRIVES_COMMAND"], "export", "drive-1", out], check=True, capture_output=True,
                       env=self.environment())
        subprocess.run(["bchunk", "-w", "medium.bin", "medium.cue", "cut"], cwd=out, check=True, capture_output=True)
        self.assertEqual(len([name for name in os.listdir(out) if name.startswith("cut")]), count)
        tracks = []
        for number in range(1, count + 1):
            with wave.open(os.path.join(out, f"cut{number:02}.wav")) as sound:
                self.assertEqual(sound.getparams()[:3], (2, 2, 44100))
                tracks.append(sound.readframes(sound.getnframes()))
        return tracks

    def source_samples(self, path):
        if path.endswith(".flac"):
            subprocess.run(["flac", "--silent", "--decode", "--force", path], check=True)
            path = path.removesuffix(".flac") + ".wav"
        with wave.open(path) as sound:
            return sound.readframes(sound.getnframes())

    def test_every_sample_is_the_sources_own(self):
        files = [self.sound("one.wav", 5), self.sound("two.flac", 4), self.sound("three.wav", 4.501)]
        wanted = []
        for path in files:
            samples = self.source_samples(path)
            wanted.append(samples + bytes(-len(samples) % 2352))
        for gap in (0, 1, 2.4):
            self.cd()
            self.succeed("audio-cd.bas", f"--gap={gap}", *files)
            silence = bytes(2352 * int(gap * 75))
            self.assertTrue(self.cut(3) == wanted, f"gap {gap}")
            whole = silence.join(wanted)
            self.assertTrue(self.on_disc("drive-1", 0, len(whole) // 2352 + 1) == whole, f"gap {gap}")
            shutil.rmtree(os.path.join(self.drives, "drive-1"))

    def test_every_sample_of_a_track_that_a_program_makes(self):
        self.cd()
        self.succeed("generated-track.bas", "4", "997")
        second = b"".join(struct.pack("<hh", level, level) for level in (
            math.floor(abs(wave) + 0.5) * (1 if wave >= 0 else -1) for wave in (
                math.sin(2 * 3.14159265358979 * 997 * i / 44100) * 16000 for i in range(44100))))
        self.assertTrue(self.cut(1) == [second * 4])

    def test_tags_of_mp3_files(self):
        folder = self.cd()
        sound, song = self.sound("song.wav", 5), os.path.join(self.scratch, "song.mp3")
        subprocess.run(["lame", "--quiet", "--id3v2-only", "--tt", "Ein Lied", "--ta", "Jemand", sound, song],
                       check=True)
        self.assertIn("  Ein Lied\n", self.succeed("audio-cd.bas", song))
        with open(os.path.join(folder, "medium.cue"), encoding="utf-8") as sheet:
            self.assertIn('PERFORMER "Jemand"', sheet.read())

    def on_sheet(self):
        with open(os.path.join(self.drives, "drive-1", "medium.cue"), encoding="utf-8") as file:
            return [line.strip() for line in file]

    # An MP3 file whose tag of version 2.4 holds these frames, each with the byte for its encoding.
    def tagged(self, name, **frames):
        body = b"".join(kind.encode() + struct.pack(">IH", len(text), 0) + text for kind, text in frames.items())
        self.assertLess(len(body), 128, "lengths of one byte")
        sound, plain, path = self.sound("plain.wav", 4), os.path.join(self.scratch, "plain.mp3"), \
            os.path.join(self.scratch, name)
        subprocess.run(["lame", "--quiet", "-t", sound, plain], check=True)
        with open(plain, "rb") as file, open(path, "wb") as made:
            made.write(b"ID3\x04\0\0" + struct.pack(">I", len(body)) + body + file.read())
        return path

    def test_tags_in_every_encoding(self):
        title = "Grün – Žába"
        for number, text in enumerate((b"\1\xff\xfe" + title.encode("utf-16-le") + bytes(2),
                                       b"\1\xfe\xff" + title.encode("utf-16-be") + bytes(2),
                                       b"\2" + title.encode("utf-16-be"), b"\3" + title.encode() + b"\0")):
            self.cd()
            said = self.succeed("audio-cd.bas", self.tagged("song.mp3", TIT2=text, TPE1=b"\0J\xf6rg"))
            self.assertIn("  " + title + "\n", said, number)
            self.assertIn("\nBurned 1 track, ", said)
            sheet = self.on_sheet()
            self.assertIn('PERFORMER "Jörg"', sheet, number)
            shutil.rmtree(os.path.join(self.drives, "drive-1"))

    def test_ends_of_lines_and_controls_in_tags_are_blanks(self):
        self.cd()
        said = self.succeed("audio-cd.bas", self.tagged("song.mp3", TIT2=b"\3One\nTwo\r\nThree\tFour\x7f!",
                                                        TPE1=b"\3A\nFILE x WAVE", TALB=b"\3B\rC"))
        self.assertIn("  One Two  Three Four !\n", said)
        sheet = self.on_sheet()
        for line in ('TITLE "One Two  Three Four !"', 'PERFORMER "A FILE x WAVE"', 'TITLE "B C"'):
            self.assertIn(line, sheet)

    def test_a_code_that_is_none_is_left_out(self):
        for wrong in ("123456789012", "DEABC26123456", "DEABC2612X45", "DEABC26é1234"):
            self.cd()
            done = self.run_program("audio-cd.bas", self.tagged("song.mp3", TSRC=b"\3" + wrong.encode()))
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertEqual(done.stderr,
                             f"audio-cd: song.mp3 is burned without its ISRC, which is no code: {wrong}\n")
            self.assertFalse([line for line in self.on_sheet() if line.startswith("ISRC")])
            shutil.rmtree(os.path.join(self.drives, "drive-1"))
        self.cd()
        self.succeed("audio-cd.bas", self.tagged("song.mp3", TSRC=b"\3de-a1c-26-12345"))
        self.assertIn("ISRC DEA1C2612345", self.on_sheet())

    def test_names_of_files_may_hold_quotes(self):
        self.cd()
        path = self.sound('12" "mix".wav', 4)
        self.assertIn('  12" "mix"\n', self.succeed("audio-cd.bas", path))
        self.assertEqual(self.on_disc("drive-1", 0, 300), self.samples(path))
        shutil.copy(path, os.path.join(self.scratch, "two\nlines.wav"))
        self.refuse("the path of two lines.wav has an end of a line in it; rename the file or its folder",
                    "audio-cd.bas", os.path.join(self.scratch, "two\nlines.wav"))

    def test_what_is_no_sound_is_refused_by_name_and_nothing_is_burned(self):
        self.cd()
        done = self.run_program("audio-cd.bas", os.path.join(self.source, "letter.txt"))
        self.assertEqual(done.returncode, 1)
        self.assertIn("letter.txt is no sound file that can be read\n", done.stderr)
        self.refuse("there is no file /no/such.wav", "audio-cd.bas", "/no/such.wav")
        self.refuse("^Usage: audio-cd.bas", "audio-cd.bas", status=2)
        self.assertEqual(self.medium()["state"], "blank")

    def test_an_audio_disc_needs_a_cd(self):
        self.make_drive(kind="DVD+R", capacityBlocks=2295104)
        self.refuse("an audio CD needs a CD-R or CD-RW", "audio-cd.bas", self.sound("a.wav", 4))

    def test_a_track_is_made_by_the_program_while_it_burns(self):
        self.cd()
        self.assertEqual(self.succeed("generated-track.bas", "5", "1000").splitlines(), [
            "Burned a tone of 1000 Hz, 00:05:00 long.",
            "750 blocks were made for 375 on the disc: each was made again to verify it."])
        tone = self.on_disc("drive-1", 0, 375)
        self.assertEqual(len(tone), 375 * 2352)
        one = tone[:75 * 2352]
        self.assertEqual(tone, one * 5, "every second is like the first")
        left = struct.unpack(f"<{len(tone) // 2}h", tone)[::2]
        crossings = sum((one < 0) != (next < 0) for one, next in zip(left, left[1:]))
        self.assertAlmostEqual(crossings, 2 * 1000 * 5, delta=4)
        self.assertGreater(max(left), 15000)

    def test_an_audio_disc_is_copied_whole(self):
        self.cd("a", "First")
        self.cd("b", "Second")
        first, second = self.sound("first.wav", 5), self.sound("second.wav", 6)
        self.succeed("audio-cd.bas", "--gap=1", "--title=The Disc", first, second)
        said = self.succeed("copy-disc.bas", "Virtual First", "Virtual Second")
        self.assertEqual(said, "Copied 2 tracks, 00:12:00 in all, from Virtual First to Virtual Second.\n")
        for name in ("medium.bin", "medium.cue", "medium.cdt"):
            with open(os.path.join(self.drives, "a", name), "rb") as one, \
                    open(os.path.join(self.drives, "b", name), "rb") as other:
                self.assertEqual(one.read(), other.read(), name)

    def test_a_data_disc_is_copied_whole(self):
        self.make_drive("a", "First", kind="DVD+RW", capacityBlocks=2295104)
        self.make_drive("b", "Second", kind="DVD-R", capacityBlocks=2298496)
        self.write("some.bin", os.urandom(3_000_000))
        self.succeed("burn-folder.bas", self.source)
        self.succeed("copy-disc.bas", "Virtual First", "Virtual Second")
        with open(os.path.join(self.drives, "a", "medium.iso"), "rb") as one, \
                open(os.path.join(self.drives, "b", "medium.iso"), "rb") as other:
            self.assertEqual(one.read(), other.read())
        self.refuse("^copy-disc: a disc can't be copied onto itself", "copy-disc.bas", "Virtual First", "Virtual First")
        self.refuse("there is no drive Third", "copy-disc.bas", "Third", "Virtual First")

    def test_data_of_several_sessions_are_not_copied_by_half(self):
        self.make_drive("a", "First", kind="DVD+R", capacityBlocks=2295104)
        self.make_drive("b", "Second", kind="DVD-R", capacityBlocks=2298496)
        self.succeed("append-session.bas", self.source)
        self.assertIn("Copied 1 track, ", self.succeed("copy-disc.bas", "Virtual First", "Virtual Second"))
        shutil.rmtree(os.path.join(self.drives, "b"))
        self.make_drive("b", "Second", kind="DVD-R", capacityBlocks=2298496)
        self.write("later.txt", b"More.")
        self.succeed("append-session.bas", self.source)
        self.refuse("the disc in Virtual First has 2 sessions, which can't be copied; put the folder that "
                    "\"disc-drives export\" makes into the other drive with \"disc-drives insert\", or burn the "
                    "files of the last session anew",
                    "copy-disc.bas", "Virtual First", "Virtual Second")
        self.assertEqual(self.medium("b")["state"], "blank")

    def test_all_tracks_of_all_sessions_of_a_sheet_are_copied_and_counted(self):
        self.cd("a", "First")
        self.cd("b", "Second")
        with open(os.path.join(self.scratch, "x.bin"), "wb") as file:
            file.write(os.urandom(900 * 2352))
        with open(os.path.join(self.scratch, "x.cue"), "w", encoding="utf-8") as sheet:
            sheet.write("REM SESSION 01\nFILE x.bin BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\n"
                        "INDEX 01 00:04:00\nREM SESSION 02\nTRACK 03 AUDIO\nINDEX 01 00:08:00\n")
        self.succeed("burn-image.bas", os.path.join(self.scratch, "x.cue"))
        self.assertEqual([len(session["tracks"]) for session in self.medium("a")["sessions"]], [2, 1])
        self.assertIn("Copied 3 tracks, ", self.succeed("copy-disc.bas", "Virtual First", "Virtual Second"))
        self.assertEqual([len(session["tracks"]) for session in self.medium("b")["sessions"]], [2, 1])
        with open(os.path.join(self.drives, "a", "medium.bin"), "rb") as one, \
                open(os.path.join(self.drives, "b", "medium.bin"), "rb") as other:
            self.assertEqual(one.read(), other.read())


if __name__ == "__main__":
    unittest.main()
