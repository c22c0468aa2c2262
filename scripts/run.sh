#!/usr/bin/env bash
# Installs what is missing, builds Tarve and opens the demo game (or the game named) in the
# desktop window. Without a display, or in a build without the desktop program, the game is
# played in the terminal with tarve-cli instead, and the script says so.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset release > /dev/null
if [ $# -eq 0 ]; then set -- examples/demo.gwl; fi

# The build writes where the desktop program is when the build has one.
desktop=""
if [ -f build/release/desktop-program ]; then desktop=$(cat build/release/desktop-program); fi

if [ -n "$desktop" ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  cmake --build --preset release --target tarve
  exec "$desktop" "$@"
fi

cmake --build --preset release --target tarve-cli
if [ -z "$desktop" ]; then
  echo "This build has no desktop program: playing in the terminal instead (tarve-cli)." >&2
else
  echo "No display: playing in the terminal instead (tarve-cli)." >&2
fi
exec build/release/src/tarve-cli "$@"
