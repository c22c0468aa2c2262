#!/bin/sh
# Whole-process speed of simple statements: tarve-cli opens a game whose start script runs
# 300,000 rounds of `setvar <x; %i%+1>` in `for` loops (ten loops of 30,000, as a loop counter
# holds 16 bits), process start and game opening included. Prints the median wall time of RUNS
# runs and the statements per second it gives (one setvar a round), and the machine's load.
#
# usage: bench/statement_rate.sh [BUILD_DIR] [RUNS]     (defaults: build/release, 11 runs)
set -eu

build=${1:-"$(dirname "$0")/../build/release"}
runs=${2:-11}
cli="$build/src/tarve-cli"
if [ ! -x "$cli" ]; then
  echo "statement_rate.sh: $cli is missing; build the release preset first" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat >"$work/loop.gwl" <<'GAME'
define game <Loop>
  start <Hall>
  startscript for <j; 1; 10> do <rounds>
end define
define room <Hall>
end define
define procedure <rounds>
  for <i; 1; 30000> setvar <x; %i%+1>
end define
GAME

i=0
while [ "$i" -lt "$runs" ]; do
  start=$(date +%s%N)
  "$cli" --plain --settings "$work/settings" "$work/loop.gwl" </dev/null >/dev/null 2>&1
  end=$(date +%s%N)
  echo $(((end - start) / 1000))
  i=$((i + 1))
done | sort -n | awk '{ t[NR] = $1 } END {
  m = t[int((NR + 1) / 2)]
  printf "300,000 setvar rounds: median %.1f ms of %d runs (fastest %.1f ms), %.2f million statements/s\n",
    m / 1000, NR, t[1] / 1000, 300000 / m
}'
uptime
