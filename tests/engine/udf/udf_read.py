#!/usr/bin/python3
"""Compares the UDF side of a disc with its source folder, as pycdlib sees it: names, sizes, bytes, links.

usage: udf_read.py SOURCE IMAGE
"""
import io
import os
import sys

import pycdlib

source, image = sys.argv[1:]
problems = []

wanted = {}
for folder, folders, files in os.walk(source):
    for name in folders + files:
        path = os.path.join(folder, name)
        inside = "/" + os.path.relpath(path, source)
        if os.path.islink(path):
            wanted[inside] = ("link", os.readlink(path))
        elif os.path.isdir(path):
            wanted[inside] = ("folder", None)
        else:
            with open(path, "rb") as file:
                wanted[inside] = ("file", file.read())

disc = pycdlib.PyCdlib()
disc.open(image)
if not disc.has_udf():
    problems.append("pycdlib finds no UDF")
had = {}


def walk(folder):
    for child in disc.list_children(udf_path=folder):
        if child is None or child.is_dot() or child.is_dotdot():
            continue
        name = child.file_ident.fi.decode(child.file_ident.encoding)
        path = folder.rstrip("/") + "/" + name
        if child.is_dir():
            had[path] = ("folder", None)
            walk(path)
        elif child.is_symlink():
            had[path] = ("link", None)
        else:
            data = io.BytesIO()
            disc.get_file_from_iso_fp(data, udf_path=path)
            had[path] = ("file", data.getvalue())


if not problems:
    walk("/")
disc.close()
for path in sorted(wanted.keys() | had.keys()):
    kind, content = wanted.get(path, ("nothing", None))
    found, bytes_found = had.get(path, ("nothing", None))
    if kind != found:
        problems.append(f"{path} is {found}, not {kind}")
    elif kind == "file" and content != bytes_found:
        problems.append(f"{path} has other bytes")
print("\n".join(problems))
sys.exit(1 if problems else 0)
