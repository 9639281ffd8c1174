#!/usr/bin/env bash
# The main job: builds the native host and runs the RAID setup module in it
# on the embedded demo server. With no arguments the wizard runs in the
# terminal (the model is printed instead when there is no terminal); any
# arguments go to raidcfg-host as they are (see raidcfg-host --help).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/setup.sh
if [[ -f build/native/build.ninja ]]; then
  ninja -C build/native build.ninja >/dev/null  # re-configure after CMake changes
else
  cmake --preset native
fi

if ! ninja -C build/native -t query raidcfg-host >/dev/null 2>&1; then
  cmake --build --preset native -j 2
  echo "demo: the native host (target raidcfg-host, host/native) is not there yet;" >&2
  echo "demo: built what exists, nothing to run." >&2
  exit 1
fi

cmake --build --preset native -j 2 --target raidcfg-host
host=$(find build/native -name raidcfg-host -type f -perm -u+x | head -n 1)
exec "$host" "$@"
