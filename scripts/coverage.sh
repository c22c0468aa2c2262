#!/usr/bin/env bash
# Builds Tarve with coverage counters (Debug, build/coverage), runs every test with ctest and
# prints the line coverage of src/ by the whole suite, file by file and in total. Needs gcovr
# (installed here when missing, like scripts/install-deps.sh does). Extra arguments go to gcovr,
# e.g. `--html-details build/coverage/index.html`.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
if ! dpkg-query -W -f='${Status}' gcovr 2>/dev/null | grep -q "install ok installed"; then
  sudo=""
  if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends gcovr
fi

build=build/coverage
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DBUILD_TESTING=ON \
  -DCMAKE_CXX_FLAGS=--coverage -DCMAKE_EXE_LINKER_FLAGS=--coverage \
  -DCMAKE_SHARED_LINKER_FLAGS=--coverage > /dev/null
cmake --build "$build" -j2
# Counters of an earlier run would add to this one's.
find "$build" -name '*.gcda' -delete
# A failing test still counts what it ran; the figure is printed either way.
status=0
ctest --test-dir "$build" -j2 --timeout 300 --output-on-failure || status=$?

gcovr --root . --filter 'src/' --object-directory "$build" --exclude-unreachable-branches \
  --print-summary "$@" "$build"
if [ $status -ne 0 ]; then echo "some tests failed (ctest exit status $status)" >&2; fi
exit $status
