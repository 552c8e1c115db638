#!/usr/bin/python3
"""Compares the files of a disc with their source folder at a few places each, in all four file systems, and says what differs.

usage: large_files.py SOURCE IMAGE
"""
import os
import re
import subprocess
import sys

import pycdlib

source, image = sys.argv[1:]
GIB = 1 << 30
BORDERS = (GIB - 2048, 2 * (GIB - 2048), 4 * (GIB - 2048), 4 * GIB - 2048, 4 * GIB)
sizes = {name: os.path.getsize(os.path.join(source, name)) for name in os.listdir(source)}


def run(*command, status=(0,)):
    done = subprocess.run(command, capture_output=True, check=False, env=dict(os.environ, LC_ALL="C.UTF-8"))
    if done.returncode not in status:
        print(" ".join(command), "ends with", done.returncode, done.stderr.decode(errors="replace"))
    return done.stdout


def compare(who, found):
    if found != sizes:
        print(who, "has", found, "instead of", sizes)


def check(who, read):
    """Reads a few bytes around each border, at the start and at the end."""
    for name, size in sizes.items():
        for at in sorted({0, max(size - 100, 0), *(border - 50 for border in BORDERS if border < size)}):
            with open(os.path.join(source, name), "rb") as file:
                file.seek(at)
                wanted = file.read(100)
            had = read(name, at, len(wanted))
            if had != wanted:
                print(who, name, at, had, "instead of", wanted)


def reader(extents):
    """Of the bytes at the places that a file system says."""
    def read(name, at, count):
        data, start = b"", 0
        with open(image, "rb") as file:
            for block, length in extents[name]:
                first, last = max(at, start), min(at + count, start + length)
                if first < last:
                    file.seek(block * 2048 + first - start)
                    data += file.read(last - first)
                start += length
        return data
    return read


# ---- sizes -----------------------------------------------------------------------------------------------------

lines = [line.split(None, 8) for line in run("bsdtar", "-tvf", image).decode().splitlines()]
compare("bsdtar", {words[8]: int(words[4]) for words in lines if words[0].startswith("-")})
for kind, status in (("iso", (0,)), ("hfs", (0, 1))):  # where there is HFS+, 7zz finds no UDF
    told = run("7zz", "l", "-slt", "-t" + kind, image, status=status).decode()
    compare("7zz " + kind, {os.path.basename(path): int(size) for path, size in re.findall(
        r"^Path = (.*\.(?:txt|bin))\n(?:.+\n)*?Size = (\d+)$", told, re.M)})
start = next(offset for offset in (int.from_bytes(entry[8:12], "big") for entry in (
    open(image, "rb").read(8 * 512)[at:at + 512] for at in range(512, 8 * 512, 512)) if entry[48:57] == b"Apple_HFS"
    and entry[:2] == b"PM") if offset)
told = run("fls", "-m", "", "-f", "hfs", "-o", str(start), image).decode().splitlines()
compare("fls", {words[1].removeprefix("/"): int(words[6]) for words in (line.split("|") for line in told)
                if words[1].removeprefix("/") in sizes})

# ---- bytes -----------------------------------------------------------------------------------------------------

disc = pycdlib.PyCdlib()
disc.open(image)
for keyword in ("rr_path", "joliet_path"):
    extents = {}  # a large file has several records of one name
    for record in disc.list_children(**{keyword: "/"}):
        if record.is_file():
            name = (record.rock_ridge.name() if keyword == "rr_path" else
                    record.file_identifier().decode("utf-16-be").partition(";")[0].encode()).decode()
            extents[name] = []
            while record:
                extents[name].append((record.extent_location(), record.data_length))
                record = record.data_continuation
    compare(keyword, {name: sum(length for _, length in places) for name, places in extents.items()})
    check(keyword, reader(extents))
extents = {}
compare("UDF", {name: disc.get_record(udf_path="/" + name).info_len for name in sizes})
partition = disc.udf_main_descs.partitions[0].part_start_location
for name in sizes:
    extents[name] = [(partition + place.log_block_num, place.extent_length)
                     for place in disc.get_record(udf_path="/" + name).alloc_descs]
check("UDF", reader(extents))
disc.close()
for who, place in (("grub", "loop0"), ("grub in HFS+", "loop0,apple3")):
    def through_grub(name, at, count, place=place):
        skipped = min(at, (1 << 32) - 1)  # more a 32-bit one does not understand
        return run("grub-fstest", "-s", str(skipped), "-n", str(at - skipped + count), image, "cat",
                   f"({place})/{name}")[at - skipped:]
    check(who, through_grub)
