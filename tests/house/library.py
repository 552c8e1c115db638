#!/usr/bin/env python3
"""docs/library.md has every class of the host and of the companion, with every declaration, and none that isn't there.

Usage: library.py DISC_BASIC PROJECT

What the tables of functions name must stand in docs/library.md or docs/language.md. Numbers that have the size of a word are
described as 64-bit programs have them.
"""
import re
import subprocess
import sys
from pathlib import Path


def code_of(page):
    """What stands between back quotes, without the blocks of code."""
    return re.findall(r"`([^`]+)`", re.sub(r"(?ms)^```.*?^```", "", page.read_text(encoding="utf-8")))


def described(page):
    """Class -> the declarations in the first column of the table under its heading."""
    classes, current, inside = {}, None, False
    for line in page.read_text(encoding="utf-8").splitlines():
        if line.startswith("#"):
            current = line[4:] if line.startswith("### ") else None
        if not line.startswith("|"):
            inside = False
        elif line.startswith("| declaration |"):
            inside = True
        elif inside and current:
            classes.setdefault(current, []).extend(re.findall(r"`([^`]+)`", line.split("|")[1]))
    return classes


def listed(command, name=None):
    done = subprocess.run([command, "list", *([name] if name else [])], capture_output=True, text=True, check=False)
    classes = {}
    for line in done.stdout.splitlines():
        if line and not line.startswith(" "):
            current = classes.setdefault(line.split()[0], [])
        elif line:
            current.append(re.sub(r"^  (shared )?\w+ +", "", line))
    return classes


def as_declared_by(command, pages):
    """The same in a 32-bit program, where the platform's structures have smaller numbers."""
    if Path(command).read_bytes()[4] != 1:  # of an ELF file: its class
        return pages
    smaller = {"double": "single", "UInt64": "UInt32"}
    return {name: [re.sub(r"\b(double|UInt64)\b", lambda word: smaller[word[0]], text) for text in texts]
            if name.startswith("NS") else texts for name, texts in pages.items()}


def main():
    command, project = sys.argv[1], Path(sys.argv[2])
    library, language = project / "docs" / "library.md", project / "docs" / "language.md"
    pages, faults = as_declared_by(command, described(library)), []
    # The classes of discs have a reference of their own. Exceptions have nothing but what they inherit.
    wanted = {name for name in listed(command) if not name.startswith("DR")}
    words = {word for page in (library, language) for code in code_of(page) for word in re.findall(r"[\w.]+", code)}
    for source in sorted((project / "host").rglob("*.cpp")):
        text = source.read_text(encoding="utf-8")
        wanted.update(re.findall(r'(?:builtinWith<\w+>|streamClass)\("(\w+)"', text))
        if source.name == "Builtins.cpp":
            wanted.update(re.findall(r'root\.spec\.name = "(\w+)"', text))
            faults += [f"{language.name}: {name} is not named" for name in re.findall(r'"(\w+Exception)"', text)
                       if name not in words]
        if source.name == "ArrayMethods.cpp":
            known = {word.lower() for word in words}
            faults += [f"{language.name}: {name} of arrays is not named"
                       for name in re.findall(r'(?m)^    \{"([a-z]\w*)", ', text) if name not in known]
        if source.parent.name == "library":
            faults += [f"{library.name}: {name} is not described"
                       for name in sorted(set(re.findall(r'(?m)^    \{"([A-Z][\w.]*)', text)) - words)]
    if len(wanted) < 15 or not {"MemoryBlock", "BinaryStream", "RuntimeException", "NSWindowQRX"} <= wanted:
        faults.append(f"not all classes were found: {sorted(wanted)}")
    for name in sorted(wanted | set(pages)):
        declared = listed(command, name).get(name)
        if declared is None:
            faults.append(f"{library.name}: there is no class {name}")
            continue
        faults += [f"{library.name}: {name}: {text} is not described" for text in declared if text not in pages.get(name, [])]
        faults += [f"{library.name}: {name}: {text} is described, but not declared" for text in pages.get(name, [])
                   if text not in declared]
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
