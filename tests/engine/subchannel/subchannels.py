#!/usr/bin/env python3
"""Reads a file of subchannels: 96 bytes a sector, channel by channel from P to W.

    subchannels.py SUB [SYMBOLS]    says what P and Q tell; the symbols of R to W, one a byte, go to a file
"""
import binascii
import sys

ROW = 12
SECTOR = 8 * ROW


def sectors(data):
    if len(data) % SECTOR:
        raise ValueError("the file is no whole number of sectors")
    return [data[at:at + SECTOR] for at in range(0, len(data), SECTOR)]


def symbols(sector):
    """R in bit 5 to W in bit 0."""
    rows = [int.from_bytes(sector[channel * ROW:(channel + 1) * ROW], "big") for channel in range(2, 8)]
    return bytes(sum((row >> (95 - place) & 1) << (5 - bit) for bit, row in enumerate(rows)) for place in range(96))


def symbols_of(path):
    with open(path, "rb") as file:
        return b"".join(symbols(sector) for sector in sectors(file.read()))


def decimal(byte):
    if byte >> 4 > 9 or byte & 15 > 9:
        raise ValueError(f"{byte:02x} are no two digits")
    return byte // 16 * 10 + byte % 16


def frames(time):
    minutes, seconds, frame = (decimal(byte) for byte in time)
    if seconds > 59 or frame > 74:
        raise ValueError(f"{time.hex()} is no time")
    return (minutes * 60 + seconds) * 75 + frame


def clock(count):
    return f"{count // 4500:02}:{count // 75 % 60:02}:{count % 75:02}"


def code_of_track(q):
    bits = int.from_bytes(q[1:9], "big")
    wide = [bits >> (64 - 6 * (place + 1)) & 63 for place in range(5)]
    digits = [bits >> (32 - 4 * (place + 1)) & 15 for place in range(7)]
    if bits & 15 or bits >> 32 & 3:
        raise ValueError("the recording code has bits behind it")
    return "".join(chr(48 + value) for value in wide) + "".join(map(str, digits))


def told(data):
    """One line for each stretch of a track's index, and one for each code, with how often it came."""
    runs, codes, address = [], {}, None
    for number, sector in enumerate(sectors(data)):
        p, q = sector[:ROW], sector[ROW:2 * ROW]
        if p not in (bytes(ROW), b"\xff" * ROW):
            raise ValueError(f"sector {number}: P changes inside of the sector")
        if ~binascii.crc_hqx(q[:10], 0) & 0xFFFF != int.from_bytes(q[10:], "big"):
            raise ValueError(f"sector {number}: Q and its code don't go together")
        mode, control = q[0] & 15, q[0] >> 4
        address = None if address is None else address + 1
        if mode in (2, 3):
            if address is None or decimal(q[9]) != address % 75:
                raise ValueError(f"sector {number}: a code in a wrong frame")
            code = "catalog " + q[1:8].hex()[:13] if mode == 2 else "recording " + code_of_track(q)
            codes[code] = codes.get(code, 0) + 1
            runs[-1]["count"] += 1
            continue
        place = (decimal(q[1]), decimal(q[2]), control, p[0] != 0)
        relative, absolute = frames(q[3:6]), frames(q[7:10])
        if mode != 1 or q[6] or (address is not None and absolute != address):
            raise ValueError(f"sector {number}: {q.hex()} is no place behind {address}")
        address = absolute
        if not runs or runs[-1]["place"] != place:
            runs.append({"place": place, "from": absolute, "relative": relative, "count": 0})
        run = runs[-1]
        moved = absolute - run["from"]
        if relative != run["relative"] + (moved if place[1] else -moved):
            raise ValueError(f"sector {number}: its place in the track is {clock(relative)}")
        run["count"] += 1
    lines = []
    for run in runs:
        track, index, control, pause = run["place"]
        lines.append(f"track {track} index {index}: {run['count']} sectors from {clock(run['from'])}, "
                     f"{clock(run['relative'])} {'up' if index else 'down'}, control {control}{', P' if pause else ''}")
    return lines + [f"{code}, {count} times" for code, count in sorted(codes.items())]


def main():
    with open(sys.argv[1], "rb") as file:
        data = file.read()
    print("\n".join(told(data)))
    if len(sys.argv) > 2:
        with open(sys.argv[2], "wb") as file:
            file.write(b"".join(symbols(sector) for sector in sectors(data)))


if __name__ == "__main__":
    main()
