#!/usr/bin/env bash
# The tracecleaner command on offline images beside the tools that do the same job, in one run:
#   counting a flat folder of 100,000 empty files (Outlook's secure temporary folder) and a
#   tree of 100 x 1,000 files of 1 KiB (Opera's cache) against find | wc -l;
#   cleaning both against find -delete and shred -n 1 -u, flushes elided (eatmydata);
#   list, scan and clean of the demo image, beside BleachBit's --list and --preview start-up;
#   a registry key of 100,000 numbered values (WordPad's recent files) scanned and cleaned,
#   beside hivexget listing it.
# Each command is a whole run of the command (start-up, both scans of a clean, the report).
# Usage: bench/command.sh [BUILD [WORK [RUNS]]]   (BUILD defaults to build/, WORK to a
#   temporary folder under it)
#   RUNS (default 1) rounds of the 100,000-file cleans; counts and the demo image run 7 times.
set -euo pipefail
export LC_ALL=C

root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build}" && pwd) runs=${3:-1}
work=${2:-}
if [ -z "$work" ]; then work=$(mktemp -d "$build/command.XXXXXX"); trap 'rm -rf "$work"' EXIT; fi
tc=$build/host/tracecleaner
quick=7
log() { printf '%s\n' "$*" >&2; }
for t in "$tc" "$build/tools/tc_mkimage"; do [ -x "$t" ] || { log "missing $t"; exit 1; }; done

declare -A T
out=$work/cmd-out.txt
timed() {  # timed KEY COMMAND...: wall time of one run, checked to succeed
  local key=$1; shift
  local t0=$EPOCHREALTIME
  if ! "$@" >"$out" 2>&1; then log "failed: $*"; tail -5 "$out" >&2; exit 1; fi
  local t1=$EPOCHREALTIME
  T[$key]+="$(awk -v a="$t0" -v b="$t1" 'BEGIN { printf "%.4f", b - a }') "
}
stats() {
  tr ' ' '\n' <<<"${T[$1]}" | grep . | sort -g |
    awk '{ v[NR] = $1 } END { m = NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2
                              printf "%.4f %.4f %.4f", m, v[1], v[NR] }'
}
settle() { sync -f "$work"; }
# Peak memory (KiB) of one run of the command.
peak() { /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -1; }
count_of() {  # count_of PLUGIN-ID: the plug-in's count in the JSON report in $out
  grep -A12 "\"id\": \"$1\"" "$out" | sed -n 's/.*"traceCount": \([0-9]*\).*/\1/p' | head -1
}

# The images: the demo image, and a copy whose profile holds the bench's folders and key.
src=$work/cmd-src
rm -rf "$src" && cp -r "$root/tools/demo" "$src"
prof=Users/Demo/AppData/Local
flat_rel=$prof/Microsoft/Outlook/SecureTemp
tree_rel=$prof/Opera/Opera/cache
values=${TC_BENCH_VALUES:-100000}
{
  printf 'Windows Registry Editor Version 5.00\n\n'
  printf '[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\Wordpad\\Recent File List]\n'
  for ((i = 1; i <= values; i++)); do printf '"File%d"="C:\\\\Users\\\\Demo\\\\Documents\\\\Brief %d.rtf"\n' "$i" "$i"; done
} >"$src/registry/99-bench.reg"
rm -rf "${src:?}/tree/$flat_rel"/*  # exactly the bench's files there
demo=$work/cmd-demo big=$work/cmd-big
"$build/tools/tc_mkimage" "$root/tools/demo" "$demo" >/dev/null
"$build/tools/tc_mkimage" "$src" "$big" >/dev/null
hive=$big/Users/Demo/NTUSER.DAT

# make_files DIR FOLDERS FILES BYTES: FILES files f_%06x in DIR, or in each of FOLDERS %02x.
make_files() {
  perl -e 'my ($dir, $folders, $files, $bytes) = @ARGV; my $data = "a" x $bytes;
    my @subs = $folders ? map { sprintf("/%02x", $_) } 0 .. $folders - 1 : ("");
    for my $s (@subs) { my $d = "$dir$s"; system("mkdir", "-p", $d) == 0 or die;
      for my $i (0 .. $files - 1) { my $f = sprintf("%s/f_%06x", $d, $i);
        open(my $h, ">", $f) or die "$f: $!"; print $h $data; close($h); } }' "$@"
}
fill_flat() { rm -rf "${1:?}/$flat_rel"; make_files "$1/$flat_rel" 0 100000 0; }
fill_tree() { rm -rf "${1:?}/$tree_rel"; make_files "$1/$tree_rel" 100 1000 1024; }
fill_flat "$big"; fill_tree "$big"; settle

tc_scan() { "$tc" scan --image "$1" --plugins "$2" --json; }
tc_clean() { $nosync "$tc" clean --image "$1" --plugins "$2" --yes --json; }

tc_scan "$demo" OperaCache >"$out"; tree_count=$((100000 + $(count_of OperaCache)))  # and cache4's
log "== command: counting ($quick runs each)"
tc_scan "$big" OutlookSecurityFiles >/dev/null; find "$big/$flat_rel" -type f | wc -l >/dev/null
for ((r = 0; r < quick; r++)); do
  timed count_flat/tc tc_scan "$big" OutlookSecurityFiles
  [ "$(count_of OutlookSecurityFiles)" = 100000 ] || { log "flat count $(count_of OutlookSecurityFiles)"; exit 1; }
  timed count_flat/find sh -c "find '$big/$flat_rel' -type f | wc -l"
  timed count_tree/tc tc_scan "$big" OperaCache
  [ "$(count_of OperaCache)" = "$tree_count" ] || { log "tree count $(count_of OperaCache), not $tree_count"; exit 1; }
  timed count_tree/find sh -c "find '$big/$tree_rel' -type f | wc -l"
  timed reg_scan/tc tc_scan "$big" WordPad
  [ "$(count_of WordPad)" = "$values" ] || { log "key count $(count_of WordPad)"; exit 1; }
  timed reg_scan/hivexget hivexget "$hive" 'Software\Microsoft\Windows\CurrentVersion\Applets\Wordpad\Recent File List'
done
rss_count_flat=$(peak "$tc" scan --image "$big" --plugins OutlookSecurityFiles --json)
rss_count_tree=$(peak "$tc" scan --image "$big" --plugins OperaCache --json)

# Cleaning: each contender its own copy of the image, in turn, first place rotating.
log "== command: cleaning 100,000 files flat and as a tree ($runs rounds, flushes elided)"
nosync=eatmydata
copies=()
for who in tc find shred; do copies+=("$work/cmd-$who"); done
for who in tc find shred; do rm -rf "$work/cmd-$who"; cp -a "$big" "$work/cmd-$who"; done
clean_one() {  # clean_one WHO SHAPE
  local img=$work/cmd-$1 rel plugin
  if [ "$2" = flat ]; then rel=$flat_rel plugin=OutlookSecurityFiles; else rel=$tree_rel plugin=OperaCache; fi
  case $1 in
    tc) timed "clean_$2/tc" tc_clean "$img" "$plugin" ;;
    find) timed "clean_$2/find" $nosync find "$img/$rel" -type f -delete ;;
    shred) timed "clean_$2/shred" $nosync find "$img/$rel" -type f -exec shred -n 1 -u {} + ;;
  esac
  local left; left=$(find "$img/$rel" -type f | wc -l)
  [ "$left" = 0 ] || { log "$1 left $left files in $rel"; exit 1; }
  settle
}
order=(tc find shred)
for ((r = 0; r < runs; r++)); do
  for shape in flat tree; do
    for who in tc find shred; do "fill_$shape" "$work/cmd-$who"; done
    settle
    for ((i = 0; i < 3; i++)); do clean_one "${order[$(((r + i) % 3))]}" "$shape"; done
  done
done
fill_flat "$work/cmd-tc"; settle
rss_clean_flat=$(peak eatmydata "$tc" clean --image "$work/cmd-tc" --plugins OutlookSecurityFiles --yes --json)
fill_tree "$work/cmd-tc"; settle
rss_clean_tree=$(peak eatmydata "$tc" clean --image "$work/cmd-tc" --plugins OperaCache --yes --json)

log "== command: the key of $values values cleaned (emptied or deleted, then renumbered)"
for ((r = 0; r < runs; r++)); do
  cp "$hive" "$work/cmd-tc/Users/Demo/NTUSER.DAT"
  timed reg_clean/tc tc_clean "$work/cmd-tc" WordPad
  grep -A14 '"id": "WordPad"' "$out" | grep -q '"remaining": 0' || { log "key not cleaned"; exit 1; }
done

bbhome=$work/cmd-bbhome  # BleachBit's start-up: one cleaner over the demo's small folder
mkdir -p "$bbhome/.config/bleachbit/cleaners"
cat >"$bbhome/.config/bleachbit/cleaners/tccmd.xml" <<XML
<?xml version="1.0" encoding="UTF-8"?>
<cleaner id="tccmd">
  <label>Bench demo</label>
  <option id="temp">
    <label>Temp</label>
    <description>The demo image's secure temporary folder</description>
    <action command="delete" search="walk.files" path="$demo/$flat_rel"/>
  </option>
</cleaner>
XML
log "== command: the demo image ($quick runs)"
fresh=$work/cmd-fresh
for ((r = 0; r < quick; r++)); do
  timed demo_list/tc "$tc" list --image "$demo"
  timed demo_scan/tc "$tc" scan --image "$demo" --json
  rm -rf "$fresh"; cp -a "$demo" "$fresh"
  nosync=""
  timed demo_clean/tc "$tc" clean --image "$fresh" --yes --json
  if command -v bleachbit >/dev/null; then
    timed demo_list/bleachbit env HOME="$bbhome" bleachbit --list
    timed demo_scan/bleachbit env HOME="$bbhome" bleachbit --preview tccmd.temp
  fi
done
rss_demo_scan=$(peak "$tc" scan --image "$demo" --json)

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
row() {  # row JOB OTHER KEY OTHERKEY
  local em emin emax om omin omax
  read -r em emin emax <<<"$(stats "$3")"
  read -r om omin omax <<<"$(stats "$4")"
  printf '| %s | %s | %.3f (%.3f-%.3f) | %.3f (%.3f-%.3f) | %s |\n' "$1" "$2" \
    "$em" "$emin" "$emax" "$om" "$omin" "$omax" "$(ratio "$em" "$om")"
}
alone() {  # alone JOB KEY
  local em emin emax
  read -r em emin emax <<<"$(stats "$2")"
  printf '| %s | | %.3f (%.3f-%.3f) | | |\n' "$1" "$em" "$emin" "$emax"
}
echo
echo "Through the command ($tc); load $(cut -d' ' -f1-3 /proc/loadavg); counts and the demo"
echo "image $quick runs, cleans of 100,000 files $runs round(s)."
echo
echo "| job | other | command s, median (min-max) | other s, median (min-max) | command/other |"
echo "|---|---|---|---|---|"
row "count 100000 files, flat" "find -type f \| wc -l" count_flat/tc count_flat/find
row "count 100 x 1000 files" "find -type f \| wc -l" count_tree/tc count_tree/find
row "clean 100000 files, flat, flushes elided" "find -delete" clean_flat/tc clean_flat/find
row "clean 100000 files, flat, flushes elided" "shred -n 1 -u" clean_flat/tc clean_flat/shred
row "clean 100 x 1000 files, flushes elided" "find -delete" clean_tree/tc clean_tree/find
row "clean 100 x 1000 files, flushes elided" "shred -n 1 -u" clean_tree/tc clean_tree/shred
row "scan a key of $values values" "hivexget (lists it)" reg_scan/tc reg_scan/hivexget
alone "clean (and renumber) a key of $values values" reg_clean/tc
if [ -n "${T[demo_list/bleachbit]:-}" ]; then
  row "list (demo image)" "bleachbit --list" demo_list/tc demo_list/bleachbit
  row "scan (demo image)" "bleachbit --preview (one cleaner)" demo_scan/tc demo_scan/bleachbit
else
  alone "list (demo image)" demo_list/tc
  alone "scan (demo image)" demo_scan/tc
fi
alone "clean a fresh copy of the demo image, real flushes" demo_clean/tc
echo
echo "| command peak memory (KiB) | scan | clean |"
echo "|---|---|---|"
echo "| 100000 files, flat | $rss_count_flat | $rss_clean_flat |"
echo "| 100 x 1000 files | $rss_count_tree | $rss_clean_tree |"
echo "| demo image | $rss_demo_scan | |"
rm -rf "$src" "$demo" "$big" "$fresh" "$bbhome" "${copies[@]}"
