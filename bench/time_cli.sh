#!/bin/sh
# Whole-process timing of the terminal player on the large generated game. `tarve-cli --dump`
# starts, reads the game (a fresh process pays every page fault of its memory) and prints each
# line and block of it; `tarve-cli --help` is the cost of starting the process alone.
#
# usage: bench/time_cli.sh [BUILD_DIR] [RUNS]     (defaults: build/release, 21 runs)
set -eu

build=${1:-"$(dirname "$0")/../build/release"}
runs=${2:-21}
cli="$build/src/tarve-cli"
gen="$build/bench/tarve-gen-large"
out="$build/bench/generated"

for tool in "$cli" "$gen"; do
  if [ ! -x "$tool" ]; then
    echo "time_cli.sh: $tool is missing; build the release preset first" >&2
    exit 1
  fi
done

# Median wall time, in milliseconds, of RUNS runs of a command (its output is thrown away).
median_ms() {
  i=0
  while [ "$i" -lt "$runs" ]; do
    start=$(date +%s%N)
    "$@" >/dev/null 2>&1 || true
    end=$(date +%s%N)
    echo $(( (end - start) / 1000 ))
    i=$((i + 1))
  done | sort -n | awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }'
}

printf '%-28s %10s\n' "run" "median ms"
printf '%-28s %10s\n' "tarve-cli --help" "$(median_ms "$cli" --help)"
for size in 100 50; do
  folder="$out/cli-$size"
  scale=$(awk -v s="$size" 'BEGIN { print s / 100 }')
  "$gen" --scale "$scale" "$folder" >/dev/null
  if ! "$cli" --dump "$folder/large.gwl" >/dev/null 2>&1; then
    echo "time_cli.sh: tarve-cli cannot read $folder/large.gwl" >&2
    exit 1
  fi
  printf '%-28s %10s\n' "tarve-cli --dump (size $size)" "$(median_ms "$cli" --dump "$folder/large.gwl")"
done
