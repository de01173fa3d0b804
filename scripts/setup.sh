#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the demo need, when
# they are missing. Safe to run again: it installs nothing that is there.
set -euo pipefail

packages=(
  cmake g++ make pkg-config
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  zlib1g-dev
  flite1-dev
  nlohmann-json3-dev libcli11-dev libcpp-httplib-dev libasound2-dev
  libjs-chart.js
  chromium chromium-driver python3-selenium fonts-dejavu-core
  g++-mingw-w64-x86-64 libz-mingw-w64-dev dpkg-dev wine wine64 xvfb xauth zip unzip e2fsprogs
  libpocketsphinx-dev pocketsphinx-en-us
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "setup: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
