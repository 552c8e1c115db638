#!/usr/bin/env python3
"""docs/errors.md has every error code with its name and its sentence, says what helps, and has none that isn't there.

Usage: errors.py PROJECT
"""
import re
import sys
from pathlib import Path


def main():
    project = Path(sys.argv[1])
    codes = re.findall(r"(?m)^    (\w+) = (0x[0-9A-F]{8}),", (project / "platform/engine/Error.hpp").read_text(encoding="utf-8"))
    texts = dict(re.findall(r'\{ErrorCode::(\w+), "([^"]+)"\}', (project / "platform/engine/Error.cpp").read_text(encoding="utf-8")))
    rows = [[cell.strip() for cell in line.strip("|").split("|")]
            for line in (project / "docs/errors.md").read_text(encoding="utf-8").splitlines() if line.startswith("| 0x")]
    wanted = [[code, name, texts.get(name, "")] for name, code in codes]
    faults = [f"docs/errors.md: {' '.join(row)} is missing" for row in wanted if row not in [found[:3] for found in rows]]
    faults += [f"docs/errors.md: {' '.join(row)} is no error's" for row in rows if row[:3] not in wanted]
    faults += [f"docs/errors.md: {row[0]} doesn't say what helps" for row in rows if len(row) != 4 or not row[3]]
    if not codes:
        faults.append("platform/engine/Error.hpp: no code was found")
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
