#!/usr/bin/env bash
# Every program: -h, --help and --version end with status 0 and answer on standard output, the
# desktop program's without a display, which otherwise it refuses with a pointer to tarve-cli.
# A mistake on the command line ends with status 2 and one line naming it; a file that cannot be
# read or written ends tarve-compile with status 1. tarve-compile never writes over its game,
# named twice or through a link.
set -u
cli=$1 compile=$2 game=$3 desktop=${4:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $1"; exit 1; }

unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
for program in "$cli" "$compile" $desktop; do
  name=$(basename "$program")
  for pair in "-h|Usage: $name" "--help|Usage: $name" "--version|$name [0-9]"; do
    "$program" "${pair%%|*}" </dev/null >"$work/out" || fail "$name ${pair%%|*} exits $?"
    grep -q "^${pair#*|}" "$work/out" || fail "$name ${pair%%|*} shows no ${pair#*|}"
  done
done
if [ -n "$desktop" ]; then
  "$desktop" "$game" 2>"$work/err" && fail "tarve without a display exits 0"
  grep -q "tarve-cli GAME.gwl" "$work/err" || fail "tarve without a display names tarve-cli"
fi

cp "$game" "$work/g.gwl"
ln -s g.gwl "$work/link.cgw"
# Each command, the status it must end with and the start of what it must print on standard error.
while IFS='|' read -r expected command said; do
  # shellcheck disable=SC2086  # the options are split on purpose
  $command </dev/null >/dev/null 2>"$work/err"
  status=$?
  [ $status -eq "$expected" ] || fail "$command exits $status, not $expected"
  [[ $(<"$work/err") == *"$said"* ]] || fail "$command says: $(head -1 "$work/err")"
done <<MISTAKES
2|$cli --log $work/none/x.log $game|tarve-cli: cannot write the log file
2|$cli --transcript $work/none/t.txt $game|tarve-cli: cannot write the transcript file
2|$cli --dump|tarve-cli: --dump needs a game file
2|$cli --width 5 $game|tarve-cli: --width needs a number of columns, 10 or more, not '5'
2|$cli --frob $game|tarve-cli: unknown option --frob
2|$cli --seed|tarve-cli: --seed needs a value
2|$compile|
1|$compile $work/none.gwl $work/o.cgw|tarve-compile: cannot read
1|$compile $game $work/none/o.cgw|tarve-compile: cannot write
2|$compile $work/g.gwl $work/g.gwl|is the game itself: it is not written over
2|$compile $work/g.gwl $work/link.cgw|is the game itself: it is not written over
0|$compile $work/g.gwl $work/g.cgw|
MISTAKES
cmp -s "$game" "$work/g.gwl" || fail "the game was written over"
echo "passed"
