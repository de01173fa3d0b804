#!/usr/bin/env bash
# Puts the header-only libraries of the Windows cross build into
# BUILD_DIR/deps/include, from Debian packages of the same versions as the
# Linux build uses; nothing is copied into the repository.
#
# - cpp-httplib: Debian's binary package holds the header of a compiled
#   library, so the header-only form is taken from the Debian source package
#   of the installed version (with Debian's patches applied).
# - nlohmann-json and CLI11: the headers of the installed -dev packages, which
#   are header-only already, are linked in.
#
#   scripts/windows-deps.sh BUILD_DIR
set -euo pipefail

build=$(mkdir -p "${1:?usage: windows-deps.sh BUILD_DIR}" && cd "$1" && pwd)
deps="$build/deps"
include="$deps/include"
mkdir -p "$include"

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi

installed_source() {  # binary package -> "source-name source-version"
  dpkg-query -W -f='${source:Package} ${source:Version}\n' "$1"
}

link_headers() {  # package, header folder or file under /usr/include
  local package=$1 name=$2
  if [ ! -e "/usr/include/$name" ]; then
    echo "windows-deps: /usr/include/$name is missing (scripts/setup.sh installs $package)" >&2
    exit 1
  fi
  ln -sfn "/usr/include/$name" "$include/$name"
  echo "windows-deps: $name from $package $(dpkg-query -W -f='${Version}' "$package")"
}

link_headers nlohmann-json3-dev nlohmann
link_headers libcli11-dev CLI

read -r httplib_source httplib_version < <(installed_source libcpp-httplib-dev)
stamp="$deps/httplib-$httplib_version.done"
if [ ! -f "$stamp" ]; then
  # A private apt configuration that lists the machine's Debian archives as
  # source archives, so the system's own lists are left alone.
  apt_dir="$deps/apt"
  rm -rf "$apt_dir" "$deps/src"
  mkdir -p "$apt_dir/lists/partial" "$apt_dir/cache/archives/partial" "$apt_dir/sources.list.d" \
    "$deps/src"
  : >"$apt_dir/sources.list"
  if [ -f /etc/apt/sources.list ]; then
    sed -n 's/^deb \(.*bookworm.*\)$/deb-src \1/p' /etc/apt/sources.list >>"$apt_dir/sources.list"
  fi
  for f in /etc/apt/sources.list.d/*.sources; do
    [ -f "$f" ] || continue
    # Only the stanzas of the Debian release, with their type turned to sources.
    awk -v RS= -v ORS='\n\n' '/Suites:[^\n]*bookworm/ { sub(/Types:[^\n]*/, "Types: deb-src"); print }' \
      "$f" >"$apt_dir/sources.list.d/$(basename "$f")"
  done
  apt_opts=(-o "Dir::Etc::SourceList=$apt_dir/sources.list"
    -o "Dir::Etc::SourceParts=$apt_dir/sources.list.d"
    -o "Dir::State::Lists=$apt_dir/lists" -o "Dir::Cache=$apt_dir/cache"
    -o "Dir::Cache::pkgcache=" -o "Dir::Cache::srcpkgcache="
    -o "Acquire::Languages=none" -o "APT::Sandbox::User=root")
  echo "windows-deps: fetching the Debian source package $httplib_source $httplib_version"
  $SUDO apt-get -qq "${apt_opts[@]}" update
  (cd "$deps/src" && apt-get -qq "${apt_opts[@]}" source --download-only \
    "$httplib_source=$httplib_version")
  (cd "$deps/src" && dpkg-source --no-check -x ./*.dsc httplib >/dev/null)
  rm -rf "$apt_dir"
  touch "$stamp"
fi
cp "$deps/src/httplib/httplib.h" "$include/httplib.h"
echo "windows-deps: httplib.h (header-only) from the source package $httplib_source $httplib_version"
