#!/usr/bin/env python3
"""Checks the serial logs of raidhost.efi's OVMF runs (run-ovmf-test.sh).

Each check prints PASS or FAIL with what it looked for; the exit status is
0 when all passed. With --raidcfg-host the model printed under OVMF is
compared with `raidcfg-host --dump-model` for the same scenario and replay.
With --screen-log the screen the text UI drew in the screen mode is rebuilt
from the terminal output and checked for the wizard's first page. With
--cycles N the dump boot loaded and unloaded the module N times and the
firmware's free memory must be the same after the last cycle as after the
first. Each boot's start-up figures (the module's own time from its time
stamps, the boot to page 1) are printed, never checked: they depend on how
busy the machine is.
"""
import argparse
import json
import re
import subprocess
import sys

# What QEMU emulates: PCI identity, location as OVMF enumerates it, the
# name pcidb.xml gives, and the SMBIOS slot (65535: none).
EXPECTED_ADAPTERS = [
    {"device": "megasas", "ids": (0x1000, 0x0060, 0x1000, 0x1013), "location": (0, 5, 0),
     "name": "MegaRAID SAS 8708EM2", "slot": 0xFFFF},
    {"device": "megasas-gen2", "ids": (0x1000, 0x0079, 0x1000, 0x9261), "location": (1, 0, 0),
     "name": "MegaRAID SAS 9260-8i", "slot": 7},
]
PROBE_STRINGS = {"en-US": "Error", "de-DE": "Fehler"}
FIRST_PAGE_TITLE = "RAID Setup - Select RAID Adapter"
# Fields that differ between the emulated machine and a simulated one by
# nature: where the functions sit and which slot they are in.
LOCATION_FIELDS = {"Bus", "Device", "Function", "SlotNumber"}


class Checks:
    def __init__(self):
        self.failed = 0
        self.passed = 0

    def check(self, ok, what, detail=""):
        if ok:
            self.passed += 1
            print(f"PASS: {what}")
        else:
            self.failed += 1
            print(f"FAIL: {what}" + (f": {detail}" if detail else ""))
        return ok


class Terminal:
    """The part of a VT100 terminal that OVMF's console output needs: cursor
    moves, erasing, text; attributes are ignored. Snapshots keeps the screen
    as it was before each erase of the whole screen."""

    def __init__(self):
        self.cells = {}
        self.row = self.column = 0
        self.snapshots = []

    def text(self):
        if not self.cells:
            return ""
        rows = max(r for r, _ in self.cells) + 1
        lines = []
        for r in range(rows):
            width = max((c for rr, c in self.cells if rr == r), default=-1) + 1
            lines.append("".join(self.cells.get((r, c), " ") for c in range(width)).rstrip())
        return "\n".join(lines).rstrip("\n") + "\n"

    def clear(self):
        if self.cells:
            self.snapshots.append(self.text())
        self.cells = {}

    def feed(self, data):
        for match in re.finditer(r"\x1b\[([0-9;?]*)([A-Za-z])|\x1b[()][0-9A-Za-z]|\x1b.|([^\x1b])",
                                 data, re.S):
            if match.group(3) is not None:
                self.put(match.group(3))
            elif match.group(2) == "H":
                numbers = [int(n) if n else 1 for n in match.group(1).split(";")] + [1, 1]
                self.row, self.column = numbers[0] - 1, numbers[1] - 1
            elif match.group(2) == "J" and match.group(1) == "2":
                self.clear()

    def put(self, char):
        if char == "\r":
            self.column = 0
        elif char == "\n":
            self.row += 1
        elif char >= " ":
            self.cells[(self.row, self.column)] = char
            self.column += 1


def screen_from_log(raw):
    """The screen the text UI left when it cleared the console on closing
    (the last erase between the marker lines; the host's held-back lines
    follow it)."""
    match = re.search(r"RAIDHOST-SCREEN-BEGIN\r?\n(.*?)RAIDHOST-SCREEN-END", raw, re.S)
    if not match:
        return None
    terminal = Terminal()
    terminal.feed(match.group(1))
    return terminal.snapshots[-1] if terminal.snapshots else ""


def read_screen_run(c, name, path):
    """The log of a boot that drew the text UI, without escapes, and the
    screen it left; checks that the configuration chose the mode."""
    with open(path, encoding="cp437") as f:
        raw = f.read()
    log = re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "", raw).replace("\r", "")
    c.check(f"raidhost: mode {name} (configuration file)" in log,
            f"{name} boot: \\raidhost.cfg chose the {name} mode")
    screen = screen_from_log(raw)
    if not c.check(screen is not None, f"{name} boot: the text UI drew between the marker lines"):
        screen = ""
    return log, screen


def check_nodes_left(c, prefix, log):
    """raidhost counts the page nodes alive after UnloadImage, leaving out
    the module root: the framework makes that one before the module loads
    and frees it with itself, so the module cannot and must not free it.
    Every other node is a page the module left behind."""
    left = re.search(r"raidhost: page nodes left after unload: (\d+)", log)
    c.check(left is not None and left.group(1) == "0",
            f"{prefix}no page node left after unload (the framework's module root "
            "is not counted)", left.group(0) if left else "line missing")


def check_ended(c, name, log, qemu_status):
    c.check("RAIDHOST-VERDICT: PASS" in log and qemu_status == 1,
            f"{name} boot: raidhost's verdict PASS and QEMU ended through isa-debug-exit",
            f"QEMU status {qemu_status}")


def check_screen_run(c, args):
    log, screen = read_screen_run(c, "screen", args.screen_log)
    print_startup("screen", log)
    with open(f"{args.out}/screen.txt", "w") as f:
        f.write(screen)
    c.check(FIRST_PAGE_TITLE in screen,
            f"screen boot: the screen shows page 1's title \"{FIRST_PAGE_TITLE}\"",
            f"screen in {args.out}/screen.txt")
    for adapter in EXPECTED_ADAPTERS:
        c.check(adapter["name"] in screen,
                f"screen boot: the screen lists {adapter['device']} as \"{adapter['name']}\"")
    c.check(f'"{FIRST_PAGE_TITLE}"' in log and "raidhost: wizard page shown: node" in log,
            "screen boot: the framework's current page is page 1")
    check_nodes_left(c, "screen boot: ", log)
    check_ended(c, "screen", log, args.screen_qemu_status)


def check_interactive_run(c, args):
    """Keys typed on the serial line: Down, Enter (the second adapter is
    chosen and its status shown), Esc (the operator leaves)."""
    log, screen = read_screen_run(c, "interactive", args.interactive_log)
    print_startup("interactive", log)
    with open(f"{args.out}/interactive-screen.txt", "w") as f:
        f.write(screen)
    chosen = EXPECTED_ADAPTERS[1]
    c.check(FIRST_PAGE_TITLE in screen and f"(*) {chosen['name']}" in screen,
            f"interactive boot: Down and Enter on the serial line chose {chosen['name']}",
            f"screen in {args.out}/interactive-screen.txt")
    c.check("Serial Number: QEMU0002" in screen,
            "interactive boot: page 1 shows the chosen adapter's serial number QEMU0002")
    c.check("raidhost: wizard page shown: node" in log and "RAIDHOST-MODEL-BEGIN" in log,
            "interactive boot: Esc left the wizard, the model was printed after it")
    check_nodes_left(c, "interactive boot: ", log)
    check_ended(c, "interactive", log, args.interactive_qemu_status)


# The module's start-up, between its first and its last time-stamped step.
STARTUP_STEP = re.compile(r"RAID: \[RaidcfgSetupEntryPoint\] A (\S+) B (\S+): TimeStamp: ([0-9A-Fa-f]+)")
HOST_STAMPS = re.compile(r"raidhost: time stamps: StartImage 0x([0-9A-Fa-f]+) to 0x([0-9A-Fa-f]+) "
                         r"\(page 1 shown\), (\d+) per ms")
TRACE_ROUTES = {"serial": "the serial port", "memory": "a memory log", "console": "the console"}


def print_startup(name, log):
    """The module's own start-up from its first to its last time stamp, next
    to StartImage and to the boot up to page 1 (the processor's time-stamp
    counter counts from the machine's reset), as raidhost measured them."""
    route = re.search(r"raidhost: trace (\w+): Success", log)
    where = TRACE_ROUTES.get(route.group(1) if route else "console", "the console")
    steps = []
    for match in STARTUP_STEP.finditer(log):
        steps.append(int(match.group(3), 16))
        if match.group(2) == "return":
            break
    host = HOST_STAMPS.search(log)
    if len(steps) < 2 or not host or int(host.group(3)) == 0:
        print(f"start-up, {name} boot: figures missing (time stamps {len(steps)}, "
              f"raidhost's line {'found' if host else 'missing'})")
        return
    per_ms = int(host.group(3))
    module = (steps[-1] - steps[0]) / per_ms
    start_image = (int(host.group(2), 16) - int(host.group(1), 16)) / per_ms
    boot = int(host.group(2), 16) / per_ms
    print(f"start-up, {name} boot, trace to {where}: the module {module:.1f} ms (its time "
          f"stamps), StartImage {start_image:.1f} ms, boot to page 1 {boot:.0f} ms; "
          f"the module's share {100 * module / boot:.2f}%")


def check_cycles(c, log, cycles):
    """Every load cycle passed, and the firmware's free memory (conventional
    pages in its memory map) after the last equals that after the first."""
    found = re.findall(r"raidhost: cycle (\d+) of \d+: (passed|failed[^,]*), free memory (\d+) pages",
                       log)
    passed = [n for n, verdict, _ in found if verdict == "passed"]
    c.check(len(found) == cycles and len(passed) == cycles,
            f"dump boot: raidcfg.efi loaded, started and unloaded {cycles} times",
            f"{len(passed)} of {len(found)} cycles passed")
    pages = [int(p) for _, _, p in found]
    # 0 pages: raidhost could not read the memory map.
    c.check(len(pages) == cycles and pages[0] > 0 and pages[0] == pages[-1],
            "dump boot: the firmware's free memory after the last cycle equals that after "
            "the first", f"pages after each cycle: {pages}")


def model_from_log(log):
    match = re.search(r"RAIDHOST-MODEL-BEGIN\n(.*?)\nRAIDHOST-MODEL-END", log, re.S)
    if not match:
        return None
    return json.loads(match.group(1).replace("\n", ""))


def controller_ids(controller):
    p = controller.get("Private") or {}
    return (p.get("VendorId"), p.get("DeviceId"), p.get("SubVendorId"), p.get("SubDeviceId"))


def without_location(value):
    if isinstance(value, dict):
        return {k: without_location(v) for k, v in value.items() if k not in LOCATION_FIELDS}
    if isinstance(value, list):
        return [without_location(v) for v in value]
    return value


def first_difference(a, b, path="model"):
    if type(a) is not type(b):
        return f"{path}: {a!r} != {b!r}"
    if isinstance(a, dict):
        for key in sorted(set(a) | set(b)):
            if key not in a or key not in b:
                return f"{path}.{key}: only in {'OVMF' if key in a else 'native'}"
            diff = first_difference(a[key], b[key], f"{path}.{key}")
            if diff:
                return diff
        return None
    if isinstance(a, list):
        if len(a) != len(b):
            return f"{path}: {len(a)} entries != {len(b)}"
        for i, (x, y) in enumerate(zip(a, b)):
            diff = first_difference(x, y, f"{path}[{i}]")
            if diff:
                return diff
        return None
    return None if a == b else f"{path}: {a!r} != {b!r}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--log", required=True)
    parser.add_argument("--qemu-status", type=int, required=True)
    parser.add_argument("--out", required=True)
    parser.add_argument("--raidcfg-host")
    parser.add_argument("--scenario", required=True)
    parser.add_argument("--replay", required=True)
    parser.add_argument("--screen-log")
    parser.add_argument("--screen-qemu-status", type=int)
    parser.add_argument("--interactive-log")
    parser.add_argument("--interactive-qemu-status", type=int)
    parser.add_argument("--cycles", type=int, default=1)
    args = parser.parse_args()

    with open(args.log, encoding="ascii", errors="replace") as f:
        log = f.read()
    c = Checks()

    c.check("raidhost: start" in log, "raidhost.efi booted as \\EFI\\BOOT\\BOOTX64.EFI")
    c.check(re.search(r"raidhost: LoadImage \\raidcfg\.efi: Success", log) is not None,
            "LoadImage of raidcfg.efi by device path on the boot volume")
    c.check("raidhost: mode dump (configuration file)" in log,
            "\\raidhost.cfg chose the dump mode")
    c.check("raidhost: trace serial: Success" in log,
            "\\raidhost.cfg sent the module's trace lines to the serial port")
    print_startup("dump", log)
    c.check("raidhost: StartImage: Success" in log, "StartImage ran the module's start-up")
    c.check(f'raidhost: wizard page shown: node' in log and f'"{FIRST_PAGE_TITLE}"' in log,
            f"the module showed page 1 \"{FIRST_PAGE_TITLE}\" through the page framework")
    for adapter in EXPECTED_ADAPTERS:
        bus, dev, func = adapter["location"]
        line = f"Pci bus(RAID): 0x{bus:X}, Dev: 0x{dev:X}, Func: 0x{func:X}"
        c.check(line in log, f"{adapter['device']} found through PCI I/O ({line})")

    model = model_from_log(log)
    if not c.check(model is not None, "model printed between the marker lines"):
        model = {"controllers": []}
    c.check(model.get("status") == "Success" and model.get("errorCode") == 0,
            "InitializeRaid succeeded", f"status {model.get('status')}, "
            f"errorCode {model.get('errorCode')}")
    for adapter in EXPECTED_ADAPTERS:
        found = [x for x in model["controllers"] if controller_ids(x) == adapter["ids"]]
        ids = "%04x:%04x sub %04x:%04x" % adapter["ids"]
        if not c.check(len(found) == 1, f"{adapter['device']} in the model with QEMU's ids {ids}"):
            continue
        controller = found[0]
        private = controller["Private"]
        c.check(controller["Name"] == adapter["name"],
                f"{adapter['device']} named from pcidb.xml: {adapter['name']}", controller["Name"])
        c.check(controller["SlotNumber"] == adapter["slot"],
                f"{adapter['device']} SlotNumber {adapter['slot']:#x}", controller["SlotNumber"])
        c.check((private["Bus"], private["Device"], private["Function"]) == adapter["location"],
                f"{adapter['device']} at {adapter['location']}")
        c.check(private["Signature"] == "$lsi" and private["CardId"] != 0xFFFFFFFF,
                f"{adapter['device']} bound to the MegaRAID backend, card id from storcli",
                f"signature {private['Signature']!r}, card id {private['CardId']}")
    c.check("raidhost: unanswered tool commands: 0" in log,
            "every storcli command answered from the replay on the volume")

    c.check("raidhost: module package list in the HII database: found" in log,
            "the module's package list registered in the firmware's HII database")
    for language, text in PROBE_STRINGS.items():
        c.check(f"raidhost: string 818 {language}: {text}" in log,
                f"string 818 fetched back in {language}: {text}")
    c.check("raidhost: UnloadImage: Success" in log, "UnloadImage ran the unload handler")
    after = re.search(r"raidhost: after unload: string (.*), GUI driver (\w+), XML parsers (\d+)", log)
    c.check(after is not None and after.group(1) != "Success" and
            after.group(2) == "disconnected" and after.group(3) == "0",
            "after unload: strings removed, GUI driver disconnected, no parser left",
            after.group(0) if after else "line missing")
    check_nodes_left(c, "", log)
    if args.cycles > 1:
        check_cycles(c, log, args.cycles)
    c.check("RAIDHOST-VERDICT: PASS" in log and args.qemu_status == 1,
            "raidhost's verdict PASS and QEMU ended through isa-debug-exit",
            f"QEMU status {args.qemu_status}")

    if args.raidcfg_host:
        with open(f"{args.out}/ovmf-model.json", "w") as f:
            json.dump(model, f, indent=2)
        run = subprocess.run([args.raidcfg_host, "--scenario", args.scenario, "--replay",
                              args.replay, "--dump-model"], capture_output=True, text=True)
        with open(f"{args.out}/native-model.json", "w") as f:
            f.write(run.stdout)
        if c.check(run.returncode == 0, "raidcfg-host --dump-model --replay ran", run.stderr):
            native = json.loads(run.stdout)
            diff = first_difference(without_location(model), without_location(native))
            c.check(diff is None and model["controllers"],
                    "model under OVMF equals raidcfg-host's model for the same replay "
                    "(apart from PCI locations and slots)", diff or "no controllers")
    else:
        print("SKIP: model comparison (raidcfg-host is not built)")

    if args.screen_log:
        check_screen_run(c, args)
    if args.interactive_log:
        check_interactive_run(c, args)

    print(f"{c.passed} passed, {c.failed} failed")
    return 0 if c.failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
