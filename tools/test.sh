#!/usr/bin/env bash
# Installs what the build needs, builds, and runs every test suite.
#   tools/test.sh              native suite, sanitizer suite, Windows suite under Wine
#   TC_SKIP_WINDOWS=1 / TC_SKIP_SANITIZE=1 leave one out (for quick local runs)
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)

if [ -z "${TC_SKIP_WINDOWS:-}" ] && [ -f cmake/mingw-w64.cmake ]; then
  tools/setup.sh --windows
else
  tools/setup.sh
fi

echo "== native build and tests"
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTC_WERROR=ON >/dev/null
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"

if [ -z "${TC_SKIP_SANITIZE:-}" ]; then
  echo "== sanitizer build (ASan + UBSan) and tests"
  cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DTC_SANITIZE=ON -DTC_WERROR=ON >/dev/null
  cmake --build build-asan -j"$jobs"
  # Sizes read from damaged files must never reach the allocator: past 1 GiB is a failure.
  ASAN_OPTIONS=detect_leaks=1:max_allocation_size_mb=1024 ctest --test-dir build-asan --output-on-failure -j"$jobs"
fi

if [ -z "${TC_SKIP_WINDOWS:-}" ] && [ -x tools/wine-tests.sh ]; then
  echo "== Windows build and tests under Wine"
  tools/wine-tests.sh
fi
