#!/usr/bin/env bash
# The Mozilla profile store on large generated files, through an offline image as the command
# reads them, beside the plain tools on the same file:
#   a Firefox "history.dat" (Mork) of 12, 25, 50 and 100 MiB read into its history list,
#   beside wc -l;
#   a "cookies.txt" of 25,000 to 200,000 lines read and rewritten (written beside, flushed,
#   renamed over), beside grep -c . and cp.
# Each row: median wall time and median CPU time (user + system) of RUNS runs, the two
# commands taking turns; ratio = store / tool.
# Usage: bench/mozilla.sh [RUNS]    (RUNS defaults to 5; TC_BENCH_SETUP=0 skips tools/setup.sh)
set -euo pipefail
export LC_ALL=C

runs=${1:-5}
root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build-bench
log() { printf '%s\n' "$*" >&2; }

if [ "${TC_BENCH_SETUP:-1}" != 0 ]; then "$root/tools/setup.sh" --bench; fi
log "== building the driver (Release) in $build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTC_BUILD_BENCH=ON >/dev/null
cmake --build "$build" -j2 --target tc_mozilla_driver >/dev/null
driver=$build/bench/tc_mozilla_driver

work=$(mktemp -d "$build/mozilla.XXXXXX")
trap 'rm -rf "$work"' EXIT
"$driver" image "$work/img"
profile=$work/img/Users/Bench/AppData/Roaming/Mozilla/Firefox/Profiles/bench.default
winprofile='C:\Users\Bench\AppData\Roaming\Mozilla\Firefox\Profiles\bench.default'
mkdir -p "$profile"

# Wall and CPU seconds per key: W[key]="t1 t2 ...", C[key]="...".
declare -A W C
timed() {
  local key=$1; shift
  local t0=$EPOCHREALTIME cpu t1
  # `times` in the command substitution's shell: the user and system time of its children.
  cpu=$("$@" >"$work/out" 2>&1 && times) || { log "failed: $*"; cat "$work/out" >&2; exit 1; }
  t1=$EPOCHREALTIME
  W[$key]+="$(awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.4f", b - a }') "
  C[$key]+="$(tail -1 <<<"$cpu" | awk '{ split($1, u, /[ms]/); split($2, s, /[ms]/)
                                        printf "%.4f", u[1] * 60 + u[2] + s[1] * 60 + s[2] }') "
}
median() { tr ' ' '\n' <<<"$1" | grep . | sort -g |
  awk '{ v[NR] = $1 } END { printf "%.4f", NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf (b > 0 ? "%.1f" : "-"), a / b }'; }
mbs() { awk -v bytes="$1" -v t="$2" 'BEGIN { printf (t > 0 ? "%.0f" : "-"), bytes / 1048576 / t }'; }

log "== history.dat against wc -l"
echo "| history.dat | rows | store wall s | wc -l wall s | wall ratio | store CPU s | wc -l CPU s | CPU ratio | store MB/s (wall, CPU) |"
echo "|---|---|---|---|---|---|---|---|---|"
for mib in 12 25 50 100; do
  "$driver" mkhistory "$profile/history.dat" "$mib"
  bytes=$(stat -c %s "$profile/history.dat")
  for ((r = 0; r < runs; r++)); do
    if ((r % 2)); then timed "h$mib/wc" wc -l "$profile/history.dat"; fi
    timed "h$mib/store" "$driver" history "$work/img" "$winprofile"
    rows=$(sed -n 's/count=\([0-9]*\).*/\1/p' "$work/out")
    if ((r % 2 == 0)); then timed "h$mib/wc" wc -l "$profile/history.dat"; fi
  done
  sw=$(median "${W[h$mib/store]}") ww=$(median "${W[h$mib/wc]}")
  sc=$(median "${C[h$mib/store]}") wc=$(median "${C[h$mib/wc]}")
  echo "| $((bytes / 1048576)) MiB | $rows | $sw | $ww | $(ratio "$sw" "$ww") | $sc | $wc | $(ratio "$sc" "$wc") | $(mbs "$bytes" "$sw"), $(mbs "$bytes" "$sc") |"
done
rm -f "$profile/history.dat"

log "== cookies.txt against grep -c . and cp"
echo
echo "| cookies.txt | store read+rewrite wall s | grep -c . wall s | cp wall s | store CPU s | grep CPU s | cp CPU s | store/grep wall | store/cp wall |"
echo "|---|---|---|---|---|---|---|---|---|"
for lines in 25000 50000 100000 200000; do
  "$driver" mkcookies "$work/cookies.src" "$lines"
  for ((r = 0; r < runs; r++)); do
    cp "$work/cookies.src" "$profile/cookies.txt"
    sync -f "$work"
    timed "c$lines/store" "$driver" cookies "$work/img" "$winprofile"
    cmp -s "$work/cookies.src" "$profile/cookies.txt" || { log "rewrite changed the file"; exit 1; }
    timed "c$lines/grep" grep -c . "$work/cookies.src"
    timed "c$lines/cp" cp "$work/cookies.src" "$work/cookies.copy"
  done
  sw=$(median "${W[c$lines/store]}") gw=$(median "${W[c$lines/grep]}") cw=$(median "${W[c$lines/cp]}")
  echo "| $lines lines ($(($(stat -c %s "$work/cookies.src") / 1024)) KiB) | $sw | $gw | $cw |" \
       "$(median "${C[c$lines/store]}") | $(median "${C[c$lines/grep]}") | $(median "${C[c$lines/cp]}") |" \
       "$(ratio "$sw" "$gw") | $(ratio "$sw" "$cw") |"
done
