#!/usr/bin/python3
"""What is said of items for one file system is on the disc there and nowhere else: names, dates, modes, owners and flags, read
by programs that are not ours."""
import os
import re
import unittest
import unittest.mock

import pycdlib

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
  Print problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey)
End If
"""


class Properties(ExamplesCase):
    def burn(self, *lines, mask=15):
        """Burns root, which the lines fill; answers what the program printed."""
        text = "\n".join(['Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Disc")',
                          f"root.explicitFilesystemMask = {mask}", *lines]) + BURN
        return self.succeed(self.write("program.bas", text.encode(), self.scratch)).splitlines()

    # ---- names --------------------------------------------------------------------------------------------------

    def test_long_names_are_cut_where_a_file_system_wants_it(self):
        names = ["漢" * 255, "漢" * 254 + "字", "漢" * 250 + ".text", "x" * 300, "Ä" * 126 + ".jpeg", "💿" * 127]
        rock_ridge = ["漢" * 85, "漢" * 83 + "_001", "漢" * 83 + ".text", "x" * 255, "Ä" * 125 + ".jpeg", "💿" * 63]
        joliet = ["漢" * 64, "漢" * 60 + "_001", "漢" * 59 + ".text", "x" * 64, "Ä" * 59 + ".jpeg", "💿" * 32]
        udf = ["漢" * 126, "漢" * 122 + "_001", "漢" * 121 + ".text", "x" * 253, "Ä" * 126 + ".jpeg", "💿" * 63]
        hfs = ["漢" * 255, "漢" * 254 + "字", "漢" * 250 + ".text", "x" * 255, "Ä" * 125 + ".jpeg", "💿" * 127]
        lines = ["Dim item As DRFileQRX", "Dim bytes As New MemoryBlock(1)"]
        for number, name in enumerate(names):
            lines += [f'bytes.StringValue(0, 1) = "{number}"', f'item = DRFileQRX.virtualFileWithName("{name}", bytes)',
                      "root.addChild(item)"]
        for system in ("DRJoliet", "DRUDF", "DRHFSPlus"):
            lines += [f"For Each item In root.children", f"Print item.mangledNameForFilesystem(DRFSObjectQRX.{system})", "Next"]
        said = self.burn(*lines)
        self.assertEqual([jury.composed(name) for name in said], joliet + udf + hfs + ["DRStatusStateDone"])
        for wanted, found in ((rock_ridge, jury.rr_bsdtar), (rock_ridge, jury.rr_pycdlib), (joliet, jury.joliet_pycdlib),
                              (udf, jury.udf_pycdlib)):
            self.assertEqual(self.bytes_of(found(self.image())),
                             {name: str(number).encode() for number, name in enumerate(wanted)}, found)
        self.assertEqual(sorted(jury.hfs_fls(self.image())), sorted(hfs))

    def volume_names(self):
        disc = pycdlib.PyCdlib()
        disc.open(self.image())
        iso = disc.pvd.volume_identifier.decode().rstrip(" ")
        joliet = disc.joliet_vd.volume_identifier.decode("utf-16-be").rstrip(" ")
        disc.close()
        udf = re.search("^label=(.*)$", jury.run("udfinfo", "--utf8", self.image()).decode(), re.M)[1]
        listed = jury.run("7zz", "l", "-slt", "-thfs", self.image(), status=1).decode()
        hfs = [line[7:] for line in listed.splitlines() if line.startswith("Path = ") and line[7:] != self.image()]
        return iso, joliet, udf, jury.composed(hfs[0].partition("/")[0])

    def test_the_roots_names_are_the_volumes(self):
        names = {"DRISO9660LevelTwo": "as-iso", "DRJoliet": "In Jolïet", "DRUDF": "漢字 in UDF", "DRHFSPlus": "On a Mäc"}
        lines = [f'root.specificNameForFilesystem(DRFSObjectQRX.{system}) = "{name}"' for system, name in names.items()]
        inside = 'root.addChild(DRFileQRX.virtualFileWithName("f", Nil))'
        self.assertEqual(self.burn(inside, *lines), ["DRStatusStateDone"])
        self.assertEqual(self.volume_names(), ("AS-ISO", "In Jolïet", "漢字 in UDF", "On a Mäc"))
        self.assertEqual(self.medium()["sessions"][0]["tracks"][0]["volumeName"], "AS-ISO")
        self.fresh()
        self.assertEqual(self.burn(inside, lines[1]), ["DRStatusStateDone"])
        self.assertEqual(self.volume_names(), ("Disc", "In Jolïet", "Disc", "Disc"), "the others are the base name as it is")

    # ---- the time zone ----------------------------------------------------------------------------------------

    def modified(self, zone):
        """When a file that is of noon on 1 July 2026 was modified, in hours of that day in UTC."""
        with unittest.mock.patch.dict(os.environ, TZ=zone):
            os.environ.pop("GNUSTEP_TZ", None)
            said = self.burn('Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", Nil)',
                             "f.setProperty(New Date(2026, 7, 1, 12, 0, 0), DRFSObjectQRX.DRContentModificationDate, "
                             "DRFSObjectQRX.DRAllFilesystems)", "root.addChild(f)")
        self.assertEqual(said, ["DRStatusStateDone"])
        times = {jury.rr_bsdtar(self.image())["f"]["time"], jury.hfs_fls(self.image())["f"]["time"],
                 jury.udf_entries(self.image())["f"]["time"]}
        return [(time - 1782864000) / 3600 for time in times]

    def test_tz_alone_says_what_dates_mean(self):
        for zone, hour in (("Europe/Berlin", 10), (":America/St_Johns", 14.5), ("", 12), ("UTC", 12),
                           ("/usr/share/zoneinfo/Asia/Tokyo", 3)):
            with self.subTest(zone):
                self.assertEqual(self.modified(zone), [hour])
                self.fresh()

    def fresh(self):
        """Another drive with a blank medium."""
        for name in os.listdir(self.drives):
            os.rename(os.path.join(self.drives, name), os.path.join(self.scratch, f"old-{len(os.listdir(self.scratch))}"))

    # ---- names that are no text, or that nobody can see -------------------------------------------------------

    ODD = (b"tab\there", b"new\nline", b"escape\x1b[1m", b"delete\x7f", "next\u0085line".encode(), b"latin \xe4\xf6.txt",
           b"half \xf0\x9f\x92", b"\xff", b"\xfe.txt", b"plain")

    def test_control_characters_and_bytes_that_are_no_text_in_names_on_disk(self):
        odd = os.path.join(self.scratch, "odd")
        os.mkdir(odd)
        for number, name in enumerate(self.ODD):
            with open(os.path.join(odd.encode(), name), "wb") as file:
                file.write(b"%d" % number)
        for more in ((), ("folder.makeVirtual()",)):
            with self.subTest(more):
                said = self.burn(f'Dim folder As DRFolderQRX = DRFolderQRX.folderWithPath("{odd}")', *more,
                                 "root.addChild(folder)")
                self.assertEqual(said, ["DRStatusStateDone"])
                self.check_odd({name: str(number).encode() for number, name in enumerate(self.ODD)})
                self.fresh()

    def test_control_characters_in_names_that_a_program_gives(self):
        lines = ["Dim item As DRFileQRX", "Dim bytes As New MemoryBlock(1)",
                 'Dim folder As DRFolderQRX = DRFolderQRX.virtualFolderWithName("odd")', "root.addChild(folder)"]
        texts = [name.decode() for name in self.ODD[:5]] + ["plain"]
        for number, name in enumerate(texts):
            spelled = '""' + "".join(f" + Chr({ord(letter)})" for letter in name)
            lines += [f'bytes.StringValue(0, 1) = "{number}"', f"item = DRFileQRX.virtualFileWithName({spelled}, bytes)",
                      "folder.addChild(item)", "Print item.mangledNameForFilesystem(DRFSObjectQRX.DRJoliet)"]
        self.assertEqual(self.burn(*lines), ["tabhere", "newline", "escape[1m", "delete", "nextline", "plain",
                                             "DRStatusStateDone"])
        self.check_odd({name.encode(): str(number).encode() for number, name in enumerate(texts)})

    def check_odd(self, wanted):
        """By their bytes, as far as each file system holds the name."""
        out = os.path.join(self.scratch, f"out-{len(os.listdir(self.scratch))}")
        os.mkdir(out)
        jury.run("bsdtar", "-xf", self.image(), "-C", out)
        found = {}
        for name in os.listdir(os.path.join(out, "odd").encode()):
            with open(os.path.join(out.encode(), b"odd", name), "rb") as file:
                found[name] = file.read()
        self.assertEqual(found, wanted, "Rock Ridge")
        told = {name.decode("utf-8", "surrogateescape"): data for name, data in wanted.items()}
        without = {re.sub("[\x00-\x1f\x7f-\x9f\udc80-\udcff]", "", name): data for name, data in told.items()}
        without = {f"odd/{name if name not in ('', '.txt') else '_' + name}": data for name, data in without.items()}
        self.assertEqual(self.bytes_of(jury.joliet_pycdlib(self.image())), without, "Joliet")
        barred = {"odd/" + re.sub("[\udc80-\udcff]", "_", name): data for name, data in told.items()}
        self.assertEqual(self.bytes_of(jury.udf_pycdlib(self.image())), barred, "UDF")
        shown = {re.sub("[\x00-\x1f]", "^", name): len(data) for name, data in barred.items()}  # by fls itself
        found = jury.hfs_fls(self.image())
        self.assertEqual({name: entry["size"] for name, entry in found.items() if entry["kind"] == "f"}, shown, "HFS+")

    def test_a_zero_character_in_a_path_leads_nowhere(self):
        path = self.write("a", b"what another path leads to", self.scratch)
        for factory in ("DRFileQRX.fileWithPath", "DRFolderQRX.folderWithPath"):
            said = self.burn(f'root.addChild({factory}("{path}" + Chr(0) + "bcd"))')
            self.assertEqual(said, ["DRStatusStateFailed",
                                    f'"{path}?bcd" has a zero character in it; no path has that.'])

    def bytes_of(self, found):
        return {path: entry["data"] for path, entry in found.items() if entry["kind"] == "f"}


if __name__ == "__main__":
    unittest.main()
