#!/bin/sh
# Whole-process timing of the terminal player on games built to be hard on it, at two sizes each,
# so that growth shows: a line of nothing but "{", a run of "{" before a long text, and a loop
# that runs a long unknown statement (every round logs it; the last case passes the log file's
# bound). For each run: wall time, exit status
# and the size of the log file written with --log.
#
# usage: bench/worst_cases.sh [BUILD_DIR]      (default: build/release)
set -u

build=${1:-"$(dirname "$0")/../build/release"}
cli="$build/src/tarve-cli"
if [ ! -x "$cli" ]; then
  echo "worst_cases.sh: $cli is missing; build the release preset first" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
limit=${TARVE_BENCH_TIMEOUT:-120}

# A room whose script line holds BRACES "{" and then TEXT_BYTES bytes of text.
braces_game() {
  awk -v n="$1" -v m="$2" 'BEGIN {
    printf "define game <Braces>\n  start <Hall>\nend define\ndefine room <Hall>\n  script "
    s = ""; for (i = 0; i < 1000; i++) s = s "{"
    for (i = 0; i + 1000 <= n; i += 1000) printf "%s", s
    for (; i < n; i++) printf "{"
    t = ""; for (i = 0; i < 1000; i++) t = t "x"
    for (i = 0; i + 1000 <= m; i += 1000) printf "%s", t
    printf "\nend define\n"
  }'
}

# A game that runs an unknown statement of TEXT_BYTES bytes ROUNDS times (in loops of at most
# 30,000 rounds) at start.
unknown_game() {
  awk -v r="$1" -v m="$2" 'BEGIN {
    loops = int((r + 29999) / 30000); per = int(r / loops)
    printf "define game <Noise>\n  start <Hall>\n  startscript for <j; 1; %d> for <i; 1; %d> do <noise>\nend define\n", loops, per
    printf "define room <Hall>\nend define\ndefine procedure <noise>\n  nonsense "
    t = ""; for (i = 0; i < 1000; i++) t = t "x"
    for (i = 0; i + 1000 <= m; i += 1000) printf "%s", t
    printf "\nend define\n"
  }'
}

run() {
  label=$1
  game=$2
  rm -f "$work/log"
  start=$(date +%s%N)
  timeout "$limit" "$cli" --plain --settings "$work/settings" --log "$work/log" "$game" \
    </dev/null >/dev/null 2>&1
  status=$?
  end=$(date +%s%N)
  log_bytes=$(stat -c %s "$work/log" 2>/dev/null || echo 0)
  note=""
  [ "$status" -eq 124 ] && note=" (stopped after ${limit} s)"
  printf '%-36s %9.2f s  status %3d  log %12d bytes%s\n' "$label" \
    "$(awk -v t=$((end - start)) 'BEGIN { print t / 1e9 }')" "$status" "$log_bytes" "$note"
}

braces_game 50000 0 >"$work/b1.gwl"
braces_game 100000 0 >"$work/b2.gwl"
braces_game 5500 1000000 >"$work/b3.gwl"
braces_game 11000 1000000 >"$work/b4.gwl"
braces_game 11000 4000000 >"$work/b5.gwl"
unknown_game 2000 100000 >"$work/u1.gwl"
unknown_game 4000 100000 >"$work/u2.gwl"
unknown_game 90000 1000 >"$work/u3.gwl"

run '50,000 "{" on one line' "$work/b1.gwl"
run '100,000 "{" on one line' "$work/b2.gwl"
run '5,500 "{" + 1 MB text' "$work/b3.gwl"
run '11,000 "{" + 1 MB text' "$work/b4.gwl"
run '11,000 "{" + 4 MB text' "$work/b5.gwl"
run '2,000 rounds of a 100 KB unknown line' "$work/u1.gwl"
run '4,000 rounds of a 100 KB unknown line' "$work/u2.gwl"
run '90,000 rounds of a 1 KB unknown line' "$work/u3.gwl"
