#!/usr/bin/python3
"""Compares a burned image with its source folder, as four independent readers see it.

usage: readback.py SOURCE IMAGE [reader...]     readers: bsdtar 7zz isoinfo pycdlib (all, when none is named)
"""
import hashlib
import os
import stat
import subprocess
import sys
import tempfile

source = os.fsencode(os.path.abspath(sys.argv[1]))
image = os.path.abspath(sys.argv[2])
readers = sys.argv[3:] or ["bsdtar", "7zz", "isoinfo", "pycdlib"]
problems = []


def expect(what, had, wanted):
    if had != wanted:
        problems.append(f"{what}: {had!r}, not {wanted!r}")


def digest(path):
    with open(path, "rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest() if hasattr(hashlib, "file_digest") \
            else hashlib.sha256(file.read()).hexdigest()


def tree(root):
    """Every path under root with its lstat."""
    found = {}
    for folder, folders, files in os.walk(root):
        for name in folders + files:
            path = os.path.join(folder, name)
            found[os.path.relpath(path, root)] = os.lstat(path)
    return found


def run(*command, **options):
    done = subprocess.run(command, capture_output=True, timeout=100, **options)
    if done.returncode != 0:
        problems.append(f"{command[0]} ended with {done.returncode}: {done.stderr[-300:]!r}")
    return done.stdout


wanted = tree(source)
files = {name for name, status in wanted.items() if stat.S_ISREG(status.st_mode)}


def with_bsdtar(place):
    run("bsdtar", "-xpf", image, "-C", place)
    had = tree(os.fsencode(place))
    expect("bsdtar's names", sorted(had), sorted(wanted))
    for name in had.keys() & wanted.keys():
        ours, theirs = wanted[name], had[name]
        expect(f"mode of {name}", oct(theirs.st_mode), oct(ours.st_mode))
        if stat.S_ISLNK(ours.st_mode):
            expect(f"target of {name}", os.readlink(os.path.join(os.fsencode(place), name)),
                   os.readlink(os.path.join(source, name)))
            continue
        expect(f"time of {name}", int(theirs.st_mtime), int(ours.st_mtime))
        if os.geteuid() == 0:
            expect(f"owner of {name}", (theirs.st_uid, theirs.st_gid), (ours.st_uid, ours.st_gid))
        if name in files:
            expect(f"size of {name}", theirs.st_size, ours.st_size)
            expect(f"bytes of {name}", digest(os.path.join(os.fsencode(place), name)),
                   digest(os.path.join(source, name)))


def with_7zz(place):
    run("7zz", "x", "-y", "-o" + place, image)
    had = tree(os.fsencode(place))
    contents = sorted(digest(os.path.join(os.fsencode(place), name)) for name, status in had.items()
                      if stat.S_ISREG(status.st_mode))
    expect("7zz's contents", contents, sorted(digest(os.path.join(source, name)) for name in files))
    # It reads Joliet, where other names are changed: see there what stays.
    small = [name.lower() for name in files]
    for name in files:
        try:
            fits = all(len(part.encode("utf-16-le")) <= 128 and part.find(".") == part.rfind(".") != 0
                       for part in name.decode("utf-8").split("/"))
        except UnicodeDecodeError:
            fits = False
        if fits and small.count(name.lower()) == 1 and not set(name) & set(b'":$*;<>?\\|'):
            if name not in had:
                problems.append(f"7zz has no {name!r}")
            else:
                expect(f"7zz's bytes of {name}", digest(os.path.join(os.fsencode(place), name)),
                       digest(os.path.join(source, name)))


def with_isoinfo(_):
    listed = {line.lstrip(b"/") for line in run("isoinfo", "-R", "-f", "-i", image).split(b"\n") if line}
    expect("isoinfo's names", sorted(listed), sorted(wanted))
    for name in sorted(files)[:20]:
        data = run("isoinfo", "-R", "-i", image, "-x", b"/" + name)
        with open(os.path.join(source, name), "rb") as file:
            expect(f"isoinfo's bytes of {name}", hashlib.sha256(data).hexdigest(),
                   hashlib.sha256(file.read()).hexdigest())


def with_pycdlib(_):
    import io

    import pycdlib
    iso = pycdlib.PyCdlib()
    iso.open(image)
    had = set()
    for folder, folders, names in iso.walk(rr_path="/"):
        for name in folders + names:
            had.add(os.path.join(folder, name).lstrip("/"))
    expect("pycdlib's names", sorted(had), sorted(os.fsdecode(name) for name in wanted))
    for name in files:
        data = io.BytesIO()
        iso.get_file_from_iso_fp(data, rr_path="/" + os.fsdecode(name))
        with open(os.path.join(source, name), "rb") as file:
            expect(f"pycdlib's bytes of {name}", hashlib.sha256(data.getvalue()).hexdigest(),
                   hashlib.sha256(file.read()).hexdigest())
    iso.close()


for reader in readers:
    with tempfile.TemporaryDirectory() as place:
        globals()["with_" + reader](place)
        # Folders without permission to write must not keep the place from going away.
        for folder, _, _ in os.walk(place):
            os.chmod(folder, 0o700)
for problem in problems[:20]:
    print(problem)
print(f"{len(wanted)} items, {len(files)} files, {len(problems)} problems, readers {' '.join(readers)}")
sys.exit(1 if problems or not wanted else 0)
