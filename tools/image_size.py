#!/usr/bin/env python3
"""Prints a PE image's size on disk and the share its HII resource takes.

    image_size.py IMAGE [--limit-kib N]

Prints one line, e.g.
"raidcfg.efi: 301568 bytes (294.5 KiB) on disk, HII resource 61440 bytes (20.4%)".
With --limit-kib the exit status is 1 when the image is larger than N KiB.
"""

import os
import struct
import sys

from hii_resource_info import hii_data


def size_line(path):
    with open(path, "rb") as handle:
        image = handle.read()
    total = len(image)
    hii = len(hii_data(image))
    share = 100.0 * hii / total if total else 0.0
    return total, (f"{os.path.basename(path)}: {total} bytes "
                   f"({total / 1024:.1f} KiB) on disk, HII resource {hii} "
                   f"bytes ({share:.1f}%)")


def main(arguments):
    limit = None
    if len(arguments) == 3 and arguments[1] == "--limit-kib":
        limit = int(arguments[2])
        arguments = arguments[:1]
    if len(arguments) != 1:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    try:
        total, line = size_line(arguments[0])
    except (OSError, ValueError, struct.error, StopIteration) as error:
        print(f"{arguments[0]}: {error}", file=sys.stderr)
        return 1
    print(line)
    if limit is not None and total > limit * 1024:
        print(f"{arguments[0]}: larger than {limit} KiB", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
