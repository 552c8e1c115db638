#!/usr/bin/python3
"""What a program says of UDF alone: the numbers and texts that identify a volume, real-time files and permissions."""
import os
import struct
import subprocess
import unittest
import unittest.mock

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
BLOCK = 2048


class UdfVolumes(ExamplesCase):
    def burn(self, *lines, mask=5):
        """Burns root, which the lines fill; answers what the program printed."""
        text = "\n".join(['Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Disc")',
                          f"root.explicitFilesystemMask = {mask}", "Dim data As New MemoryBlock(8)",
                          'data.StringValue(0, 8) = "contents"', "Dim a As DRFileQRX", "Dim b As DRFileQRX",
                          'a = DRFileQRX.virtualFileWithName("a", data)', 'b = DRFileQRX.virtualFileWithName("b", data)',
                          "root.addChild(a)", "root.addChild(b)", *lines]) + BURN
        with unittest.mock.patch.dict(os.environ, TZ="UTC", GNUSTEP_TZ="UTC"):
            return self.succeed(self.write("program.bas", text.encode(), self.scratch)).splitlines()

    def of_root(self, key, value):
        return f"root.setProperty({value}, DRFSObjectQRX.{key}, DRFSObjectQRX.DRUDF)"

    def descriptor(self, kind):
        """Both copies of a volume descriptor (ECMA-167 3/8.4.2), which say the same."""
        with open(self.image(), "rb") as file:
            disc = file.read()
        main_bytes, main, reserve_bytes, reserve = struct.unpack_from("<4I", disc, 256 * BLOCK + 16)
        self.assertEqual((main_bytes, reserve_bytes), (16 * BLOCK, 16 * BLOCK))
        found = []
        for first in (main, reserve):
            blocks = [disc[at * BLOCK:(at + 1) * BLOCK] for at in range(first, first + 16)]
            found += [block for block in blocks if struct.unpack_from("<H", block)[0] == kind]
        self.assertEqual([block[16:] for block in found], [found[0][16:]] * 2)
        return found[0]

    def primary(self):
        block = self.descriptor(1)
        length = block[72 + 127]
        name = block[72 + 1:72 + length].decode("latin-1" if block[72] == 8 else "utf-16-be")
        return {"number": struct.unpack_from("<I", block, 20)[0], "places": struct.unpack_from("<4H", block, 56),
                "set": name, "application": block[345:368].rstrip(b"\0"), "suffix": block[368:376]}

    def check_contents(self):
        """As programs read them that take any volume for one of its own."""
        out = os.path.join(self.scratch, "out")
        subprocess.run(["7zz", "x", "-y", "-tudf", "-o" + out, self.image()], capture_output=True, check=True)
        for name in ("a", "b"):
            with open(os.path.join(out, name), "rb") as file:
                self.assertEqual(file.read(), b"contents")
        self.assertEqual(jury.udf_udfinfo(self.image()), {"f": 2, "d": 1})

    def test_a_volume_of_which_nothing_is_said(self):
        self.assertEqual(self.burn(), ["DRStatusStateDone"])
        found = self.primary()
        self.assertEqual(found["places"], (1, 1, 2, 2))
        self.assertRegex(found["set"], "^[0-9A-F]{8}00000000Disc$")
        self.assertEqual((found["number"], found["application"], found["suffix"]), (0, b"", bytes(8)))
        self.check_contents()

    def test_what_identifies_a_volume_stands_in_its_descriptors(self):
        self.assertEqual(self.burn(
            "Dim bytes As New MemoryBlock(8)", 'bytes.StringValue(0, 8) = "Tides#01"',
            self.of_root("DRUDFPrimaryVolumeDescriptorNumber", 7), self.of_root("DRUDFVolumeSequenceNumber", 2),
            self.of_root("DRUDFMaxVolumeSequenceNumber", 5), self.of_root("DRUDFInterchangeLevel", 3),
            self.of_root("DRUDFApplicationIdentifierSuffix", "bytes"), 'bytes.StringValue(0, 4) = "Salt"',
            self.of_root("DRUDFVolumeSetIdentifier", '"Meer " + Chr(228)'),
            self.of_root("DRUDFVolumeSetTimestamp", "New Date(2001, 9, 9, 1, 46, 40)"),
            self.of_root("DRUDFVolumeSetImplementationUse", "bytes")), ["DRStatusStateDone"])
        self.assertEqual(self.primary(), {"number": 7, "places": (2, 5, 3, 3), "set": "3B9ACA00Salts#01Meer ä",
                                          "application": b"*Disc Recording", "suffix": b"Tides#01"})
        self.assertEqual(struct.unpack_from("<BBHH", self.descriptor(6), 440), (1, 6, 2, 0))  # the partition's volume
        told = subprocess.run(["udfinfo", "--utf8", self.image()], capture_output=True, check=True).stdout.decode()
        self.assertIn("\nfullvsid=3B9ACA00Salts#01Meer ä\n", told)
        self.assertIn("\nappid=*Disc Recording\n", told)
        self.check_contents()

    def test_a_set_without_a_name_is_the_tracks(self):
        self.assertEqual(self.burn(self.of_root("DRUDFMaxInterchangeLevel", 3),
                                   self.of_root("DRUDFVolumeSetIdentifier", '""')), ["DRStatusStateDone"])
        self.assertEqual(self.primary()["places"], (1, 1, 2, 3))
        self.assertRegex(self.primary()["set"], "00000000Disc$")

    def test_what_a_volume_cannot_say_fails_the_burn(self):
        for key, value, words in (
                ("DRUDFWriteVersion", '"2.01"', "DRUDFVersion102 or DRUDFVersion150"),
                ("DRUDFWriteVersion", '""', "DRUDFVersion102 or DRUDFVersion150"),
                ("DRUDFPrimaryVolumeDescriptorNumber", "-1", "a whole number from 0 to 4294967295"),
                ("DRUDFVolumeSequenceNumber", "0", "a whole number from 1 to 65535"),
                ("DRUDFMaxVolumeSequenceNumber", "65536", "a whole number from 1 to 65535"),
                ("DRUDFInterchangeLevel", "4", "a whole number from 1 to 3"),
                ("DRUDFInterchangeLevel", "2.5", "a whole number from 1 to 3"),
                ("DRUDFPrimaryVolumeDescriptorNumber", "7.9", "a whole number from 0 to 4294967295"),
                ("DRUDFMaxInterchangeLevel", "1", "no higher than its DRUDFMaxInterchangeLevel"),
                ("DRUDFApplicationIdentifierSuffix", "New MemoryBlock(9)", "at most 8 bytes"),
                ("DRUDFVolumeSetImplementationUse", "New MemoryBlock(7)", "8 bytes")):
            with self.subTest(key, value=value):
                said = self.burn(self.of_root(key, value))
                self.assertEqual(said[0], "DRStatusStateFailed")
                self.assertRegex(said[1], rf"^The root's \w+ is to be {words}")
        self.assertEqual(self.medium()["state"], "blank")
        # Deliberate: where there is no UDF nothing is asked of it.
        self.assertEqual(self.burn(self.of_root("DRUDFWriteVersion", '"2.01"'), mask=3), ["DRStatusStateDone"])

    def test_real_time_files_and_permissions(self):
        said = self.burn(
            "a.setProperty(True, DRFSObjectQRX.DRUDFRealTimeFile, DRFSObjectQRX.DRUDF)",
            "a.setProperty(38, DRFSObjectQRX.DRUDFExtendedFilePermissions, DRFSObjectQRX.DRUDF)",
            "a.setProperty(416, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRAllFilesystems)",
            "b.setProperty(False, DRFSObjectQRX.DRUDFRealTimeFile, DRFSObjectQRX.DRAllFilesystems)",
            "b.setProperty(420, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRAllFilesystems)")
        self.assertEqual(said, ["DRStatusStateDone"])
        with open(self.image(), "rb") as file:
            disc = file.read()
        # File entries (ECMA-167 4/14.9) of one name: the type stands in the tag of its block, then permissions and names.
        entries = [disc[at:at + BLOCK] for at in range(257 * BLOCK, len(disc), BLOCK)
                   if struct.unpack_from("<H", disc, at)[0] == 261]
        types = {entry[27]: struct.unpack_from("<IH", entry, 44) for entry in entries if entry[27] != 4}
        # 38 is 100110: others may delete, the group may change attributes, the owner may delete: read and write are the mode's.
        self.assertEqual(types, {249: (0b10000 | (0b01000 | 4) << 5 | (0b10000 | 6) << 10, 1),
                                 5: (4 | 4 << 5 | (0b11000 | 6) << 10, 1)})
        for name in ("a", "b"):
            self.assertEqual(jury.grub(self.image(), "loop0", name), b"contents")
        self.check_contents()


if __name__ == "__main__":
    unittest.main()
