#!/usr/bin/env bash
# Builds the library, the command and the tests for 64-bit Windows with MinGW-w64 and runs
# the tests under Wine, in a Wine prefix made fresh for the run.
#   tools/wine-tests.sh [ctest arguments...]      (build dir: $TC_WIN_BUILD, default build-win)
# Needs: tools/setup.sh --windows. Headless: nothing here needs a display.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${TC_WIN_BUILD:-build-win}
jobs=$(nproc 2>/dev/null || echo 2)

# -O2 without debug information: the same optimiser as the Linux build (GCC 12's -O3 warns
# falsely inside std::string), and objects small enough to link quickly.
cmake -S . -B "$build" --no-warn-unused-cli -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" -DTC_WERROR=ON >/dev/null
cmake --build "$build" -j"$jobs"

# The environment tools/wine-run.sh gives every test.
root=$(cd "$build" && pwd)
export HOME="$root/wine-home" XDG_DATA_HOME="$root/wine-home/.local/share"
export WINEPREFIX="$root/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY

if [ -d "$WINEPREFIX" ]; then wineserver -k 2>/dev/null || true; fi
rm -rf "$WINEPREFIX" "$HOME"
mkdir -p "$HOME"
start=$(date +%s)
wine wineboot -i >"$root/wineboot.log" 2>&1 </dev/null || { cat "$root/wineboot.log"; exit 1; }
wineserver -w
echo "== fresh Wine prefix $WINEPREFIX made in $(( $(date +%s) - start ))s"

# One server and one set of Wine's background processes for the whole run, so each test
# process starts quickly.
wineserver -p
trap 'wineserver -k 2>/dev/null || true' EXIT
wine wineboot >/dev/null 2>&1 </dev/null

# The command on the live system against the Linux build on an offline image, when there
# is a Linux build (tools/test.sh makes one first).
native=${TC_NATIVE_BUILD:-build}
if [ -x "$native/host/tracecleaner" ] && [ -x "$native/tools/tc_mkimage" ]; then
  echo "== the command on the live system (Wine) and on an offline image agree"
  tools/live-offline-agree.sh "$native" "$build"
else
  echo "== (no Linux build in $native: live and offline outputs not compared)"
fi

ctest --test-dir "$build" --output-on-failure -j"$jobs" "$@"
