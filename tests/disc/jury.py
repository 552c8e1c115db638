"""Programs that are not ours, asked what they find on a disc: each answers paths, and of every item what it tells."""
import calendar
import io
import os
import re
import stat
import subprocess
import tarfile
import tempfile
import unicodedata

import pycdlib
import pycdlib.udf

ENVIRONMENT = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC")


def run(*command, status=0):
    done = subprocess.run(command, capture_output=True, check=False, timeout=100, env=ENVIRONMENT)
    if done.returncode > status:
        raise AssertionError(f"{command} ended with {done.returncode}: {(done.stdout + done.stderr)[-900:]!r}")
    return done.stdout


def composed(text):
    return unicodedata.normalize("NFC", text)


def apart(text):
    return unicodedata.normalize("NFD", text)


def on_disk(root):
    """A folder that a reader unpacked; what is needed of its modes is added."""
    found = {}
    for folder, folders, files in os.walk(root):
        for name in folders + files:
            path = os.path.join(folder, name)
            status = os.lstat(path)
            entry = {"kind": {stat.S_IFDIR: "d", stat.S_IFLNK: "l"}.get(stat.S_IFMT(status.st_mode), "f")}
            if entry["kind"] == "l":
                entry["target"] = os.readlink(path)
            else:
                os.chmod(path, 0o700)
                entry["time"] = int(status.st_mtime)
            if entry["kind"] == "f":
                with open(path, "rb") as file:
                    entry["data"] = file.read()
            found[composed(os.path.relpath(path, root))] = entry
    return found


def without(found, *what):
    return {path: {key: value for key, value in entry.items() if key not in what} for path, entry in found.items()}


# ---- ISO 9660 with Rock Ridge, and Joliet -----------------------------------------------------------------------


def rr_bsdtar(image):
    found = {}
    with tarfile.open(fileobj=io.BytesIO(run("bsdtar", "-cf", "-", "--format=gnutar", "@" + image)), encoding="utf-8") as archive:
        for member in archive:
            path = composed(member.name.rstrip("/").removeprefix("./"))
            entry = {"kind": "d" if member.isdir() else "l" if member.issym() else "f", "mode": member.mode, "time": int(member.mtime)}
            if member.issym():
                entry = {"kind": "l", "target": member.linkname}
            elif member.islnk():
                entry["data"] = found[composed(member.linkname.removeprefix("./"))]["data"]
            elif not member.isdir():
                entry["data"] = archive.extractfile(member).read()
            found[path] = entry
    found.pop(".", None)
    return found


def rr_isoinfo(image):
    found, folder = {}, ""
    for line in run("isoinfo", "-l", "-R", "-i", image).decode().split("\n"):
        if line.startswith("Directory listing of /"):
            folder = line[len("Directory listing of /"):]
            continue
        match = re.match(r"([dl-])([rwxsStT-]{9}) +(\d+) +(\d+) +(\d+) +(\d+) .{11} \[ *\d+ [0-9a-f]{2}\] +(.*)$", line)
        if not match or match[7].rstrip(" ") in (".", ".."):
            continue
        name, arrow, target = match[7].removesuffix(" ").partition(" -> ")
        entry = {"kind": {"-": "f"}.get(match[1], match[1])}
        if arrow:
            entry["target"] = target
        else:
            entry["mode"] = sum(0o400 >> bit for bit, letter in enumerate(match[2]) if letter != "-")
        if entry["kind"] == "f":
            entry["size"] = int(match[6])
        found[composed(folder + name)] = entry
    return found


def joliet_isoinfo(image):
    """How many there are. It knows no UTF-8, and shows different names as one."""
    listed = run("isoinfo", "-J", "-j", "iso8859-1", "-f", "-i", image)
    return sum(line.startswith(b"/") for line in listed.split(b"\n"))


def records(image, keyword, read):
    disc = pycdlib.PyCdlib()
    disc.open(image)
    found = {}
    for folder, folders, files in disc.walk(**{keyword: "/"}):
        for name in folders + files:
            path = folder.rstrip("/") + "/" + name
            record = disc.get_record(**{keyword: path})
            entry = read(record)
            if entry["kind"] == "f":
                data = io.BytesIO()
                disc.get_file_from_iso_fp(data, **{keyword: path})
                entry["data"] = data.getvalue()
            found[composed(path[1:])] = entry
    disc.close()
    return found


def rr_pycdlib(image):
    def read(record):
        ridge = record.rock_ridge
        mode = (ridge.dr_entries.px_record or ridge.ce_entries.px_record).posix_file_mode
        entry = {"kind": {0o040000: "d", 0o100000: "f", 0o120000: "l"}[mode & ~0o7777], "mode": mode & 0o7777}
        return {"kind": "l", "target": ridge.symlink_path().decode()} if entry["kind"] == "l" else entry

    return records(image, "rr_path", read)


def joliet_pycdlib(image):
    return {re.sub(r";1$", "", path): entry for path, entry in
            records(image, "joliet_path", lambda record: {"kind": "d" if record.is_dir() else "f"}).items()}


def joliet_bsdtar(image):
    with tempfile.TemporaryDirectory() as place:
        run("bsdtar", "-xf", image, "--options", "!rockridge", "-C", place)
        return on_disk(place)


def sevenzip(image, kind, status=0):
    with tempfile.TemporaryDirectory() as place:
        run("7zz", "x", "-y", "-t" + kind, "-o" + place, image, status=status)
        return on_disk(place)


def joliet_7zz(image):
    return sevenzip(image, "iso")


# ---- UDF ---------------------------------------------------------------------------------------------------------


def udf_7zz(image):
    return sevenzip(image, "udf")


def udf_mode(entry):
    """Five bits for each of others, group and owner, of which the lower three are those of a mode (ECMA-167 4/14.9.5)."""
    low = sum((entry.perms >> 5 * who & 7) << 3 * who for who in range(3))
    return low | sum(bit for flag, bit in ((6, 0o4000), (7, 0o2000), (8, 0o1000)) if entry.icb_tag.flags >> flag & 1)


def udf_time(stamp):
    """Seconds since 1970 of a local time; its zone is minutes east of Greenwich, and -2047 where it doesn't say."""
    clock = calendar.timegm((stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second))
    return clock - 60 * (stamp.tz if stamp.timetype == 1 and stamp.tz != -2047 else 0)


def udf_target(image, disc, entry):
    """A link's path components (ECMA-167 4/14.16), as a path."""
    data = b""
    for place in entry.alloc_descs:
        inside = isinstance(place, pycdlib.udf.UDFInlineAD)
        start = 0 if inside else disc.udf_main_descs.partitions[0].part_start_location
        with open(image, "rb") as file:
            file.seek((start + place.log_block_num) * 2048 + (place.offset if inside else 0))
            data += file.read(place.extent_length)
    parts = []
    while data:
        kind, length = data[0], data[1]
        parts.append({2: "", 3: "..", 4: "."}[kind] if kind != 5 else
                     data[5:4 + length].decode({8: "latin-1", 16: "utf-16-be"}[data[4]]))
        data = data[4 + length:]
    return "/".join(parts) or "/"


def udf_entries(image):
    """What stands in the block of each item: mode, owner, group, and times; of a link the target."""
    return udf_pycdlib(image, more=True)


def udf_pycdlib(image, more=False):
    disc = pycdlib.PyCdlib()
    disc.open(image)
    found, waiting = {}, [""]
    while waiting:
        folder = waiting.pop()
        for child in disc.list_children(udf_path=folder or "/"):
            if child is None or child.is_dot() or child.is_dotdot():
                continue
            path = folder + "/" + child.file_ident.fi.decode(child.file_ident.encoding)
            entry = {"kind": "d" if child.is_dir() else "l" if child.is_symlink() else "f"}
            if more:
                entry |= {"owner": child.uid, "group": child.gid, "accessed": udf_time(child.access_time),
                          "changed": udf_time(child.attr_time), "permissions": child.perms, "more": child.extended_attrs}
            if more or entry["kind"] != "l":
                entry |= {"mode": udf_mode(child), "time": udf_time(child.mod_time)}
            if child.is_dir():
                waiting.append(path)
            elif entry["kind"] == "l":
                entry["target"] = composed(udf_target(image, disc, child))
            elif entry["kind"] == "f":
                data = io.BytesIO()
                disc.get_file_from_iso_fp(data, udf_path=path)
                entry["data"] = data.getvalue()
            found[composed(path[1:])] = entry
    disc.close()
    return found


def udf_udfinfo(image):
    """How many there are."""
    told = run("udfinfo", "--utf8", image).decode()
    return {kind: int(re.search(rf"^{key}=(\d+)$", told, re.M)[1]) for kind, key in (("f", "numfiles"), ("d", "numdirs"))}


# ---- HFS+ --------------------------------------------------------------------------------------------------------


def hfs_7zz(image):
    """It warns that something stands in front; the volume is a folder. A file of several names is empty for it."""
    found = sevenzip(image, "hfs", status=1)
    return {path.partition("/")[2]: entry for path, entry in found.items() if "/" in path and "HFS+ Private" not in path}


def hfs_start(image):
    """Where the partition map says, in blocks of 512 bytes."""
    with open(image, "rb") as file:
        file.seek(512)
        for _ in range(8):
            entry = file.read(512)
            if entry[:2] == b"PM" and entry[48:80].rstrip(b"\0") == b"Apple_HFS":
                return int.from_bytes(entry[8:12], "big")
    return 0


def hfs_fls(image):
    found = {}
    for line in run("fls", "-r", "-m", "", "-f", "hfs", "-o", str(hfs_start(image)), image).decode().split("\n"):
        if not line or re.match(r"0\|/\$\w+File\|", line) or "HFS+ Private" in line:
            continue
        head, _, letters, _, _, size, _, modified, _, _ = line.rsplit("|", 9)
        path = head.removeprefix("0|/")
        entry = {"kind": {"d": "d", "l": "l"}.get(letters[0], "f"), "time": int(modified),
                 "mode": sum(0o400 >> bit for bit, letter in enumerate(letters[3:12]) if letter != "-")}
        if entry["kind"] == "l":
            path, _, target = path.partition(" -> ")
            entry = {"kind": "l", "target": target}
        elif entry["kind"] == "f":
            entry["size"] = int(size)
        found[composed(path)] = entry
    return found


def grub(image, partition, path):
    return run("grub-fstest", image, "cat", f"({partition})/{path}")
