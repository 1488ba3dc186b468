#!/usr/bin/env bash
# Fuzzes Vorkam's text parsers with libFuzzer (clang, AddressSanitizer and UndefinedBehaviorSanitizer)
# and prints a table: target, seconds run, executions, findings. Not part of ./test.sh.
#
# Usage: scripts/fuzz.sh [SECONDS-PER-TARGET] [TARGET ...]
#   SECONDS defaults to 600; TARGETs default to all (fuzz_money fuzz_dates fuzz_selection fuzz_rpt
#   fuzz_ini fuzz_template). FUZZ_JOBS (default 2) targets run at a time, under nice.
# The corpora grow in build-fuzz/corpus/<target> (outside git) and are reused by the next run;
# findings land in build-fuzz/findings/ and make the script exit 1. Reproduce one with
#   build-fuzz/fuzz/<target> build-fuzz/findings/<target>-crash-…
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-600}
shift || true
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(fuzz_money fuzz_dates fuzz_selection fuzz_rpt fuzz_ini fuzz_template)
jobs=${FUZZ_JOBS:-2}

scripts/install-deps.sh clang libclang-rt-14-dev
build=build-fuzz
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVORKAM_FUZZ=ON \
  -DVORKAM_TESTS=OFF "${launcher[@]}" >/dev/null
cmake --build "$build" -j2 --target "${targets[@]}"

seeds=tests/fuzz/seeds
mkdir -p "$build/findings" "$build/logs"
# A fresh corpus starts from the seeds: one file per line of seeds/<name>.txt ("|" stands for a
# line break in the ini seeds), and the shipped report definitions for the .rpt reader.
seed() {
  local t=$1 name=${1#fuzz_} dir=$build/corpus/$1
  mkdir -p "$dir"
  [ -n "$(ls -A "$dir")" ] && return 0
  if [ "$name" = rpt ]; then
    cp data/reports/*.rpt "$dir/"
  elif [ -f "$seeds/$name.txt" ]; then
    local i=0
    while IFS= read -r line; do
      i=$((i + 1))
      if [ "$name" = ini ]; then printf '%s\n' "$line" | tr '|' '\n' >"$dir/seed$i"; else printf '%s' "$line" >"$dir/seed$i"; fi
    done <"$seeds/$name.txt"
  fi
}

run() {
  local t=$1 name=${1#fuzz_} dict=() start end
  [ -f "$seeds/$name.dict" ] && dict=(-dict="$seeds/$name.dict")
  start=$(date +%s)
  ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 \
    nice -n 19 "$build/fuzz/$t" "$build/corpus/$t" "${dict[@]}" -max_total_time="$seconds" -timeout=60 \
    -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$build/findings/$t-" >"$build/logs/$t.log" 2>&1 || true
  end=$(date +%s)
  echo "$((end - start))" >"$build/logs/$t.seconds"
}

before=$(mktemp)
trap 'rm -f "$before"' EXIT
ls "$build/findings" >"$before"
for t in "${targets[@]}"; do
  seed "$t"
  run "$t" &
  while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n || true; done
done
wait

# A finding counts when it happens again on its own, outside the load of the other runs (a timeout
# of a starved run under nice does not); the rest go to findings/unreproduced.
mkdir -p "$build/findings/unreproduced"
for f in $(ls "$build/findings" | grep -vxF -f "$before" | grep '^fuzz_' || true); do
  t=${f%%-*}
  if ASAN_OPTIONS=detect_leaks=0 "$build/fuzz/$t" -timeout=60 -rss_limit_mb=2048 "$build/findings/$f" >/dev/null 2>&1; then
    mv "$build/findings/$f" "$build/findings/unreproduced/"
  fi
done

found=0
printf '\n| kohde           | sekuntia |  suorituksia |   löydöt |\n|-----------------|---------:|-------------:|---------:|\n'
for t in "${targets[@]}"; do
  execs=$(grep -o 'stat::number_of_executed_units: [0-9]*' "$build/logs/$t.log" | grep -o '[0-9]*$' || echo '?')
  new=$(ls "$build/findings" | grep -vxF -f "$before" | grep -c "^$t-" || true)
  found=$((found + new))
  printf '| %-15s | %8s | %12s | %8s |\n' "$t" "$(cat "$build/logs/$t.seconds")" "$execs" "$new"
done
if [ "$found" -gt 0 ]; then
  echo "Löytöjä $found: katso $build/findings ja $build/logs." >&2
  exit 1
fi
