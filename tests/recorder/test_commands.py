#!/usr/bin/python3
"""Commands one by one, in Python: what the recorder answers, and the sense data of what it refuses."""
import ctypes
import fcntl
import os
import subprocess
import sys
import unittest

from harness import DEVICE, RecorderTest

BLOCK = 2048


class Header(ctypes.Structure):
    _fields_ = [("interface_id", ctypes.c_int), ("direction", ctypes.c_int), ("cmd_len", ctypes.c_ubyte),
                ("mx_sb_len", ctypes.c_ubyte), ("iovec_count", ctypes.c_ushort), ("dxfer_len", ctypes.c_uint),
                ("dxferp", ctypes.c_void_p), ("cmdp", ctypes.c_void_p), ("sbp", ctypes.c_void_p),
                ("timeout", ctypes.c_uint), ("flags", ctypes.c_uint), ("pack_id", ctypes.c_int),
                ("usr_ptr", ctypes.c_void_p), ("status", ctypes.c_ubyte), ("masked_status", ctypes.c_ubyte),
                ("msg_status", ctypes.c_ubyte), ("sb_len_wr", ctypes.c_ubyte), ("host_status", ctypes.c_ushort),
                ("driver_status", ctypes.c_ushort), ("resid", ctypes.c_int), ("duration", ctypes.c_uint),
                ("info", ctypes.c_uint)]


def command(device, text, out=b"", room=0):
    """Sends a command written in hex; answers what came back, or its sense as "5/24/00"."""
    block = (ctypes.c_ubyte * 16)(*bytes.fromhex(text))
    data = ctypes.create_string_buffer(out, len(out)) if out else ctypes.create_string_buffer(max(room, 1))
    sense = (ctypes.c_ubyte * 32)()
    io = Header(ord("S"), -2 if out else -3 if room else -1, len(bytes.fromhex(text)), 32, 0, len(out) or room,
                ctypes.addressof(data), ctypes.addressof(block), ctypes.addressof(sense), 10000)
    fcntl.ioctl(device, 0x2285, io)
    if io.status:
        return f"{sense[2] & 15:x}/{sense[12]:02x}/{sense[13]:02x}"
    return data.raw[:room - io.resid]


def parameters(write_type=1, block_type=8, track_mode=4, more=0, test=0):
    """MODE SELECT's data with page 05."""
    page = bytearray(8 + 52)
    page[8:13] = [0x05, 0x32, 0x40 | test << 4 | write_type, more << 6 | track_mode, block_type]
    return bytes(page)


class Case(RecorderTest):
    """Runs its body in a process of its own, with the recorder preloaded."""

    def run(self, result=None):
        if "LD_PRELOAD" in os.environ:
            return super().run(result)
        # The state has its place in a folder that outlives neither process.
        self.setUp()
        name = self.id().rsplit(".", 1)[1]
        done = subprocess.run([sys.executable, __file__, f"Case.{name}"], env=self.environment(), check=False,
                              capture_output=True, text=True, timeout=60)
        self.doCleanups()
        result.startTest(self)
        if done.returncode == 0:
            result.addSuccess(self)
        else:
            result.addFailure(self, (AssertionError, AssertionError(done.stderr), None))
        result.stopTest(self)
        return result

    def setUp(self):
        super().setUp()
        if "DISC_RECORDER" in os.environ:
            self.folder = os.environ["DISC_RECORDER"]

    def start(self, medium, **state):
        self.insert(medium, **state)
        self.device = os.open(DEVICE, os.O_RDWR | os.O_NONBLOCK)
        self.addCleanup(os.close, self.device)

    def send(self, text, out=b"", room=0):
        return command(self.device, text, out, room)

    def select(self, **how):
        return self.send("55 10 00 00 00 00 00 00 3c 00", parameters(**how))

    def write(self, block, data):
        return self.send(f"2a 00 {block & 0xffffffff:08x} 00 {len(data) // BLOCK:04x} 00", data)

    def read(self, block, count=1):
        return self.send(f"28 00 {block:08x} 00 {count:04x} 00", room=count * BLOCK)

    def test_no_medium_and_open_tray(self):
        self.start("")
        self.assertEqual(self.send("00" * 6), "2/3a/01")
        self.assertEqual(self.send("1b 00 00 00 02 00"), b"")
        self.assertEqual(self.send("00" * 6), "2/3a/02")
        self.assertTrue(self.state()["trayOpen"])

    def test_a_new_medium_is_told_once(self):
        self.start("CD-RW")
        self.send("1b 00 00 00 02 00")
        self.send("1b 00 00 00 03 00")
        self.assertEqual(self.send("00" * 6), "6/28/00")
        self.assertEqual(self.send("00" * 6), b"")

    def test_a_locked_tray_stays_shut(self):
        self.start("CD-RW")
        self.send("1e 00 00 00 01 00")
        self.assertEqual(self.send("1b 00 00 00 02 00"), "5/53/02")
        self.send("1e 00 00 00 00 00")
        self.assertEqual(self.send("1b 00 00 00 02 00"), b"")

    def test_unknown_command(self):
        self.start("CD-RW")
        self.assertEqual(self.send("ff" * 6), "5/20/00")

    def test_write_once_stays_written(self):
        self.start("CD-R")
        self.select()
        self.assertEqual(self.write(0, bytes(10 * BLOCK)), b"")
        self.assertEqual(self.write(0, bytes(BLOCK)), "5/21/02")
        self.assertEqual(self.write(20, bytes(BLOCK)), "5/21/02")
        self.assertEqual(self.write(10, bytes(BLOCK)), b"")

    def test_past_the_end(self):
        self.start("CD-R", capacity=400)
        self.select()
        self.assertEqual(self.write(0, bytes(400 * BLOCK)), b"")
        self.assertEqual(self.write(400, bytes(BLOCK)), "5/21/00")

    def test_what_is_not_written_is_not_read(self):
        self.start("CD-R")
        self.assertEqual(self.read(0), "5/21/00")
        self.start("DVD+RW")
        self.assertEqual(self.read(0), "8/00/00")

    def test_run_out_is_not_read(self):
        self.start("CD-R")
        self.select()
        self.write(0, bytes(300 * BLOCK))
        self.assertEqual(self.send("5b 00 01 00 00 01 00 00 00 00"), b"")
        self.assertEqual(self.read(299), bytes(BLOCK))
        self.assertEqual(self.tracks()[0]["size"], 302)

    def test_a_closed_disc_is_write_protected(self):
        self.start("CD-R")
        self.select()
        self.write(0, bytes(300 * BLOCK))
        self.assertEqual(self.send("5b 00 02 00 00 00 00 00 00 00"), b"")
        self.assertEqual(self.write(452, bytes(BLOCK)), "7/27/00")
        self.assertEqual(self.send("a1 01 00 00 00 00 00 00 00 00 00 00"), "2/30/00")

    def test_one_track_has_one_mode(self):
        self.start("CD-R")
        self.select()
        self.write(0, bytes(10 * BLOCK))
        self.select(block_type=0, track_mode=0)
        self.assertEqual(self.send("2a 00 00 00 00 0a 00 00 01 00", bytes(2352)), "5/64/00")

    def test_raw_writing_is_not_offered(self):
        self.start("CD-R")
        self.assertEqual(self.select(write_type=3), "5/26/00")

    def test_a_drive_that_can_not_rehearse(self):
        self.start("CD-R", canTestWrite=False)
        self.assertEqual(self.select(test=1), "5/26/00")

    def test_blocks_before_a_cue_sheet(self):
        self.start("CD-R")
        self.select(write_type=2)
        self.assertEqual(self.write(-150, bytes(BLOCK)), "5/2c/00")
        self.assertEqual(self.send("5d 00 00 00 00 00 00 00 18 00", bytes(24)), "5/26/00")

    def test_unformatted_media_take_no_data(self):
        self.start("DVD+RW")
        self.assertEqual(self.write(0, bytes(16 * BLOCK)), "5/30/05")

    def feature(self, code):
        """Whether a feature is current."""
        answer = self.send(f"46 02 {code:04x} 00 00 00 00 10 00", room=16)
        return len(answer) > 10 and answer[10] & 1 == 1

    def test_a_quickly_blanked_dvdrw_takes_one_session_in_one_go(self):
        self.start("DVD-RW")
        self.assertTrue(self.feature(0x21))
        self.assertEqual(self.send("a1 01 00 00 00 00 00 00 00 00 00 00"), b"")
        self.assertFalse(self.feature(0x21))
        self.select(write_type=0)
        self.assertEqual(self.send("53 00 00 00 00 00 00 00 20 00"), "5/64/00")
        self.assertEqual(self.write(0, bytes(16 * BLOCK)), "5/64/00")
        self.select(write_type=2)
        self.assertEqual(self.send("53 00 00 00 00 00 00 00 20 00"), b"")
        self.assertEqual(self.write(0, bytes(32 * BLOCK)), b"")
        self.assertEqual(self.send("35 00 00 00 00 00 00 00 00 00"), b"")
        self.assertTrue(self.state()["finalised"])
        self.assertEqual(self.send("a1 00 00 00 00 00 00 00 00 00 00 00"), b"")
        self.assertTrue(self.feature(0x21))
        self.select(write_type=0)
        self.assertEqual(self.write(0, bytes(16 * BLOCK)), b"")

    def test_a_drive_that_promises_too_much(self):
        self.start("DVD-RW", onlyAtOnce=True, faults={"claimsIncremental": True})
        self.assertTrue(self.feature(0x21))
        self.select(write_type=0)
        self.assertEqual(self.write(0, bytes(16 * BLOCK)), "5/64/00")

    def test_formatting_in_the_background(self):
        self.start("DVD+RW")
        descriptor = bytes([0, 2, 0, 8]) + (2295104).to_bytes(4, "big") + bytes([0x26 << 2, 0, 0, 0])
        self.assertEqual(self.send("04 11 00 00 00 00", descriptor), b"")
        self.assertEqual([self.send("00" * 6) for _ in range(4)], ["2/04/07", "2/04/07", "2/04/07", b""])
        self.assertEqual(self.write(1600, b"x" * 16 * BLOCK), b"")
        self.assertEqual(self.read(1600), b"x" * BLOCK)
        self.assertEqual(self.write(2295104, bytes(BLOCK)), "5/21/00")

    def test_a_format_that_the_kind_has_not(self):
        self.start("DVD+RW")
        descriptor = bytes([0, 2, 0, 8]) + (2295104).to_bytes(4, "big") + bytes([0x10 << 2, 0, 0, 0])
        self.assertEqual(self.send("04 11 00 00 00 00", descriptor), "5/30/06")

    def test_faults_on_request(self):
        self.start("DVD+RW", formatted=True, faults={"readErrors": [5], "writeErrors": [7]})
        self.assertEqual(self.read(4), bytes(BLOCK))
        self.assertEqual(self.read(5), "3/11/00")
        self.assertEqual(self.write(6, bytes(BLOCK)), b"")
        self.assertEqual(self.write(7, bytes(BLOCK)), "3/0c/00")
        self.start("CD-R", faults={"powerCalibration": True})
        self.assertEqual(self.send("54 01 00 00 00 00 00 00 00 00"), "3/73/03")

    def test_a_drive_that_leaves_the_bus(self):
        self.start("DVD+RW", formatted=True, faults={"goneAfterWrites": 1})
        self.assertEqual(self.write(0, bytes(BLOCK)), b"")
        with self.assertRaises(OSError):
            self.write(1, bytes(BLOCK))
        with self.assertRaises(OSError):
            os.open(DEVICE, os.O_RDWR)

    def test_exclusive_open(self):
        self.start("DVD+RW")
        held = os.open(DEVICE, os.O_RDWR | os.O_EXCL)
        with self.assertRaises(OSError):
            os.open(DEVICE, os.O_RDWR | os.O_EXCL)
        os.close(held)
        os.close(os.open(DEVICE, os.O_RDWR | os.O_EXCL))

    def test_what_is_on_a_disc_of_two_sessions(self):
        self.start("CD-R")
        for start in (0, 11702):
            self.select(more=3)
            self.assertEqual(self.write(start, bytes(300 * BLOCK)), b"")
            self.send("5b 00 01 00 00 ff 00 00 00 00")
            self.assertEqual(self.send("5b 00 02 00 00 00 00 00 00 00"), b"")
        disc = self.send("51 00 00 00 00 00 00 00 22 00", room=34)
        self.assertEqual((disc[2] & 15, disc[4], disc[5], disc[6]), (1, 3, 3, 3))
        table = self.send("43 00 00 00 00 00 00 00 40 00", room=64)
        self.assertEqual([int.from_bytes(table[at + 4:at + 8], "big") for at in (4, 12, 20)], [0, 11702, 12004])
        next_one = self.send("52 01 00 00 00 ff 00 00 24 00", room=36)
        self.assertEqual(int.from_bytes(next_one[12:16], "big"), 12004 + 6900)


if __name__ == "__main__":
    unittest.main()
