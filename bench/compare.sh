#!/usr/bin/env bash
# The engine beside the tools that do the same job, measured in one run on this machine:
#   counting a cache-like tree (100 folders x 1000 files x 1 KiB) against find, and
#   BleachBit's preview when it is installed;
#   cleaning that tree against find -delete and shred -n 1 -u;
#   shredding large files (10 x 20 MiB) against shred -n 1 -u;
#   peak memory of counting and cleaning, for 100,000 files against 1,000.
# Rows are medians of RUNS runs with the smallest and largest beside them; the ratio is
# engine / other. Data lives in a temporary folder under build-bench/ and is removed after.
# Usage: bench/compare.sh [RUNS]    (RUNS defaults to 3)
#   TC_BENCH_SETUP=0 skips tools/setup.sh; TC_BENCH_TREE_RUNS (default 1) repeats the clean
#   of the whole tree, whose making alone takes half a minute where a file costs 0.3 ms.
set -euo pipefail
export LC_ALL=C  # '.' as decimal point in EPOCHREALTIME and awk

runs=${1:-3}
root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build-bench
tree_runs=${TC_BENCH_TREE_RUNS:-1}
count_runs=$((runs < 5 ? 5 : runs))       # counting is cheap: more runs
folders=100 files=1000 filesize=1024      # the cache-like tree
part=10                                   # folders of the part of it cleaned RUNS times
bigfiles=10 bigsize=$((20 << 20))         # the large files
durable=300                               # files of the sample cleaned with real flushes

log() { printf '%s\n' "$*" >&2; }

if [ "${TC_BENCH_SETUP:-1}" != 0 ]; then "$root/tools/setup.sh" --bench; fi
log "== building the driver (Release) in $build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTC_BUILD_BENCH=ON >/dev/null
cmake --build "$build" -j2 --target tc_engine_driver >/dev/null
driver=$build/bench/tc_engine_driver

work=$(mktemp -d "$build/compare.XXXXXX")
trap 'rm -rf "$work"' EXIT
image=$work/image
tree=$image/Users/Bench/AppData/Local/Cache
wintree='C:\Users\Bench\AppData\Local\Cache'
"$driver" image "$image"

# Times in seconds per row and contender: T[row/who]="t1 t2 ...".
declare -A T
out=$work/out.txt
# timed ROW/WHO COMMAND...: runs the command once and records its wall time.
timed() {
  local key=$1; shift
  local t0=$EPOCHREALTIME
  if ! "$@" >"$out" 2>&1; then log "failed: $*"; cat "$out" >&2; exit 1; fi
  local t1=$EPOCHREALTIME
  T[$key]+="$(awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.4f", b - a }') "
}
# median min max of a row's times
stats() {
  tr ' ' '\n' <<<"${T[$1]}" | grep . | sort -g |
    awk '{ v[NR] = $1 } END { m = NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2
                              printf "%.3f %.3f %.3f", m, v[1], v[NR] }'
}
settle() { sync -f "$work"; }  # writes of one step are not paid by the next
fresh_tree() { rm -rf "$tree"; "$driver" tree "$tree" "$@" >/dev/null; settle; }
left() { find "$tree" -type f | wc -l; }
expect_empty() { local n; n=$(left); [ "$n" = 0 ] || { log "$1 left $n files"; exit 1; }; }

# The contenders, each one command.
engine_count() { "$driver" count "$image" "$wintree"; }
find_count() { find "$tree" -type f | wc -l; }
bleachbit_count() { HOME=$work/bbhome bleachbit --preview tcbench.cache; }
engine_clean() { $nosync "$driver" clean "$image" "$wintree" recursive zeros; }
find_delete() { $nosync find "$tree" -type f -delete; }
shred_tree() { $nosync find "$tree" -type f -exec shred -n 1 -u {} +; }
engine_shred() { "$driver" clean "$image" "$wintree" flat zeros; }
shred_big() { shred -n 1 -u "$tree"/*; }
shred_big_zeros() { shred -n 0 -z -u "$tree"/*; }

log "== counting $((folders * files)) files ($count_runs runs)"
fresh_tree "$folders" "$files" "$filesize"
expected=$((folders * files))
peer=""
if command -v bleachbit >/dev/null; then
  peer=bleachbit
  mkdir -p "$work/bbhome/.config/bleachbit/cleaners"
  cat >"$work/bbhome/.config/bleachbit/cleaners/tcbench.xml" <<XML
<?xml version="1.0" encoding="UTF-8"?>
<cleaner id="tcbench">
  <label>Bench cache</label>
  <option id="cache">
    <label>Cache</label>
    <description>Every file of the bench tree</description>
    <action command="delete" search="walk.files" path="$tree"/>
  </option>
</cleaner>
XML
fi
find_count >/dev/null; engine_count >/dev/null  # warm the cache for both alike
for ((r = 0; r < count_runs; r++)); do
  timed count/find find_count
  [ "$(cat "$out")" = "$expected" ] || { log "find counted $(cat "$out")"; exit 1; }
  timed count/engine engine_count
  grep -q "^count=$expected " "$out" || { log "engine: $(cat "$out")"; exit 1; }
  rss_count_big=$(sed -n 's/.*maxrss_kib=//p' "$out")
  if [ -n "$peer" ]; then
    timed count/bleachbit bleachbit_count
    grep -q "Files to be deleted: $expected\$" "$out" || { log "bleachbit: $(tail -3 "$out")"; exit 1; }
  fi
done

# Cleaning. Each clean is flushed to the disk as the engine and shred ask; on a disk where a
# flush costs milliseconds that alone would take hours for 100,000 files, so the tree is
# cleaned with the flushes elided (eatmydata) for every contender alike, and a sample of
# $durable files with real flushes. Each tree is on the disk (synced) before it is cleaned,
# as a real cache is.
clean_rounds() {  # clean_rounds KEY FOLDERS ROUNDS
  local r who rss
  for ((r = 0; r < $3; r++)); do
    for who in engine_clean find_delete shred_tree; do
      fresh_tree "$2" "$files" "$filesize"
      timed "$1/$who" "$who"
      rss=$(sed -n 's/.*maxrss_kib=//p' "$out")
      if [ -n "$rss" ] && [ "$2" = "$folders" ]; then rss_clean_big=$rss; fi
      expect_empty "$who"
      settle
    done
  done
}
nosync=eatmydata
log "== cleaning the tree, flushes elided ($tree_runs runs)"
clean_rounds clean "$folders" "$tree_runs"
log "== cleaning $part of its folders, flushes elided ($runs runs)"
clean_rounds part "$part" "$runs"

log "== cleaning $durable files with real flushes ($runs runs)"
nosync=""
for ((r = 0; r < runs; r++)); do
  for who in engine_clean find_delete shred_tree; do
    fresh_tree 0 "$durable" "$filesize"
    timed "durable/$who" "$who"
    expect_empty "$who"
    settle
  done
done

log "== shredding $bigfiles files of $((bigsize >> 20)) MiB ($runs runs)"
for ((r = 0; r < runs; r++)); do
  for who in engine_shred shred_big shred_big_zeros; do
    fresh_tree 0 "$bigfiles" "$bigsize"
    timed "big/$who" "$who"
    expect_empty "$who"
    settle
  done
done

log "== peak memory with 1,000 files"
fresh_tree 1 1000 "$filesize"
engine_count >"$out"; rss_count_small=$(sed -n 's/.*maxrss_kib=//p' "$out")
nosync=eatmydata engine_clean >"$out"; rss_clean_small=$(sed -n 's/.*maxrss_kib=//p' "$out")

# The table: engine beside each other contender.
row() {  # row JOB OTHER ENGINEKEY OTHERKEY
  local em emin emax om omin omax
  read -r em emin emax <<<"$(stats "$3")"
  read -r om omin omax <<<"$(stats "$4")"
  printf '| %s | %s | %.3f (%.3f-%.3f) | %.3f (%.3f-%.3f) | %.2f |\n' "$1" "$2" \
    "$em" "$emin" "$emax" "$om" "$omin" "$omax" "$(awk -v a="$em" -v b="$om" 'BEGIN { print a / b }')"
}
echo
echo "Machine: $(nproc) cores, $(uname -r), load $(cut -d' ' -f1-3 /proc/loadavg)."
echo "Runs per row: counting $count_runs, the whole tree's clean $tree_runs, the others $runs."
echo
echo "| job | other | engine s, median (min-max) | other s, median (min-max) | engine/other |"
echo "|---|---|---|---|---|"
row "count $expected files" "find -type f \| wc -l" count/engine count/find
[ -n "$peer" ] && row "count $expected files" "bleachbit --preview" count/engine count/bleachbit
row "clean $expected files, flushes elided" "find -delete" clean/engine_clean clean/find_delete
row "clean $expected files, flushes elided" "shred -n 1 -u" clean/engine_clean clean/shred_tree
row "clean $((part * files)) files, flushes elided" "find -delete" part/engine_clean part/find_delete
row "clean $((part * files)) files, flushes elided" "shred -n 1 -u" part/engine_clean part/shred_tree
row "clean $durable files, real flushes" "find -delete" durable/engine_clean durable/find_delete
row "clean $durable files, real flushes" "shred -n 1 -u" durable/engine_clean durable/shred_tree
row "shred $bigfiles x $((bigsize >> 20)) MiB" "shred -n 1 -u" big/engine_shred big/shred_big
row "shred $bigfiles x $((bigsize >> 20)) MiB" "shred -n 0 -z -u (zeros)" big/engine_shred big/shred_big_zeros
echo
echo "| engine peak memory (KiB) | 1,000 files | $expected files | ratio |"
echo "|---|---|---|---|"
for job in count clean; do
  small=rss_${job}_small big=rss_${job}_big
  printf '| %s | %s | %s | %.2f |\n' "$job" "${!small}" "${!big}" \
    "$(awk -v a="${!big}" -v b="${!small}" 'BEGIN { print a / b }')"
done
if [ -z "$peer" ]; then
  echo
  echo "BleachBit is not installed (Debian package bleachbit): its row is left out."
fi
