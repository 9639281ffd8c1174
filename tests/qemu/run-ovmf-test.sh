#!/usr/bin/env bash
# Boots OVMF in QEMU with two emulated MegaRAID adapters and raidhost.efi
# as the boot loader, three times. The first boot (\raidhost.cfg: mode=dump)
# checks from the serial log that raidcfg.efi ran under real firmware: it
# found the adapters through PCI I/O with QEMU's ids, named them from
# pcidb.xml read through the firmware's file system, took the slot of one
# from an SMBIOS type 9 record, read their configuration from the replay,
# registered its strings, built its first page in the page framework and
# unloaded, and that 20 loads and unloads left the firmware's free memory
# as the first did; the model printed under OVMF is compared with the
# native host's model for the same scenario and replay. The second boot (mode=screen)
# draws the wizard's first page once with the text UI on the UEFI console;
# the screen is rebuilt from the serial line's terminal output and must
# show the page's title and both adapters. The third (mode=interactive)
# types Down, Enter and Esc on the serial line once page 1 is drawn: the
# second adapter must be chosen and the wizard left. Every boot must leave
# no page node behind after the unload and end through isa-debug-exit, and
# prints the module's start-up time from its time stamps next to the boot
# to page 1 (figures only: the machine's load decides them).
#
# Usage: run-ovmf-test.sh EFI_BUILD_DIR [NATIVE_BUILD_DIR] [OUTPUT_DIR]
# Exit status: 0 passed, 1 failed, 77 skipped (a tool or image missing).
set -uo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
efi_dir=${1:?usage: run-ovmf-test.sh EFI_BUILD_DIR [NATIVE_BUILD_DIR] [OUTPUT_DIR]}
native_dir=${2:-$root/build/native}
out=${3:-$root/build/qemu}
# A ceiling, not a pace: a boot ends by isa-debug-exit as soon as raidhost
# has its verdict, and QEMU's exit status is what tells how it ended (the
# interactive boot's harness waits for it after the serial line closes).
# Only a boot that hangs meets the ceiling, however busy the machine is:
# the dump boot with its 20 load cycles took 50 s while the native tests
# ran beside it on this 2-core machine.
boot_seconds=150
# Loads and unloads of the module in the dump boot; the firmware's free
# memory must be the same after the last as after the first.
cycles=20

ovmf_code=/usr/share/OVMF/OVMF_CODE_4M.fd
ovmf_vars=/usr/share/OVMF/OVMF_VARS_4M.fd
scenario=$here/qemu-megasas.json

skip() { echo "SKIP: $*"; exit 77; }

for tool in qemu-system-x86_64 mkfs.vfat mmd mcopy timeout python3; do
  command -v "$tool" >/dev/null || skip "$tool is not installed (scripts/setup.sh installs it)"
done
for file in "$ovmf_code" "$ovmf_vars"; do
  [[ -f "$file" ]] || skip "$file is missing (package ovmf)"
done
for image in raidhost.efi raidcfg.efi; do
  [[ -f "$efi_dir/$image" ]] || skip "$efi_dir/$image is not built"
done

rm -rf "$out"
mkdir -p "$out"
raidcfg_host=$native_dir/host/native/raidcfg-host

# The replay: recorded afresh from the virtual adapters when the native
# host is built, so it follows the module; else the committed recording.
replay=$out/replay
if [[ -x "$raidcfg_host" ]]; then
  "$raidcfg_host" --scenario "$scenario" --record "$replay" --dump-model \
    >"$out/recording-model.json" 2>"$out/recording.log" ||
    { echo "FAIL: raidcfg-host could not record the replay ($out/recording.log)"; exit 1; }
  echo "replay: recorded by $raidcfg_host"
else
  cp -r "$here/replay" "$replay"
  echo "replay: tests/qemu/replay (no native raidcfg-host in $native_dir)"
fi

# SMBIOS type 9 (2.6 layout) for the root port's bus 01: slot id 7.
printf '\x09\x11\x00\x09\x01\xa5\x0a\x04\x04\x07\x00\x0c\x01\x00\x00\x01\x00PCIe Slot 7\x00\x00' \
  >"$out/slot9.bin"

# The boot volume, without raidhost.cfg.
esp=$out/esp.img
mkfs.vfat -C "$esp" 16384 >/dev/null
export MTOOLS_SKIP_CHECK=1
mmd -i "$esp" ::/EFI ::/EFI/BOOT ::/replay
mcopy -i "$esp" "$efi_dir/raidhost.efi" ::/EFI/BOOT/BOOTX64.EFI
mcopy -i "$esp" "$efi_dir/raidcfg.efi" "$root/raidcfg/data/pcidb.xml" \
  "$root/raidcfg/data/raid.xml" ::/
mcopy -i "$esp" "$replay"/* ::/replay/

# boot MODE SERIAL_LOG SETTINGS [KEY...]: one boot with \raidhost.cfg
# choosing MODE and the further SETTINGS (lines separated by blanks); with
# KEYs, the serial line is a terminal that types them once page 1 is on
# screen. QEMU's exit status in qemu_status.
boot() {
  local mode=$1 serial=$2 settings=$3
  shift 3
  local volume=$out/esp-$mode.img
  cp "$esp" "$volume"
  printf '%s\r\n' "mode=$mode" $settings >"$out/raidhost-$mode.cfg"
  mcopy -i "$volume" "$out/raidhost-$mode.cfg" ::/raidhost.cfg
  cp "$ovmf_vars" "$out/vars-$mode.fd"
  local machine=(
    -machine q35 -accel tcg -m 256 -display none -monitor none -nic none -no-reboot
    -drive if=pflash,format=raw,unit=0,readonly=on,file="$ovmf_code"
    -drive if=pflash,format=raw,unit=1,file="$out/vars-$mode.fd"
    -drive format=raw,file="$volume",if=none,id=esp -device virtio-blk-pci,drive=esp,addr=0x3
    -device megasas,addr=0x5
    -device pcie-root-port,id=rp1,bus=pcie.0,chassis=1,addr=0x6
    -device megasas-gen2,bus=rp1,addr=0x0
    -smbios file="$out/slot9.bin"
    -device isa-debug-exit,iobase=0xf4,iosize=0x04)
  echo "booting OVMF, mode $mode (at most ${boot_seconds}s); serial log: $serial"
  local started=$SECONDS
  if (($# == 0)); then
    timeout --kill-after=5 "$boot_seconds" qemu-system-x86_64 "${machine[@]}" \
      -serial "file:$serial"
  else
    timeout --kill-after=5 $((boot_seconds + 5)) python3 "$here/type_on_serial.py" \
      --log "$serial" --seconds "$boot_seconds" --after RAIDHOST-SCREEN-BEGIN \
      --wait-for "Select RAID Adapter" --keys "$@" -- qemu-system-x86_64 "${machine[@]}"
  fi
  qemu_status=$?
  echo "QEMU exit status: $qemu_status (1 is raidhost's PASS, 3 its FAIL, 124 the timeout)," \
    "after $((SECONDS - started))s"
}

# The dump boot sends the trace to the serial port and loads the module
# $cycles times; the screen boot keeps the trace in memory (serial bytes
# would land in the middle of the text UI's terminal output); the
# interactive boot leaves it on the console, which the text UI holds back
# while it runs.
serial=$out/serial.log
boot dump "$serial" "trace=serial cycles=$cycles"
dump_status=$qemu_status
screen_serial=$out/screen-serial.log
boot screen "$screen_serial" "trace=memory"
screen_status=$qemu_status
# The operator: Down to the second adapter, Enter to choose it, Esc to leave.
interactive_serial=$out/interactive-serial.log
boot interactive "$interactive_serial" "" '\x1b[B' '\r' '\x1b'
interactive_status=$qemu_status

# The dump's log without terminal escapes and carriage returns.
log=$out/serial.txt
sed -e 's/\x1b\[[0-9;?]*[A-Za-z]//g' -e 's/\r//g' "$serial" >"$log" 2>/dev/null || : >"$log"

compare=()
[[ -x "$raidcfg_host" ]] && compare=(--raidcfg-host "$raidcfg_host")
python3 "$here/check_serial_log.py" --log "$log" --qemu-status "$dump_status" \
  --screen-log "$screen_serial" --screen-qemu-status "$screen_status" \
  --interactive-log "$interactive_serial" --interactive-qemu-status "$interactive_status" \
  --out "$out" "${compare[@]}" --scenario "$scenario" --replay "$replay" \
  --cycles "$cycles"
status=$?
echo "serial logs: $serial, $screen_serial, $interactive_serial"
exit $status
