#!/usr/bin/env bash
# Runs one fuzz target for a while: builds the targets when needed (build/fuzz, clang), makes
# the target's corpus from the project's own games and transcripts the first time, then runs
# libFuzzer with one job and prints how many inputs it ran.
#
# usage: fuzz/run.sh TARGET SECONDS
#   TARGET: GameReader, CompiledReader, Turns, Statements or SavedGame
# A crash, leak, sanitizer report or an input slower than a second stops the run with status 1
# and leaves the input in fuzz/corpus-artifacts/TARGET/.
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "usage: fuzz/run.sh TARGET SECONDS   (TARGET: GameReader, CompiledReader, Turns, Statements, SavedGame)" >&2
  exit 2
fi
target=$1
seconds=$2
case "$target" in
  GameReader | CompiledReader) max_len=32768 ;;
  Turns | Statements) max_len=4096 ;;
  SavedGame) max_len=16384 ;;
  *) echo "fuzz/run.sh: unknown target $target" >&2; exit 2 ;;
esac

root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build/fuzz"
corpus="$root/fuzz/corpus-$target"
artifacts="$root/fuzz/corpus-artifacts/$target"
regressions="$root/tests/regression/inputs/$target"

if [ ! -f "$build/build.ninja" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF -DTARVE_FUZZ=ON >/dev/null
fi
if ! output=$(ninja -C "$build" -j2 "fuzz/fuzz_$target" tarve-compile fuzz/fuzz_make_saved_seeds 2>&1); then
  echo "$output" | tail -n 40 >&2
  echo "fuzz/run.sh: the fuzz targets did not build" >&2
  exit 1
fi

# Every game the project has written: the examples, the test games and the fuzzers' own.
project_games() {
  find "$root/examples" "$root/fuzz/games" "$root/tests/games" -name '*.gwl' | LC_ALL=C sort
}

# The games the turn fuzzer plays: those of at most 65,536 bytes (kMaxTurnGameBytes).
small_project_games() {
  find "$root/examples" "$root/fuzz/games" "$root/tests/games" -name '*.gwl' -size -65537c |
    LC_ALL=C sort
}

# The order in which the turn fuzzer numbers its games: their paths below its copies of
# examples/ (as examples/), fuzz/games/ (as fuzz/) and tests/games/ (as tests/), sorted bytewise.
turn_games() {
  small_project_games | sed -e "s|^$root/fuzz/games/|fuzz/|" -e "s|^$root/tests/games/|tests/|" \
    -e "s|^$root/||" | LC_ALL=C sort
}

make_corpus() {
  mkdir -p "$corpus"
  local n=0 game
  case "$target" in
    GameReader)
      project_games | while read -r game; do cp "$game" "$corpus/$(basename "$game")"; done
      ;;
    CompiledReader)
      project_games | while read -r game; do
        n=$((n + 1))
        "$build/src/tarve-compile" "$game" "$corpus/$n.cgw" >/dev/null 2>&1 || true
      done
      ;;
    Turns)
      # Each transcript's typed lines and answers, after the byte that picks its game.
      local list transcript name index
      list=$(turn_games)
      for transcript in "$root"/tests/transcripts/*/*.tt; do
        name=$(sed -n 's/^@game[[:space:]]*\([^[:space:]]*\).*/\1/p' "$transcript" | awk 'NR == 1')
        [ -n "$name" ] || continue
        name=$(realpath -m "$(dirname "$transcript")/$name")
        name=$(echo "$name" | sed -e "s|^$root/fuzz/games/|fuzz/|" \
          -e "s|^$root/tests/games/|tests/|" -e "s|^$root/||")
        index=$(echo "$list" | grep -nxF "$name" | cut -d: -f1) || continue
        index=$((index - 1))
        {
          printf "\\$(printf '%03o' "$index")"
          sed -n -e 's/^> //p' -e 's/^<< //p' "$transcript"
        } >"$corpus/$(basename "$transcript" .tt).txt"
      done
      ;;
    Statements)
      # The script lines of every game, after three values for the fuzzer's variables.
      project_games | while read -r game; do
        {
          printf 'a <text>\n#fuzz1# and %%fuzzn%%\n7\n'
          grep -E '^[[:space:]]+[a-z]' "$game" | awk 'NR <= 100' || true
        } >"$corpus/$(basename "$game" .gwl).txt"
      done
      ;;
    SavedGame)
      "$build/fuzz/fuzz_make_saved_seeds" "$corpus"
      ;;
  esac
}

if [ ! -d "$corpus" ]; then make_corpus; fi
mkdir -p "$artifacts"
seeds=("$root/fuzz/seeds/$target" "$regressions")
existing=()
for folder in "${seeds[@]}"; do [ -d "$folder" ] && existing+=("$folder"); done

log=$(mktemp)
trap 'rm -f "$log"' EXIT
set +e
started=$SECONDS
"$build/fuzz/fuzz_$target" "$corpus" "${existing[@]}" \
  -max_total_time="$seconds" -timeout=1 -rss_limit_mb=2048 -max_len="$max_len" \
  -print_final_stats=1 -artifact_prefix="$artifacts/" ${TARVE_FUZZ_SEED:+-seed="$TARVE_FUZZ_SEED"} \
  >"$log" 2>&1
status=$?
set -e
if [ "$status" -ne 0 ]; then
  # The report: the sanitizer's or libFuzzer's own lines up to the input it wrote.
  sed -n '/^==[0-9]*==\|^INFO: Seed\|ERROR: libFuzzer/,$p' "$log" | grep -v '^#[0-9]' | head -n 80 || true
fi
executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
# The time it really ran: a fault ends the run early.
echo "$target: ${executions:-?} executions in $((SECONDS - started)) s, ${rate:-?} per second"
exit "$status"
