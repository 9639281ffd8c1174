#!/usr/bin/env bash
# Installs what a Debian 12 machine needs to build, test and run raidcfg.
# Quick and silent when everything is there; runs apt-get only for what is
# missing. Works as root, or through sudo otherwise.
set -euo pipefail

packages=(
  clang lld llvm libclang-rt-14-dev   # compiler, lld-link, llvm-rc/readobj, sanitizers and libFuzzer
  cmake ninja-build                   # build
  libgtest-dev libgmock-dev libbenchmark-dev
  libexpat1-dev nlohmann-json3-dev    # native host: XML parser, scenarios and dumps
  qemu-system-x86 ovmf mtools dosfstools  # running the images under real firmware
  git
  python3                             # build-time generators (tools/)
)

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  if [[ "$status" != installed ]]; then
    missing+=("$package")
  fi
done

if ((${#missing[@]} == 0)); then
  echo "setup: all ${#packages[@]} packages present"
  exit 0
fi

if ((EUID == 0)); then
  as_root=()
elif command -v sudo >/dev/null; then
  as_root=(sudo)
else
  echo "setup: missing packages (${missing[*]}) and neither root nor sudo" >&2
  exit 1
fi

echo "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y --no-install-recommends "${missing[@]}"
