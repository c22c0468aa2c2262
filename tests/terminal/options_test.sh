#!/usr/bin/env bash
# Every program: -h, --help and --version end with status 0 and answer on standard output, the
# desktop program's without a display, which otherwise it refuses with a pointer to tarve-cli.
# A mistake on the command line ends with status 2 and one line naming it; a file that cannot be
# read or written ends tarve-compile with status 1. tarve-compile never writes over its game,
# named twice or through a link.
set -u
cli=$1
compile=$2
game=$3
desktop=${4:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $1"; exit 1; }

unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
for program in "$cli" "$compile" $desktop; do
  name=$(basename "$program")
  for option in -h --help; do
    "$program" "$option" </dev/null >"$work/out" || fail "$name $option exits $?"
    grep -q "^Usage: $name" "$work/out" || fail "$name $option shows no usage"
  done
  "$program" --version </dev/null >"$work/out" || fail "$name --version exits $?"
  grep -q "^$name [0-9]" "$work/out" || fail "$name --version shows no version"
done

if [ -n "$desktop" ]; then
  "$desktop" "$game" 2>"$work/err" && fail "tarve without a display exits 0"
  grep -q "tarve-cli GAME.gwl" "$work/err" || fail "tarve without a display names tarve-cli"
fi

# Each mistake, then the start of the line it must print on standard error.
while IFS='|' read -r args said; do
  # shellcheck disable=SC2086  # the options are split on purpose
  "$cli" $args </dev/null >/dev/null 2>"$work/err"
  status=$?
  [ $status -eq 2 ] || fail "tarve-cli $args exits $status, not 2"
  grep -qF "tarve-cli: $said" "$work/err" || fail "tarve-cli $args says: $(head -1 "$work/err")"
done <<MISTAKES
--log $work/none/x.log $game|cannot write the log file
--transcript $work/none/t.txt $game|cannot write the transcript file
--dump|--dump needs a game file
--width 5 $game|--width needs a number of columns, 10 or more, not '5'
--frob $game|unknown option --frob
--seed|--seed needs a value
MISTAKES
"$compile" </dev/null 2>/dev/null; [ $? -eq 2 ] || fail "tarve-compile without files is no mistake"
"$compile" "$work/none.gwl" "$work/o.cgw" 2>/dev/null; [ $? -eq 1 ] || fail "a missing game"
"$compile" "$game" "$work/none/o.cgw" 2>/dev/null; [ $? -eq 1 ] || fail "an unwritable output"

cp "$game" "$work/g.gwl"
ln -s g.gwl "$work/link.cgw"
for out in "$work/g.gwl" "$work/link.cgw"; do
  "$compile" "$work/g.gwl" "$out" 2>/dev/null && fail "$out was taken as the output"
  cmp -s "$game" "$work/g.gwl" || fail "the game was written over through $out"
done
"$compile" "$work/g.gwl" "$work/g.cgw" || fail "a real output is refused"
echo "passed"
