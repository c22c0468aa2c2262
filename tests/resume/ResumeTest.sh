#!/bin/bash
# A game left unfinished in tarve-cli with --resume is offered again and goes on where it was
# left; piped input without --resume neither offers nor changes the kept game; "no" starts afresh
# and forgets it. Usage: ResumeTest.sh TARVE_CLI GAME_FILE
set -u
cli=$1
game=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_DATA_HOME=$work/data HOME=$work
kept_folder=$work/data/Tarve/resume
question="go on where you left off"
fail() { echo "FAIL: $*"; echo "--- output:"; cat "$work/out"; exit 1; }
play() { printf "$1" | "$cli" --settings "$work/settings" "${@:2}" "$game" >"$work/out" 2>&1; }

play 'north\nquit\nyes\n' --resume
kept=$(ls "$kept_folder"/*.tsg 2>/dev/null)
[ -n "$kept" ] || fail "quitting kept nothing in $kept_folder"
grep -q "Roses everywhere" "$work/out" || fail "the first run did not go north"

cp "$kept" "$work/before"
play 'look\n'
grep -q "$question" "$work/out" && fail "piped input without --resume was offered the kept game"
cmp -s "$kept" "$work/before" || fail "piped input without --resume changed the kept game"
grep -q "A plain hall" "$work/out" || fail "without --resume the game did not start afresh"

play 'yes\nlook\n' --resume
grep -q "$question" "$work/out" || fail "the kept game was not offered"
sed -n '/^Loaded game .* - Window Test/,$p' "$work/out" | grep -q "Roses everywhere" ||
  fail "the kept game did not go on in the garden"
[ -f "$kept" ] || fail "the end of the input kept nothing"

play 'no\nlook\n' --resume
grep -q "$question" "$work/out" || fail "the kept game was not offered the second time"
grep -q "A plain hall" "$work/out" || fail "no did not start afresh"
[ -f "$kept" ] && fail "no did not forget the kept game"
echo "PASS"
