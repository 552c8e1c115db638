#!/usr/bin/python3
"""Links lead to what they point at in each file system, whatever it is called there, and whatever their masks say."""
import os
import unittest

import jury
from examples_case import ExamplesCase

BURN = """
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.writeLayout(DRTrackQRX.trackForRootFolder(root))
Dim state As String
Do
  App.DoEvents(10)
  state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state
If burn.status.HasKey(DRBurnQRX.DRErrorStatusKey) Then
  Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
  Print Hex(problem.Value(DRBurnQRX.DRErrorStatusErrorKey)) + " " + problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey)
End If
"""
READERS = {"DRISO9660": (jury.rr_bsdtar, jury.rr_isoinfo, jury.rr_pycdlib), "DRUDF": (jury.udf_pycdlib,),
           "DRHFSPlus": (jury.hfs_fls, jury.hfs_7zz)}


class Links(ExamplesCase):
    def burn(self, *lines, mask=13):
        """Burns root, which the lines fill; answers what the program printed."""
        text = "\n".join(['Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Disc")',
                          f"root.explicitFilesystemMask = {mask}", "Dim data As New MemoryBlock(1)", *lines]) + BURN
        return self.succeed(self.write("program.bas", text.encode(), self.scratch)).splitlines()

    def file(self, variable, name, letter, folder="root"):
        return [f'data.StringValue(0, 1) = "{letter}"', f'Dim {variable} As DRFileQRX = DRFileQRX.virtualFileWithName("{name}", data)',
                f"{folder}.addChild({variable})"]

    def link(self, variable, target, filesystem="DRISO9660", mask=None, folder="root"):
        lines = [f"Dim {variable} As DRFileQRX = DRFileQRX.symLinkPointingTo({target}, DRFSObjectQRX.{filesystem})",
                 f'{variable}.baseName = "{variable}"', f"{folder}.addChild({variable})"]
        return lines if mask is None else lines + [f"{variable}.explicitFilesystemMask = {mask}"]

    def target(self, found, path):
        """What the reader finds behind the link."""
        self.assertEqual(found[path]["kind"], "l", found)
        parts = os.path.normpath(os.path.join(os.path.dirname(path), found[path]["target"]))
        self.assertIn(parts, found)
        return parts

    def check(self, wanted):
        for filesystem, links in wanted.items():
            for reader in READERS[filesystem]:
                # It refuses to unpack links that lead upwards.
                if reader == jury.hfs_7zz and any("/" in link for link in links):
                    continue
                found = reader(self.image())
                for link, target in links.items():
                    self.assertEqual(self.target(found, link), target, f"{filesystem} {reader}")
                self.assertEqual({path for path, entry in found.items() if entry["kind"] == "l"}, set(links), f"{filesystem} {reader}")

    # ---- items that got numbers -------------------------------------------------------------------------------------

    def test_a_link_leads_to_an_item_that_got_a_number(self):
        lines = [*self.file("a1", "same.txt", "1"), *self.file("a2", "same.txt", "2"),
                 *self.file("b1", "Łódź", "3"), *self.file("b2", "łódź", "4"),
                 'Dim d1 As DRFolderQRX = DRFolderQRX.virtualFolderWithName("ΑΘΉΝΑ")', "root.addChild(d1)",
                 'Dim d2 As DRFolderQRX = DRFolderQRX.virtualFolderWithName("αθήνα")', "root.addChild(d2)",
                 'Dim links As DRFolderQRX = DRFolderQRX.virtualFolderWithName("links")', "root.addChild(links)",
                 *self.file("deep", "deep", "5", "d2"), "Dim way As DRFileQRX"]
        for filesystem in READERS:
            for name, target in (("a", "a2"), ("b", "b2"), ("c", "deep")):
                lines += [f"way = DRFileQRX.symLinkPointingTo({target}, DRFSObjectQRX.{filesystem})", f'way.baseName = "{name}"',
                          "links.addChild(way)"]
        lines += [f"Print {item}.mangledNameForFilesystem(DRFSObjectQRX.DRHFSPlus)" for item in ("b1", "b2", "d2")]
        said = self.burn(*lines)
        self.assertEqual([jury.composed(line) for line in said], ["Łódź", "łódź_001", "αθήνα_001", "DRStatusStateDone"])
        self.check({filesystem: {"links/a": "same_001.txt", "links/b": "łódź", "links/c": "αθήνα/deep"}
                    for filesystem in ("DRISO9660", "DRUDF")})
        self.check({"DRHFSPlus": {"links/a": "same_001.txt", "links/b": "łódź_001", "links/c": "αθήνα_001/deep"}})
        for reader, path, letter in ((jury.rr_bsdtar, "łódź", b"4"), (jury.udf_pycdlib, "łódź", b"4"), (jury.rr_bsdtar, "same_001.txt", b"2")):
            self.assertEqual(reader(self.image())[path]["data"], letter)
        self.assertEqual(jury.grub(self.image(), "loop0,apple3", "same_001.txt"), b"2")

    def test_a_link_in_a_later_session_leads_to_what_it_is_made_for(self):
        def burn(*lines):
            text = "\n".join(['Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Disc")', "root.explicitFilesystemMask = 9",
                              "Dim data As New MemoryBlock(1)", *lines]) + BURN.replace("burn.writeLayout", "burn.appendable = True\nburn.writeLayout")
            said = self.succeed(self.write("program.bas", text.encode(), self.scratch)).splitlines()
            self.assertEqual(said, ["DRStatusStateDone"])
        burn(*self.file("a", "Readme", "o"))
        burn(*self.file("b", "README", "n"), *self.link("way", "b", "DRHFSPlus"), *self.link("ridge", "b"))
        self.check({"DRISO9660": {"ridge": "README"}, "DRHFSPlus": {"way": "README_001"}})
        self.assertEqual(jury.hfs_7zz(self.image())["README_001"]["data"], b"n")

    # ---- masks that a program sets later ----------------------------------------------------------------------------

    NAMES = ('a.specificNameForFilesystem(DRFSObjectQRX.DRUDF) = "in UDF"',
             'a.specificNameForFilesystem(DRFSObjectQRX.DRHFSPlus) = "in HFS+"')

    def test_a_link_of_several_file_systems_has_a_path_in_each(self):
        for masks, shown in ((("13", "0", "-1", "15"), ("DRISO9660", "DRUDF", "DRHFSPlus")), (("5", "7"), ("DRISO9660", "DRUDF")),
                             (("9",), ("DRISO9660", "DRHFSPlus")), (("12",), ("DRUDF", "DRHFSPlus")), (("4",), ("DRUDF",))):
            for mask in masks:
                with self.subTest(mask):
                    self.fresh()
                    said = self.burn(*self.file("a", "a", "x"), *self.NAMES, *self.link("way", "a", mask=mask),
                                     *self.file("b", "b", "y"), *self.link("other", "b", mask=mask))
                    self.assertEqual(said, ["DRStatusStateDone"])
                    wanted = {"DRISO9660": {"way": "a", "other": "b"}, "DRUDF": {"way": "in UDF", "other": "b"},
                              "DRHFSPlus": {"way": "in HFS+", "other": "b"}}
                    self.check({filesystem: links if filesystem in shown else {} for filesystem, links in wanted.items()})

    def test_such_links_lie_deep_and_next_to_each_other(self):
        self.assertEqual(self.burn(
            *self.file("a", "a", "x"), *self.NAMES, 'Dim d As DRFolderQRX = DRFolderQRX.virtualFolderWithName("d")', "root.addChild(d)",
            'd.specificNameForFilesystem(DRFSObjectQRX.DRUDF) = "D"',
            'Dim e As DRFolderQRX = DRFolderQRX.virtualFolderWithName("e")', "d.addChild(e)",
            *self.link("one", "a", mask=0, folder="e"), *self.link("two", "a", mask=5, folder="e"), *self.file("z", "z", "z", "e"),
            *self.link("three", "z", mask=13), *self.link("four", "one", mask=0, folder="d")), ["DRStatusStateDone"])
        self.check({"DRISO9660": {"d/e/one": "a", "d/e/two": "a", "three": "d/e/z", "d/four": "d/e/one"},
                    "DRUDF": {"D/e/one": "in UDF", "D/e/two": "in UDF", "three": "D/e/z", "D/four": "D/e/one"},
                    "DRHFSPlus": {"d/e/one": "in HFS+", "three": "d/e/z", "d/four": "d/e/one"}})

    def test_where_there_are_no_such_links_the_burn_fails(self):
        joliet = ('80020103 The symbolic link "way" is to be in Joliet, which holds none; set an explicitFilesystemMask without '
                  "Joliet for it, or leave it out.")
        for mask in (0, -1, 2, 3, 15):
            with self.subTest(mask):
                self.assertEqual(self.burn(*self.file("a", "a", "x"), *self.link("way", "a", mask=mask), mask=15),
                                 ["DRStatusStateFailed", joliet])
        for mask in (0, 9, 1):
            with self.subTest(mask):
                said = self.burn(*self.file("a", "a", "x"), 'Dim alias As DRFileQRX = DRFileQRX.finderAliasPointingTo(a, DRFSObjectQRX.'
                                 'DRHFSPlus)', 'alias.baseName = "alias"', "root.addChild(alias)", f"alias.explicitFilesystemMask = {mask}")
                self.assertEqual(said, ["DRStatusStateFailed", '80020103 The Finder alias "alias" is to be in file systems that hold '
                                        "none; set an explicitFilesystemMask for HFS+ alone for it, or leave it out."])
        self.assertEqual(self.medium()["state"], "blank")

    def test_a_link_to_what_is_not_in_one_of_its_file_systems_fails_the_burn(self):
        for own, mask, missing in ((4, 5, "ISO 9660"), (1, 5, "UDF"), (5, 13, "HFS+"), (5, 0, "HFS+")):
            with self.subTest(own):
                said = self.burn(*self.file("a", "a", "x"), f"a.explicitFilesystemMask = {own}", *self.link("way", "a", mask=mask))
                self.assertEqual(said, ["DRStatusStateFailed", f'80020101 The link "way" points at nothing that is on the disc in {missing};'
                                        " put what it points at there, too, or leave the link out."])
        self.assertEqual(self.medium()["state"], "blank")

    def test_a_link_in_iso_9660_needs_rock_ridge_also_when_it_is_elsewhere_too(self):
        without = ["Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)",
                   "Dim settings As Dictionary = track.properties", "settings.Value(DRTrackQRX.DRISORockRidgeExtensions) = False",
                   "track.properties = settings"]
        text = "\n".join(['Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Disc")', "root.explicitFilesystemMask = 5",
                          "Dim data As New MemoryBlock(1)", *self.file("a", "a", "x"), "{names}",
                          *self.link("way", "a", mask="{mask}"), *without]) + BURN.replace("DRTrackQRX.trackForRootFolder(root)", "track")
        for names, mask in ((self.NAMES[0], 5), ("", 5), ("", 0), ("", 1)):
            with self.subTest(names=names, mask=mask):
                program = text.replace("{names}", names).replace("{mask}", str(mask))
                said = self.succeed(self.write("program.bas", program.encode(), self.scratch)).splitlines()
                self.assertEqual(said, ["DRStatusStateFailed", '80020103 The symbolic link "way" is to be in ISO 9660, which holds none '
                                        "without Rock Ridge; set an explicitFilesystemMask without ISO 9660 for it, or leave it out."])
        self.assertEqual(self.medium()["state"], "blank")

    def fresh(self):
        """Another drive with a blank medium."""
        for name in os.listdir(self.drives):
            os.rename(os.path.join(self.drives, name), os.path.join(self.scratch, f"old-{len(os.listdir(self.scratch))}"))


if __name__ == "__main__":
    unittest.main()
