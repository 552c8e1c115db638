#!/usr/bin/env python3
"""docs/variables.md names every environment variable that the programs and their scripts read.

Usage: variables.py PROJECT
"""
import re
import sys
from pathlib import Path

# What code asks for by a text, examples by their function, and scripts with a default.
READERS = {"host platform plugin companion": r'\b(?:getenv|environment)\("([A-Z_]+)"\)',
           "examples": r'EnvironmentVariable\("([A-Z_]+)"\)',
           "run test tools": r"\$\{([A-Z][A-Z_]+):"}


def main():
    project, faults, seen = Path(sys.argv[1]), [], set()
    named = set(re.findall(r"`([A-Z_]+)`", (project / "docs" / "variables.md").read_text(encoding="utf-8")))
    for rooms, reading in READERS.items():
        for room in map(project.joinpath, rooms.split()):
            for file in sorted(room.rglob("*")) if room.is_dir() else [room]:
                if not file.is_file():
                    continue
                read = set(re.findall(reading, file.read_text(encoding="utf-8", errors="replace")))
                seen |= read
                faults += [f"{file.relative_to(project)}: {name} is not in docs/variables.md" for name in sorted(read - named)]
    faults += [f"the search for {name} finds nothing" for name in ("DISC_DRIVES", "TMPDIR", "DISC_CMAKE_ARGS")
               if name not in seen]
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
