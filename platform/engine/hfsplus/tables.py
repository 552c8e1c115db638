#!/usr/bin/python3
"""tables.py: writes Tables.cpp, what HFS+ knows of characters, from Python's copy of Unicode 3.2.

    tables.py > Tables.cpp

The rules are those of Apple's Technical Note TN1150:
- Names are stored decomposed, but for three ranges whose characters stay as they are. The tables reach up to U+FFFF.
- Names are compared without case by a table that was made when Unicode was at 2.1 and never changed since: of what
  later versions added or gave a lower case, nothing is in it; Georgian capitals, which later ones took out, are.
  Characters that are taken apart can't be in a name and are left out. Some invisible characters count for nothing.
"""
import sys
from unicodedata import ucd_3_2_0 as unicode

KEPT_WHOLE = [range(0x2000, 0x3000), range(0xF900, 0xFB00)]
IGNORED = [*range(0x200C, 0x2010), *range(0x202A, 0x202F), *range(0x206A, 0x2070), 0xFEFF]
# Where the comparison knows letters at all, by the high byte.
FOLDED_PAGES = {0x00, 0x01, 0x03, 0x04, 0x05, 0x10, 0x21, 0xFF}
# Lower cases of Unicode 3.0 to 3.2: a Latin YR and HWAIR, WYNN, archaic Greek, Cyrillic additions, and the units
# OHM, KELVIN and ANGSTROM.
LATER = {0x01A6, 0x01F6, 0x01F7, 0x03D8, 0x03DA, 0x03DC, 0x03DE, 0x03E0, 0x03F4, 0x048A, 0x048C, 0x048E, 0x04C5,
         0x04C9, 0x04CD, *range(0x0500, 0x0510), 0x2126, 0x212A, 0x212B}


def parts(code):
    """The one or two characters that a character is made of, as the Unicode database has them."""
    if any(code in kept for kept in KEPT_WHOLE):
        return None
    text = unicode.decomposition(chr(code))
    if not text or text.startswith("<"):
        return None
    return [int(part, 16) for part in text.split()] if " " in text else [int(text, 16), 0]


def lower(code):
    if 0x10A0 <= code <= 0x10C5:
        return code + 0x30
    if code >> 8 not in FOLDED_PAGES or code in LATER or parts(code):
        return code
    changed = chr(code).lower()
    if len(changed) != 1 or unicode.category(chr(code)) == "Cn" or unicode.category(changed) == "Cn":
        return code
    return ord(changed)


def rows(items, each, width):
    cells = [each(item) for item in items]
    for start in range(0, len(cells), width):
        yield "    " + " ".join(cell + "," for cell in cells[start:start + width])


def table(kind, name, items, each, width):
    print(f"constexpr {kind} {name}Table[] = {{")
    print("\n".join(rows(items, each, width)))
    print("};\n")


basic = [code for code in range(0x10000) if not 0xD800 <= code < 0xE000]
apart = [(code, *parts(code)) for code in basic if parts(code)]
folded = [(0, 0xFFFF)] + [(code, 0) for code in IGNORED] + [(code, lower(code)) for code in basic if lower(code) != code]
ranges = []
for code in basic:
    kind = unicode.combining(chr(code))
    if kind == 0:
        continue
    if ranges and ranges[-1][1] == code - 1 and ranges[-1][2] == kind:
        ranges[-1][1] = code
    else:
        ranges.append([code, code, kind])

if __name__ == "__main__":
    if unicode.unidata_version != "3.2.0":
        sys.exit("tables.py: Unicode 3.2 is wanted")
    print("// Made by tables.py from Unicode's own data; changes belong there.")
    print('#include "Tables.hpp"\n')
    print("// clang-format off")
    print("namespace engine::hfsplus {\nnamespace {\n")
    table("Parts", "parts", apart, lambda item: "{0x%04X, 0x%04X, 0x%04X}" % item, 4)
    table("Folding", "foldings", sorted(folded), lambda item: "{0x%04X, 0x%04X}" % item, 6)
    table("CombiningRange", "combiningRanges", ranges, lambda item: "{0x%04X, 0x%04X, %d}" % tuple(item), 5)
    print("} // namespace\n")
    for kind, name in (("Parts", "parts"), ("Folding", "foldings"), ("CombiningRange", "combiningRanges")):
        print(f"const std::span<const {kind}> {name}{{{name}Table}};")
    print("\n} // namespace engine::hfsplus")
