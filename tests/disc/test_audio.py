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

    # sox and shntool cut where the sheet's times say, shntool from one INDEX 01 to the next; ffmpeg reads the sheet itself,
    # with libcdio, and would wait for ever behind the last sector.
    def test_other_readers_find_the_same_samples_by_the_sheet(self):
        folder = self.cd()
        files = [self.sound("one.wav", 5), self.sound("two.flac", 4), self.sound("three.wav", 4.501)]
        wanted = []
        for path in files:
            samples = self.source_samples(path)
            wanted.append(samples + bytes(-len(samples) % 2352))
        gap = bytes(75 * 2352)
        self.succeed("audio-cd.bas", "--gap=1", *files)
        whole = os.path.join(self.scratch, "whole.wav")
        raw = ["-t", "raw", "-r", "44100", "-e", "signed", "-b", "16", "-c", "2", "-L"]
        self.told("sox", *raw, os.path.join(folder, "medium.bin"), whole)

        starts = []
        for line in self.on_sheet():
            if line.startswith("INDEX 01 "):
                minutes, seconds, frames = (int(part) for part in line[9:].split(":"))
                starts.append((minutes * 60 + seconds) * 75 + frames)
        self.assertEqual(starts, [0, 450, 825])
        for start, samples in zip(starts, wanted, strict=True):
            cut = subprocess.run(["sox", whole, *raw, "-", "trim", f"{start * 588}s", f"{len(samples) // 4}s"], check=True,
                                 capture_output=True).stdout
            self.assertTrue(cut == samples, start)

        self.told("shntool", "split", "-q", "-O", "always", "-f", "medium.cue", "-d", self.scratch, "-t", "cut%n", whole,
                  cwd=folder)
        behind = (gap, gap, b"")
        for number, samples in enumerate(wanted):
            with wave.open(os.path.join(self.scratch, f"cut{number + 1:02}.wav")) as sound:
                self.assertTrue(sound.readframes(sound.getnframes()) == samples + behind[number], number)

        read = subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-f", "libcdio", "-t", "14", "-i", "medium.cue", "-f",
                               "s16le", "-"], cwd=folder, check=True, capture_output=True, stdin=subprocess.DEVNULL,
                              timeout=60).stdout
        self.assertEqual(len(read), 14 * 44100 * 4)
        self.assertTrue(read == gap.join(wanted)[:len(read)])

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
        return self.tagged_by(name, b"".join(
            kind.encode() + struct.pack(">IH", len(text), 0) + text for kind, text in frames.items()))

    # An MP3 file whose tag has this body.
    def tagged_by(self, name, body, version=4, flags=0):
        self.assertLess(len(body), 128, "lengths of one byte")
        sound, plain, path = self.sound("plain.wav", 4), os.path.join(self.scratch, "plain.mp3"), \
            os.path.join(self.scratch, name)
        subprocess.run(["lame", "--quiet", "-t", sound, plain], check=True)
        with open(plain, "rb") as file, open(path, "wb") as made:
            made.write(b"ID3" + bytes((version, 0, flags)) + struct.pack(">I", len(body)) + body + file.read())
        return path

    # Files that others tag, and what is on their disc then. "Žába" is in no character set of one byte that is tried.
    def tagged_disc(self, *files):
        self.cd()
        said = self.succeed("audio-cd.bas", *files)
        sheet = self.on_sheet()
        shutil.rmtree(os.path.join(self.drives, "drive-1"))
        return said, sheet

    def converted(self, name, *options):
        path = os.path.join(self.scratch, name)
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", self.sound("plain.wav", 4), *options, path], check=True,
                       stdin=subprocess.DEVNULL)
        return path

    def test_tags_of_ogg_files(self):
        path = os.path.join(self.scratch, "song.ogg")
        # A comment that is longer than a page stands in front.
        for words in ((), ("-c", "LYRICS=" + 40000 * "la ")):
            subprocess.run(["oggenc", "--quiet", "-o", path, *words, "-t", "Grün – Žába", "-a", "Jörg", "-l", "Das Album",
                            "-c", "isrc=de-abc-26-12345", self.sound("plain.wav", 4)], check=True)
            said, sheet = self.tagged_disc(path)
            self.assertIn("  Grün – Žába\n", said)
            for line in ('PERFORMER "Jörg"', 'TITLE "Das Album"', "ISRC DEABC2612345"):
                self.assertIn(line, sheet)

    def test_tags_of_opus_files(self):
        path = self.converted("song.opus", "-metadata", "title=Žába", "-metadata", "artist=Jörg")
        said, sheet = self.tagged_disc(path)
        self.assertIn("  Žába\n", said)
        self.assertIn('PERFORMER "Jörg"', sheet)

    def test_tags_of_wav_and_aiff_files(self):
        wave = self.converted("song.wav", "-metadata", "title=Žába", "-metadata", "artist=Jörg", "-metadata",
                              "album=Das Album")
        with open(wave, "rb") as file:
            self.assertIn(b"INFO", file.read())
        said, sheet = self.tagged_disc(wave)
        self.assertIn("  Žába\n", said)
        for line in ('PERFORMER "Jörg"', 'TITLE "Das Album"'):
            self.assertIn(line, sheet)
        aiff = self.converted("song.aiff", "-metadata", "title=Žába", "-metadata", "author=Jörg")
        with open(aiff, "rb") as file:
            self.assertIn(b"AUTH", file.read())
        said, sheet = self.tagged_disc(aiff)
        self.assertIn("  Žába\n", said)
        self.assertIn('PERFORMER "Jörg"', sheet)
        tagged = self.converted("tagged.aiff", "-write_id3v2", "1", "-metadata", "title=Ein Lied", "-metadata",
                                "artist=Jemand", "-metadata", "TSRC=DEABC2612345")
        with open(tagged, "rb") as file:
            self.assertIn(b"ID3 ", file.read())
        said, sheet = self.tagged_disc(tagged)
        self.assertIn("  Ein Lied\n", said)
        self.assertIn('PERFORMER "Jemand"', sheet)
        self.assertIn("ISRC DEABC2612345", sheet)

    # A WAV file with more chunks behind its samples.
    def chunked(self, name, *chunks):
        with open(self.sound("plain.wav", 4), "rb") as file:
            bytes_ = file.read()
        for kind, body in chunks:
            bytes_ += kind + struct.pack("<I", len(body)) + body + bytes(len(body) % 2)
        path = os.path.join(self.scratch, name)
        with open(path, "wb") as file:
            file.write(bytes_[:4] + struct.pack("<I", len(bytes_) - 8) + bytes_[8:])
        return path

    def test_tags_of_wav_files_in_other_forms(self):
        def info(text):
            return b"INFOIART\6\0\0\0Jemand" + b"INAM" + struct.pack("<I", len(text)) + text + bytes(len(text) % 2) + \
                b"ISRC\7\0\0\0Archive\0"
        frames = b"".join(kind + struct.pack(">IH", len(text), 0) + text
                          for kind, text in ((b"TIT2", b"\3Tagged"), (b"TSRC", b"\3DEABC2612345")))
        tag = b"ID3\4\0\0" + struct.pack(">I", len(frames)) + frames
        for number, (chunks, title) in enumerate((
                ([(b"LIST", info(b"J\xf6rg\0"))], "Jörg"),
                ([(b"LIST", info("Žába – 𝄞".encode()))], "Žába – 𝄞"),
                ([(b"LIST", info(b"odd \xc3"))], "odd Ã"),
                ([(b"LIST", info(b"odd \xc3("))], "odd Ã("),
                ([(b"LIST", b"adtlnote\0\0\0\0"), (b"odd ", b"1"), (b"LIST", info(b"Plain"))], "Plain"),
                ([(b"id3 ", tag), (b"LIST", info(b"Plain"))], "Tagged"),
                ([(b"LIST", b"INFO")], "song"),
                ([(b"LIST", info(b""))], "song"))):
            said, sheet = self.tagged_disc(self.chunked("song.wav", *chunks))
            self.assertIn("  " + title + "\n", said, number)
            self.assertEqual("ISRC DEABC2612345" in sheet, title == "Tagged", number)
            self.assertEqual('PERFORMER "Jemand"' in sheet, b"Jemand" in b"".join(body for _, body in chunks), number)

    # A length that leads out of the file, or that none can have, ends the search and nothing else.
    def test_tags_that_are_cut_off_are_no_tags(self):
        for length in (1000, 0x7fffffff, 0x80000000, 0xffffffff):
            path = self.chunked("song.wav")
            with open(path, "ab") as file:
                file.write(b"LIST" + struct.pack("<I", length) + b"INFOINAM" + struct.pack("<I", length))
            self.assertIn("  song\n", self.tagged_disc(path)[0], length)

    # The same in ID3, where 0xfffffff6 is -10, as long as what stands before a frame's text.
    def test_frames_of_lengths_that_none_can_have_end_the_tag(self):
        first = b"TIT2" + struct.pack(">IH", 6, 0) + b"\3Ended"
        for version, length in ((3, b"\xff\xff\xff\xf6"), (3, b"\x7f\xff\xff\xff"), (3, b"\x80\0\0\0"),
                                (3, b"\0\0\0\x40"), (4, b"\0\0\x7f\x7f"), (4, b"\xff\xff\xff\xff"),
                                (4, b"\x0f\x7f\x7f\x76")):
            body = first + b"TPE1" + length + bytes(2) + b"\3Cut off"
            said, sheet = self.tagged_disc(self.tagged_by("song.mp3", body, version))
            self.assertIn("  Ended\n", said, length)
            self.assertFalse([line for line in sheet if line.startswith("PERFORMER")], length)
        empty = b"TPE1" + bytes(6) + first
        self.assertIn("  Ended\n", self.tagged_disc(self.tagged_by("song.mp3", empty))[0])

    # A FLAC file with these comments, whose number and lengths may be wrong.
    def commented(self, comments, count=None):
        body = struct.pack("<II", 0, len(comments) if count is None else count) + \
            b"".join((struct.pack("<I", len(text)) if length is None else length) + text for length, text in comments)
        path = self.sound("song.flac", 4)
        subprocess.run(["metaflac", "--remove-all", path], check=True)
        with open(path, "rb") as file:
            head, kind, rest = file.read(4), file.read(1), file.read()
        self.assertEqual((head, kind[0] & 127), (b"fLaC", 0))
        info, rest = rest[:37], rest[37:]
        while not kind[0] & 128:
            kind, length, rest = rest[:1], int.from_bytes(rest[1:4], "big"), rest[4:]
            rest = rest[length:]
        with open(path, "wb") as file:
            file.write(head + b"\0" + info + b"\x84" + len(body).to_bytes(3, "big") + body + rest)
        return path

    # 100,000 comments are as many as FLAC's own library believes.
    def test_comments_of_lengths_that_none_can_have_end_the_search(self):
        title = (None, b"TITLE=Ended")
        for length in (b"\xfc\xff\xff\xff", b"\xff\xff\xff\x7f", b"\0\0\0\x80", b"\x40\0\0\0"):
            path = self.commented([title, (length, b"ARTIST=Cut off")], count=100_000)
            said, sheet = self.tagged_disc(path)
            self.assertIn("  Ended\n", said, length)
            self.assertFalse([line for line in sheet if line.startswith("PERFORMER")], length)

    def test_several_artists_are_all_named(self):
        for number, text in enumerate((b"\3Queen\0David Bowie\0", b"\0Queen\0David Bowie",
                                       b"\1" + 2 * b"\xff\xfe%s" % ("Queen\0".encode("utf-16-le"),
                                                                   "David Bowie".encode("utf-16-le")),
                                       b"\1\xfe\xff" + "Queen\0David Bowie\0".encode("utf-16-be"),
                                       b"\2" + "Queen\0David Bowie".encode("utf-16-be"))):
            sheet = self.tagged_disc(self.tagged("song.mp3", TIT2=b"\3Song", TPE1=text))[1]
            self.assertIn('PERFORMER "Queen, David Bowie"', sheet, number)
        path = self.commented([(None, text) for text in (b"ARTIST=Queen", b"TITLE=Song", b"artist=David Bowie", b"ARTIST=",
                                                         b"ISRC=DEABC2612345", b"ISRC=DEABC2612346")])
        sheet = self.tagged_disc(path)[1]
        self.assertIn('PERFORMER "Queen, David Bowie"', sheet)
        self.assertIn("ISRC DEABC2612345", sheet)

    # Of 2.4 each frame tells, too, and may say how long it was.
    def test_zeros_that_keep_players_from_a_tag_are_taken_out(self):
        def frame(kind, text, flags=0, length=None):
            return kind + struct.pack(">IH", len(text) if length is None else length, flags) + text
        title = b"\1\xff\xfe" + "ÿ Žába".encode("utf-16-le")
        marked = title.replace(b"\xff", b"\xff\0")
        self.assertEqual(len(marked), len(title) + 2)
        long = struct.pack(">I", len(title))
        artist = b"\3J\xc3\xb6rg"
        for number, (version, flags, frames) in enumerate((
                (3, 128, frame(b"TIT2", marked, length=len(title)) + frame(b"TPE1", artist)),
                (4, 128, frame(b"TIT2", marked) + frame(b"TPE1", artist)),
                (4, 128, frame(b"TIT2", long + marked, 3) + frame(b"TPE1", artist, 2)),
                (4, 0, frame(b"TIT2", long + marked, 3) + frame(b"TPE1", artist)),
                (4, 0, frame(b"TIT2", title) + frame(b"TPE1", artist)),
                (3, 0, frame(b"TIT2", title) + frame(b"TPE1", artist)))):
            said, sheet = self.tagged_disc(self.tagged_by("song.mp3", frames, version, flags))
            self.assertIn("  ÿ Žába\n", said, number)
            self.assertIn('PERFORMER "Jörg"', sheet, number)

    def test_more_files_than_a_disc_has_tracks_are_refused_before_they_are_read(self):
        self.cd()
        song = self.sound("a.wav", 4)
        self.assertEqual(self.refuse("^audio-cd: a CD has at most 99 tracks, and here are 100 files$", "audio-cd.bas",
                                     *[song] * 100), "")
        self.assertEqual(self.medium()["state"], "blank")

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

    # A disc in drive a whose sessions add a file each and change one; what lies in the image between them is a hole.
    def disc_of_sessions(self, kind, count=3):
        self.make_drive("a", "First", kind=kind, capacityBlocks=359847)
        for number in range(1, count + 1):
            self.write(f"added in {number}.bin", os.urandom(100_000 * number))
            self.write("letter.txt", b"Dear reader, once more: %d\n" % number)
            self.succeed("append-session.bas", self.source)
        self.assertEqual(len(self.medium("a")["sessions"]), count)

    # What each session shows: its folders, and its files with their contents. isoinfo reads a session where it begins.
    def shown(self, drive):
        image, found = self.image(drive), []
        for session in self.medium(drive)["sessions"]:
            here = ["isoinfo", "-R", "-T", str(session["tracks"][0]["startBlock"]), "-i", image]
            listed = self.told(*here, "-f").splitlines()
            found.append([self.told(*here, "-l").splitlines(),
                          {name: subprocess.run([*here, "-x", name], capture_output=True, check=True).stdout
                           for name in listed}])
        return found

    def test_data_of_several_sessions_are_copied_to_where_they_were(self):
        for kind, other in (("CD-R", "CD-RW"), ("DVD+R", "DVD+R"), ("DVD-R", "DVD-RW"), ("BD-R", "BD-R")):
            self.disc_of_sessions(kind)
            self.make_drive("b", "Second", kind=other, capacityBlocks=359847)
            self.assertIn("Copied 3 tracks, ", self.succeed("copy-disc.bas", "Virtual First", "Virtual Second"))
            one, copy = self.medium("a"), self.medium("b")
            self.assertEqual(copy["state"], "complete")
            for before, after in zip(one["sessions"], copy["sessions"], strict=True):
                for fact in ("startBlock", "blocks", "volumeName"):
                    self.assertEqual(before["tracks"][0][fact], after["tracks"][0][fact], (kind, fact))
            with open(self.image("a"), "rb") as first, open(self.image("b"), "rb") as second:
                self.assertTrue(first.read() == second.read(), kind)
            shown = self.shown("b")
            self.assertEqual(len(shown[2][1]), 4)
            self.assertEqual(shown[2][1]["/letter.txt"], b"Dear reader, once more: 3\n")
            self.assertEqual(shown, self.shown("a"), kind)
            self.assertFalse([name for name in os.listdir(self.temporary) if name.startswith("copy-disc-")])
            for drive in ("a", "b"):
                shutil.rmtree(os.path.join(self.drives, drive))

    # The start of what takes blocks in any order leads to the newest session, whatever it is copied onto.
    def test_what_takes_blocks_in_any_order_is_copied_as_one_session(self):
        for kind, other in (("DVD+RW", "DVD+RW"), ("BD-RE", "DVD-R")):
            self.disc_of_sessions(kind)
            self.make_drive("b", "Second", kind=other, capacityBlocks=359847)
            self.assertIn("Copied 1 track, ", self.succeed("copy-disc.bas", "Virtual First", "Virtual Second"))
            self.assertEqual(len(self.medium("b")["sessions"]), 1)
            files = self.files_on(self.image("b"))
            self.assertEqual(sorted(files), ["added in 1.bin", "added in 2.bin", "added in 3.bin", "letter.txt"])
            self.assertEqual(files, self.files_on(self.image("a")), kind)
            self.told("7zz", "t", self.image("b"))
            for drive in ("a", "b"):
                shutil.rmtree(os.path.join(self.drives, drive))

    def test_sessions_are_not_copied_onto_a_disc_that_puts_them_elsewhere(self):
        self.disc_of_sessions("DVD+R", 2)
        for number, (other, sentence) in enumerate((
                ("DVD-R", r"Track 2 is data that counts from block \d+ on, but on the DVD-R in \"Virtual B0\" it would "
                          r"begin at block \d+; put in a disc of the kind that the image was made from\."),
                ("BD-RE", "Track 2 is of a later session, which nobody would find on the BD-RE in \"Virtual B1\""))):
            self.make_drive(f"b{number}", f"B{number}", kind=other, capacityBlocks=359847)
            self.refuse("^copy-disc: " + sentence, "copy-disc.bas", "Virtual First", f"Virtual B{number}")
            self.assertEqual(self.medium(f"b{number}")["state"], "blank")

    # Music and, in a session behind it, data that computers find: made by another program for the place where it goes.
    def test_music_with_a_session_of_data_is_copied(self):
        for name in ("a", "b"):
            self.cd(name, {"a": "First", "b": "Second"}[name])
        start = 800 + 11400
        data = os.path.join(self.scratch, "data.iso")
        self.told("genisoimage", "-quiet", "-R", "-C", f"0,{start}", "-V", "EXTRA", "-o", data, self.source)
        music = self.samples(self.sound("music.wav", 32 / 3))
        with open(os.path.join(self.scratch, "music.bin"), "wb") as file:
            file.write(music)
        self.assertEqual(len(music), 800 * 2352)
        sheet = os.path.join(self.scratch, "extra.cue")
        with open(sheet, "w", encoding="utf-8") as file:
            file.write("REM SESSION 01\nFILE music.bin BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"
                       "REM SESSION 02\nFILE data.iso BINARY\nTRACK 02 MODE1/2048\nINDEX 01 00:00:00\n")
        self.succeed("burn-image.bas", sheet)
        self.assertIn("Copied 2 tracks, ", self.succeed("copy-disc.bas", "Virtual First", "Virtual Second"))
        for name in ("medium.bin", "medium.2.bin", "medium.cue"):
            with open(os.path.join(self.drives, "a", name), "rb") as one, \
                    open(os.path.join(self.drives, "b", name), "rb") as other:
                self.assertEqual(one.read(), other.read(), name)
        self.assertEqual(self.medium("b")["sessions"][1]["tracks"][0]["startBlock"], start)
        # The user data of its sectors is the file system that was burned.
        with open(os.path.join(self.drives, "b", "medium.2.bin"), "rb") as file:
            sectors = file.read()
        user = os.path.join(self.scratch, "user.iso")
        with open(user, "wb") as file:
            file.write(b"".join(sectors[at + 16:at + 2064] for at in range(0, len(sectors), 2352)))
        self.assertEqual(self.told("isoinfo", "-R", "-N", str(start), "-i", user, "-x", "/letter.txt"),
                         "Dear reader,\n")
        # Readers of sheets see both tracks, whole. (cd-info counts a second file's track from 0.)
        there = os.path.join(self.drives, "b")
        toc = self.told("cdrdao", "show-toc", "medium.cue", cwd=there)
        self.assertRegex(toc, r"TRACK  1  Mode AUDIO:[^:]*START  00:00:00\( +0\)\s+END +\S+\( +800\)")
        self.assertRegex(toc, r"TRACK  2  Mode MODE1_RAW:[^:]*START  00:10:50\( +800\)\s+END +\S+\( *%d\)"
                         % (800 + len(sectors) // 2352))
        info = self.told("cd-info", "--no-header", "--no-device-info", "--no-cddb", "--cue-file",
                         os.path.join(there, "medium.cue"))
        self.assertRegex(info, r"(?m)^  1: 00:02:00  000000 audio .*\n  2: \S+  \d+ data ")

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
