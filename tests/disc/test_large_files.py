#!/usr/bin/python3
"""A file beyond 4 GiB, burned by a program onto discs that hold it and read whole by programs that are not ours."""
import os
import shutil
import subprocess
import sys
import unittest
import unittest.mock

from examples_case import ROOT, ExamplesCase

GIB = 1 << 30
SIZE = 4 * GIB + 4101
# Across the borders of what a section of ISO 9660 and an extent of UDF hold, and across the 32 bits; the rest is a hole.
BORDERS = (GIB - 2048, 2 * (GIB - 2048), 4 * (GIB - 2048), 4 * GIB - 2048, 4 * GIB)
MARKS = {0: b"start", SIZE - 5: b"end.!", **{border - 8: b"<%d>" % border for border in BORDERS}}
ROOM = SIZE + GIB // 2
PIECE = 1 << 20
SIZES = {"a.txt": 8, "huge.bin": SIZE, "z.txt": 6}


class LargeFiles(ExamplesCase):
    def setUp(self):
        super().setUp()
        free = shutil.disk_usage(self.scratch).free
        if free < ROOM:
            self.skipTest(f"{self.scratch} has {free >> 20} MiB free; a disc with a file beyond 4 GiB needs {ROOM >> 20} MiB")
        shutil.rmtree(self.source)
        self.write("a.txt", b"in front")
        self.write("z.txt", b"behind")
        with open(self.write("huge.bin", b""), "r+b") as file:
            file.truncate(SIZE)
            for at, mark in MARKS.items():
                file.seek(at)
                file.write(mark)

    def burn(self, kind, blocks, mask):
        self.make_drive(kind=kind, capacityBlocks=blocks)
        program = self.write("large.bas", f"""
Dim root As DRFolderQRX = DRFolderQRX.folderWithPath("{self.source}")
root.explicitFilesystemMask = {mask}
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
burn.writeLayout(track)
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
""".encode(), self.scratch)
        with unittest.mock.patch("examples_case.LIMIT", 500):
            self.assertEqual(self.succeed(program), "DRStatusStateDone\n")
        self.assertEqual(self.medium()["state"], "complete")

    def check_whole(self, *command, status=(0,)):
        """What the program gives is the file, to the last byte."""
        zeros, at = bytes(PIECE), 0  # plain bytes are compared at once
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as reader:
            while piece := reader.stdout.read(PIECE):
                wanted = zeros if len(piece) == PIECE else bytes(len(piece))
                marks = {place: mark for place, mark in MARKS.items() if place < at + len(piece) and at < place + len(mark)}
                if marks:
                    bare = bytearray(wanted)
                    for place, mark in marks.items():
                        for offset in range(max(place, at), min(place + len(mark), at + len(piece))):
                            bare[offset - at] = mark[offset - place]
                    wanted = bytes(bare)
                if piece != wanted:
                    reader.kill()
                    self.fail(f"{command}: other bytes in the {PIECE} from {at} on")
                at += len(piece)
        self.assertEqual(at, SIZE, command)
        self.assertIn(reader.returncode, status, command)

    def test_in_all_file_systems_of_one_disc(self):
        self.burn("DVD+R DL", 4173824, 15)
        image = self.image()
        # Sizes, and the bytes around every border, in each file system and by several programs.
        told = subprocess.run([sys.executable, os.path.join(ROOT, "tests", "engine", "plan", "large_files.py"), self.source,
                               image], capture_output=True, text=True, check=True).stdout
        self.assertEqual(told, "")
        self.check_whole("bsdtar", "-xOf", image, "huge.bin")
        self.check_whole("7zz", "x", "-so", "-thfs", image, "*/huge.bin", status=(0, 1))  # it warns of what stands in front

    def test_in_udf_for_readers_that_look_at_the_end(self):
        self.burn("BD-R", 12219392, 5)
        image = self.image()
        told = subprocess.run(["7zz", "l", "-slt", "-tudf", image], capture_output=True, text=True, check=True).stdout
        items = [dict(line.partition(" = ")[::2] for line in item.splitlines()) for item in told.split("\n\n")]
        self.assertEqual({item["Path"]: int(item["Size"]) for item in items if item.get("Path") in SIZES}, SIZES)
        self.check_whole("7zz", "x", "-so", "-tudf", image, "huge.bin")


if __name__ == "__main__":
    unittest.main()
