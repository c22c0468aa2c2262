#!/usr/bin/env bash
# The whole benchmark suite in one command: builds the release preset, runs every engine
# benchmark (tarve_bench), then times whole runs of the terminal player (bench/time_cli.sh and
# the printing runs below) and measures its peak memory.
#
# usage: bench/run.sh [BUILD_DIR]        (default: build/release, configured from the preset)
# Peak memory needs GNU time (/usr/bin/time, Debian package `time`).
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-"$root/build/release"}
if [ $# -eq 0 ]; then
  (cd "$root" && cmake --preset release >/dev/null)
fi
cmake --build "$build" -j2 --target tarve_bench tarve_window_bench tarve_game_window_bench tarve-cli \
  tarve-gen-large >/dev/null

cli="$build/src/tarve-cli"
gen="$build/bench/tarve-gen-large"
out="$build/bench/generated"
runs=21

echo "=== engine benchmarks (medians of the repetitions) ==="
"$build/bench/tarve_bench" --benchmark_report_aggregates_only=true 2>&1 |
  grep -E '_median|^heap|^Run on|CPU|^Load' || true

echo
echo "=== the launcher and the options window, drawn offscreen (medians) ==="
"$build/bench/tarve_window_bench" 2>&1 | grep -E '_median' || true

echo
echo "=== whole process: reading the large game ==="
"$root/bench/time_cli.sh" "$build" "$runs"

# Median wall time, in milliseconds, of RUNS runs of a command fed from /dev/null, its output
# thrown away.
median_ms() {
  local i
  for ((i = 0; i < runs; i++)); do
    local start end
    start=$(date +%s%N)
    "$@" </dev/null >/dev/null 2>&1 || true
    end=$(date +%s%N)
    echo $(((end - start) / 1000))
  done | sort -n | awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }'
}

# A game whose start script prints N lines with formatting codes (bold, italics, colours,
# sizes, alignment and substitution).
write_print_game() {
  local folder=$1 count=$2
  mkdir -p "$folder"
  {
    echo "define game <Printing>"
    echo "    gwl-version <217>"
    echo "    start <Room>"
    echo "    startscript setvar <n; 7>"
    echo "    startscript do <print>"
    echo "end define"
    echo "define room <Room>"
    echo "    look <A room.>"
    echo "end define"
    echo "define procedure <print>"
    awk -v n="$count" 'BEGIN {
      for (i = 1; i <= n; i++) {
        if (i % 4 == 0) printf "    msg <|b%d|xb |iitalic|xi and |crred|cb text, n is %%n%%.>\n", i
        else if (i % 4 == 1) printf "    msg <|jc|s14Line %d|s00|jl of the story, with |uunderlined|xu words.>\n", i
        else if (i % 4 == 2) printf "    msg <Plain line %d, a little longer than the others to fill the pane.>\n", i
        else printf "    msg <|cgGreen %d|cb |b|ibold italics|xi|xb>\n", i
      }
    }'
    echo "end define"
  } >"$folder/print.gwl"
}

echo
echo "=== whole process: printing msg lines to /dev/null (median of $runs runs) ==="
printf '%-36s %10s\n' "run" "median ms"
for count in 5000 10000; do
  write_print_game "$out/print-$count" "$count"
  printf '%-36s %10s\n' "tarve-cli, $count msg lines" \
    "$(median_ms "$cli" --seed 1 "$out/print-$count/print.gwl")"
done

echo
echo "=== whole process: opening a game (median of $runs runs) and peak memory ==="
"$gen" --scale 1 "$out/cli-100" >/dev/null
"$gen" --scale 0.5 "$out/cli-50" >/dev/null
printf '%-36s %10s %12s\n' "run" "median ms" "peak RSS kB"
for game in "$root/examples/demo.gwl" "$out/cli-50/large.gwl" "$out/cli-100/large.gwl"; do
  peak="?"
  if [ -x /usr/bin/time ]; then
    peak=$(/usr/bin/time -v "$cli" --seed 1 "$game" </dev/null 2>&1 >/dev/null |
      sed -n 's/.*Maximum resident set size (kbytes): //p')
  fi
  printf '%-36s %10s %12s\n' "tarve-cli ${game#"$root"/}" "$(median_ms "$cli" --seed 1 "$game")" \
    "$peak"
done

echo
echo "=== the game window (offscreen; medians of the repetitions) ==="
window="$build/bench/tarve_game_window_bench"
"$window" --benchmark_filter='Start|Print|Enter' --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true 2>&1 | grep -E '_median' || true
# Each session in a process of its own: memory one session freed would stay with the next.
for bounded in 1 0; do
  "$window" --benchmark_filter="Memory.*/$bounded/" 2>&1 | grep -E '^BM_' || true
done

echo
echo "=== whole process: worst cases (braces, a noisy log) and simple statements ==="
"$root/bench/worst_cases.sh" "$build"
"$root/bench/statement_rate.sh" "$build"
