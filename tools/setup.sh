#!/usr/bin/env bash
# Installs the Debian packages the build needs; does nothing when they are all present.
# Usage: tools/setup.sh [--windows] [--bench] [--fuzz]
#   --windows adds the MinGW-w64 cross compiler and Wine; --bench what bench/compare.sh
#   measures with (eatmydata) and against (BleachBit); --fuzz clang with libFuzzer.
set -euo pipefail
pkgs=(build-essential cmake pkg-config libhivex-dev libhivex-bin libpugixml-dev
      googletest libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev
      reglookup libsqlite3-dev sqlite3 libfwsi-dev libolecf-dev liblnk-dev libbfio-dev
      libmsiecf-dev libmsiecf-utils)
for arg in "$@"; do
  case "$arg" in
    --windows) pkgs+=(g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix mingw-w64-tools wine wine64) ;;
    --bench) pkgs+=(eatmydata bleachbit) ;;
    --fuzz) pkgs+=(clang libclang-rt-dev) ;;
    *) echo "setup.sh: unknown option $arg" >&2; exit 2 ;;
  esac
done
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
