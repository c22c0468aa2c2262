#!/usr/bin/env bash
# Installs what is missing, builds Tarve and opens the demo game (or the game named) in the game
# window. Without a display the program says so and names the terminal player.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset release > /dev/null
cmake --build --preset release --target tarve tarve-cli
exec build/release/src/tarve "${@:-examples/demo.gwl}"
