"""A random tree for a disc, as a program that makes and burns it, and as what each file system is to show of it."""
import os
import stat
import sys
import time
import unicodedata

SYSTEMS = {"rr": 1, "joliet": 2, "udf": 4, "hfs": 8}
NAMES = {"rr": "DRISO9660", "joliet": "DRJoliet", "udf": "DRUDF", "hfs": "DRHFSPlus"}
MASKS = (1, 3, 3, 5, 7, 9, 11, 13, 15, 15)
OPEN_MASKS = (1, 3, 9, 11)  # of a disc that is overwritten in place and left open
LETTERS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
TAME = LETTERS + " _-+()äößéñ日本語Жя"
LATEST_HERE = (1 << 31) - 86400 if sys.maxsize < 1 << 32 else sys.maxsize  # that this Python has a clock for
ODD = TAME + TAME + ".,;*?\"'<>|\\!$&%#@~`^[]{}=Å𝄞\u0301"


def composed(text):
    return unicodedata.normalize("NFC", text)


def literal(text):
    return '"' + text.replace('"', '""') + '"'


class Item:
    def __init__(self, number, name, parent, kind):
        self.number, self.name, self.parent, self.kind = number, name, parent, kind
        self.mask = 0  # of its own; 0 for its folder's
        self.mode = self.time = self.data = self.target = None
        self.names = {}  # by file system, where it isn't the name
        self.inside = []  # what is in a real folder: relative path, kind, mode, time, data or target
        self.several = set()  # the file systems where it has several names

    def effective(self):
        above = self.parent.effective() if self.parent else 15
        return above & self.mask if self.mask else above

    def path(self, system):
        name = composed(self.name if system == "rr" else self.names.get(system, self.name))
        return name if self.parent.parent is None else self.parent.path(system) + "/" + name


class Tree:
    """The second session of a disc is a tree over the first: it changes, adds, and leaves things out."""

    def __init__(self, dice, disk, latest, label, plain, earlier=None):
        self.dice, self.disk, self.latest, self.label = dice, disk, latest, label
        self.root = Item(0, "Tree", None, "d")
        self.root.mask = earlier.root.mask if earlier else dice.choice(OPEN_MASKS if plain else MASKS)
        # Sessions that go on from each other have nothing that is in single file systems, and no names that are others in
        # some: of an earlier one only ISO 9660 and Joliet are read.
        self.plain = plain
        self.items, self.taken = [], {}
        self.deep = dice.random() < 0.1  # folders inside each other, more than ISO 9660 may have
        if earlier:
            self.copy(earlier)
        for _ in range(40 if self.deep else dice.choice((0, 1, 3, 8, 15, 30))):
            self.add()

    # ---- what is in it ----------------------------------------------------------------------------------------

    def name(self, parent, odd):
        taken = self.taken.setdefault(parent, set())
        while True:
            length = self.dice.choice((1, 3, 8, 8, 15, 25, 50 if self.plain else 60))
            name = "".join(self.dice.choice(ODD if odd else TAME) for _ in range(length)).strip(" \u0301") or "x"
            name += self.dice.choice(("", ".txt", ".jpeg", "" if self.plain else ".tar.gz"))
            name = self.dice.choice((composed, lambda text: unicodedata.normalize("NFD", text)))(name)
            if name in (".", "..") or len(composed(name).encode()) > 200:
                continue
            if composed(name).casefold() not in taken:
                taken.add(composed(name).casefold())
                return name

    def bytes(self):
        return "".join(self.dice.choice("abcdefgh") for _ in range(self.dice.choice((0, 1, 100, 2047, 2048, 2049, 7000)))).encode()

    def moment(self):
        """To the second, and one that the clock shows once."""
        while True:
            moment = self.dice.randrange(86400, min(self.latest, LATEST_HERE))
            if time.mktime(time.localtime(moment)[:8] + (-1,)) == moment and \
                    time.localtime(moment - 3600).tm_isdst == time.localtime(moment + 3600).tm_isdst:
                return moment

    def folders(self):
        return [self.root] + [item for item in self.items if item.kind == "d"]

    def add(self):
        dice = self.dice
        parents = self.folders()
        parent = parents[-1] if dice.random() < (0.9 if self.deep else 0.3) else dice.choice(parents)
        kind = dice.choices("dfFDsh", (70 if self.deep else 25, 40, 12, 8, 0 if self.plain else 8, 0 if self.plain else 7))[0]
        item = Item(len(self.items) + 1, self.name(parent, odd=not self.plain and dice.random() < 0.5), parent, kind)
        if not self.plain and dice.random() < 0.25:
            item.mask = dice.randrange(1, 16)
        if item.effective() == 0 or kind in "sh" and not self.link(item):
            return
        if kind == "D" and item.effective() == SYSTEMS["joliet"]:
            return  # it may have symbolic links, and Joliet alone refuses them
        if kind in "fd":
            item.mode = dice.choice((None, 0o644, 0o400, 0o755, 0o640, 0o700))
            item.time = dice.choice((None, self.moment()))
        if kind == "f":
            item.data = self.bytes()
        elif kind in "FD":
            self.store(item)
        self.items.append(item)

    def link(self, item):
        """In one file system, to what is there."""
        system = self.dice.choice([system for system in ("rr", "udf", "hfs") if self.root.mask & SYSTEMS[system]])
        item.mask, item.system = SYSTEMS[system], system
        originals = [other for other in self.items if other.effective() & item.mask
                     and (other.kind in "fdFD" if item.kind == "s" else other.kind in "fF")]
        if not item.effective() or not originals:
            return False
        item.target = self.dice.choice(originals)
        if item.kind == "h":
            item.several = item.target.several
            item.several.add(system)
        return True

    def store(self, item):
        """A file or folder on disk."""
        item.source = os.path.join(self.disk, f"{self.label}-{item.number}", composed(item.name).replace("/", "_"))
        os.makedirs(os.path.dirname(item.source))
        if item.kind == "F":
            item.data = self.bytes()
            self.put(item.source, item.data)
            item.mode, item.time = self.dress(item.source)
            return
        os.mkdir(item.source)
        made = [""]
        for _ in range(self.dice.choice((0, 1, 4, 9))):
            name = "".join(self.dice.choice(LETTERS) for _ in range(9)) + str(len(item.inside))
            inside = os.path.join(self.dice.choice(made), name)
            whole = os.path.join(item.source, inside)
            what = self.dice.choices("dfsh", (3, 5, 1, 1))[0]
            files = [entry for entry in item.inside if entry[1] == "f"]
            if what == "d":
                os.mkdir(whole)
                made.append(inside)
                item.inside.append([inside, "d", None])
            elif what == "s":
                target = self.dice.choice(("nowhere", "not/here/" + inside))
                os.symlink(target, whole)
                item.inside.append([inside, "s", target])
            elif what == "h" and files:
                os.link(os.path.join(item.source, files[0][0]), whole)
                files[0][1] = "several"
                item.inside.append([inside, "several", files[0][2]])
            else:
                data = self.bytes()
                self.put(whole, data)
                item.inside.append([inside, "f", data])
        for entry in reversed(item.inside):
            if entry[1] != "s":
                entry += self.dress(os.path.join(item.source, entry[0]))
        for entry in item.inside:  # the last of several names has dressed them all
            if entry[1] == "several":
                status = os.lstat(os.path.join(item.source, entry[0]))
                entry[3:] = stat.S_IMODE(status.st_mode), int(status.st_mtime)
        item.mode, item.time = self.dress(item.source)

    def put(self, path, data):
        with open(path, "wb") as file:
            file.write(data)

    def dress(self, path):
        """A mode that lets us read it, and a time; the one it has where the disk keeps no other."""
        os.chmod(path, self.dice.choice((0o755, 0o700, 0o775)) if os.path.isdir(path) else self.dice.choice((0o644, 0o400, 0o750)))
        os.utime(path, (self.moment(),) * 2)
        status = os.lstat(path)
        return stat.S_IMODE(status.st_mode), int(status.st_mtime)

    def copy(self, earlier):
        """What a second session takes up from the first: folders stay, files come again, with other bytes, or not."""
        known = {earlier.root: self.root}
        for old in earlier.items:
            if old.kind not in "df" or old.parent not in known or self.dice.random() < 0.3:
                continue
            item = Item(len(self.items) + 1, old.name, known[old.parent], old.kind)
            self.taken.setdefault(item.parent, set()).add(composed(old.name).casefold())
            item.mode, item.time = old.mode, old.time
            if item.kind == "f":
                item.data = old.data if self.dice.random() < 0.3 else self.bytes()
            known[old] = item
            self.items.append(item)
        for old in earlier.items:  # no other item takes a name that is there
            if old.parent in known:
                self.taken.setdefault(known[old.parent], set()).add(composed(old.name).casefold())

    # ---- as a program -----------------------------------------------------------------------------------------

    def program(self, drive):
        lines = [f"Sub {self.label}()", 'Dim n0 As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Tree")',
                 f"n0.explicitFilesystemMask = {self.root.mask}"]
        for item in self.items:
            lines += self.lines(item)
        for item in self.items:
            lines += [f'Print "{self.label}" + Chr(9) + "{item.number}" + Chr(9) + "{system}" + Chr(9) + '
                      f"n{item.number}.mangledNameForFilesystem(DRFSObjectQRX.{NAMES[system]})"
                      for system, bit in SYSTEMS.items() if system != "rr" and item.effective() & bit]
        return "\n".join(lines + [f'Burn("{self.label}", {drive}, n0, {self.plain})', "End Sub", ""])

    def lines(self, item):
        n, name = f"n{item.number}", literal(item.name)
        if item.kind == "d":
            made = f"DRFolderQRX.virtualFolderWithName({name})"
        elif item.kind == "f":
            made = f"TextFile({name}, {literal(item.data.decode())})"
        elif item.kind in "FD":
            factory = "DRFileQRX.fileWithPath" if item.kind == "F" else "DRFolderQRX.folderWithPath"
            made = f"{factory}({literal(item.source)})"
        else:
            factory = "DRFileQRX.symLinkPointingTo" if item.kind == "s" else "DRFileQRX.hardLinkPointingTo"
            made = f"{factory}(n{item.target.number}, DRFSObjectQRX.{NAMES[item.system]})"
        lines = [f"Dim {n} As DR{'Folder' if item.kind in 'dD' else 'File'}QRX = {made}"]
        if item.kind in "shFD":
            lines.append(f"{n}.baseName = {name}")
        if item.mask and item.kind not in "sh":
            lines.append(f"{n}.explicitFilesystemMask = {item.mask}")
        if item.kind in "df" and item.mode is not None:
            lines.append(f"{n}.setProperty({item.mode}, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRAllFilesystems)")
        if item.kind in "df" and item.time is not None:
            parts = ", ".join(str(part) for part in time.localtime(item.time)[:6])
            lines.append(f"{n}.setProperty(New Date({parts}), DRFSObjectQRX.DRContentModificationDate, "
                         "DRFSObjectQRX.DRAllFilesystems)")
            if item.time > 2212122495:  # HFS+ holds no later one, and the burn would fail
                lines.append(f"{n}.setProperty(New Date(2040, 1, 1), DRFSObjectQRX.DRContentModificationDate, DRFSObjectQRX.DRHFSPlus)")
        return lines + [f"n{item.parent.number}.addChild({n})"]

    def named(self, number, system, name):
        self.items[number - 1].names[system] = name

    # ---- as a file system is to show it -----------------------------------------------------------------------

    def shown(self, system):
        bit, all_items = SYSTEMS[system], {}
        for item in self.items:
            if not item.effective() & bit:
                continue
            path = item.path(system)
            if item.kind == "s":
                start = os.path.dirname(path)
                all_items[path] = {"kind": "l", "target": os.path.relpath("/" + item.target.path(system), "/" + start)}
                continue
            same = item.target or item
            entry = {"kind": "d" if item.kind in "dD" else "f", "mode": same.mode, "time": same.time, "several": system in item.several}
            if entry["kind"] == "f":
                entry["data"] = same.data
            all_items[path] = entry
            for inside, kind, content, *dress in item.inside:
                if kind == "s":
                    if system != "joliet":
                        all_items[f"{path}/{inside}"] = {"kind": "l", "target": content}
                    continue
                entry = {"kind": "d" if kind == "d" else "f", "mode": dress[0], "time": dress[1], "several": kind == "several"}
                if kind != "d":
                    entry["data"] = content
                all_items[f"{path}/{inside}"] = entry
        return all_items
