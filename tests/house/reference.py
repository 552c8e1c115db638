#!/usr/bin/env python3
"""The pages of docs/reference name every declaration that the plug-in registers, and none that it doesn't.

Usage: reference.py DECLARATIONS FOLDER

String constants, which are declared as "NAME as string", may stand on a page by their name alone.
"""
import re
import sys
from pathlib import Path


def declarations_of(path):
    """Class name -> its declarations, from the written-down tables."""
    classes = {}
    for line in Path(path).read_text(encoding="utf-8").splitlines():
        if not line.startswith(" "):
            current = classes.setdefault(line.split()[0], set())
            continue
        kind, _, text = line.strip().partition(" ")
        current.add(text if kind in ("event", "constant") else text.partition(" ")[2])
    return classes


def words_of(page):
    """What stands between back quotes on a page, line breaks as blanks."""
    text = re.sub(r"\s+", " ", page.read_text(encoding="utf-8"))
    return set(re.findall(r"`([^`]+)`", text))


def first_column_of(page):
    """The declarations in the first column of its tables under "declaration"."""
    found, inside = set(), False
    for line in page.read_text(encoding="utf-8").splitlines():
        if not line.startswith("|"):
            inside = False
        elif line.startswith("| declaration |"):
            inside = True
        elif inside:
            found.update(re.findall(r"`([^`]+)`", line.split("|")[1]))
    return found


def main():
    classes, folder, faults = declarations_of(sys.argv[1]), Path(sys.argv[2]), []
    for name, declared in sorted(classes.items()):
        page = folder / f"{name}.md"
        if not page.exists():
            faults.append(f"{page.name}: there is no page for {name}")
            continue
        words = words_of(page)
        for text in sorted(declared):
            if text not in words and text.removesuffix(" as string") not in words:
                faults.append(f"{page.name}: {text} is not described")
        for text in sorted(first_column_of(page) - declared):
            faults.append(f"{page.name}: {text} is described, but not declared")
    for page in sorted(folder.glob("*QRX.md")):
        if page.stem not in classes:
            faults.append(f"{page.name}: there is no such class")
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
