#!/usr/bin/env python3
"""sectors.py USERS SECTORS: sectors of a CD straight from the formulas of ECMA-130, slowly.

Each record of USERS is a form's number as the test counts it, an address (little-endian, signed, 4 bytes) and the user
data of that form. SECTORS gets the whole sectors.
"""
import sys

DATA, FORMLESS, FORM1, FORM2, XA = range(5)
USER_BYTES = {DATA: 2048, FORMLESS: 2336, FORM1: 2048, FORM2: 2324, XA: 2336}


def polynomial(*exponents):
    return sum(1 << exponent for exponent in exponents)


def product(a, b):
    """Of polynomials over GF(2)."""
    result = 0
    while b:
        if b & 1:
            result ^= a
        a, b = a << 1, b >> 1
    return result


CODE = product(polynomial(16, 15, 2, 0), polynomial(16, 2, 1, 0))


def detection_code(data):
    """14.3: the remainder, bits of a byte taken from the least significant on, and put so again."""
    remainder = 0
    for byte in data:
        for bit in range(8):
            remainder = remainder << 1 | (byte >> bit & 1)
            if remainder >> 32:
                remainder ^= CODE
    for _ in range(32):
        remainder <<= 1
        if remainder >> 32:
            remainder ^= CODE
    return bytes(int(f"{remainder >> (24 - 8 * place) & 255:08b}"[::-1], 2) for place in range(4))


# Annex A: GF(2^8) over x^8 + x^4 + x^3 + x^2 + 1.
POWERS = [1]
while len(POWERS) < 255:
    doubled = POWERS[-1] << 1
    POWERS.append(doubled ^ polynomial(8, 4, 3, 2, 0) if doubled >> 8 else doubled)
LOGS = {value: exponent for exponent, value in enumerate(POWERS)}


def times(a, b):
    return POWERS[(LOGS[a] + LOGS[b]) % 255] if a and b else 0


def over(a, b):
    return POWERS[(LOGS[a] - LOGS[b]) % 255] if a else 0


def parity_pair(word):
    """The last two of a word whose sum, and whose sum weighted by alpha^(places behind it), are zero."""
    plain = weighted = 0
    for place, byte in enumerate(word):
        plain ^= byte
        weighted ^= times(byte, POWERS[(len(word) + 1 - place) % 255])
    first = over(plain ^ weighted, 1 ^ POWERS[1])
    return first, plain ^ first


def parity(covered):
    """Of the 2064 bytes from the header on: words S(n) of two bytes, each byte plane coded by itself."""
    planes = [list(covered[plane::2]) + [0] * (1170 - 1032) for plane in range(2)]
    for s in planes:
        for n in range(43):
            s[43 * 24 + n], s[43 * 25 + n] = parity_pair([s[43 * m + n] for m in range(24)])
        for n in range(26):
            s[43 * 26 + n], s[44 * 26 + n] = parity_pair([s[(44 * m + 43 * n) % 1118] for m in range(43)])
    return bytes(byte for pair in zip(planes[0][1032:], planes[1][1032:]) for byte in pair)


def bcd(number):
    return int(str(number), 16)


def header(address, mode):
    frames = (address + 150) % (100 * 60 * 75)
    return bytes([bcd(frames // 75 // 60), bcd(frames // 75 % 60), bcd(frames % 75), mode])


def sector(form, address, user):
    sync = bytes([0] + [255] * 10 + [0])
    if form == DATA:
        front = sync + header(address, 1) + user
        front += detection_code(front) + bytes(8)
        return front + parity(front[12:])
    front = sync + header(address, 2)
    if form == FORMLESS:
        return front + user
    if form == XA:
        subheader, user = user[:8], user[8:]
        form = FORM2 if subheader[2] & 0x20 else FORM1
        user = user[:USER_BYTES[form]]
    else:
        subheader = bytes([0, 0, 0x20 if form == FORM2 else 0x08, 0]) * 2
    body = subheader + user
    body += detection_code(body)
    return front + body if form == FORM2 else front + body + parity(bytes(4) + body)


def main():
    with open(sys.argv[1], "rb") as users, open(sys.argv[2], "wb") as sectors:
        while head := users.read(5):
            form, address = head[0], int.from_bytes(head[1:], "little", signed=True)
            whole = sector(form, address, users.read(USER_BYTES[form]))
            assert len(whole) == 2352, (form, len(whole))
            sectors.write(whole)


if __name__ == "__main__":
    main()
