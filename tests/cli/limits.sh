#!/bin/sh
# tarve-cli under the bounds of a run: a game that logs a long unknown line in a long loop
# writes a bounded log whose lines quote the script line cut short, and a game that builds values
# past a memory limit stops with a message and status 3 instead of aborting, both in a turn and
# while a saved game is loaded at start-up.
#
# usage: limits.sh TARVE_CLI
set -u
cli=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
  echo "FAIL: $*" >&2
  failures=$((failures + 1))
}

# --- The log file: 3 x 30,000 rounds of an unknown line of 1,000 characters. -----------------
long=$(awk 'BEGIN { for (i = 0; i < 1000; i++) printf "x" }')
cat >"$work/noise.gwl" <<GAME
define game <Noise>
  start <Hall>
  startscript for <j; 1; 3> do <rounds>
end define
define room <Hall>
end define
define procedure <rounds>
  for <i; 1; 30000> nonsense $long
end define
GAME
"$cli" --plain --settings "$work/settings" --log "$work/noise.log" "$work/noise.gwl" \
  </dev/null >/dev/null 2>&1 || fail "the noisy game ended with status $?"
size=$(stat -c %s "$work/noise.log")
[ "$size" -le $((16 * 1024 * 1024)) ] || fail "the log file holds $size bytes"
[ "$size" -gt $((16 * 1024 * 1024 - 1000)) ] || fail "the log file stopped early at $size bytes"
last=$(tail -n 1 "$work/noise.log")
case "$last" in
  "Warning: This run has written "*" bytes to the log file - further messages are not written to it.") ;;
  *) fail "the log file ends with: $(printf '%.100s' "$last")" ;;
esac
quoted=$(grep -m 1 "Unrecognized keyword" "$work/noise.log")
expected="Warning: Unrecognized keyword. Line reads: 'nonsense $(printf '%.191s' "$long")...'"
[ "$quoted" = "$expected" ] || fail "a logged line reads: $(printf '%.300s' "$quoted")"

# --- Out of memory. -----------------------------------------------------------------------------
cat >"$work/hoard.gwl" <<'GAME'
define game <Hoard>
  start <Hall>
  startscript setstring <s; x>
  startscript for <i; 1; 20> setstring <s; #s##s#>
end define
define room <Hall>
  command <hoard> for <i; 1; 63> setstring <copy %i%; #s#>
  command <keep> for <i; 1; 30> setstring <copy %i%; #s#>
end define
GAME

# In a turn: the game stops with a message in the log and a status of its own.
(
  ulimit -v 120000
  printf 'hoard\nlook\n' | "$cli" --plain --settings "$work/settings" --log "$work/hoard.log" \
    "$work/hoard.gwl" >"$work/hoard.out" 2>"$work/hoard.err"
)
status=$?
[ "$status" -eq 3 ] || fail "running out of memory in a turn gave status $status"
grep -qx "tarve-cli: out of memory; the game was stopped." "$work/hoard.err" ||
  fail "standard error reads: $(cat "$work/hoard.err")"
grep -qx "Error: Out of memory - the game was stopped." "$work/hoard.log" ||
  fail "the log does not say the memory ran out"
grep -qx "\[Error\] Tarve ran out of memory, so the game was stopped." "$work/hoard.out" ||
  fail "no message box said the memory ran out"

# At start-up: a saved game of 30 variables of 1 MB, loaded under the limit.
printf 'keep\nsave\n%s\n' "$work/hoard.tsg" |
  "$cli" --plain --settings "$work/settings" "$work/hoard.gwl" >/dev/null 2>&1
[ -s "$work/hoard.tsg" ] || fail "the saved game was not written"
(
  ulimit -v 120000
  "$cli" --plain --settings "$work/settings" "$work/hoard.tsg" </dev/null >/dev/null \
    2>"$work/load.err"
)
status=$?
[ "$status" -eq 3 ] || fail "running out of memory while loading gave status $status"
grep -qx "tarve-cli: out of memory; the game was stopped." "$work/load.err" ||
  fail "standard error reads: $(cat "$work/load.err")"

exit $((failures > 0))
