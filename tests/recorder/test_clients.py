#!/usr/bin/python3
"""Programs that are not ours list the recorder, blank it, burn on it and read it back."""
import os
import re
import unittest
import wave

from harness import DEVICE, RecorderTest

WODIM = ("wodim", f"dev={DEVICE}", "gracetime=0")
CDRSKIN = ("cdrskin", f"dev={DEVICE}")
BLOCK, SECTOR = 2048, 2352


class Case(RecorderTest):
    def image(self, blocks=400, seed=1):
        """An image whose bytes are noise, and its path."""
        data = self.noise(blocks * BLOCK, seed)
        return data, self.file(f"image-{seed}.bin", data)

    def sound(self, sectors, seed):
        data = self.noise(sectors * SECTOR, seed)
        path = os.path.join(self.scratch, f"sound-{seed}.wav")
        with wave.open(path, "wb") as file:
            file.setnchannels(2)
            file.setsampwidth(2)
            file.setframerate(44100)
            file.writeframes(data)
        return data, path

    def read_back(self, start, blocks):
        """By READ commands of a program that is not ours."""
        self.tool("readom", f"dev={DEVICE}", "f=back.bin", f"sectors={start}-{start + blocks}")
        with open(os.path.join(self.scratch, "back.bin"), "rb") as file:
            return file.read()

    def folder_tree(self, name="tree", seed=3):
        data = self.noise(700_000, seed)
        self.file(f"{name}/noise.bin", data)
        self.file(f"{name}/sub/letter.txt", b"Dear reader,\n")
        return os.path.join(self.scratch, name), data

    # Who it is

    def test_cdrskin_lists_it(self):
        self.insert("CD-RW")
        self.assertRegex(self.tool("cdrskin", "--devices"), r"dev='/dev/sr0'.*'TESTLAB '\s+'MMC RECORDER'")

    def test_xorriso_lists_it(self):
        self.insert("DVD+RW")
        self.assertIn("-dev '/dev/sr0' rwrw-- :  'TESTLAB ' 'MMC RECORDER'", self.tool("xorriso", "-devices"))

    def test_wodim_checks_it(self):
        self.insert("CD-R")
        said = self.tool(*WODIM, "-checkdrive")
        self.assertIn("Identification : 'MMC RECORDER    '", said)
        self.assertRegex(said, r"Driver flags\s+: .*BURNFREE")
        self.assertIn("Supported modes: TAO PACKET SAO", said)

    def test_wodim_reads_the_groove(self):
        self.insert("CD-RW")
        said = self.tool(*WODIM, "-atip")
        self.assertIn("Is erasable", said)
        self.assertIn("ATIP start of lead out: 359849 (79:59/74)", said)

    def test_mediainfo_describes_it(self):
        self.insert("DVD+RW")
        said = self.tool("dvd+rw-mediainfo", DEVICE)
        self.assertRegex(said, r"Mounted Media:\s+1Ah, DVD\+RW")
        self.assertRegex(said, r"Write Speed #0:\s+8.0x1385=11080KB/s")
        self.assertRegex(said, r"Disc status:\s+blank")

    def test_without_a_folder_there_is_no_drive(self):
        environment = self.environment()
        del environment["DISC_RECORDER"]
        self.environment = lambda: environment
        self.assertNotIn("/dev/sr0", self.tool("cdrskin", "--devices"))

    # CD-R and CD-RW

    def burns_data(self, medium, *command):
        data, path = self.image()
        self.insert(medium)
        self.tool(*command, path)
        self.assertEqual(self.read_back(0, 400), data)

    def test_wodim_burns_track_at_once(self):
        self.burns_data("CD-R", *WODIM, "-tao", "-data")
        self.assertEqual([(t["start"], t["size"], t["mode"]) for t in self.tracks()], [(0, 402, "mode1")])
        self.assertTrue(self.state()["finalised"])

    def test_cdrskin_burns_track_at_once(self):
        self.burns_data("CD-R", *CDRSKIN, "-tao", "-data")

    def test_wodim_burns_session_at_once(self):
        self.burns_data("CD-R", *WODIM, "-sao", "-data")
        self.assertEqual(self.tracks()[0]["pregap"], 150)

    def test_cdrskin_burns_session_at_once(self):
        self.burns_data("CD-RW", *CDRSKIN, "-sao", "-data")

    def test_a_short_track_is_filled_up(self):
        self.insert("CD-R")
        data, path = self.image(10)
        self.tool(*CDRSKIN, "-tao", "-data", path)
        self.assertGreaterEqual(self.tracks()[0]["size"], 302)
        self.assertEqual(self.read_back(0, 300), data + bytes(290 * BLOCK))

    def test_several_data_tracks(self):
        for tool in (WODIM, CDRSKIN):
            self.insert("CD-R")
            first, one = self.image(400, 1)
            second, two = self.image(350, 2)
            self.tool(*tool, "-tao", "-data", one, two)
            self.assertEqual([t["start"] for t in self.tracks()], [0, 552], tool)
            self.assertEqual(self.read_back(0, 400), first)
            self.assertEqual(self.read_back(552, 350), second)

    def burns_sound(self, *command):
        self.insert("CD-R")
        first, one = self.sound(400, 1)
        second, two = self.sound(350, 2)
        self.tool(*command, "-audio", one, two)
        tracks = self.tracks()
        self.assertEqual([t["mode"] for t in tracks], ["audio", "audio"])
        for track, data in zip(tracks, (first, second)):
            self.assertEqual(self.sectors(track["start"], len(data) // SECTOR, SECTOR), data)
        self.assertTrue(self.state()["finalised"])
        return tracks

    def test_wodim_burns_sound_session_at_once(self):
        self.assertEqual([t["start"] for t in self.burns_sound(*WODIM, "-sao")], [0, 400])

    def test_cdrskin_burns_sound_session_at_once(self):
        self.assertEqual([t["start"] for t in self.burns_sound(*CDRSKIN, "-sao")], [0, 400])

    def test_wodim_burns_sound_track_at_once(self):
        self.assertEqual([t["start"] for t in self.burns_sound(*WODIM, "-tao")], [0, 552])

    def test_cdrskin_burns_sound_track_at_once(self):
        self.assertEqual([t["start"] for t in self.burns_sound(*CDRSKIN, "-tao")], [0, 552])

    def test_texts_and_codes_of_a_sound_disc(self):
        self.insert("CD-RW")
        _, one = self.sound(400, 1)
        _, two = self.sound(350, 2)
        sheet = self.file("sheet.v07t", b"Input Sheet Version = 0.7T\nAlbum Title = First Album\n"
                                        b"Artist Name = Some Band\nTrack 01 Title = One\nTrack 02 Title = Two\n"
                                        b"First Track Number = 1\nLast Track Number = 2\n")
        self.tool(*CDRSKIN, "-sao", "-audio", f"input_sheet_v07t={sheet}", "mcn=1234567890123", "isrc=DEABC1234567",
                  one, "isrc=DEABC1234568", two)
        self.assertEqual(self.state()["catalogue"], "1234567890123")
        self.assertEqual([t["isrc"] for t in self.tracks()], ["DEABC1234567", "DEABC1234568"])
        said = self.tool(*CDRSKIN, "cdtext_to_v07t=-")
        for line in ("Album Title         = First Album", "Track 01 Title      = One", "Track 02 Title      = Two"):
            self.assertIn(line, said)
        self.tool("cdrdao", "read-toc", "--device", DEVICE, "out.toc")
        with open(os.path.join(self.scratch, "out.toc"), encoding="utf-8") as file:
            table = file.read()
        self.assertIn('CATALOG "1234567890123"', table)
        self.assertIn('TITLE "First Album"', table)
        self.assertEqual(re.findall(r'FILE "data.wav" (\S+) (\S+)', table),
                         [("0", "00:05:25"), ("00:05:25", "00:04:50")])

    def test_cdrdao_copies_sound_back(self):
        self.insert("CD-R")
        data, path = self.sound(400, 5)
        self.tool(*CDRSKIN, "-sao", "-audio", path)
        self.tool("cdrdao", "read-cd", "--device", DEVICE, "--driver", "generic-mmc", "--paranoia-mode", "0",
                  "--datafile", "back.bin", "back.toc")
        with open(os.path.join(self.scratch, "back.bin"), "rb") as file:
            back = file.read()
        swapped = bytearray(len(back))
        swapped[0::2], swapped[1::2] = back[1::2], back[0::2]
        self.assertEqual(bytes(swapped), data)

    def test_sound_and_data_on_one_disc(self):
        self.insert("CD-R")
        data, image = self.image(400)
        samples, sound = self.sound(350, 2)
        self.tool(*WODIM, "-tao", "-data", image, "-audio", sound)
        self.assertEqual([t["mode"] for t in self.tracks()], ["mode1", "audio"])
        self.assertEqual(self.read_back(0, 400), data)
        self.assertEqual(self.sectors(self.tracks()[1]["start"], 350, SECTOR), samples)

    def appends(self, medium, *tool):
        self.insert(medium)
        first, one = self.image(400, 1)
        second, two = self.image(350, 2)
        self.tool(*tool, "-multi", one)
        self.assertFalse(self.state()["finalised"])
        self.assertEqual(self.tool(*tool, "-msinfo").strip().splitlines()[-1], "0,11802")
        self.tool(*tool, two)
        self.assertEqual([(t["session"], t["start"]) for t in self.tracks()], [(1, 0), (2, 11802)])
        self.assertTrue(self.state()["finalised"])
        self.assertEqual(self.read_back(0, 400), first)
        self.assertEqual(self.read_back(11802, 350), second)
        self.assertNotEqual(self.run_tool(*tool, two).returncode, 0)
        self.assertEqual(len(self.tracks()), 2)

    def test_wodim_appends_a_session(self):
        self.appends("CD-R", *WODIM, "-tao", "-data")

    def test_cdrskin_appends_a_session(self):
        self.appends("CD-RW", *CDRSKIN, "-tao", "-data")

    def test_blanking_and_burning_again(self):
        for tool, how in ((WODIM, "fast"), (CDRSKIN, "fast"), (WODIM, "all"), (CDRSKIN, "all")):
            self.insert("CD-RW")
            _, one = self.image(400, 1)
            second, two = self.image(350, 2)
            self.tool(*WODIM, "-tao", "-data", one)
            self.assertNotEqual(self.run_tool(*tool, "-tao", "-data", two).returncode, 0)
            self.tool(*tool, f"blank={how}")
            self.assertEqual(self.tracks(), [])
            self.tool(*tool, "-tao", "-data", two)
            self.assertEqual(self.read_back(0, 350), second)

    def test_a_written_cdr_can_not_be_blanked(self):
        self.insert("CD-R")
        self.tool(*WODIM, "-tao", "-data", self.image()[1])
        before = self.state()
        for tool in (WODIM, CDRSKIN):
            self.assertNotEqual(self.run_tool(*tool, "blank=fast").returncode, 0)
        self.assertEqual(self.state()["tracks"], before["tracks"])

    def test_a_rehearsal_writes_nothing(self):
        for tool in (WODIM, CDRSKIN):
            for way in ("-tao", "-sao"):
                self.insert("CD-R")
                self.tool(*tool, "-dummy", way, "-data", self.image()[1])
                self.assertGreater(self.state()["writes"], 0)
                self.assertEqual(self.tracks(), [])
                self.assertEqual(self.sectors(0, 1, SECTOR), b"")

    def test_too_much_data_is_refused(self):
        self.insert("CD-R", capacity=1000)
        for tool in (WODIM, CDRSKIN):
            self.assertNotEqual(self.run_tool(*tool, "-tao", "-data", self.image(1200)[1]).returncode, 0)

    # DVD and BD

    def lives(self, medium, appends=True):
        """A tree, one more file, and both read back by the program that knows all of them."""
        self.insert(medium)
        tree, data = self.folder_tree()
        self.tool("xorriso", "-outdev", DEVICE, "-map", tree, "/", "-commit")
        self.assertIn("is written", self.tool("xorriso", "-indev", DEVICE, "-toc"))
        if appends:
            extra, path = self.image(200, 7)
            self.tool("xorriso", "-dev", DEVICE, "-map", path, "/extra.bin", "-commit")
            self.tool("xorriso", "-osirrox", "on", "-indev", DEVICE, "-extract", "/extra.bin", "extra.back")
            with open(os.path.join(self.scratch, "extra.back"), "rb") as file:
                self.assertEqual(file.read(), extra)
        self.tool("xorriso", "-osirrox", "on", "-indev", DEVICE, "-extract", "/noise.bin", "noise.back")
        with open(os.path.join(self.scratch, "noise.back"), "rb") as file:
            self.assertEqual(file.read(), data)

    def test_xorriso_on_cdr(self):
        self.lives("CD-R")

    def test_xorriso_on_cdrw(self):
        self.lives("CD-RW")

    def test_xorriso_on_dvd_plus_rw(self):
        self.lives("DVD+RW")

    def test_xorriso_on_dvd_plus_r(self):
        self.lives("DVD+R")

    def test_xorriso_on_dvdr(self):
        self.lives("DVD-R")

    def test_xorriso_on_dvdrw(self):
        self.lives("DVD-RW")

    def test_a_dvdrw_that_was_blanked_quickly(self):
        self.insert("DVD-RW")
        _, one = self.image(320, 1)
        second, two = self.image(480, 2)
        self.tool(*CDRSKIN, "-data", one)
        self.tool(*CDRSKIN, "blank=deformat_sequential_quickest")
        self.assertTrue(self.state()["onlyAtOnce"])
        self.assertNotEqual(self.run_tool(*CDRSKIN, "-tao", "-multi", "-data", two).returncode, 0)
        self.assertEqual(self.tracks(), [])
        self.tool(*CDRSKIN, "-data", two)
        self.assertTrue(self.state()["finalised"])
        self.assertEqual(self.read_back(0, 480), second)
        self.tool(*CDRSKIN, "blank=all")
        self.tool(*CDRSKIN, "-multi", "-tao", "-data", one)
        self.assertFalse(self.state()["finalised"])
        self.tool("xorriso", "-outdev", DEVICE, "-blank", "fast")
        tree, data = self.folder_tree()
        self.tool("xorriso", "-outdev", DEVICE, "-close", "on", "-map", tree, "/", "-commit")
        self.tool("xorriso", "-osirrox", "on", "-indev", DEVICE, "-extract", "/noise.bin", "noise.back")
        with open(os.path.join(self.scratch, "noise.back"), "rb") as file:
            self.assertEqual(file.read(), data)

    def test_xorriso_on_dvdrw_formatted(self):
        self.insert("DVD-RW")
        self.tool("xorriso", "-outdev", DEVICE, "-format", "full")
        self.assertTrue(self.state()["formatted"])
        data, path = self.image(320)
        self.tool(*CDRSKIN, "-data", path)
        self.assertEqual(self.read_back(0, 320), data)

    def test_xorriso_on_dvd_ram(self):
        self.lives("DVD-RAM")

    def test_xorriso_on_bdr(self):
        self.lives("BD-R")

    def test_xorriso_on_bdre(self):
        self.lives("BD-RE")

    def test_overwriting_dvd_plus_rw(self):
        self.insert("DVD+RW")
        _, one = self.image(640, 1)
        second, two = self.image(320, 2)
        self.tool(*CDRSKIN, "-data", one)
        self.tool(*CDRSKIN, "-data", two)
        self.assertEqual(self.read_back(0, 320), second)

    def test_a_full_dvdr_session_at_once(self):
        self.insert("DVD-R")
        data, path = self.image(320)
        self.tool(*CDRSKIN, "-sao", "-data", path)
        self.assertTrue(self.state()["finalised"])
        self.assertEqual(self.read_back(0, 320), data)


if __name__ == "__main__":
    unittest.main()
