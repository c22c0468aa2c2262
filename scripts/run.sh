#!/usr/bin/env bash
# Installs what is missing, builds Tarve and opens the demo game (or the game named).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset release > /dev/null
cmake --build --preset release --target tarve-cli
exec build/release/src/tarve-cli "${@:-examples/demo.gwl}"
