#!/usr/bin/env bash
# Installs the Debian packages that building and testing Tarve needs, when they are missing.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  libutf8proc-dev
  # Line editing and history in the terminal player.
  libedit-dev
  # The terminal player's tests read its screen through a terminal emulator.
  python3 python3-pyte
  qt6-base-dev
  qt6-multimedia-dev
  libfluidsynth-dev timgm6mb-soundfont
  # Reading text aloud; Debian's Qt TextToSpeech package finds its CMake files only with
  # the declarative development files installed.
  qt6-speech-dev qt6-declarative-dev
  # Faces with the measures of the fonts games name ("Courier New", "Arial").
  fonts-liberation
  googletest libgtest-dev
  libbenchmark-dev
  clang libclang-rt-14-dev
  desktop-file-utils appstream libxml2-utils shared-mime-info
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
