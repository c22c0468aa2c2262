#!/bin/sh
# tarve-cli under the bounds of a run: a game that logs a long unknown line in a long loop
# writes a bounded log whose lines quote the script line cut short, and a game that builds values
# past a memory limit stops with a message and status 3 instead of aborting, both in a turn and
# while a saved game is loaded at start-up.
#
# usage: limits.sh TARVE_CLI
set -u
cli=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

# --- The log file: 4 x 30,000 rounds of an unknown line of 1,000 characters. -----------------
long=$(printf '%01000d' 0 | tr 0 x)
cat >noise.gwl <<GAME
define game <Noise>
  start <Hall>
  startscript do <rounds>
  startscript do <rounds>
  startscript do <rounds>
  startscript do <rounds>
end define
define room <Hall>
end define
define procedure <rounds>
  for <i; 1; 30000> nonsense $long
end define
GAME
"$cli" --plain --settings settings --log noise.log noise.gwl </dev/null >/dev/null 2>&1 ||
  fail "the noisy game ended with status $?"
size=$(stat -c %s noise.log)
[ "$size" -le 16777216 ] && [ "$size" -gt $((16777216 - 1000)) ] ||
  fail "the log file holds $size bytes, not just under 16 MB"
tail -n 1 noise.log | grep -qx "Warning: This run has written [0-9]* bytes to the log file -\
 further messages are not written to it." || fail "the log file ends with: $(tail -c 100 noise.log)"

# --- Out of memory: in a turn, and while loading a saved game of 30 variables of 1 MB. ----------
cat >hoard.gwl <<'GAME'
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
printf 'keep\nsave\n%s\n' "$work/hoard.tsg" | "$cli" --plain --settings settings hoard.gwl \
  >/dev/null 2>&1
[ -s hoard.tsg ] || fail "the saved game was not written"
for run in turn:hoard.gwl load:hoard.tsg; do
  printf 'hoard\nlook\n' | (ulimit -v 120000 && "$cli" --plain --settings settings \
    --log "${run%:*}.log" "${run#*:}" >"${run%:*}.out" 2>"${run%:*}.err")
  status=$?
  [ "$status" -eq 3 ] || fail "running out of memory ($run) gave status $status"
done

# Each file, then a whole line it must hold.
while IFS='|' read -r file line; do
  grep -qxF "$line" "$file" || fail "$file lacks \"$line\"; it begins: $(head -c 300 "$file")"
done <<LINES
noise.log|Warning: Unrecognized keyword. Line reads: 'nonsense $(printf '%.191s' "$long")...'
turn.err|tarve-cli: out of memory; the game was stopped.
turn.log|Error: Out of memory - the game was stopped.
turn.out|[Error] Tarve ran out of memory, so the game was stopped.
load.err|tarve-cli: out of memory; the game was stopped.
LINES
exit $((failures > 0))
