#!/usr/bin/env bash
# The command on the live system (Windows build under Wine) and on an offline image (Linux
# build) of the same traces: list, scan, clean and a second scan must print the same, apart
# from the line naming the system and the line ends.
#   tools/live-offline-agree.sh NATIVE_BUILD WINDOWS_BUILD
# The traces come from tests/win32/agree: registry/*.reg is imported into the Wine prefix of
# WINDOWS_BUILD with regedit and made into an offline image with tc_mkimage.
set -euo pipefail
cd "$(dirname "$0")/.."
native=$(cd "$1" && pwd)
win=$(cd "$2" && pwd)
fixture=$PWD/tests/win32/agree
plugins=WordPad,MSPaint,Regedit
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$native/tools/tc_mkimage" "$fixture" "$work/image" >/dev/null
for reg in "$fixture"/registry/*.reg; do
  tools/wine-run.sh "$win" regedit /S "Z:${reg//\//\\}"
done

offline() { "$native/host/tracecleaner" "$@" --image "$work/image" </dev/null || true; }
live() { tools/wine-run.sh "$win" "$win/host/tracecleaner.exe" "$@" || true; }
# Drops what names the system (first text line, the JSON "source" and "offline" members)
# and CRs.
same() { tr -d '\r' | grep -v -e '^  "source": ' -e '^  "offline": ' | tail -n +2; }

passed=0 failed=0
for command in "list" "list --json" "scan --traces --plugins $plugins" \
               "scan --json --traces --plugins $plugins" "clean --yes --json --plugins $plugins" \
               "scan --json --traces --plugins $plugins"; do
  # shellcheck disable=SC2086
  if diff <(offline $command 2>&1 | same) <(live $command 2>&1 | same) >"$work/diff"; then
    echo "  same: tracecleaner $command"
    passed=$((passed + 1))
  else
    echo "  DIFFERENT: tracecleaner $command (< offline, > live)"
    head -40 "$work/diff"
    failed=$((failed + 1))
  fi
done
# What `reg add` puts into the live registry is found, and gone after cleaning.
key='HKCU\Software\Microsoft\Windows\CurrentVersion\Applets\Wordpad\Recent File List'
tools/wine-run.sh "$win" reg add "$key" /v File7 /d 'C:\Users\Anna\Added.rtf' /f >/dev/null
if live scan --json --traces --plugins WordPad | grep -q 'Added.rtf' &&
   live clean --yes --plugins WordPad >/dev/null &&
   ! tools/wine-run.sh "$win" reg query "$key" | grep -q File7; then
  echo "  same: reg add, scan, clean, reg query"
  passed=$((passed + 1))
else
  echo "  DIFFERENT: a value made with reg add was not found or not removed"
  failed=$((failed + 1))
fi

echo "live-offline: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
