#!/usr/bin/env bash
# Runs every libFuzzer target in fuzz/ (built with clang, ASan and UBSan, in build-fuzz/) for
# SECONDS each, one after the other, and writes fuzz/RESULTS.md: executions, coverage and
# crashes per target.
#   tools/fuzz.sh SECONDS [RUNS]     RUNS: stop a target earlier once it made that many runs
#   TC_FUZZ_TARGETS="HiveOpenFuzz NK2AddressesFuzz" tools/fuzz.sh 60   only these targets
# Seeds: a target's source names them in lines "// Seeds: PATTERN..." (find -path patterns
# relative to the repository, whose '*' also crosses folders; realworld/ is
# ../shared/realworld/); without such a line every real-world file seeds it. Files of
# 1 MiB and more are left out. A line "// Options: -max_len=N ..." adds libFuzzer options for
# that target. The corpus grows in build-fuzz/corpus/<target>/ from run to run;
# a crash, leak or time-out leaves its input in build-fuzz/artifacts/.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
seconds=${1:?usage: tools/fuzz.sh SECONDS [RUNS]}
runs=${2:-0}
build=${TC_FUZZ_BUILD:-build-fuzz}
realworld=$root/../shared/realworld
export LC_ALL=C

tools/setup.sh --fuzz
echo "== building the fuzz targets (clang, ASan + UBSan) in $build"
CC=clang CXX=clang++ cmake -S . -B "$build" -DTC_FUZZ=ON -DTC_BUILD_TESTS=OFF \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
targets=${TC_FUZZ_TARGETS:-$(for f in fuzz/*Fuzz.cpp; do basename "$f" .cpp; done)}
# shellcheck disable=SC2086
cmake --build "$build" -j"$(nproc)" --target $targets >/dev/null

seed() {  # seed TARGET CORPUS: copies the target's seed files into its corpus
  local target=$1 corpus=$2 globs pattern base n=0
  globs=$(sed -n 's|^// Seeds: ||p' "fuzz/$target.cpp")
  [ -n "$globs" ] || globs="realworld/*"
  for pattern in $globs; do
    base=$root
    if [ "${pattern#realworld/}" != "$pattern" ]; then base=$realworld; pattern=${pattern#realworld/}; fi
    [ -d "$base" ] || continue
    # A find pattern: its '*' crosses folders, so "tree/*.ini" finds every ini file below.
    while IFS= read -r -d '' file; do
      n=$((n + 1))
      cp -f "$file" "$corpus/seed-$n-$(basename "$file" | tr -c 'A-Za-z0-9._\n-' _)"
    done < <(find "$base" -type f -path "$base/$pattern" -size -1024k -print0)
  done
}

mkdir -p "$build/artifacts"
run_target() {  # run_target TARGET: fuzzes it and leaves its table row in $build/TARGET.row
  local target=$1 corpus=$build/corpus/$1 log=$build/$1.log seeds code execs speed cov ft found what opts
  mkdir -p "$corpus"
  seed "$target" "$corpus"
  seeds=$(find "$corpus" -type f | wc -l)
  opts=$(sed -n 's|^// Options: ||p' "fuzz/$target.cpp")
  echo "== $target: ${seconds}s from $seeds inputs"
  set +e
  # shellcheck disable=SC2086
  ASAN_OPTIONS=detect_leaks=1 LSAN_OPTIONS=suppressions=$root/fuzz/lsan.supp "$build/fuzz/$target" "$corpus" $opts -max_total_time="$seconds" \
    -runs="$((runs > 0 ? runs : -1))" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$build/artifacts/$target-" >"$log" 2>&1
  code=$?
  set -e
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  speed=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  cov=$(grep -o ' cov: [0-9]*' "$log" | tail -1 | tr -dc 0-9)
  ft=$(grep -o ' ft: [0-9]*' "$log" | tail -1 | tr -dc 0-9)
  found=$(grep -cE '^==[0-9]+==ERROR|^SUMMARY: (AddressSanitizer|UndefinedBehaviorSanitizer|libFuzzer)' "$log" || true)
  what="none"
  if [ "$code" != 0 ] || [ "$found" != 0 ]; then
    what=$(grep -m1 -oE 'ERROR: [A-Za-z]+: [a-z-]+|deadly signal|out-of-memory|timeout|runtime error: .*' "$log" | head -1 || echo "exit $code")
    what="**${what}** (see $log)"
  fi
  echo "| $target | $seeds | ${execs:-0} | ${speed:-0} | ${cov:-0} | ${ft:-0} | $what |" >"$build/$target.row"
  echo "   $target: ${execs:-0} executions, coverage ${cov:-0} edges, crashes: $what"
}

# One target per core at a time.
parallel=${TC_FUZZ_JOBS:-$(nproc)}
for target in $targets; do
  rm -f "$build/$target.row"
  while [ "$(jobs -rp | wc -l)" -ge "$parallel" ]; do wait -n || true; done
  run_target "$target" &
done
wait
rows=()
for target in $targets; do
  [ -f "$build/$target.row" ] && rows+=("$(cat "$build/$target.row")")
done

# Rows of targets not run this time stay as the last run left them.
if [ -f fuzz/RESULTS.md ]; then
  while IFS= read -r row; do
    name=$(echo "$row" | cut -d'|' -f2 | tr -d ' ')
    case " $targets " in *" $name "*) ;; *) rows+=("$row") ;; esac
  done < <(grep -E '^\| [A-Za-z0-9]+Fuzz \|' fuzz/RESULTS.md)
fi
mapfile -t rows < <(printf '%s\n' "${rows[@]}" | sort)

{
  echo "# Fuzzing results"
  echo
  echo "Written by \`tools/fuzz.sh $seconds${2:+ $2}\` on $(date -u +%Y-%m-%d): every target in"
  echo "\`fuzz/\` built with clang $(clang++ -dumpversion), libFuzzer, AddressSanitizer (leaks"
  echo "checked) and UndefinedBehaviorSanitizer; ${seconds} s per target${2:+ or $2 runs, whichever came first},"
  echo "$parallel targets at a time on $(nproc) cores (shared with other work). A target run alone later"
  echo "replaces its own row."
  echo "Seeds: the real-world files and test data each target names; the corpus kept between runs."
  echo "eMule's and eDonkey's known.met have no target: their traces are counted from the file's"
  echo "size, and their bytes are never read."
  echo
  echo "| target | seeds | executions | per second | coverage (edges) | features | crashes, leaks, time-outs |"
  echo "|---|---|---|---|---|---|---|"
  printf '%s\n' "${rows[@]}"
} >fuzz/RESULTS.md
echo "== fuzz/RESULTS.md written"
