#!/usr/bin/env python3
"""Seeds for fuzz_backend_replay from recorded sessions of the virtual
adapters (raidcfg-host --record DIR).

For each family and operation, the target is run on a seed that starts with
no outputs; it lists the command lines it ran, and each run
gets the recorded output of that command line (its N-th recording for its
N-th run, the last one again after that, as a replay plays back). An
answer may change which commands follow, so that repeats until the target
runs the same command lines twice in a row.

  make_replay_seeds.py TARGET OUT_DIR RECORDED_DIR...
"""
import os
import subprocess
import sys
import tempfile

FAMILIES = {"megaraid": 0, "microchip": 1, "intel": 2, "m2": 3}
# Operation number and the detail byte: read, refresh, delete array,
# delete volume, create on two new drives (RAID 1), create in a free
# segment, one drive to a hot spare, all drives to unconfigured good.
OPERATIONS = [("read", 0, 0), ("refresh", 1, 0), ("delete-array", 2, 0),
              ("delete-volume", 3, 0), ("create-new", 4, 0x09),
              ("create-free", 5, 0), ("drive-state", 6, 0x10),
              ("all-states", 7, 0)]


def load_recordings(directories):
    recorded = {}
    for directory in directories:
        with open(os.path.join(directory, "commands.txt"), encoding="utf-8") as index:
            for line in index:
                line = line.rstrip("\r\n")
                if "\t" not in line:
                    continue
                name, command = line.split("\t", 1)
                with open(os.path.join(directory, name), "rb") as output:
                    recorded.setdefault(command, []).append(output.read())
    return recorded


def commands_run(target, seed):
    with tempfile.NamedTemporaryFile(delete=False) as handle:
        handle.write(seed)
    try:
        result = subprocess.run([target, handle.name], capture_output=True,
                                env=dict(os.environ, FUZZ_REPLAY_LIST_COMMANDS="1"),
                                check=False)
    finally:
        os.unlink(handle.name)
    lines = result.stderr.decode("utf-8", "replace").splitlines()
    return [line[len("command: "):] for line in lines if line.startswith("command: ")]


def make_seed(target, head, recorded):
    outputs, previous = [], None
    for _ in range(64):
        commands = commands_run(target, head + b"\0".join(outputs))
        if commands == previous:
            break
        previous = commands
        seen = {}
        outputs = []
        for command in commands:
            count = seen.get(command, 0)
            seen[command] = count + 1
            answers = recorded.get(command, [b""])
            outputs.append(answers[min(count, len(answers) - 1)].replace(b"\0", b""))
    return head + b"\0".join(outputs)


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    target, out_dir, directories = sys.argv[1], sys.argv[2], sys.argv[3:]
    recorded = load_recordings(directories)
    os.makedirs(out_dir, exist_ok=True)
    for family, number in FAMILIES.items():
        for name, operation, detail in OPERATIONS:
            head = bytes([(operation << 2) | number, detail])
            seed = make_seed(target, head, recorded)
            with open(os.path.join(out_dir, f"{family}-{name}"), "wb") as out:
                out.write(seed)


if __name__ == "__main__":
    main()
