#!/usr/bin/python3
"""Tracks of whole sectors and of blocks with their subheaders: every byte of a sector that the disc then has, against
the formulas of the standard worked out elsewhere."""
import os
import random
import subprocess
import sys
import unittest

from examples_case import HOST, LIMIT, OPTIONS, ROOT, ExamplesCase

sys.path.append(os.path.join(ROOT, "tests", "engine", "sectors"))
import sectors  # noqa: E402 (beside the engine's own tests)

BLOCKS = 40
RAW_MODE_1, RAW_MODE_2, XA = (2352, 8, 17, 0), (2352, 12, 33, 32), (2336, 9, 48, 32)
KINDS_OF_VERIFICATION = ("Checksum", "ProduceAgain", "ReceiveData")


class RawBlocks(ExamplesCase):
    def setUp(self):
        super().setUp()
        self.noise = random.Random(7)

    def burn(self, kind, blocks, verification):
        path = os.path.join(self.scratch, "blocks")
        with open(path, "wb") as file:
            file.write(b"".join(blocks))
        folder = os.path.join(self.drives, "drive-1")
        if not os.path.exists(folder):
            self.make_drive(kind="CD-RW", capacityBlocks=359847)
        subprocess.run([HOST, *OPTIONS, "run", os.path.join(ROOT, "examples", "erase.bas"), "--yes"], check=True,
                       env=self.environment(), capture_output=True, timeout=LIMIT)
        program = os.path.join(ROOT, "tests", "disc", "blocks.bas")
        done = subprocess.run([HOST, *OPTIONS, "run", program, path, *map(str, kind),
                               "DRVerificationType" + verification], capture_output=True, text=True, timeout=LIMIT,
                              env=self.environment(), check=False)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""), (kind, verification))
        with open(os.path.join(folder, "medium.bin"), "rb") as file:
            whole = file.read()
        self.assertEqual(len(whole), BLOCKS * 2352)
        return [whole[at:at + 2352] for at in range(0, len(whole), 2352)]

    def same(self, found, right, what):
        parts = {"sync": (0, 12), "header": (12, 16), "subheader and data": (16, 2072), "codes": (2072, 2352)}
        for number, (one, other) in enumerate(zip(found, right, strict=True)):
            for name, (start, end) in parts.items():
                self.assertEqual(one[start:end], other[start:end], f"{name} of sector {number} ({what})")

    def xa_user(self, number, codes=bytes(280)):
        """A block of XA without its codes: form 1 and form 2 in turn, with a file and a channel of its own."""
        submode = 0x28 if number % 3 == 2 else 0x08
        subheader = bytes([1, number % 32, submode, 0]) * 2
        data = self.noise.randbytes(2324 if submode & 0x20 else 2048)
        return (subheader + data + codes)[:2336]

    def test_whole_sectors_of_mode_1_stay_as_they_are(self):
        users = [self.noise.randbytes(2048) for _ in range(BLOCKS)]
        right = [sectors.sector(sectors.DATA, address, user) for address, user in enumerate(users)]
        for verification in KINDS_OF_VERIFICATION:
            self.same(self.burn(RAW_MODE_1, right, verification), right, verification)
        folder = os.path.join(self.drives, "drive-1")
        subprocess.run(["bchunk", "medium.bin", "medium.cue", "out"], cwd=folder, check=True, capture_output=True)
        with open(os.path.join(folder, "out01.iso"), "rb") as file:
            self.assertEqual(file.read(), b"".join(users), "another program takes the data out of them")

    def test_whole_sectors_of_mode_2_stay_as_they_are(self):
        right = [sectors.sector(sectors.XA, address, self.xa_user(address)) for address in range(BLOCKS)]
        for verification in KINDS_OF_VERIFICATION:
            self.same(self.burn(RAW_MODE_2, right, verification), right, verification)

    def test_blocks_with_subheaders_get_their_sync_header_and_codes(self):
        users = [self.xa_user(number) for number in range(BLOCKS)]
        right = [sectors.sector(sectors.XA, address, user) for address, user in enumerate(users)]
        for verification in KINDS_OF_VERIFICATION:
            self.same(self.burn(XA, [sector[16:] for sector in right], verification), right, verification)
        # What stands where the codes go is of no meaning: the medium makes them. Who compares for himself sees them.
        for filler in (bytes(280), self.noise.randbytes(280)):
            blocks = [user[:2332] + filler[:4] if user[2] & 0x20 else user[:2056] + filler for user in users]
            for verification in ("Checksum", "ProduceAgain"):
                self.same(self.burn(XA, blocks, verification), right, verification)


if __name__ == "__main__":
    unittest.main()
