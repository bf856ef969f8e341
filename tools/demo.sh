#!/usr/bin/env bash
# Builds tracecleaner, then scans and cleans a fresh copy of the bundled demo image.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc 2>/dev/null || echo 2)" --target tracecleaner
image=$(mktemp -d "${TMPDIR:-/tmp}/tracecleaner-demo-XXXXXX")
cp -a build/demo-image/. "$image"
echo "== tracecleaner scan --traces --image $image"
build/host/tracecleaner scan --traces --image "$image"
echo
echo "== tracecleaner clean --yes --image $image"
build/host/tracecleaner clean --yes --image "$image"
