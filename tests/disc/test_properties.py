#!/usr/bin/python3
"""What is said of items for one file system is on the disc there and nowhere else: names, dates, modes, owners and flags, read
by programs that are not ours."""
import calendar
import os
import re
import struct
import time
import unittest
import unittest.mock

import pycdlib
import pycdlib.udf

import jury
from examples_case import ExamplesCase

BURN = """
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.appendable = isLeftOpen
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
    def burn(self, *lines, mask=15, left_open=False):
        """Burns root, which the lines fill; answers what the program printed."""
        text = "\n".join([f"Dim isLeftOpen As Boolean = {left_open}", 'Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Disc")',
                          f"root.explicitFilesystemMask = {mask}", *lines]) + BURN
        return self.succeed(self.write("program.bas", text.encode(), self.scratch)).splitlines()

    # ---- values of single file systems ------------------------------------------------------------------------------

    FILESYSTEMS = {"DRAllFilesystems": 0, "DRISO9660": 1, "DRJoliet": 2, "DRUDF": 3, "DRHFSPlus": 4}
    DATES = ("DRCreationDate", "DRContentModificationDate", "DRAttributeModificationDate", "DRAccessDate", "DRBackupDate",
             "DREffectiveDate", "DRExpirationDate", "DRRecordingDate")

    def moment(self, filesystem, key):
        """Another one for each."""
        return 1000000000 + 100000000 * self.FILESYSTEMS[filesystem] + 1000 * self.DATES.index(key)

    def settings(self, name, filesystem, mode, owner):
        def set_to(value, key):
            return f"{name}.setProperty({value}, DRFSObjectQRX.{key}, DRFSObjectQRX.{filesystem})"

        dates = [set_to("New Date({}, {}, {}, {}, {}, {})".format(*time.gmtime(self.moment(filesystem, key))[:6]), key)
                 for key in self.DATES]
        return [*dates, set_to(mode, "DRPosixFileMode"), set_to(owner, "DRPosixUID"), set_to(owner + 1, "DRPosixGID")]

    TREE = ('Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", bytes)', "root.addChild(f)",
            'Dim d As DRFolderQRX = DRFolderQRX.virtualFolderWithName("d")', "root.addChild(d)",
            'Dim plain As DRFileQRX = DRFileQRX.virtualFileWithName("plain", bytes)', "d.addChild(plain)")

    def burn_tree(self, *lines, mask=15, left_open=False):
        with unittest.mock.patch.dict(os.environ, TZ="UTC"):
            os.environ.pop("GNUSTEP_TZ", None)
            said = self.burn("Dim bytes As New MemoryBlock(3)", 'bytes.StringValue(0, 3) = "abc"', *self.TREE, *lines, mask=mask, left_open=left_open)
        self.assertEqual(said, ["DRStatusStateDone"])

    def seconds(self, date):
        """Of a date as ISO 9660 has them."""
        return calendar.timegm((date.years_since_1900 + 1900, date.month, date.day_of_month, date.hour, date.minute,
                                date.second)) - 900 * date.gmtoffset

    def rock_ridge(self, path):
        disc = pycdlib.PyCdlib()
        disc.open(self.image())
        record = disc.get_record(rr_path=path)
        ridge = record.rock_ridge
        px = ridge.dr_entries.px_record or ridge.ce_entries.px_record
        tf = ridge.dr_entries.tf_record or ridge.ce_entries.tf_record
        # It takes the second and third date for each other's; bsdtar is asked, too.
        names = {"DRCreationDate": "creation_time", "DRContentModificationDate": "access_time",
                 "DRAttributeModificationDate": "attribute_change_time", "DRAccessDate": "modification_time",
                 "DRBackupDate": "backup_time", "DREffectiveDate": "effective_time", "DRExpirationDate": "expiration_time"}
        dates = {key: self.seconds(getattr(tf, name)) for key, name in names.items() if getattr(tf, name)}
        dates["DRRecordingDate"] = self.seconds(record.date)
        found = px.posix_file_mode & 0o7777, px.posix_user_id, px.posix_group_id, dates
        disc.close()
        return found

    def fls(self, path):
        """Mode, owner, group, and the dates that HFS+ has there."""
        listed = jury.run("fls", "-r", "-m", "", "-f", "hfs", "-o", str(jury.hfs_start(self.image())), self.image()).decode()
        _, _, _, mode, owner, group, _, *dates = next(line for line in listed.split("\n") if line.startswith(f"0|{path}|")).split("|")
        keys = ("DRAccessDate", "DRContentModificationDate", "DRAttributeModificationDate", "DRCreationDate")
        bits = sum(0o400 >> bit for bit, letter in enumerate(mode[3:12]) if letter != "-")
        return bits, int(owner), int(group), dict(zip(keys, map(int, dates)))

    def udf(self, path):
        entry = jury.udf_entries(self.image())[path]
        dates = {"DRAccessDate": entry["accessed"], "DRContentModificationDate": entry["time"],
                 "DRAttributeModificationDate": entry["changed"]}
        more = entry["more"]
        if more:  # a header, and the attribute of further times (ECMA-167 4/14.10.1 and 4/14.10.5)
            self.assertEqual(struct.unpack_from("<H", more)[0], 262)
            self.assertEqual(struct.unpack_from("<LL", more, 16), (len(more), len(more)))
            kind, subtype, size, length, existing = struct.unpack_from("<LB3xLLL", more, 24)
            self.assertEqual((kind, subtype, size, length), (5, 1, len(more) - 24, len(more) - 44))
            keys = [key for bit, key in ((0, "DRCreationDate"), (3, "DREffectiveDate"), (5, "DRBackupDate")) if existing >> bit & 1]
            for at, key in enumerate(keys):
                stamp = pycdlib.udf.UDFTimestamp()
                stamp.parse(more[44 + 12 * at:56 + 12 * at])
                dates[key] = jury.udf_time(stamp)
            self.assertEqual(length, 12 * len(keys))
        return entry["mode"], entry["owner"], entry["group"], dates

    def wanted(self, filesystem, *keys):
        return {key: self.moment(filesystem, key) for key in keys}

    def test_each_file_system_has_its_own_values(self):
        lines = []
        for name in "fd":
            lines += self.settings(name, "DRISO9660", 0o600, 10) + self.settings(name, "DRJoliet", 0o111, 20)
            lines += self.settings(name, "DRUDF", 0o2750, 30) + self.settings(name, "DRHFSPlus", 0o711, 40)
        lines.append("f.setProperty(True, DRFSObjectQRX.DRInvisible, DRFSObjectQRX.DRJoliet)")
        self.burn_tree(*lines)
        usual = self.DATES[1:4]
        for path in "fd":
            self.assertEqual(self.rock_ridge("/" + path), (0o600, 10, 11, self.wanted("DRISO9660", *self.DATES)))
            self.assertEqual(jury.rr_bsdtar(self.image())[path]["time"], self.moment("DRISO9660", "DRContentModificationDate"))
            self.assertEqual(self.udf(path), (0o2750, 30, 31, self.wanted(
                "DRUDF", *usual, "DRCreationDate", "DREffectiveDate", "DRBackupDate")))
            self.assertEqual(self.fls("/" + path), (0o711, 40, 41, self.wanted("DRHFSPlus", *usual, "DRCreationDate")))
        disc = pycdlib.PyCdlib()
        disc.open(self.image())
        for path, hidden in (("/f", 1), ("/d", 0)):
            record = disc.get_record(joliet_path=path + (";1" if path == "/f" else ""))
            self.assertEqual(self.seconds(record.date), self.moment("DRJoliet", "DRRecordingDate"))
            self.assertEqual(record.file_flags & 1, hidden)
            self.assertEqual(disc.get_record(rr_path=path).file_flags & 1, 0)
        self.assertEqual([record.date.years_since_1900 for record in (disc.get_record(rr_path="/d"),)], [101 + 3])
        disc.close()
        self.assertFalse(jury.udf_entries(self.image())["d/plain"]["more"])
        self.assertEqual(self.udf("d/plain")[:3], (0o644, 0, 0))

    def test_values_of_all_file_systems_are_overlaid_by_those_of_one(self):
        self.burn_tree(*self.settings("f", "DRAllFilesystems", 0o640, 50),
                       "f.setProperty(&o400, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRUDF)",
                       "f.setProperty(61, DRFSObjectQRX.DRPosixUID, DRFSObjectQRX.DRHFSPlus)")
        usual = self.DATES[1:4]
        self.assertEqual(self.rock_ridge("/f"), (0o640, 50, 51, self.wanted("DRAllFilesystems", *self.DATES)))
        self.assertEqual(self.udf("f"), (0o400, 50, 51, self.wanted(
            "DRAllFilesystems", *usual, "DRCreationDate", "DREffectiveDate", "DRBackupDate")))
        self.assertEqual(self.fls("/f"), (0o640, 61, 51, self.wanted("DRAllFilesystems", *usual, "DRCreationDate")))

    def test_all_readers_take_a_disc_with_such_values(self):
        self.burn_tree(*self.settings("f", "DRAllFilesystems", 0o640, 50), *self.settings("d", "DRUDF", 0o700, 60), mask=7)
        bytes_there = {"f": b"abc", "d/plain": b"abc"}
        for reader in (jury.rr_bsdtar, jury.joliet_7zz, jury.joliet_bsdtar, jury.udf_7zz, jury.udf_pycdlib):
            self.assertEqual(self.bytes_of(reader(self.image())), bytes_there, reader)
        self.assertEqual(jury.rr_isoinfo(self.image())["f"]["mode"], 0o640)
        self.assertEqual(jury.udf_7zz(self.image())["f"]["time"], self.moment("DRAllFilesystems", "DRContentModificationDate"))
        self.assertEqual(jury.grub(self.image(), "loop0", "f"), b"abc")
        self.assertEqual(jury.udf_udfinfo(self.image()), {"f": 2, "d": 2})

    def test_a_version_is_iso_9660s(self):
        version = "f.setProperty({}, DRFSObjectQRX.DRISO9660VersionNumber, DRFSObjectQRX.DRISO9660)"
        self.burn_tree(version.format(7), mask=3)
        listed = ["/D", "/D/PLAIN.;1", "/F.;7"]
        self.assertEqual(sorted(jury.run("isoinfo", "-f", "-i", self.image()).decode().split()), listed)
        self.assertEqual(self.bytes_of(jury.rr_bsdtar(self.image())), {"f": b"abc", "d/plain": b"abc"})
        self.assertEqual(self.bytes_of(jury.joliet_pycdlib(self.image())), {"f": b"abc", "d/plain": b"abc"})
        self.fresh()
        self.burn_tree(version.format(32767), mask=3, left_open=True)
        self.assertEqual(self.burn('root.addChild(DRFileQRX.virtualFileWithName("later", Nil))', mask=3), ["DRStatusStateDone"])
        self.assertEqual(sorted(jury.run("isoinfo", "-f", "-i", self.image()).decode().split()),
                         ["/D", "/D/PLAIN.;1", "/F.;32767", "/LATER.;1"], "it stays in a later session")
        for number in (0, 32768, -1):
            self.fresh()
            said = self.burn('Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", Nil)', version.format(number),
                             "root.addChild(f)")
            self.assertEqual(said[0], "DRStatusStateFailed")
            self.assertEqual(said[1], 'The DRISO9660VersionNumber of "f" is to be a whole number from 1 to 32767.')

    # ---- values that no disc holds ----------------------------------------------------------------------------------

    def test_what_an_item_cannot_hold_fails_the_burn(self):
        for key, filesystem, values, wanted in (
                ("DRPosixFileMode", "DRAllFilesystems", ("-1", "65536", "420.5"), "a whole number from 0 to 65535"),
                ("DRPosixUID", "DRISO9660", ("-1", "4294967296"), "a whole number from 0 to 4294967295"),
                ("DRPosixGID", "DRUDF", ("-1", "4294967296"), "a whole number from 0 to 4294967295"),
                ("DRISO9660VersionNumber", "DRISO9660", ("4294967297",), "a whole number from 1 to 32767"),
                ("DRUDFExtendedFilePermissions", "DRUDF", ("-1", "64"), "a whole number from 0 to 63"),
                ("DRHFSPlusTextEncodingHint", "DRHFSPlus", ("65536",), "a whole number from 0 to 65535"),
                ("DRMacFinderFlags", "DRHFSPlus", ("-1", "65536"), "a whole number from 0 to 65535"),
                ("DRMacExtendedFinderFlags", "DRHFSPlus", ("65536",), "a whole number from 0 to 65535"),
                ("DRMacWindowView", "DRHFSPlus", ("65536",), "a whole number from 0 to 65535"),
                ("DRMacFileType", "DRHFSPlus", ("New MemoryBlock(3)", "New MemoryBlock(5)"), "4 bytes"),
                ("DRMacFileCreator", "DRISO9660", ("New MemoryBlock(8)",), "4 bytes"),
                ("DRMacWindowBounds", "DRHFSPlus", ("New MemoryBlock(4)",), "8 bytes"),
                ("DRMacIconLocation", "DRHFSPlus", ("New MemoryBlock(8)",), "4 bytes"),
                ("DRMacScrollPosition", "DRHFSPlus", ("New MemoryBlock(2)",), "4 bytes")):
            for value in values:
                with self.subTest(key, value=value):
                    said = self.burn(*self.ITEMS, f"f.setProperty({value}, DRFSObjectQRX.{key}, DRFSObjectQRX.{filesystem})")
                    self.assertEqual(said, ["DRStatusStateFailed", f'The {key} of "f" is to be {wanted}.'])
        said = self.burn(*self.ITEMS, "d.setProperty(-1, DRFSObjectQRX.DRPosixUID, DRFSObjectQRX.DRAllFilesystems)")
        self.assertEqual(said[1], 'The DRPosixUID of "d" is to be a whole number from 0 to 4294967295.', "folders, too")
        self.assertEqual(self.medium()["state"], "blank")

    def test_a_date_that_a_file_system_cannot_hold_fails_the_burn(self):
        iso, hfs_plus, udf = "1900-01-01 to 2155-12-31", "1904-01-01 to 2040-02-06", "0001-01-01 to 9999-12-31"
        for key, filesystem, year, wanted in (
                ("DRContentModificationDate", "DRISO9660", 1850, iso + " in ISO 9660"), ("DRExpirationDate", "DRISO9660", 2156, iso + " in ISO 9660"),
                ("DRRecordingDate", "DRISO9660", 2200, iso + " in ISO 9660"), ("DRRecordingDate", "DRJoliet", 1899, iso + " in Joliet"),
                ("DRContentModificationDate", "DRJoliet", 1899, iso + " in Joliet"),
                ("DRAccessDate", "DRHFSPlus", 2150, hfs_plus + " in HFS+"), ("DRBackupDate", "DRHFSPlus", 1903, hfs_plus + " in HFS+"),
                ("DRCreationDate", "DRAllFilesystems", 2041, hfs_plus + " in HFS+"),
                ("DRContentModificationDate", "DRAllFilesystems", 1901, hfs_plus + " in HFS+"),
                ("DRAttributeModificationDate", "DRAllFilesystems", 2160, iso + " in ISO 9660"),
                ("DREffectiveDate", "DRUDF", 10000, udf + " in UDF")):
            with self.subTest(key, filesystem=filesystem, year=year):
                said = self.burn(*self.ITEMS, f"f.setProperty(New Date({year}, 1, 1), DRFSObjectQRX.{key}, DRFSObjectQRX.{filesystem})")
                self.assertEqual(said, ["DRStatusStateFailed", f'The {key} of "f" is to be a date from {wanted}.'])
        self.assertEqual(self.medium()["state"], "blank")

    def test_a_date_does_not_count_where_it_is_not_on_the_disc(self):
        lines = [f"f.setProperty(New Date({date}), DRFSObjectQRX.{key}, DRFSObjectQRX.{filesystem})" for date, key, filesystem in (
            ("1850, 1, 1", "DRContentModificationDate", "DRAllFilesystems"), ("1904, 1, 2", "DRContentModificationDate", "DRHFSPlus"),
            ("2040, 2, 5", "DRAccessDate", "DRHFSPlus"), ("1850, 1, 1", "DRExpirationDate", "DRHFSPlus"),
            ("1850, 1, 1", "DRExpirationDate", "DRUDF"), ("1850, 1, 1", "DRAccessDate", "DRJoliet"),
            # Where there is a date of recording, that of the modification isn't on the disc.
            ("2155, 12, 30", "DRRecordingDate", "DRJoliet"), ("1900, 1, 2", "DRContentModificationDate", "DRISO9660"))]
        self.burn_tree(*lines)
        self.assertEqual(self.udf("f")[3]["DRContentModificationDate"], calendar.timegm((1850, 1, 1, 0, 0, 0)))
        self.assertEqual(self.rock_ridge("/f")[3]["DRContentModificationDate"], calendar.timegm((1900, 1, 2, 0, 0, 0)))
        self.assertEqual(self.fls("/f")[3]["DRAccessDate"], calendar.timegm((2040, 2, 5, 0, 0, 0)))

    ITEMS = ('Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", Nil)', "root.addChild(f)",
             'Dim d As DRFolderQRX = DRFolderQRX.virtualFolderWithName("d")', "root.addChild(d)")

    def test_the_largest_values_that_an_item_can_have(self):
        """A mode may have the bits of the file's type; what is said of a file system that isn't there doesn't count."""
        self.assertEqual(self.burn(
            *self.ITEMS, "f.setProperty(&o100640, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRAllFilesystems)",
            "f.setProperty(4294967295, DRFSObjectQRX.DRPosixUID, DRFSObjectQRX.DRAllFilesystems)",
            "f.setProperty(4294967294, DRFSObjectQRX.DRPosixGID, DRFSObjectQRX.DRAllFilesystems)",
            "d.setProperty(-1, DRFSObjectQRX.DRPosixGID, DRFSObjectQRX.DRUDF)", mask=1), ["DRStatusStateDone"])
        self.assertEqual(self.rock_ridge("/f")[:3], (0o640, 4294967295, 4294967294))

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

    def modified(self, zone, month=7):
        """When a file that is of noon on the first of a month of 2026 was modified, in hours of that day in UTC."""
        with unittest.mock.patch.dict(os.environ, TZ=zone):
            os.environ.pop("GNUSTEP_TZ", None)
            said = self.burn('Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", Nil)',
                             f"f.setProperty(New Date(2026, {month}, 1, 12, 0, 0), DRFSObjectQRX.DRContentModificationDate, "
                             "DRFSObjectQRX.DRAllFilesystems)", "root.addChild(f)")
        self.assertEqual(said, ["DRStatusStateDone"])
        times = {jury.rr_bsdtar(self.image())["f"]["time"], jury.hfs_fls(self.image())["f"]["time"],
                 jury.udf_entries(self.image())["f"]["time"]}
        return [(time - calendar.timegm((2026, month, 1, 0, 0, 0))) / 3600 for time in times]

    def test_tz_alone_says_what_dates_mean(self):
        for zone, hour in (("Europe/Berlin", 10), (":America/St_Johns", 14.5), ("", 12), ("UTC", 12),
                           ("/usr/share/zoneinfo/Asia/Tokyo", 3)):
            with self.subTest(zone):
                self.assertEqual(self.modified(zone), [hour])
                self.fresh()

    def test_a_zone_that_tz_describes_has_its_rules(self):
        for zone, summer, winter in (("CET-1CEST,M3.5.0,M10.5.0/3", 10, 11), ("AEST-10AEDT,M10.1.0,M4.1.0/3", 2, 1),
                                     ("<+0330>-3:30", 8.5, 8.5), ("PST8PDT,J60,J300", 19, 20), ("EST5", 17, 17)):
            with self.subTest(zone):
                self.assertEqual(self.modified(zone), [summer])
                self.fresh()
                self.assertEqual(self.modified(zone, 1), [winter])
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
