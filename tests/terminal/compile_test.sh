#!/usr/bin/env bash
# tarve-compile: -h, --help and --version end with status 0 and say it on standard output; the
# game is never written over, named twice or through a link.
set -u
compile=$1
game=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $1"; exit 1; }

for option in -h --help; do
  "$compile" "$option" >"$work/out" || fail "$option exits $?"
  grep -q "^Usage: tarve-compile" "$work/out" || fail "$option shows no usage"
done
"$compile" --version >"$work/out" || fail "--version exits $?"
grep -q "^tarve-compile " "$work/out" || fail "--version shows no version"

cp "$game" "$work/g.gwl"
ln -s g.gwl "$work/link.cgw"
for out in "$work/g.gwl" "$work/link.cgw"; do
  "$compile" "$work/g.gwl" "$out" 2>/dev/null && fail "$out was taken as the output"
  cmp -s "$game" "$work/g.gwl" || fail "the game was written over through $out"
done
"$compile" "$work/g.gwl" "$work/g.cgw" || fail "a real output is refused"
echo "passed"
