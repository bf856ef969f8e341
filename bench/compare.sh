#!/usr/bin/env bash
# The engine beside the tools that do the same job, measured in one run on this machine:
#   counting a cache-like tree (100 folders x 1000 files x 1 KiB) against find, and
#   BleachBit's preview when it is installed;
#   cleaning that tree against find -delete and shred -n 1 -u;
#   shredding large files (10 x 20 MiB) against shred -n 1 -u;
#   peak memory of counting and cleaning, against the number of files;
#   then the same jobs through the tracecleaner command on offline images (bench/command.sh).
# Rows are medians with the smallest and largest run beside them; the ratio is
# engine / other. Data lives in a temporary folder under build-bench/ and is removed after.
# Usage: bench/compare.sh [RUNS]    (RUNS defaults to 3; TC_BENCH_SETUP=0 skips tools/setup.sh)
set -euo pipefail
export LC_ALL=C  # '.' as decimal point in EPOCHREALTIME and awk

runs=${1:-3}
root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build-bench
count_runs=$((runs < 5 ? 5 : runs))       # counting is cheap: more runs
folders=${TC_BENCH_FOLDERS:-100} files=1000 filesize=1024  # the cache-like tree
bigfiles=10 bigsize=$((20 << 20))         # the large files
durable=300                               # files of the sample cleaned with real flushes

log() { printf '%s\n' "$*" >&2; }

if [ "${TC_BENCH_SETUP:-1}" != 0 ]; then "$root/tools/setup.sh" --bench; fi
log "== building the driver (Release) in $build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTC_BUILD_BENCH=ON >/dev/null
cmake --build "$build" -j2 --target tc_engine_driver tracecleaner tc_mkimage >/dev/null
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
# median min max sum of a row's times
stats() {
  tr ' ' '\n' <<<"${T[$1]}" | grep . | sort -g |
    awk '{ v[NR] = $1; s += $1 } END { m = NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2
                                       printf "%.4f %.4f %.4f %.3f", m, v[1], v[NR], s }'
}
settle() { sync -f "$work"; }  # writes of one step are not paid by the next
rss_of_out() { sed -n 's/.*maxrss_kib=//p' "$out"; }

# The contenders, each one command; cleaners take their folder relative to the tree.
win() { local rel=${1//\//\\}; printf '%s\\%s' "$wintree" "$rel"; }
counted=engine_clean  # the counted tree is the one the engine cleans later
engine_count() { "$driver" count "$image" "$(win "$counted")"; }
find_count() { find "$tree/$counted" -type f | wc -l; }
bleachbit_count() { HOME=$work/bbhome bleachbit --preview tcbench.cache; }
engine_clean() { $nosync "$driver" clean "$image" "$(win "$1")" recursive zeros; }
find_clean() { $nosync find "$tree/$1" -type f -delete; }
shred_clean() { $nosync find "$tree/$1" -type f -exec shred -n 1 -u {} +; }
engine_big() { "$driver" clean "$image" "$(win "$1")" flat zeros; }
shred_big() { shred -n 1 -u "$tree/$1"/*; }
shred_big_zeros() { shred -n 0 -z -u "$tree/$1"/*; }

# in_turn ROW ROUNDS FOLDER-OF-ROUND CONTENDERS...: each round every contender works on its
# own copy ($tree/<contender>/<folder>), one after the other, first place rotating; each
# copy is flushed to the disk before, as real files are, and what a contender leaves
# unflushed is flushed after, so that the next one does not pay for it.
in_turn() {
  local row=$1 rounds=$2 folder_of=$3 r i n who folder rel left
  shift 3
  local who_list=("$@")
  n=${#who_list[@]}
  for ((r = 0; r < rounds; r++)); do
    folder=$($folder_of "$r")
    for ((i = 0; i < n; i++)); do
      who=${who_list[$(((r + i) % n))]}
      rel=$who${folder:+/$folder}
      timed "$row/$who" "$who" "$rel"
      if [ "$who" = engine_clean ]; then rss_clean=$(rss_of_out); fi
      left=$(find "$tree/$rel" -type f | wc -l)
      [ "$left" = 0 ] || { log "$who left $left files in $folder"; exit 1; }
      settle
    done
  done
}
hex_folder() { printf '%02x' "$1"; }
no_folder() { :; }
copies() {  # copies FOLDERS FILES SIZE CONTENDERS...: one copy of a tree per contender
  local f=$1 n=$2 size=$3 who
  shift 3
  for who in "$@"; do
    rm -rf "${tree:?}/$who"
    "$driver" tree "$tree/$who" "$f" "$n" "$size" >/dev/null
  done
  settle
}

log "== counting $((folders * files)) files ($count_runs runs)"
copies "$folders" "$files" "$filesize" "$counted"
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
    <action command="delete" search="walk.files" path="$tree/$counted"/>
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
  rss_count_big=$(rss_of_out)
  if [ -n "$peer" ]; then
    timed count/bleachbit bleachbit_count
    grep -q "Files to be deleted: $expected\$" "$out" || { log "bleachbit: $(tail -3 "$out")"; exit 1; }
  fi
done

# Cleaning. Each clean is flushed to the disk as the engine and shred ask; where a flush
# costs milliseconds that alone would take hours for 100,000 files, so the tree is cleaned
# with the flushes elided (eatmydata) for every contender alike, and a smaller sample with
# real flushes. The tree is cleaned folder by folder, the three in turn, so that a burst of
# load on this shared machine hits all three alike.
log "== cleaning the tree ($folders folders, flushes elided)"
copies "$folders" "$files" "$filesize" find_clean shred_clean  # the engine's is there
nosync=eatmydata
in_turn clean "$folders" hex_folder engine_clean find_clean shred_clean

log "== cleaning $durable files with real flushes ($runs runs)"
nosync=""
for ((r = 0; r < runs; r++)); do
  copies 0 "$durable" "$filesize" engine_clean find_clean shred_clean
  in_turn durable 1 no_folder engine_clean find_clean shred_clean
done

log "== shredding $bigfiles files of $((bigsize >> 20)) MiB ($runs runs)"
for ((r = 0; r < runs; r++)); do
  copies 0 "$bigfiles" "$bigsize" engine_big shred_big shred_big_zeros
  in_turn big 1 no_folder engine_big shred_big shred_big_zeros
done

log "== peak memory with fewer files"
for n in 1 10; do
  copies "$n" "$files" "$filesize" engine_clean
  "$driver" count "$image" "$(win engine_clean)" >"$out"; printf -v "rss_count_$n" %s "$(rss_of_out)"
  nosync=eatmydata engine_clean engine_clean >"$out"; printf -v "rss_clean_$n" %s "$(rss_of_out)"
done

# The tables: engine beside each other contender.
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
row() {  # row JOB OTHER ENGINEKEY OTHERKEY
  local em emin emax es om omin omax os
  read -r em emin emax es <<<"$(stats "$3")"
  read -r om omin omax os <<<"$(stats "$4")"
  printf '| %s | %s | %.3f (%.3f-%.3f) | %.3f (%.3f-%.3f) | %s |\n' "$1" "$2" \
    "$em" "$emin" "$emax" "$om" "$omin" "$omax" "$(ratio "$em" "$om")"
}
total() {  # total OTHER ENGINEKEY OTHERKEY
  local es os
  es=$(stats "$2" | cut -d' ' -f4); os=$(stats "$3" | cut -d' ' -f4)
  printf '| %s | %.1f | %.1f | %s |\n' "$1" "$es" "$os" "$(ratio "$es" "$os")"
}
echo
echo "Machine: $(nproc) cores, $(uname -r), load $(cut -d' ' -f1-3 /proc/loadavg)."
echo "Runs: counting $count_runs; the tree's clean one per folder ($folders); the others $runs."
echo
echo "| job | other | engine s, median (min-max) | other s, median (min-max) | engine/other |"
echo "|---|---|---|---|---|"
row "count $expected files" "find -type f \| wc -l" count/engine count/find
if [ -n "$peer" ]; then row "count $expected files" "bleachbit --preview" count/engine count/bleachbit; fi
row "clean a folder of the tree ($files files), flushes elided" "find -delete" clean/engine_clean clean/find_clean
row "clean a folder of the tree ($files files), flushes elided" "shred -n 1 -u" clean/engine_clean clean/shred_clean
row "clean $durable files, real flushes" "find -delete" durable/engine_clean durable/find_clean
row "clean $durable files, real flushes" "shred -n 1 -u" durable/engine_clean durable/shred_clean
row "shred $bigfiles x $((bigsize >> 20)) MiB" "shred -n 1 -u" big/engine_big big/shred_big
row "shred $bigfiles x $((bigsize >> 20)) MiB" "shred -n 0 -z -u (zeros)" big/engine_big big/shred_big_zeros
echo
echo "| the whole tree ($expected files), flushes elided | engine s | other s | engine/other |"
echo "|---|---|---|---|"
total "find -delete" clean/engine_clean clean/find_clean
total "shred -n 1 -u" clean/engine_clean clean/shred_clean
echo
echo "| engine peak memory (KiB) | $files files | $((10 * files)) files | $expected files |"
echo "|---|---|---|---|"
echo "| count | $rss_count_1 | $rss_count_10 | $rss_count_big |"
echo "| clean | $rss_clean_1 | $rss_clean_10 | (cleaned folder by folder) |"
if [ -z "$peer" ]; then
  echo
  echo "BleachBit is not installed (Debian package bleachbit): its row is left out."
fi

log "== through the command"
"$root/bench/command.sh" "$build" "$work" "$runs"
