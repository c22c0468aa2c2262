#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test: first the normal build with warnings
# as errors, then the same tests under AddressSanitizer and UndefinedBehaviorSanitizer.
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
