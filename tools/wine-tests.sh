#!/usr/bin/env bash
# Builds the library, the command and the tests for 64-bit Windows with MinGW-w64 and runs
# the tests under Wine, in a Wine prefix made fresh for the run.
#   tools/wine-tests.sh [ctest arguments...]      (build dir: $TC_WIN_BUILD, default build-win)
# Needs: tools/setup.sh --windows. Runs headless: nothing here needs a display.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${TC_WIN_BUILD:-build-win}
jobs=$(nproc 2>/dev/null || echo 2)

cmake -S . -B "$build" -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTC_WERROR=ON >/dev/null
cmake --build "$build" -j"$jobs"

# The same environment the toolchain gives ctest's runs (see cmake/mingw-w64.cmake).
root=$(cd "$build" && pwd)
export HOME="$root/wine-home" XDG_DATA_HOME="$root/wine-home/.local/share"
export WINEPREFIX="$root/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY

if [ -d "$WINEPREFIX" ]; then wineserver -k 2>/dev/null || true; fi
rm -rf "$WINEPREFIX" "$HOME"
mkdir -p "$HOME"
echo "== fresh Wine prefix $WINEPREFIX"
start=$(date +%s)
wine wineboot -i >/dev/null 2>&1
wineserver -w
echo "   made in $(( $(date +%s) - start ))s"

# One server for the whole run, so each test process starts quickly.
wineserver -p
trap 'wineserver -k 2>/dev/null || true' EXIT
ctest --test-dir "$build" --output-on-failure -j"$jobs" "$@"
