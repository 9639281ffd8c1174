#!/usr/bin/env python3
"""Tests of type_on_serial.py with a stand-in for QEMU: a small Python
program on the same pipes. Each stand-in decides by itself when to close
its output and when to exit, so no outcome here depends on how fast either
side runs."""
import os
import subprocess
import sys
import tempfile
import textwrap
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
SCRIPT = os.path.join(HERE, "type_on_serial.py")

# Draws "page 1", echoes the three keys it is typed (Down, Enter, Esc),
# prints the verdict and closes the serial line. It then holds on to its
# input until that ends, as QEMU may still be tearing down after its last
# output, and only then exits with isa-debug-exit's PASS status.
CLOSES_OUTPUT_THEN_EXITS = textwrap.dedent(r"""
    import os, sys
    os.write(1, b"RAIDHOST-SCREEN-BEGIN\r\nRAID Setup - Select RAID Adapter\r\n")
    typed = b""
    while not typed.endswith(b"\x1b[B\r\x1b"):
        byte = os.read(0, 1)
        if not byte:
            os._exit(2)
        typed += byte
    os.write(1, b"typed: " + typed.hex().encode() + b"\r\nRAIDHOST-VERDICT: PASS\r\n")
    os.close(1)
    while os.read(0, 4096):
        pass
    os._exit(1)
""")

# Prints the verdict and exits with isa-debug-exit's FAIL status without
# waiting for a key.
EXITS_AT_ONCE = textwrap.dedent(r"""
    import os
    os.write(1, b"RAIDHOST-VERDICT: FAIL\r\n")
    os._exit(3)
""")

# Never draws page 1 and never ends: only the ceiling stops it.
NEVER_ENDS = textwrap.dedent(r"""
    import os, signal
    os.write(1, b"booting\r\n")
    while True:
        signal.pause()
""")


def run(program, seconds=60.0):
    """type_on_serial.py on a stand-in; its exit status and the log."""
    with tempfile.TemporaryDirectory() as scratch:
        log = os.path.join(scratch, "serial.log")
        status = subprocess.run(
            [sys.executable, SCRIPT, "--log", log, "--after", "RAIDHOST-SCREEN-BEGIN",
             "--wait-for", "Select RAID Adapter", "--pause", "0",
             "--seconds", str(seconds), "--keys", r"\x1b[B", r"\r", r"\x1b",
             "--", sys.executable, "-c", program],
            stdin=subprocess.DEVNULL).returncode
        with open(log, "rb") as f:
            return status, f.read()


class TypeOnSerialTest(unittest.TestCase):
    def test_exit_status_after_the_serial_line_closed(self):
        # The serial line ends while the process is still there: its exit
        # status is waited for, not replaced by the timeout's 124.
        status, log = run(CLOSES_OUTPUT_THEN_EXITS)
        self.assertEqual(status, 1, log)
        self.assertIn(b"typed: " + b"\x1b[B\r\x1b".hex().encode(), log)
        self.assertIn(b"RAIDHOST-VERDICT: PASS", log)

    def test_exit_status_of_a_process_that_ended(self):
        status, log = run(EXITS_AT_ONCE)
        self.assertEqual(status, 3, log)
        self.assertIn(b"RAIDHOST-VERDICT: FAIL", log)

    def test_ceiling_stops_a_process_that_never_ends(self):
        status, log = run(NEVER_ENDS, seconds=0.5)
        self.assertEqual(status, 124, log)
        self.assertIn(b"booting", log)


if __name__ == "__main__":
    unittest.main()
