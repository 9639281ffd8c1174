#!/usr/bin/env python3
"""Runs QEMU with its serial line on this script's pipes, as an operator at a
terminal: writes everything the line carries to --log, and once --wait-for
has appeared after --after, types each --keys entry in turn (Python escapes:
"\\x1b[B" is Down, "\\r" Enter, "\\x1b" Esc), --pause seconds apart.

Usage: type_on_serial.py --log FILE --after TEXT --wait-for TEXT
           --keys KEY [KEY ...] [--pause S] [--seconds S] -- qemu-system-x86_64 ...
Exit status: QEMU's, or 124 when it ran longer than --seconds. The end of
QEMU's output is not the end of QEMU: its exit status is waited for (up to
--seconds in all).
"""
import argparse
import os
import select
import subprocess
import sys
import time


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--log", required=True)
    parser.add_argument("--after", required=True)
    parser.add_argument("--wait-for", required=True)
    parser.add_argument("--keys", nargs="+", required=True)
    parser.add_argument("--pause", type=float, default=1.0)
    parser.add_argument("--seconds", type=float, default=30)
    parser.add_argument("qemu", nargs=argparse.REMAINDER)
    args = parser.parse_args()
    command = args.qemu[1:] if args.qemu[:1] == ["--"] else args.qemu
    keys = [k.encode("latin-1").decode("unicode_escape").encode("latin-1") for k in args.keys]

    qemu = subprocess.Popen(command + ["-serial", "stdio"], stdin=subprocess.PIPE,
                            stdout=subprocess.PIPE)
    deadline = time.monotonic() + args.seconds
    seen = b""
    next_key_at = None
    with open(args.log, "wb") as log:
        while qemu.poll() is None and time.monotonic() < deadline:
            ready, _, _ = select.select([qemu.stdout], [], [], 0.1)
            if ready:
                data = os.read(qemu.stdout.fileno(), 65536)
                if not data:
                    break  # QEMU closed the serial line: it is exiting
                log.write(data)
                seen += data
            if next_key_at is None and keys:
                start = seen.find(args.after.encode())
                if start >= 0 and seen.find(args.wait_for.encode(), start) >= 0:
                    next_key_at = time.monotonic() + args.pause
            if next_key_at is not None and keys and time.monotonic() >= next_key_at:
                try:
                    qemu.stdin.write(keys.pop(0))
                    qemu.stdin.flush()
                except BrokenPipeError:
                    keys = []  # QEMU closed its input: it is exiting
                next_key_at = time.monotonic() + args.pause
        # A process's files are closed before its exit status can be
        # collected: the end of the serial line may come first, and only
        # the ceiling may stop a QEMU that is still there.
        try:
            qemu.stdin.close()
        except BrokenPipeError:
            pass
        try:
            qemu.wait(timeout=max(0.0, deadline - time.monotonic()))
        except subprocess.TimeoutExpired:
            qemu.kill()
            qemu.wait()
            return 124
        log.write(qemu.stdout.read() or b"")
    return qemu.returncode


if __name__ == "__main__":
    sys.exit(main())
