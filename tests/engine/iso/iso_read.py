#!/usr/bin/python3
"""Compares an ISO 9660 image with the list of what was put in, as other programs see it: names, kinds, sizes, modes,
owners, times, links, bytes.

usage: iso_read.py LIST IMAGE [moved] [reader...]

Readers are bsdtar, tar (bsdtar's Rock Ridge alone), isoinfo, xorriso, sevenzip and pycdlib; all, when none is named.

LIST is a folder: "items" has a line for each name, and the files' bytes are beside it, by number.
"""
import collections
import hashlib
import io
import os
import re
import stat
import subprocess
import sys
import tarfile
import tempfile

Item = collections.namedtuple("Item", "parent node kind mode owner group modified shown names target")
FORMS = {"iso": 0, "rockridge": 1, "joliet": 2}
# Readers that convert names must find them all convertible.
environment = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC")
problems = []


def report(text):
    problems.append(text if len(text) < 400 else text[:150] + " ... " + text[-240:])


def run(*command):
    done = subprocess.run(command, capture_output=True, timeout=100, env=environment)
    if done.returncode != 0:
        report(f"{command} ended with {done.returncode}: {done.stderr[-500:]!r}")
    return done.stdout


def read_items(folder):
    items = []
    with open(os.path.join(folder, "items"), encoding="ascii") as lines:
        for line in lines:
            parent, node, kind, mode, owner, group, modified, shown, *texts = line.split()
            texts = [bytes.fromhex(text[1:]) for text in texts]
            items.append(Item(int(parent), int(node), kind, int(mode), int(owner), int(group), int(modified),
                              shown == "shown", texts[:3], texts[3]))
    return items


class Listing:
    """What one file system is to show, by path."""

    def __init__(self, folder, items, form):
        self.form = form
        self.links = collections.Counter()
        self.wanted = {}
        folders = {0: b""}
        pending = list(items)
        while pending:
            rest = []
            for item in pending:
                if item.parent not in folders:
                    rest.append(item)
                    continue
                name = item.names[FORMS[form]]
                if not name:
                    continue
                path = folders[item.parent] + b"/" + name
                if item.kind == "l" and form != "rockridge":  # an empty file to those who know no links
                    item = item._replace(kind="f", node=-1)
                if item.kind == "d":
                    folders[item.node] = path
                    self.links[item.parent] += 1
                    self.links[item.node] += 2
                else:
                    self.links[item.node] += 1
                self.wanted[path] = item
            if len(rest) == len(pending):
                break
            pending = rest
        self.folder = folder

    def bytes_of(self, item):
        if item.node < 0:
            return b""
        with open(os.path.join(self.folder, str(item.node)), "rb") as file:
            return file.read()

    def digest(self, item):
        return hashlib.sha256(self.bytes_of(item)).hexdigest()

    def size(self, item):
        return len(self.bytes_of(item))

    def expect(self, who, had, shown=lambda path: path):
        """had: path to {what: value}; what is compared as far as the reader told it."""
        wanted = {shown(path): item for path, item in self.wanted.items()}
        for path in sorted(wanted.keys() - had.keys()):
            report(f"{who} has no {path!r}")
        for path in sorted(had.keys() - wanted.keys()):
            report(f"{who} has {path!r}")
        for path in wanted.keys() & had.keys():
            item = wanted[path]
            truth = {"kind": item.kind, "mode": item.mode, "low mode": item.mode & 0o777, "owner": item.owner, "group": item.group,
                     "modified": item.modified, "links": self.links[item.node]}
            if item.kind == "f":
                truth["size"] = self.size(item)
                if "digest" in had[path]:
                    truth["digest"] = self.digest(item)
            if item.kind == "l":
                truth["target"] = item.target
            for what, value in had[path].items():
                if what in truth and truth[what] != value:
                    report(f"{who}: {what} of {path!r} is {value!r}, not {truth[what]!r}")


def without_version(path):
    """Readers show names of ISO 9660 and Joliet without a version of 1, and without a dot that nothing follows."""
    path = re.sub(rb";1$", b"", path)
    return path[:-1] if path.endswith(b".") else path


def without_versions(path):
    return b"/".join(without_version(part) for part in path.split(b"/"))


def shown_by(form):
    """How readers show a name: Joliet's keep their dots, Rock Ridge's are as they are."""
    return {"iso": without_versions, "joliet": lambda path: re.sub(rb";1(?=/|$)", b"", path),
            "rockridge": lambda path: path}[form]


# ---- readers: each takes the image and the listings by form -----------------------------------------------------


def tar_view(image):
    """What bsdtar makes of it, as a tar archive: names are bytes there."""
    had, first = {}, {}
    with tarfile.open(fileobj=io.BytesIO(run("bsdtar", "-cf", "-", "--format=gnutar", "@" + image)), encoding="utf-8", errors="surrogateescape") as archive:
        for member in archive:
            path = member.name.encode("utf-8", "surrogateescape").rstrip(b"/")
            path = b"/" + (b"" if path == b"." else path.removeprefix(b"./"))
            if path == b"/":
                continue
            target = member.linkname.encode("utf-8", "surrogateescape")
            entry = {"kind": "d" if member.isdir() else "l" if member.issym() else "f", "mode": member.mode,
                     "owner": member.uid, "group": member.gid, "modified": int(member.mtime)}
            if member.issym():
                entry["target"] = target
            elif not member.isdir():
                if member.islnk():
                    entry["size"], entry["digest"] = first[b"/" + target.removeprefix(b"./")]
                else:
                    data = archive.extractfile(member).read()
                    entry["size"], entry["digest"] = len(data), hashlib.sha256(data).hexdigest()
                first[path] = entry["size"], entry["digest"]
            had[path] = entry
    return had


def without_attributes(had):
    """ISO 9660 and Joliet say neither modes nor owners; what a reader makes up is its own."""
    return {path: {what: value for what, value in entry.items() if what in ("kind", "size", "modified", "digest")}
            for path, entry in had.items()}


def bsdtar(image, listings):
    for form, options in (("rockridge", "rockridge"), ("joliet", "!rockridge"), ("iso", "!rockridge,!joliet")):
        if form not in listings:
            continue
        with tempfile.TemporaryDirectory() as place:
            run("bsdtar", "-xf", image, "--options", options, "-C", place)
            had = without_attributes(tree_view(os.fsencode(place)))
            for folder, _, _ in os.walk(place):
                os.chmod(folder, 0o700)
            listings[form].expect(f"bsdtar, {form}", had, shown_by(form))
    tar(image, listings)


def tar(image, listings):
    if "rockridge" in listings:
        listings["rockridge"].expect("bsdtar, as tar", tar_view(image))


def isoinfo_view(image, *options):
    had = {}
    folder = b"/"
    for line in run("isoinfo", "-l", "-i", image, *options).split(b"\n"):
        if line.startswith(b"Directory listing of "):
            folder = line[len(b"Directory listing of "):]
            continue
        found = re.match(rb"([dl-])([rwxsStT-]{9}) +(\d+) +(\d+) +(\d+) +(\d+) (.{11}) \[ *(\d+) [0-9a-f]{2}\] +(.*)$", line)
        if not found or found[9].rstrip(b" ") in (b".", b".."):
            continue
        kind, letters, links, owner, group, size, date, block, name = found.groups()
        mode = sum(0o400 >> i for i, letter in enumerate(letters) if letter not in b"-")
        name, arrow, target = name.removesuffix(b" ").partition(b" -> ")
        # Owners are in octal, and only nine bits of the mode are shown.
        entry = {"kind": {b"d": "d", b"-": "f", b"l": "l"}[kind], "low mode": mode, "links": int(links),
                 "owner": int(owner, 8), "group": int(group, 8)}
        if kind == b"-":
            entry["size"] = int(size)
        if arrow:
            entry["target"] = target
        had[folder + name] = entry
    return had


def isoinfo(image, listings):
    if "rockridge" in listings:
        listings["rockridge"].expect("isoinfo", isoinfo_view(image, "-R"))
    if "joliet" in listings:
        # It knows no UTF-8: names must be Latin-1 for it.
        had = without_attributes(isoinfo_view(image, "-J", "-j", "iso8859-1"))
        had = {path.decode("latin-1").encode(): entry for path, entry in had.items()}
        if all(ord(c) < 256 for path in listings["joliet"].wanted for c in path.decode()):
            listings["joliet"].expect("isoinfo, Joliet", had)
        elif len(had) != len(listings["joliet"].wanted):
            report(f"isoinfo, Joliet, has {len(had)} items, not {len(listings['joliet'].wanted)}")
    listings["iso"].expect("isoinfo, ISO 9660", without_attributes(isoinfo_view(image)))


def tree_view(root):
    """A folder on disk."""
    had = {}
    for folder, folders, files in os.walk(root):
        for name in folders + files:
            path = os.path.join(folder, name)
            status = os.lstat(path)
            entry = {"kind": "d" if stat.S_ISDIR(status.st_mode) else "l" if stat.S_ISLNK(status.st_mode) else "f",
                     "mode": status.st_mode & 0o7777}
            if entry["kind"] == "l":
                entry["target"] = os.readlink(path)
            else:
                entry["modified"] = int(status.st_mtime)
            if entry["kind"] == "f":
                entry["size"] = status.st_size
                with open(path, "rb") as file:
                    entry["digest"] = hashlib.sha256(file.read()).hexdigest()
            had[b"/" + os.path.relpath(path, root)] = entry
    return had


def xorriso(image, listings):
    for form, mode in (("rockridge", "any"), ("joliet", "norock"), ("iso", "norock")):
        if form not in listings or form == "iso" and "joliet" in listings:
            continue
        with tempfile.TemporaryDirectory() as place:
            place = os.fsencode(place)
            told = subprocess.run([b"xorriso", b"-abort_on", b"WARNING", b"-read_fs", mode, b"-osirrox", b"on:auto_chmod_off",
                                   b"-indev", b"stdio:" + os.fsencode(image), b"-extract", b"/", place + b"/out"],
                                  capture_output=True, timeout=100, env=environment)
            if told.returncode != 0:
                report(f"xorriso, {form}: {told.stderr[-500:]!r}")
            had = tree_view(place + b"/out")
            if form == "rockridge":
                if "iso" not in listings:
                    had.pop(b"/rr_moved", None)  # it shows that folder, empty
                listings[form].expect("xorriso", had)
            else:
                had = {shown_by(form)(path): entry for path, entry in without_attributes(had).items()}
                listings[form].expect(f"xorriso, {form}", had, shown_by(form))
            subprocess.run([b"chmod", b"-R", b"u+rwx", place], check=True)


def sevenzip(image, listings):
    # It reads no continuation areas, so long Rock Ridge names are unknown to it, and it refuses links that lead out.
    if "joliet" not in listings and "rockridge" in listings:
        return
    form = "joliet" if "joliet" in listings else "iso"
    with tempfile.TemporaryDirectory() as place:
        run("7zz", "x", "-y", "-o" + place, image)
        had = without_attributes(tree_view(os.fsencode(place)))
        listings[form].expect(f"7zz, {form}", {path: {what: value for what, value in entry.items() if what != "modified"}
                                               for path, entry in had.items()},
                              shown_by(form))


def pycdlib_view(disc, keyword, form):
    had = {}
    for folder, folders, files in disc.walk(**{keyword: "/"}):
        for name in folders + files:
            path = folder.rstrip("/") + "/" + name
            record = disc.get_record(**{keyword: path})
            entry = {"kind": "d" if record.is_dir() else "f"}
            if form == "rockridge":
                px = (record.rock_ridge.dr_entries.px_record or record.rock_ridge.ce_entries.px_record)
                entry.update(mode=px.posix_file_mode & 0o7777, links=px.posix_file_links, owner=px.posix_user_id,
                             group=px.posix_group_id)
                entry["kind"] = {0o040000: "d", 0o100000: "f", 0o120000: "l"}[px.posix_file_mode & ~0o7777]
                if entry["kind"] == "l":
                    entry["target"] = record.rock_ridge.symlink_path()
            if entry["kind"] == "f" and not (record.rock_ridge and record.rock_ridge.is_symlink()):
                data = io.BytesIO()
                disc.get_file_from_iso_fp(data, **{keyword: path})
                entry["digest"] = hashlib.sha256(data.getvalue()).hexdigest()
            had[os.fsencode(path)] = entry
    return had


def pycdlib(image, listings):
    import pycdlib as library
    disc = library.PyCdlib()
    disc.open(image)
    for form, keyword in (("rockridge", "rr_path"), ("joliet", "joliet_path"), ("iso", "iso_path")):
        if form in listings:
            listings[form].expect(f"pycdlib, {form}", pycdlib_view(disc, keyword, form))
    disc.close()


def main():
    folder, image, *readers = sys.argv[1:]
    moved = "moved" in readers  # with folders that ISO 9660 and its readers have elsewhere
    readers = [reader for reader in readers if reader != "moved"]
    readers = readers or ["bsdtar", "isoinfo", "xorriso", "sevenzip", "pycdlib"]
    items = read_items(folder)
    listings = {}
    for form, number in FORMS.items():
        if form == "iso" or any(item.names[number] for item in items):
            listings[form] = Listing(folder, items, form)
    if moved:
        del listings["iso"]
    for reader in readers:
        globals()[reader](image, listings)
    for problem in problems[:20]:
        print(problem)
    print(f"{len(items)} items, {len(problems)} problems, readers {' '.join(readers)}")
    return 1 if problems or not items else 0


sys.exit(main())
