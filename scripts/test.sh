#!/usr/bin/env bash
# The one test command. Installs what is missing, builds and runs the
# native tests (AddressSanitizer + UBSan), builds the UEFI images and checks
# their headers and raidcfg.efi's size, builds the fuzz targets and runs
# each one briefly. Ends with "N passed, N failed" and a non-zero status on
# any failure.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

JOBS=2
FUZZ_SECONDS=20
FUZZ_RUNS=20000
# raidcfg.efi's size budget on disk, HII strings included.
IMAGE_LIMIT_KIB=448

passed=0
failed=0
failures=()

pass() { passed=$((passed + 1)); echo "PASS: $1"; }
fail() { failed=$((failed + 1)); failures+=("$1"); echo "FAIL: $1" >&2; }

# Runs a command as one named check.
check() {
  local name=$1
  shift
  if "$@"; then pass "$name"; else fail "$name"; fi
}

section() { printf '\n== %s\n' "$1"; }

# Configures and builds one preset.
build_preset() {
  cmake --preset "$1" && cmake --build --preset "$1" -j "$JOBS"
}

# Runs ctest and counts each test as a check.
run_native_tests() {
  local log
  log=$(mktemp)
  ctest --preset native -j "$JOBS" --timeout 600 2>&1 | tee "$log"
  local status=${PIPESTATUS[0]}
  local summary
  summary=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$log" | tail -n 1)
  rm -f "$log"
  if [[ -z "$summary" ]]; then
    fail "ctest (no test results: exit status $status)"
    return
  fi
  local failed_tests total
  failed_tests=$(sed -E 's/.* ([0-9]+) tests? failed out of ([0-9]+).*/\1/' <<<"$summary")
  total=$(sed -E 's/.* failed out of ([0-9]+).*/\1/' <<<"$summary")
  passed=$((passed + total - failed_tests))
  failed=$((failed + failed_tests))
  if ((failed_tests > 0)); then failures+=("ctest: $failed_tests of $total tests"); fi
  if ((status != 0 && failed_tests == 0)); then fail "ctest (exit status $status)"; fi
}

# Checks a PE32+ image's headers: x86-64, relocatable, and the subsystem
# given as llvm-readobj prints it (EFI_BOOT_SERVICE_DRIVER, EFI_APPLICATION).
check_image_headers() {
  local image=$1 subsystem=$2 headers ok=0
  if [[ ! -f "$image" ]]; then
    echo "$image: missing" >&2
    return 1
  fi
  headers=$(llvm-readobj --file-headers "$image") || return 1
  for expected in 'Magic: 0x20B' \
                  'Machine: IMAGE_FILE_MACHINE_AMD64' \
                  "Subsystem: IMAGE_SUBSYSTEM_${subsystem} " \
                  'IMAGE_DLL_CHARACTERISTICS_DYNAMIC_BASE'; do
    if ! grep -qF -- "$expected" <<<"$headers"; then
      echo "$image: headers lack '$expected'" >&2
      ok=1
    fi
  done
  return $ok
}

# Checks that an image carries its HII package list as a resource of type
# "HII" holding the eleven string packages.
check_hii_resource() {
  local image=$1 resources info
  resources=$(llvm-readobj --coff-resources "$image") || return 1
  if ! grep -qF 'Type: HII' <<<"$resources"; then
    echo "$image: no resource of type HII" >&2
    return 1
  fi
  info=$(python3 tools/hii_resource_info.py "$image") || return 1
  echo "$info"
  grep -q '^HII package list: 11 string packages:' <<<"$info"
}

# Runs one fuzz target briefly on a scratch corpus, seeded from
# tests/fuzz/corpus/<name>/ when that exists. A crash input is written to
# the scratch directory and shown, never into the clone.
run_fuzz_target() {
  local name=$1 executable=$2 scratch seeds=() dictionary=()
  scratch=$(mktemp -d)
  mkdir "$scratch/corpus" "$scratch/findings"
  [[ -d "tests/fuzz/corpus/$name" ]] && seeds=("tests/fuzz/corpus/$name")
  [[ -f "tests/fuzz/$name.dict" ]] && dictionary=(-dict="tests/fuzz/$name.dict")
  "$executable" -runs="$FUZZ_RUNS" -max_total_time="$FUZZ_SECONDS" \
    -print_final_stats=1 -artifact_prefix="$scratch/findings/" "${dictionary[@]}" \
    "$scratch/corpus" "${seeds[@]}" </dev/null 2>&1 | tail -n 15
  local status=${PIPESTATUS[0]} finding
  for finding in "$scratch/findings"/*; do
    [[ -f $finding ]] || continue
    echo "finding $(basename "$finding"), as hex:"
    od -An -tx1 "$finding" | head -n 20
  done
  rm -rf "$scratch"
  return "$status"
}

section "setup"
if ! scripts/setup.sh; then
  echo "setup failed: cannot build" >&2
  echo "0 passed, 1 failed"
  exit 1
fi

section "native build (AddressSanitizer + UBSan)"
if build_preset native; then
  pass "native build"
  section "native tests"
  run_native_tests
else
  fail "native build"
fi

section "EFI build"
if build_preset efi; then
  pass "EFI build"
  check "raidcfg.efi headers" check_image_headers build/efi/raidcfg.efi EFI_BOOT_SERVICE_DRIVER
  check "raidcfg.efi HII resource" check_hii_resource build/efi/raidcfg.efi
  check "raidcfg.efi within ${IMAGE_LIMIT_KIB} KiB" \
    python3 tools/image_size.py build/efi/raidcfg.efi --limit-kib "$IMAGE_LIMIT_KIB"
  llvm-readobj --file-headers build/efi/raidcfg.efi | grep -E 'Magic: 0x20B|Machine:|Subsystem:|DYNAMIC_BASE'
  raidhost=$(find build/efi -name raidhost.efi -type f | head -n 1)
  if [[ -n "$raidhost" ]]; then
    check "raidhost.efi headers" check_image_headers "$raidhost" EFI_APPLICATION
  fi
else
  fail "EFI build"
fi

section "OVMF: raidcfg.efi under real firmware"
if [[ -f build/efi/raidhost.efi && -f build/efi/raidcfg.efi ]]; then
  tests/qemu/run-ovmf-test.sh build/efi build/native build/qemu
  case $? in
    0) pass "OVMF test" ;;
    77) echo "skipped: OVMF test (see the SKIP line above)" ;;
    *) fail "OVMF test (serial log: build/qemu/serial.log)" ;;
  esac
else
  echo "not run: the EFI images are not built"
fi

section "fuzz targets"
if build_preset fuzz; then
  pass "fuzz build"
  targets=build/fuzz/fuzz-targets.txt
  if [[ -s "$targets" ]]; then
    while IFS=$'\t' read -r name executable; do
      check "fuzz $name" run_fuzz_target "$name" "$executable"
    done <"$targets"
  else
    echo "no fuzz targets yet"
  fi
else
  fail "fuzz build"
fi

section "summary"
for failure in "${failures[@]}"; do echo "failed: $failure"; done
echo "$passed passed, $failed failed"
((failed == 0))
