#!/usr/bin/env bash
# A short fuzzing pass over every fuzz target, one after the other with one job each: any crash,
# leak, sanitizer report or input slower than a second fails it. TARVE_FUZZ_SECONDS sets the
# time per target (60 by default). Needs clang and its runtime libraries (scripts/install-deps.sh).
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${TARVE_FUZZ_SECONDS:-60}
# A fixed seed makes the pass repeatable: the same inputs on the same machine.
export TARVE_FUZZ_SEED=${TARVE_FUZZ_SEED:-1}
failed=()
for target in GameReader CompiledReader Turns Statements SavedGame; do
  echo "=== fuzz $target (${seconds} s) ==="
  if ! fuzz/run.sh "$target" "$seconds"; then failed+=("$target"); fi
done
if [ ${#failed[@]} -ne 0 ]; then
  echo "fuzzing found faults in: ${failed[*]} (inputs in fuzz/corpus-artifacts/)" >&2
  exit 1
fi
