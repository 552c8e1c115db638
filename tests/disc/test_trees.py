#!/usr/bin/python3
"""Trees made in memory: what each file system of the disc shows of them, read by programs that are not ours."""
import datetime
import io
import os
import random
import subprocess
import tarfile
import unicodedata
import unittest
import unittest.mock

import pycdlib

import jury
from examples_case import ExamplesCase


class Trees(ExamplesCase):
    def virtual_tree(self):
        said = self.succeed("virtual-tree.bas")
        self.assertIn("measurement 1.txt is MEASUREM.TXT in ISO 9660\n", said)
        self.assertIn("measurement 3.txt is MEAS_002.TXT in ISO 9660\n", said)
        self.assertIn("Burned Virtual Tree in Virtual Disc Drive 1.\n", said)
        return self.image()

    def bas(self, text):
        return self.write("program.bas", text.encode(), self.scratch)

    def plain(self, name):
        """Without the version, and the dot that stands in front of it where there is no extension."""
        return name.removesuffix(";1").removesuffix(".")

    def joliet(self, image):
        iso = pycdlib.PyCdlib()
        iso.open(image)
        found = [self.plain(os.path.join(folder, name)) for folder, _, names in iso.walk(joliet_path="/") for name in names]
        iso.close()
        return sorted(found)

    def hfs_plus(self, image):
        """Names, composed, as 7zz finds them; it warns that something stands in front."""
        done = subprocess.run(["7zz", "l", "-slt", "-thfs", image], capture_output=True, text=True, check=False)
        listed = unicodedata.normalize("NFC", done.stdout)
        names = [line[7:] for line in listed.splitlines() if line.startswith("Path = ")]
        return sorted(name for name in names if name != image)

    def in_hfs_plus(self, image, path):
        return subprocess.run(["grub-fstest", image, "cat", "(loop0,apple3)" + path], capture_output=True,
                              check=True).stdout

    # ---- virtual-tree -----------------------------------------------------------------------------------------

    def test_virtual_tree_tells_the_names_that_are_on_its_disc(self):
        said = self.succeed("virtual-tree.bas")
        told = [line.split(" is ")[1].removesuffix(" in ISO 9660") for line in said.splitlines() if " is " in line]
        listed = subprocess.run(["isoinfo", "-f", "-i", self.image()], capture_output=True, text=True, check=True).stdout
        found = [os.path.basename(self.plain(line)) for line in listed.splitlines() if line.startswith("/MEASUREM/")]
        self.assertEqual(sorted(told), sorted(found))
        self.assertEqual(len(told), 3)

    def test_virtual_tree_in_rock_ridge(self):
        image = self.virtual_tree()
        done = subprocess.run(["bsdtar", "-tvf", image], capture_output=True, text=True, check=True,
                              env=dict(os.environ, TZ="UTC", LC_ALL="C.UTF-8"))
        lines = [line.split(None, 8) for line in done.stdout.splitlines()]
        names = {line[8].removeprefix("./"): line for line in lines}
        self.assertEqual(sorted(names), [
            ".", "letter.txt", "links", "links/again.txt link to letter.txt", "links/way to the letter -> ../letter.txt",
            "measurements", "measurements/measurement 1.txt", "measurements/measurement 2.txt",
            "measurements/measurement 3.txt"])
        self.assertEqual({name: line[0] for name, line in names.items()}, {
            ".": "drwxr-xr-x", "letter.txt": "-rw-r-----", "links": "drwxr-xr-x",
            "links/again.txt link to letter.txt": "-rw-r-----", "links/way to the letter -> ../letter.txt": "lrwxrwxrwx",
            "measurements": "drwxr-xr-x", **{f"measurements/measurement {n}.txt": "-rw-r--r--" for n in (1, 2, 3)}})
        self.assertEqual({tuple(line[2:4]) for line in names.values()}, {("0", "0")})
        written = datetime.datetime(2001, 2, 3, 4, 5, 6)  # where the program runs
        with tarfile.open(fileobj=io.BytesIO(jury.run("bsdtar", "-cf", "-", "--format=gnutar", "@" + image))) as archive:
            times = {member.name.removeprefix("./"): member.mtime for member in archive}
        self.assertEqual({times["letter.txt"], times["links/again.txt"]}, {int(written.timestamp())})
        self.assertLess(abs(times["measurements/measurement 1.txt"] - os.stat(image).st_mtime), 3600)
        files = self.files_on(image)
        self.assertEqual(files["letter.txt"], b"Dear reader,\n")
        self.assertEqual(files["links/again.txt"], b"Dear reader,\n")
        self.assertEqual(files["links/way to the letter"], b"Dear reader,\n")
        self.assertEqual(files["measurements/measurement 3.txt"], b"9\n")

    def test_virtual_tree_in_joliet(self):
        self.assertEqual(self.joliet(self.virtual_tree()), [
            "/The Letter.txt", "/measurements/measurement 1.txt", "/measurements/measurement 2.txt",
            "/measurements/measurement 3.txt"])

    def test_virtual_tree_in_hfs_plus(self):
        image = self.virtual_tree()
        self.assertEqual(self.hfs_plus(image), [
            "Virtual Tree", "Virtual Tree/for Macintosh.txt", "Virtual Tree/letter.txt", "Virtual Tree/links",
            "Virtual Tree/measurements", "Virtual Tree/measurements/measurement 1.txt",
            "Virtual Tree/measurements/measurement 2.txt", "Virtual Tree/measurements/measurement 3.txt"])
        self.assertEqual(self.in_hfs_plus(image, "/letter.txt"), b"Dear reader,\n")
        self.assertEqual(self.in_hfs_plus(image, "/for Macintosh.txt"), b"Only in HFS+\n")

    def test_the_bytes_of_a_file_with_several_names_are_there_once(self):
        image = self.virtual_tree()
        with open(image, "rb") as file:
            self.assertEqual(file.read().count(b"Dear reader,\n"), 1)

    def burn_tree(self, lines):
        """Burns root, which the lines fill; answers what the program printed."""
        program = os.path.join(self.scratch, "tree.bas")
        with open(program, "w", encoding="utf-8") as file:
            file.write("\n".join([
                'Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Tree")', *lines,
                "Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))",
                "burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount",
                "burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone",
                "burn.writeLayout(DRTrackQRX.trackForRootFolder(root))", "Dim state As String", "Do", "App.DoEvents(10)",
                "state = burn.status.Value(DRBurnQRX.DRStatusStateKey)",
                "Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed", "Print state",
                "If burn.status.HasKey(DRBurnQRX.DRErrorStatusKey) Then",
                "Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)",
                "Print problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey)", "End If", ""]))
        return self.succeed(program).splitlines()

    def test_a_folder_made_virtual_is_on_the_disc_as_it_is_on_disk(self):
        inner = os.path.join(self.source, "inner")
        said = os.path.join(inner, "said")
        os.makedirs(said)
        for mode, seconds, folder in ((0o750, 1100000000, said), (0o700, 1000000000, inner),
                                      (0o1711, 1050000000, self.source)):
            os.chmod(folder, mode)
            os.utime(folder, (seconds + 5, seconds))
        self.assertEqual(self.burn_tree([
            f'Dim holiday As DRFolderQRX = DRFolderQRX.folderWithPath("{self.source}")', "root.addChild(holiday)",
            "holiday.makeVirtual", "root.explicitFilesystemMask = 13", "Dim inner As DRFolderQRX",
            "For Each child As DRFSObjectQRX In holiday.children", "If child IsA DRFolderQRX Then inner = DRFolderQRX(child)",
            "Next", "inner.makeVirtual", "Dim said As DRFSObjectQRX = inner.children(0)", "DRFolderQRX(said).makeVirtual",
            "said.setProperty(&o755, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRAllFilesystems)"]), ["DRStatusStateDone"])
        done = subprocess.run(["bsdtar", "-tvf", self.image()], capture_output=True, text=True, check=True,
                              env=dict(os.environ, TZ="UTC", LC_ALL="C.UTF-8"))
        owner = os.stat(inner)
        found = {words[8].rstrip("/"): words for words in (line.split(None, 8) for line in done.stdout.splitlines())}
        for name, mode, day in (("Holiday", "drwx--x--t", "Apr 10 2003"), ("Holiday/inner", "drwx------", "Sep 9 2001"),
                                ("Holiday/inner/said", "drwxr-xr-x", "Nov 9 2004")):
            words = found["./" + name] if "./" + name in found else found[name]
            self.assertEqual((words[0], " ".join(words[5:8])), (mode, day), name)
            self.assertEqual(words[2:4], [str(owner.st_uid), str(owner.st_gid)])
        iso = pycdlib.PyCdlib()
        iso.open(self.image())
        record = iso.get_record(udf_path="/Holiday/inner")
        self.assertEqual(record.perms, 0b11111 << 10)
        self.assertEqual((record.access_time.year, record.access_time.second, record.mod_time.second), (2001, 45, 40))
        iso.close()

    def test_names_from_texts_in_any_encoding(self):
        lines = ["Dim bytes As New MemoryBlock(4)", *(f"bytes.UInt8Value({at}) = {byte}" for at, byte in enumerate(b"G\xf6\xdfe"))]
        for number, text in enumerate(("DefineEncoding(bytes.StringValue(0, 4), Encodings.ISOLatin1)",
                                       'ConvertEncoding("Gr" + Chr(252) + "n", Encodings.UTF16)',
                                       'ConvertEncoding(Chr(196) + "ra", Encodings.MacRoman)', "bytes.StringValue(0, 4)",
                                       "DefineEncoding(bytes.StringValue(0, 4), Encodings.UTF8)")):
            lines += [f"Dim f{number} As DRFileQRX = DRFileQRX.virtualFileWithName({text}, Nil)", f"root.addChild(f{number})"]
        self.assertEqual(self.burn_tree(lines), ["DRStatusStateDone"])
        names = ["Göße", "Grün", "Ära", "Gˆﬂe", "G\ufffd\ufffde"]
        self.assertEqual(sorted(self.files_on(self.image())), sorted(names))
        self.assertEqual(self.joliet(self.image()), sorted("/" + name for name in names))

    def test_folders_deeper_than_eight_levels_stay_where_they_are(self):
        """Deliberate: ISO 9660 allows eight, but readers find more where they are, and not all know what was moved."""
        real = os.path.join(self.scratch, "on disk")
        for level in range(12):
            self.write("/".join(["down"] * level + [f"of {level}.txt"]), str(level).encode(), real)
        said = self.burn_tree([
            f'root.addChild(DRFolderQRX.folderWithPath("{real}"))', "root.explicitFilesystemMask = 15",
            "Dim bytes As New MemoryBlock(2)", "Dim folder As DRFolderQRX = root", "Dim inner As DRFolderQRX",
            "For level As Integer = 1 To 12", 'inner = DRFolderQRX.virtualFolderWithName("level " + Str(level))',
            'bytes.StringValue(0, 2) = Format(level, "00")', "folder.addChild(inner)", "folder = inner",
            'folder.addChild(DRFileQRX.virtualFileWithName("file.txt", bytes))', "Next"])
        self.assertEqual(said, ["DRStatusStateDone"])
        wanted = {"on disk/" + "/".join(["down"] * level + [f"of {level}.txt"]): str(level).encode() for level in range(12)}
        for last in range(1, 13):
            wanted["/".join([f"level {level}" for level in range(1, last + 1)] + ["file.txt"])] = b"%02d" % last
        image = self.image()
        for reader in (jury.rr_bsdtar, jury.rr_pycdlib, jury.joliet_bsdtar, jury.joliet_7zz, jury.joliet_pycdlib,
                       jury.udf_pycdlib, jury.hfs_7zz):
            self.assertEqual({path: entry["data"] for path, entry in reader(image).items() if entry["kind"] == "f"}, wanted,
                             reader)
        for reader in (jury.rr_isoinfo, jury.hfs_fls):
            self.assertEqual({path: entry["size"] for path, entry in reader(image).items() if entry["kind"] == "f"},
                             {path: len(data) for path, data in wanted.items()}, reader)
        out = os.path.join(self.scratch, "restored")
        jury.run("xorriso", "-osirrox", "on", "-indev", image, "-extract", "/", out)
        found = {path: entry["data"] for path, entry in jury.on_disk(out).items() if entry["kind"] == "f"}
        self.assertEqual(found, wanted)

    def test_a_file_larger_than_any_disc_is_refused(self):
        path = self.write("large", b"")
        os.truncate(path, 200_000_000_001)  # a hole
        said = self.burn_tree([f'root.addChild(DRFileQRX.fileWithPath("{path}"))'])
        self.assertEqual(said, ["DRStatusStateFailed", f'The file "{path}" of 200000.0 MB is larger than any disc.'])

    def test_a_file_that_goes_away_while_its_folder_is_read_is_named(self):
        self.write("going.txt", b"still here")
        with unittest.mock.patch.dict(os.environ, LD_PRELOAD=os.environ["DISC_VANISHING"], VANISHING="going.txt",
                                      ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"):
            said = self.burn_tree([f'root.addChild(DRFolderQRX.folderWithPath("{self.source}"))'])
        self.assertEqual(said, ["DRStatusStateFailed", f'"{self.source}/going.txt" went away while its folder was read.'])
        self.assertEqual(os.listdir(self.source), ["letter.txt"])
        said = self.burn_tree([f'root.addChild(DRFolderQRX.folderWithPath("{self.source}"))'])
        self.assertEqual(said, ["DRStatusStateDone"], "the disc was left alone")

    # ---- one file system and another --------------------------------------------------------------------------

    def test_an_item_that_is_in_one_file_system_only_is_in_no_other(self):
        said = self.burn_tree(["root.explicitFilesystemMask = 11", *(line for name, mask in (
            ("iso", 1), ("joliet", 2), ("mac", 8), ("none", 4)) for line in (
                f'Dim {name}f As DRFileQRX = DRFileQRX.virtualFileWithName("{name}", Nil)',
                f"{name}f.explicitFilesystemMask = {mask}", f"root.addChild({name}f)"))])
        self.assertEqual(said, ["DRStatusStateDone"])
        self.assertEqual(sorted(self.files_on(self.image())), ["iso"])
        self.assertEqual(self.joliet(self.image()), ["/joliet"])
        self.assertEqual(self.hfs_plus(self.image()), ["Tree", "Tree/mac"])

    def test_udf_shows_its_names_and_the_revision_that_was_asked_for(self):
        said = self.burn_tree([
            "root.explicitFilesystemMask = DRFSObjectQRX.DRFilesystemInclusionMaskISO9660 Or "
            "DRFSObjectQRX.DRFilesystemInclusionMaskUDF",
            "root.setProperty(DRFSObjectQRX.DRUDFVersion150, DRFSObjectQRX.DRUDFWriteVersion, DRFSObjectQRX.DRUDF)",
            "Dim bytes As New MemoryBlock(11)", 'bytes.StringValue(0, 11) = "only once!!"',
            'Dim file As DRFileQRX = DRFileQRX.virtualFileWithName("a.txt", bytes)',
            'file.specificNameForFilesystem(DRFSObjectQRX.DRUDF) = "Grüße: 漢字.txt"', "root.addChild(file)",
            'Dim only As DRFileQRX = DRFileQRX.virtualFileWithName("only in UDF", bytes)',
            "only.explicitFilesystemMask = DRFSObjectQRX.DRFilesystemInclusionMaskUDF", "root.addChild(only)"])
        self.assertEqual(said, ["DRStatusStateDone"])
        out = os.path.join(self.scratch, "out")
        subprocess.run(["7zz", "x", "-y", "-tudf", f"-o{out}", self.image()], check=True, capture_output=True)
        self.assertEqual(sorted(os.listdir(out)), ["Grüße: 漢字.txt", "only in UDF"])
        for name in os.listdir(out):
            with open(os.path.join(out, name), "rb") as file:
                self.assertEqual(file.read(), b"only once!!")
        self.assertEqual(self.files_on(self.image()), {"a.txt": b"only once!!"})
        told = subprocess.run(["udfinfo", self.image()], check=True, capture_output=True, text=True).stdout
        self.assertIn("udfrev=1.50\n", told)
        self.assertIn("label=Tree\n", told)

    def test_a_folder_with_two_names_has_its_files_once(self):
        inside = os.path.join(self.scratch, "Inside")
        self.write("deep/real.txt", b"really once", inside)
        said = self.burn_tree([
            'Dim folder As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Long name")',
            'folder.specificNameForFilesystem(DRFSObjectQRX.DRJoliet) = "Other name"', "root.addChild(folder)",
            "Dim bytes As New MemoryBlock(11)", 'bytes.StringValue(0, 11) = "only once!!"',
            'folder.addChild(DRFileQRX.virtualFileWithName("a.txt", bytes))',
            f'folder.addChild(DRFolderQRX.folderWithPath("{inside}"))'])
        self.assertEqual(said, ["DRStatusStateDone"])
        self.assertEqual(self.files_on(self.image()), {"Long name/a.txt": b"only once!!",
                                                       "Long name/Inside/deep/real.txt": b"really once"})
        self.assertEqual(self.joliet(self.image()), ["/Other name/Inside/deep/real.txt", "/Other name/a.txt"])
        with open(self.image(), "rb") as file:
            bytes_on_disc = file.read()
        self.assertEqual(bytes_on_disc.count(b"only once!!"), 1)
        self.assertEqual(bytes_on_disc.count(b"really once"), 1)

    def test_a_folder_whose_path_is_a_link_is_the_folder_there(self):
        away = os.path.join(self.scratch, "Away")
        self.write("deep/real.txt", b"not lost", away)
        os.symlink("deep", os.path.join(away, "shortcut"))
        path = os.path.join(self.scratch, "Pictures")
        os.symlink(away, path)
        said = self.burn_tree([f'root.addChild(DRFolderQRX.folderWithPath("{path}"))'])
        self.assertEqual(said, ["DRStatusStateDone"])
        listed = subprocess.run(["bsdtar", "-tvf", self.image()], capture_output=True, text=True, check=True).stdout
        self.assertIn(" Pictures/shortcut -> deep\n", listed)
        self.assertEqual(self.files_on(self.image())["Pictures/deep/real.txt"], b"not lost")

    def test_names_may_cross(self):
        said = self.burn_tree([
            'Dim one As DRFileQRX = DRFileQRX.virtualFileWithName("one", Nil)',
            'one.specificNameForFilesystem(DRFSObjectQRX.DRJoliet) = "two"', "root.addChild(one)",
            'Dim two As DRFolderQRX = DRFolderQRX.virtualFolderWithName("two")',
            'two.specificNameForFilesystem(DRFSObjectQRX.DRJoliet) = "one"', "root.addChild(two)",
            'two.addChild(DRFileQRX.virtualFileWithName("inside", Nil))'])
        self.assertEqual(said, ["DRStatusStateDone"])
        self.assertEqual(sorted(self.files_on(self.image())), ["one", "two/inside"])
        self.assertEqual(self.joliet(self.image()), ["/one/inside", "/two"])

    def test_twins_are_told_apart_by_numbers(self):
        said = self.burn_tree(['root.addChild(DRFileQRX.virtualFileWithName("same.txt", Nil))'] * 3)
        self.assertEqual(said, ["DRStatusStateDone"])
        self.assertEqual(sorted(self.files_on(self.image())), ["same.txt", "same_001.txt", "same_002.txt"])
        self.assertEqual(self.joliet(self.image()), ["/same.txt", "/same_001.txt", "/same_002.txt"])

    def test_links_point_where_the_tree_says(self):
        said = self.burn_tree([
            'Dim a As DRFolderQRX = DRFolderQRX.virtualFolderWithName("a")', "root.addChild(a)",
            'Dim b As DRFolderQRX = DRFolderQRX.virtualFolderWithName("b")', "a.addChild(b)",
            "Dim up As DRFileQRX = DRFileQRX.symLinkPointingTo(root, DRFSObjectQRX.DRISO9660)", 'up.baseName = "up"',
            "b.addChild(up)", "Dim here As DRFileQRX = DRFileQRX.symLinkPointingTo(b, DRFSObjectQRX.DRISO9660)",
            'here.baseName = "here"', "b.addChild(here)",
            "Dim down As DRFileQRX = DRFileQRX.symLinkPointingTo(up, DRFSObjectQRX.DRISO9660)", 'down.baseName = "down"',
            "root.addChild(down)"])
        self.assertEqual(said, ["DRStatusStateDone"])
        listed = subprocess.run(["bsdtar", "-tvf", self.image()], capture_output=True, text=True, check=True).stdout
        links = sorted(line.split(None, 8)[8].removeprefix("./") for line in listed.splitlines() if " -> " in line)
        self.assertEqual(links, ["a/b/here -> .", "a/b/up -> ../..", "down -> a/b/up"])

    def test_names_that_can_be_nowhere_are_refused(self):
        for name, sentence in (("", "can't be the name"), ("a/b", "can't be the name"), ("..", "can't be the name")):
            with self.subTest(name=name):
                said = self.burn_tree([f'root.addChild(DRFileQRX.virtualFileWithName("{name}", Nil))'])
                self.assertEqual(said[0], "DRStatusStateFailed")
                self.assertIn(sentence, said[1])

    def test_type_and_creator_are_in_hfs_plus(self):
        said = self.burn_tree([
            "root.explicitFilesystemMask = 9", 'Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", Nil)',
            "Dim code As New MemoryBlock(4)", 'code.StringValue(0, 4) = "QzTy"',
            "f.setProperty(code, DRFSObjectQRX.DRMacFileType, DRFSObjectQRX.DRHFSPlus)", "root.addChild(f)"])
        self.assertEqual(said, ["DRStatusStateDone"])
        with open(self.image(), "rb") as file:
            self.assertEqual(file.read().count(b"QzTy"), 1)

    def test_a_finder_alias_lies_in_a_resource_fork(self):
        said = self.burn_tree([
            "root.explicitFilesystemMask = 9", 'Dim a As DRFolderQRX = DRFolderQRX.virtualFolderWithName("a folder")',
            "root.addChild(a)", 'Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("original", Nil)', "a.addChild(f)",
            "Dim alias As DRFileQRX = DRFileQRX.finderAliasPointingTo(f, DRFSObjectQRX.DRHFSPlus)",
            'alias.baseName = "alias"', "root.addChild(alias)"])
        self.assertEqual(said, ["DRStatusStateDone"])
        self.assertEqual(sorted(self.files_on(self.image())), ["a folder/original"])
        out = os.path.join(self.scratch, "out")
        subprocess.run(["7zz", "x", "-y", "-thfs", f"-o{out}", self.image()], capture_output=True, check=False)
        with open(os.path.join(out, "Tree/alias:rsrc"), "rb") as fork:
            content = fork.read()
        self.assertIn(b"alis", content)
        self.assertIn(b"/a folder/original", content)

    def test_a_produced_file_has_its_resource_fork_in_hfs_plus(self):
        said = self.burn_tree([
            "Class Forked Inherits DRFileQRX",
            "Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64",
            "Return If(fork = DRFileQRX.DRFileForkResource, 5000, 3000)", "End Event",
            "Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, "
            "blocksize As UInt32) As UInt32", "For i As Integer = 0 To Bufferlen - 1",
            "buffer.UInt8Value(i) = (address + i + 100 * fork) Mod 251", "Next", "Return Bufferlen", "End Event", "End Class",
            "root.explicitFilesystemMask = 11", 'root.addChild(New Forked("forked"))'])
        self.assertEqual(said, ["DRStatusStateDone"])
        data = bytes(i % 251 for i in range(3000))
        self.assertEqual(self.files_on(self.image()), {"forked": data})
        out = os.path.join(self.scratch, "out")
        subprocess.run(["7zz", "x", "-y", "-thfs", f"-o{out}", self.image()], capture_output=True, check=False)
        for name, content in (("forked", data), ("forked:rsrc", bytes((i + 100) % 251 for i in range(5000)))):
            with open(os.path.join(out, "Tree", name), "rb") as file:
                self.assertEqual(file.read(), content, name)

    def test_dates_and_the_finders_flags_are_in_hfs_plus(self):
        said = self.burn_tree([
            "root.explicitFilesystemMask = 9", 'Dim f As DRFileQRX = DRFileQRX.virtualFileWithName("f", Nil)',
            "Dim code As New MemoryBlock(4)", 'code.StringValue(0, 4) = "QzTy"',
            "f.setProperty(code, DRFSObjectQRX.DRMacFileType, DRFSObjectQRX.DRHFSPlus)",
            'code.StringValue(0, 4) = "QzCr"',
            "f.setProperty(code, DRFSObjectQRX.DRMacFileCreator, DRFSObjectQRX.DRHFSPlus)",
            "f.setProperty(&h0800, DRFSObjectQRX.DRMacFinderFlags, DRFSObjectQRX.DRHFSPlus)",
            "f.setProperty(True, DRFSObjectQRX.DRMacFinderHideExtension, DRFSObjectQRX.DRHFSPlus)",
            "f.setProperty(True, DRFSObjectQRX.DRInvisible, DRFSObjectQRX.DRAllFilesystems)", "root.addChild(f)"])
        self.assertEqual(said, ["DRStatusStateDone"])
        with open(self.image(), "rb") as file:
            disc = file.read()
        at = disc.index(b"QzTy")
        self.assertEqual(disc[at:at + 10], b"QzTyQzCr\x48\x10")
        at = disc.index(b"F.;1")
        self.assertEqual(disc[at - 8] & 1, 1)

    # ---- generated-files --------------------------------------------------------------------------------------

    def test_generated_files_have_the_bytes_that_the_events_made(self):
        said = self.succeed("generated-files.bas", "300")
        self.assertEqual(sorted(said.splitlines()), sorted([
            "Making powers of 2.txt", "Making powers of 3.txt", "Done with powers of 2.txt",
            "Done with powers of 3.txt", "Burned 300 rows in each of 2 tables."]))
        files = self.files_on(self.image())
        for exponent in (2, 3):
            self.assertEqual(files[f"powers of {exponent}.txt"].decode(),
                             "".join(f"{n:10}{n ** exponent:20}\n" for n in range(1, 301)))

    def test_generated_files_of_more_than_one_buffer(self):
        self.succeed("generated-files.bas", "30000")
        files = self.files_on(self.image())
        for exponent in (2, 3):
            self.assertTrue(files[f"powers of {exponent}.txt"].decode() ==
                            "".join(f"{n:10}{n ** exponent:20}\n" for n in range(1, 30001)), exponent)

    def test_generated_files_refuse_what_is_no_number_of_rows(self):
        for words in (("0",), ("abc",), ("500x",), ("-5",), ("1.5",), ("1000001",), ("4294967301",), ("5", "5"), ("",), ("--rows=5",)):
            self.refuse("^Usage: generated-files.bas ", "generated-files.bas", *words, status=2)
        self.assertEqual(os.listdir(self.drives), [])

    # ---- random trees -----------------------------------------------------------------------------------------

    # Letters that each file system keeps; a name of two dots is another one in Joliet.
    LETTERS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 _-+()äößéñ日本語Жя"

    def random_name(self, dice, taken):
        while True:
            name = "".join(dice.choice(self.LETTERS) for _ in range(dice.randint(1, 30))).strip() or "x"
            name += dice.choice(["", ".txt", ".jpeg", ".tar.gz"])
            if name.lower() not in taken:
                taken.add(name.lower())
                return name

    def random_program(self, dice):
        """A program that burns a tree and prints what Joliet calls its items; and the files that are to be there."""
        lines = ['Dim f0 As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Random")',
                 "f0.explicitFilesystemMask = 11", "Dim bytes As MemoryBlock"]
        folders = [("", 0, set())]
        wanted = {}
        for number in range(1, dice.randint(5, 40)):
            path, parent, taken = dice.choice(folders)
            name = self.random_name(dice, taken)
            where = f"{path}/{name}" if path else name
            if dice.random() < 0.3 and path.count("/") < 6:
                lines.append(f'Dim f{number} As DRFolderQRX = DRFolderQRX.virtualFolderWithName("{name}")')
                folders.append((where, number, set()))
                wanted[where] = None
            else:
                data = "".join(dice.choice("abcdefgh") for _ in range(dice.choice([0, 1, 100, 2048, 5000])))
                mode = dice.choice([0o644, 0o400, 0o755])
                lines.append(f"bytes = New MemoryBlock({len(data)})")
                if data:
                    lines.append(f'bytes.StringValue(0, {len(data)}) = "{data}"')
                lines += [f'Dim f{number} As DRFileQRX = DRFileQRX.virtualFileWithName("{name}", bytes)',
                          f"f{number}.setProperty({mode}, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRISO9660)"]
                wanted[where] = (data.encode(), mode)
            lines.append(f"f{parent}.addChild(f{number})")
            lines.append(f'Print f{number}.mangledNameForFilesystem(DRFSObjectQRX.DRJoliet)')
        lines += ["Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))",
                  "burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount", "burn.Overwrite = True",
                  "burn.writeLayout(DRTrackQRX.trackForRootFolder(f0))", "Dim state As String", "Do", "App.DoEvents(10)",
                  "state = burn.status.Value(DRBurnQRX.DRStatusStateKey)",
                  "Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed", "Print state"]
        return "\n".join(lines) + "\n", wanted

    def burn_random(self, seed):
        text, wanted = self.random_program(random.Random(seed))
        program = os.path.join(self.scratch, "random.bas")
        with open(program, "w", encoding="utf-8") as file:
            file.write(text)
        said = self.succeed(program).splitlines()
        self.assertEqual(said[-1], "DRStatusStateDone")
        return wanted, said[:-1]

    def check_random(self, seed):
        wanted, joliet = self.burn_random(seed)
        image = self.image()
        listed = subprocess.run(["bsdtar", "--format=mtree", "--options=mtree:!all,mode,type,size", "-cf", "-",
                                 "@" + image], capture_output=True, check=True).stdout.decode()
        modes = {}
        for line in listed.splitlines()[1:]:
            words = line.split(" ")
            name = words[0].encode().decode("unicode_escape").encode("latin-1").decode("utf-8")
            modes[name.removeprefix("./")] = {word.split("=")[0]: word.split("=")[1] for word in words[1:]}
        files = self.files_on(image)
        self.assertEqual(sorted(name for name in modes if name != "."), sorted(wanted))
        for name, content in wanted.items():
            if content is None:
                self.assertEqual(modes[name]["type"], "dir", name)
                continue
            self.assertEqual(files[name], content[0], name)
            self.assertEqual(int(modes[name]["mode"], 8), content[1], name)
        iso = pycdlib.PyCdlib()
        iso.open(image)
        found = []
        for _, folders, names in iso.walk(joliet_path="/"):
            found += folders + [self.plain(name) for name in names]
        iso.close()
        self.assertEqual(sorted(found), sorted(joliet))
        self.assertEqual(sorted(name.removeprefix("Random/") for name in self.hfs_plus(image) if name != "Random"),
                         sorted(wanted))

    def test_random_trees_are_the_same_for_every_reader(self):
        for seed in range(25):
            with self.subTest(seed=seed):
                self.check_random(seed)


if __name__ == "__main__":
    unittest.main()
