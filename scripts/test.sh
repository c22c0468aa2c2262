#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test: first the normal build with warnings
# as errors, then the same tests under AddressSanitizer and UndefinedBehaviorSanitizer, then a
# short fuzzing pass over every fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

for preset in ci asan; do
  echo "=== $preset build ==="
  cmake --preset "$preset"
  cmake --build --preset "$preset"
  echo "=== $preset tests ==="
  ctest --preset "$preset"
done

# A minute per fuzz target: the whole run stays near 12 minutes on two cores.
scripts/fuzz-smoke.sh
