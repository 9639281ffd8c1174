#!/usr/bin/env bash
# Builds the release preset and runs the parser benchmarks; prints one
# table: each parser's read against a plain pass over the same bytes in the
# same run (CPU time, the median of the repetitions). Extra arguments go to
# every benchmark binary (e.g. --benchmark_repetitions=9).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

BENCHES=(bench_lsi_summary bench_mchp_getconfig bench_rste_info bench_m2_info)
OUT=build/release/bench-results
CCACHE=$(command -v ccache || true)
export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-$CCACHE}
export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER:-$CCACHE}

cmake --preset release >/dev/null
cmake --build --preset release -j2 --target "${BENCHES[@]}" >/dev/null

mkdir -p "$OUT"
for bench in "${BENCHES[@]}"; do
  "build/release/tests/bench/$bench" --benchmark_repetitions=5 \
    --benchmark_report_aggregates_only=true --benchmark_min_time=0.2 \
    --benchmark_format=json "$@" >"$OUT/$bench.json" 2>/dev/null
done

python3 - "$OUT" "${BENCHES[@]}" <<'PY'
import json, sys

out, benches = sys.argv[1], sys.argv[2:]
rows = {}
order = []
for bench in benches:
    with open(f"{out}/{bench}.json") as f:
        for b in json.load(f)["benchmarks"]:
            if b.get("aggregate_name") != "median":
                continue
            name = b["run_name"]
            rows[name] = b
            if not name.endswith("_scan"):
                order.append(name)

def micros(b):
    scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}[b["time_unit"]]
    return b["cpu_time"] * scale

print(f"{'parser':<16} {'bytes':>9} {'time':>11} {'scan time':>11} "
      f"{'ratio':>6}")
worst = 0.0
for name in order:
    parse, scan = rows[name], rows.get(name + "_scan")
    if scan is None or "error_occurred" in parse:
        print(f"{name:<16} (no result)")
        continue
    ratio = micros(parse) / micros(scan)
    worst = max(worst, ratio)
    print(f"{name:<16} {int(parse['bytes']):>9} {micros(parse):>9.1f}us "
          f"{micros(scan):>9.1f}us {ratio:>5.1f}x")
print(f"worst ratio {worst:.1f}x")
PY
