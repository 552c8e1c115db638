#!/usr/bin/python3
"""What a program is told that items are called in ISO 9660 is what they are called on the disc: read by isoinfo and pycdlib,
which look at ISO 9660's own names."""
import os
import subprocess
import unittest

import pycdlib

from examples_case import OPTIONS, ExamplesCase

NAMES = ("this: is an unusual$ filename.with_extension", "measurement 1.txt", "measurement 2.txt", "measurement 3.txt",
         "README", "readme.", "Read Me", "Übersicht.tar.gz", ".profile", "漢字.txt", "文字.txt", "a,b;c.txt", "abc.txt")


class IsoNames(ExamplesCase):
    BURN = """
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
Dim settings As Dictionary = track.properties
settings.Value(DRTrackQRX.DRISOLevel) = {level}
settings.Value(DRTrackQRX.DRISORockRidgeExtensions) = {rock_ridge}
settings.Value(DRTrackQRX.DRISOMacExtensions) = {mac}
{more}
track.properties = settings
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.{how} = True
burn.writeLayout(track)
Dim state As String
Do
  App.DoEvents(10)
  state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state
"""

    def burn(self, lines, level=2, rock_ridge=True, how="Overwrite", mac="False", more="", ends="Done"):
        """Burns root, which the lines fill; answers what the program printed before the burn."""
        text = "\n".join(['Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Names")', *lines,
                          self.BURN.format(level=level, rock_ridge=rock_ridge, how=how, mac=mac, more=more)])
        said = self.succeed(self.write("names.bas", text.encode(), self.scratch)).splitlines()
        self.assertEqual(said[-1], "DRStatusState" + ends)
        return said[:-1]

    def on_disc(self):
        """Names as they are stored, without the version and a dot in front of it; isoinfo's and pycdlib's are the same."""
        listed = subprocess.run(["isoinfo", "-f", "-i", self.image()], capture_output=True, text=True, check=True).stdout
        iso = pycdlib.PyCdlib()
        iso.open(self.image())
        found = []
        for folder, folders, files in iso.walk(iso_path="/"):
            found += [os.path.join(folder, name) for name in folders + files]
        iso.close()
        self.assertEqual(sorted(found), sorted(listed.splitlines()))
        for name in found:
            self.assertTrue(name.endswith(";1") or "." not in name, name)
        return sorted(name.removesuffix(";1").removesuffix(".")[1:] for name in found)

    def children(self, level):
        """A file for each name, a folder, a name of its own and one that collides with it; then what they are called."""
        kind = "DRISO9660LevelOne" if level == 1 else "DRISO9660LevelTwo"
        lines = ["Dim item As DRFSObjectQRX"]
        for name in NAMES:
            lines += [f'item = DRFileQRX.virtualFileWithName("{name}", Nil)', "root.addChild(item)"]
        return [*lines, 'root.addChild(DRFolderQRX.virtualFolderWithName("my long, long directory"))',
                'item = DRFileQRX.virtualFileWithName("special", Nil)',
                f'item.specificNameForFilesystem(DRFSObjectQRX.{kind}) = "As I (say).it"', "root.addChild(item)",
                'root.addChild(DRFileQRX.virtualFileWithName("asi(say).it", Nil))',
                'root.addChild(DRFileQRX.virtualFileWithName("as i (say).IT", Nil))',
                "For Each item In root.children", f"Print item.mangledNameForFilesystem(DRFSObjectQRX.{kind})", "Next"]

    def test_what_a_program_is_told_is_on_the_disc(self):
        for level in (1, 2, 3):
            for rock_ridge in (True, False):
                with self.subTest(level=level, rock_ridge=rock_ridge):
                    told = self.burn(self.children(level), level, rock_ridge)
                    self.assertEqual(len(set(told)), len(NAMES) + 4)
                    self.assertEqual(self.on_disc(), sorted(told))
                    some = ["THISISAN.WIT", "MEAS_001.TXT", "MYLONGLO", "ASISAY.IT", "ASIS_001.IT"] if level == 1 else [
                        "THIS: IS AN UNU.WITH_EXTENSION", "MEASUREMENT 2.TXT", "MY LONG LONG DIRECTORY", "AS I (SAY).IT",
                        "AS I (SAY)_001.IT", "ASI(SAY).IT"]
                    for name in [*some, "_.TXT", "__001.TXT", "ABC.TXT", "ABC_001.TXT"]:
                        self.assertIn(name, told)
                    if rock_ridge:
                        self.assertLessEqual(set(NAMES) | {"special", "asi(say).it"}, set(self.files_on(self.image())))

    def test_a_real_folder_is_named_by_the_same_rules(self):
        for name in NAMES:
            self.write(name, b"x")
        for kind, level in (("DRISO9660LevelOne", 1), ("DRISO9660LevelTwo", 2)):
            told = self.burn([
                f'Dim folder As DRFolderQRX = DRFolderQRX.folderWithPath("{self.source}")', "root.addChild(folder)",
                f'Dim same As DRFolderQRX = DRFolderQRX.folderWithPath("{self.source}")', "same.makeVirtual()",
                "Dim item As DRFSObjectQRX", "For Each item In same.children",
                f"Print item.mangledNameForFilesystem(DRFSObjectQRX.{kind})", "Next"], level)
            self.assertEqual(self.on_disc(), sorted(["HOLIDAY"] + ["HOLIDAY/" + name for name in told]))
            self.assertEqual(len(told), len(NAMES) + 1)

    def test_a_session_that_is_added_keeps_the_names(self):
        told = self.burn(self.children(2), how="appendable")
        more = ['root.addChild(DRFileQRX.virtualFileWithName("later", Nil))',
                'root.addChild(DRFileQRX.virtualFileWithName("later$", Nil))',
                # Where an old item has the name, the new one gets a number.
                'root.addChild(DRFileQRX.virtualFileWithName("a~bc.txt", Nil))']
        self.burn(more, how="appendable")
        self.assertEqual(self.on_disc(), sorted([*told, "LATER", "LATER_001", "ABC_002.TXT"]))
        self.burn(self.children(2), how="appendable")
        self.assertEqual(self.on_disc(), sorted([*told, "LATER", "LATER_001", "ABC_002.TXT"]))

    def test_what_a_program_is_told_of_joliet_is_on_the_disc(self):
        names = ["Meeting 12:30", "this: is an unusual$ filename.with_extension", "a,b;c.txt", 'a*b/c?d<e>f|g.txt',
                 "tar.tar.gz", "Ä:Ö", "ä:ö", "x" * 80 + ":.txt", "x" * 80 + ":a.txt", "12:45:59"]
        lines = ["Dim item As DRFSObjectQRX"]
        for number, name in enumerate(names):
            plain = name.replace("/", "-")  # no item on a disc has a "/" in its name
            kind = ('DRFolderQRX.virtualFolderWithName("{}")' if number % 3 == 0 else
                    'DRFileQRX.virtualFileWithName("{}", Nil)').format(plain)
            lines += [f"item = {kind}", f'item.specificNameForFilesystem(DRFSObjectQRX.DRJoliet) = "{name}"', "root.addChild(item)"]
        told = self.burn([*lines, "For Each item In root.children",
                          "Print item.mangledNameForFilesystem(DRFSObjectQRX.DRJoliet)", "Next"])
        iso = pycdlib.PyCdlib()
        iso.open(self.image())
        found = [name for _, folders, files in iso.walk(joliet_path="/") for name in folders + files]
        iso.close()
        self.assertEqual(sorted(name.removesuffix(";1").removesuffix(".") for name in found), sorted(told))
        for name in ("Meeting 12:30", "this: is an unusual filename.with_extension", "12:45:59", "a,bc.txt"):
            self.assertIn(name, told)

    def test_what_a_track_says_of_its_volume_is_on_the_disc(self):
        texts = {"DRPublisher": "Harbour Press", "DRDataPreparer": "The Night Shift", "DRVolumeSet": "Tides 1 to 3",
                 "DRApplicationIdentifier": "Tide tables", "DRSystemIdentifier": "Any", "DRCopyrightFile": "README.;1"}
        dates = {"DRVolumeCreationDate": 2001, "DRVolumeModificationDate": 2002, "DRVolumeExpirationDate": 2003,
                 "DRVolumeEffectiveDate": 2004}
        lines = ['root.addChild(DRFileQRX.virtualFileWithName("readme", Nil))', "Dim said As New Dictionary"]
        lines += [f'said.Value(DRTrackQRX.{key}) = "{text}"' for key, text in texts.items()]
        lines += [f"said.Value(DRTrackQRX.{key}) = New Date({year}, 2, 3, 4, 5, 6)" for key, year in dates.items()]
        told = self.volume(lines)
        self.assertEqual([told.system_identifier, told.volume_identifier, told.volume_set_identifier,
                          told.publisher_identifier.text, told.preparer_identifier.text, told.application_identifier.text,
                          told.copyright_file_identifier], [text.encode().ljust(size) for text, size in (
                              ("Any", 32), ("Names", 32), ("Tides 1 to 3", 128), ("Harbour Press", 128),
                              ("The Night Shift", 128), ("Tide tables", 128), ("README.;1", 37))])
        self.assertEqual(self.dates(told), [2001, 2002, 2003, 2004])
        listed = subprocess.run(["isoinfo", "-d", "-i", self.image()], capture_output=True, text=True, check=True).stdout
        for line in ("Publisher id: Harbour Press", "Data preparer id: The Night Shift", "Volume set id: Tides 1 to 3"):
            self.assertIn(line + "\n", listed)

        # What has no date of its own has the track's.
        told = self.volume(["Dim said As New Dictionary",
                            "said.Value(DRTrackQRX.DRDefaultDate) = New Date(2005, 2, 3, 4, 5, 6)"])
        self.assertEqual(self.dates(told), [2005, 2005, 0, 0])

    def test_a_volume_names_files_that_a_program_gives_themselves(self):
        lines = ["Dim said As New Dictionary", "Dim bytes As New MemoryBlock(5)",
                 'Dim legal As New DRFileQRX("legal terms.txt", bytes)', "root.addChild(legal)",
                 'Dim twin As DRFileQRX = DRFileQRX.virtualFileWithName("LEGAL TERMS.txt", bytes)', "root.addChild(twin)",
                 'root.addChild(DRFileQRX.virtualFileWithName("about", bytes))',
                 "said.Value(DRTrackQRX.DRCopyrightFile) = legal", "said.Value(DRTrackQRX.DRAbstractFile) = twin",
                 'said.Value(DRTrackQRX.DRBibliographicFile) = "ABOUT.;1"', "Dim key As Variant"]
        more = "For Each key In said.Keys\nsettings.Value(key) = said.Value(key)\nNext"
        if "--without-companion" in OPTIONS:  # what keeps a program's object in a dictionary is the companion's
            self.burn(lines, more=more, ends="Failed")
            return
        told = self.volume(lines[:-1])
        self.assertEqual([told.copyright_file_identifier, told.abstract_file_identifier, told.bibliographic_file_identifier],
                         [text.ljust(37) for text in (b"LEGAL TERMS.TXT;1", b"LEGAL TERMS_001.TXT;1", b"ABOUT.;1")])
        self.assertEqual(self.on_disc(), ["ABOUT", "LEGAL TERMS.TXT", "LEGAL TERMS_001.TXT"])
        # A folder, and a file that is nowhere on the disc, can't be named; nor what is no file at all.
        for wrong in ('DRFolderQRX.virtualFolderWithName("x")', 'DRFileQRX.virtualFileWithName("x", Nil)',
                      "DRDeviceQRX.device(0)"):
            self.burn([*lines, f"said.Value(DRTrackQRX.DRAbstractFile) = {wrong}"], more=more, ends="Failed")

    def volume(self, lines):
        """The descriptor of a disc whose track says what the lines put into the dictionary `said`."""
        os.environ["TZ"] = os.environ["GNUSTEP_TZ"] = "UTC"  # the disc's dates are
        self.burn(lines + ["Dim key As Variant"], more="For Each key In said.Keys\nsettings.Value(key) = said.Value(key)\nNext")
        iso = pycdlib.PyCdlib()
        iso.open(self.image())
        self.addCleanup(iso.close)
        return iso.pvd

    def dates(self, told):
        """Years; the rest, which is the same in all that are set, is looked at here."""
        dates = (told.volume_creation_date, told.volume_modification_date, told.volume_expiration_date,
                 told.volume_effective_date)
        for date in dates:
            if date.year:
                self.assertEqual((date.month, date.dayofmonth, date.hour, date.minute, date.second), (2, 3, 4, 5, 6))
        return [date.year for date in dates]

    def test_types_and_creators_are_in_iso9660_where_the_track_says_so(self):
        lines = ['Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", Nil)', "Dim code As New MemoryBlock(4)",
                 'code.StringValue(0, 4) = "QzTy"',
                 "f.setProperty(code, DRFSObjectQRX.DRMacFileType, DRFSObjectQRX.DRAllFilesystems)",
                 'code.StringValue(0, 4) = "QzCr"',
                 "f.setProperty(code, DRFSObjectQRX.DRMacFileCreator, DRFSObjectQRX.DRISO9660)",
                 "f.setProperty(&h0800, DRFSObjectQRX.DRMacFinderFlags, DRFSObjectQRX.DRAllFilesystems)", "root.addChild(f)"]
        for wanted, count in (("True", 1), ("False", 0)):
            self.burn(lines, mac=wanted)
            with open(self.image(), "rb") as file:
                disc = file.read()
            self.assertEqual(disc.count(b"AA\x0e\x02QzTyQzCr\x08\x00"), count)
            listed = subprocess.run(["isoinfo", "-d", "-i", self.image()], capture_output=True, text=True, check=True).stdout
            self.assertEqual(listed.count("System id: APPLE COMPUTER, INC., TYPE: 0002\n"), count)
            self.assertEqual(list(self.files_on(self.image())), ["f"])


if __name__ == "__main__":
    unittest.main()
