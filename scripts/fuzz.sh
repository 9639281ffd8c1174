#!/usr/bin/env bash
# A fuzzing campaign. Builds the fuzz preset, then fuzzes one target at a
# time on every core of the machine for N minutes (default 1), starting from
# a scratch copy of its seed corpus, tests/fuzz/corpus/<name>/, with the
# dictionary tests/fuzz/<name>.dict when there is one. Afterwards the inputs
# that add coverage are merged back into the seed corpus, and one table gives
# per target: executions, exec/s (all cores), exec/s per CPU second,
# coverage, corpus size and findings.
# Findings (crash-, leak-, timeout-, oom- inputs) are kept under
# build/fuzz/findings/<name>/; any new one makes the exit status non-zero.
#
#   scripts/fuzz.sh [--minutes N] [TARGET...]
#
# Runs every target of build/fuzz/fuzz-targets.txt when none is named.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Random operator sessions instead of fuzz targets (docs/testing.md,
# "Random operator sessions"): SESSIONS sessions of ACTIONS actions each,
# seeds from FIRST_SEED on, spread over every core; a failing session
# leaves its replay script in build/native/sessions/.
#   scripts/fuzz.sh sessions [SESSIONS [ACTIONS [FIRST_SEED]]]
if [[ ${1:-} == sessions ]]; then
  export RAIDCFG_RANDOM_SESSIONS=${2:-400} RAIDCFG_RANDOM_ACTIONS=${3:-250} \
    RAIDCFG_RANDOM_FIRST_SEED=${4:-1000} GTEST_TOTAL_SHARDS=$(nproc)
  cmake --preset native >/dev/null &&
    cmake --build --preset native -j "$GTEST_TOTAL_SHARDS" --target robustness_tests || exit 1
  mkdir -p build/native/sessions && cd build/native/sessions || exit 1
  for ((shard = 0; shard < GTEST_TOTAL_SHARDS; shard++)); do
    GTEST_SHARD_INDEX=$shard ../tests/robustness/robustness_tests \
      --gtest_filter='Seeds/RandomSessionTest.*' --gtest_brief=1 >"shard-$shard.log" 2>&1 &
  done
  status=0
  for job in $(jobs -p); do wait "$job" || status=1; done
  grep -h "seed .*, action" shard-*.log
  awk '/changes of the adapters checked/ { n += $3 } END { print n " changes of the adapters checked" }' shard-*.log
  echo "fuzz.sh sessions: $RAIDCFG_RANDOM_SESSIONS sessions of $RAIDCFG_RANDOM_ACTIONS actions:" \
    "$( ((status == 0)) && echo passed || echo 'FAILED (see build/native/sessions/)')"
  exit "$status"
fi

BUILD=build/fuzz
CORPORA=tests/fuzz/corpus
# An input that runs this long under the sanitizers has hung.
TIMEOUT_SECONDS=30
# Merged inputs per target and run: the seed corpora live in git, so a long
# campaign adds its smallest coverage-adding inputs, not thousands of them.
MERGE_CAP=30
# No input larger than this enters a seed corpus.
MAX_SEED_BYTES=$((100 * 1024))

usage() {
  echo "usage: scripts/fuzz.sh [--minutes N] [TARGET...]"
}

minutes=1
requested=()
while (($# > 0)); do
  case $1 in
    --minutes) minutes=${2:-}; shift $(($# > 1 ? 2 : 1)) ;;
    --minutes=*) minutes=${1#*=}; shift ;;
    -h | --help) usage; exit 0 ;;
    -*) usage >&2; exit 2 ;;
    *) requested+=("$1"); shift ;;
  esac
done
if [[ ! $minutes =~ ^[1-9][0-9]*$ ]]; then
  echo "fuzz.sh: --minutes takes a whole number of minutes, not '$minutes'" >&2
  exit 2
fi

cores=$(nproc)
if ! cmake --preset fuzz; then
  echo "fuzz.sh: the fuzz build failed" >&2
  exit 1
fi

declare -A executables=()
names=()
while IFS=$'\t' read -r name executable; do
  [[ -n $name ]] || continue
  executables[$name]=$executable
  names+=("$name")
done <"$BUILD/fuzz-targets.txt"

if ((${#requested[@]} > 0)); then
  for name in "${requested[@]}"; do
    if [[ -z ${executables[$name]:-} ]]; then
      echo "fuzz.sh: no fuzz target '$name'; there are: ${names[*]}" >&2
      exit 2
    fi
  done
  names=("${requested[@]}")
fi
# Only the targets to run are built, not the rest of the preset.
if ! cmake --build --preset fuzz -j "$cores" --target "${names[@]}"; then
  echo "fuzz.sh: the fuzz build failed" >&2
  exit 1
fi

# Lists a target's findings, one file name a line.
list_findings() {
  find "$1" -maxdepth 1 -type f \
    \( -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' -o -name 'oom-*' \) \
    -printf '%f\n' | sort
}

# Merges the inputs of Scratch that add coverage into the seed corpus Seeds,
# at most MERGE_CAP of them, the smallest first. Prints how many it added.
merge_into_seeds() {
  local executable=$1 seeds=$2 scratch=$3 log=$4 merged candidates
  merged=$(mktemp -d)
  candidates=$(mktemp -d)
  cp -r "$seeds/." "$merged/"
  find "$scratch" -maxdepth 1 -type f -size -$((MAX_SEED_BYTES + 1))c \
    -exec cp -t "$candidates" {} +
  "$executable" -merge=1 -detect_leaks=0 -timeout="$TIMEOUT_SECONDS" \
    "$merged" "$candidates" </dev/null >>"$log" 2>&1
  local added=0 file
  while IFS= read -r file; do
    [[ -e "$seeds/$file" ]] && continue
    ((added < MERGE_CAP)) || break
    cp "$merged/$file" "$seeds/"
    added=$((added + 1))
  done < <(find "$merged" -maxdepth 1 -type f -printf '%s %f\n' | sort -n | cut -d' ' -f2-)
  rm -rf "$merged" "$candidates"
  echo "$added"
}

# Fuzzes one target and appends its row to the table.
rows=()
total_findings=0
fuzz_target() {
  local name=$1 executable=$2
  local seeds=$CORPORA/$name findings=$BUILD/findings/$name
  local log=$BUILD/campaign/$name.log scratch dictionary=()
  mkdir -p "$seeds" "$findings" "$BUILD/campaign"
  scratch=$(mktemp -d)
  cp -r "$seeds/." "$scratch/"
  [[ -f tests/fuzz/$name.dict ]] && dictionary=(-dict="tests/fuzz/$name.dict")
  local before
  before=$(list_findings "$findings")

  echo "== $name: $minutes min on $cores cores (log: $log)"
  # The targets check the emulator's pool after every input themselves;
  # libFuzzer's own leak scan would only slow them down. The CPU seconds
  # of the run (the jobs included) give the rate per core even on a
  # machine that other work shares.
  local cpu_file cpu_seconds
  cpu_file=$(mktemp)
  { TIMEFORMAT='%U %S'; time "$executable" -fork="$cores" -ignore_crashes=1 \
    -ignore_timeouts=1 -ignore_ooms=1 -max_total_time=$((minutes * 60)) \
    -timeout="$TIMEOUT_SECONDS" -detect_leaks=0 -artifact_prefix="$findings/" \
    "${dictionary[@]}" "$scratch" </dev/null >"$log" 2>&1; } 2>"$cpu_file"
  cpu_seconds=$(awk '{ printf "%d", $1 + $2 }' "$cpu_file")
  rm -f "$cpu_file"

  local added
  added=$(merge_into_seeds "$executable" "$seeds" "$scratch" "$log")
  rm -rf "$scratch"

  # The last progress line of the fork's parent holds the totals:
  # "#<runs>: cov: <edges> ... time: <seconds>s ...". Its own exec/s is the
  # last job's alone, so the rate is worked out from runs and time.
  local progress runs=- rate=- per_core=- coverage=- seconds
  progress=$(grep -E '^#[0-9]+: cov: ' "$log" | tail -n 1)
  if [[ -n $progress ]]; then
    runs=$(sed -E 's/^#([0-9]+):.*/\1/' <<<"$progress")
    coverage=$(sed -E 's/.* cov: ([0-9]+) .*/\1/' <<<"$progress")
    seconds=$(sed -E 's/.* time: ([0-9]+)s .*/\1/' <<<"$progress")
    rate=$((runs / (seconds > 0 ? seconds : 1)))
    per_core=$((runs / (cpu_seconds > 0 ? cpu_seconds : 1)))
  fi
  local new_findings
  new_findings=$(comm -13 <(echo "$before") <(list_findings "$findings") | grep -c .)
  total_findings=$((total_findings + new_findings))
  local size
  size=$(find "$seeds" -maxdepth 1 -type f | wc -l)
  rows+=("$(printf '%-22s %12s %8s %10s %6s %12s %9s' "$name" "$runs" "$rate" \
    "$per_core" "$coverage" "$size (+$added)" "$new_findings")")
}

for name in "${names[@]}"; do
  fuzz_target "$name" "${executables[$name]}"
done

echo
echo "fuzz campaign: $minutes min per target, $cores cores"
printf '%-22s %12s %8s %10s %6s %12s %9s\n' target executions exec/s exec/s/core cov \
  corpus findings
printf '%s\n' "${rows[@]}"
if ((total_findings > 0)); then
  echo "findings: $total_findings, under $BUILD/findings/" >&2
  exit 1
fi
