#!/usr/bin/env bash
# Runs the Windows tests of a cross build (tests/wine) under wine, on a
# virtual X display, in a wine prefix of their own made afresh inside the
# build folder. Works as root on a machine with no display.
#
#   scripts/wine-test.sh BUILD_DIR            every test program of the build
#   scripts/wine-test.sh BUILD_DIR --release  the release's Vantoro.zip, unpacked
#                                             into a path with spaces, flies the
#                                             demo circuit the test server plays
set -euo pipefail

if [ "${1:-}" != "--on-display" ]; then
  exec xvfb-run -a -s "-screen 0 1024x768x24" "$0" --on-display "$@"
fi
shift

build=$(cd "${1:?usage: wine-test.sh BUILD_DIR [--release]}" && pwd)
release=${2:-}
source_dir=$(cd "$(dirname "$0")/.." && pwd)
wine64=$(command -v wine64 || echo /usr/lib/wine/wine64)
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)

export WINEPREFIX="$build/wineprefix"
export WINEARCH=win64
export WINEDEBUG=-all
# No Mono or Gecko installer prompts at the prefix's first start.
export WINEDLLOVERRIDES="mscoree,mshtml="

# The Program Files case: a program whose data folder it cannot write to.
locked="$WINEPREFIX/drive_c/Program Files/Vantoro locked"
unlock() {
  if [ -d "$locked/data" ]; then
    chattr -i "$locked/data" 2>/dev/null || true
    chmod u+w "$locked/data"
  fi
}
cleanup() {
  unlock
  "$wineserver" -k 2>/dev/null || true
}
trap cleanup EXIT

unlock
rm -rf "$WINEPREFIX"
start=$(date +%s)
"$wine64" wineboot --init >/dev/null 2>&1
# A crashing program ends with its status instead of starting the debugger,
# which would wait for someone to close its window.
"$wine64" reg delete 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' \
  /v Debugger /f >/dev/null 2>&1 || true
"$wine64" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f \
  >/dev/null 2>&1
"$wineserver" -w
echo "wine-test: prefix ready in $(($(date +%s) - start)) s"

if [ "$release" = "--release" ]; then
  zip="$build/release/Vantoro.zip"
  [ -f "$zip" ] || { echo "wine-test: $zip is missing (make release-windows)" >&2; exit 1; }
  unpacked="$build/release test/My Programs"
  rm -rf "$build/release test"
  mkdir -p "$unpacked"
  unzip -q "$zip" -d "$unpacked"
  export VANTORO_PROGRAM
  VANTORO_PROGRAM=$("$wine64" winepath -w "$unpacked/Vantoro/vantoro.exe" 2>/dev/null | tr -d '\r')
  echo "wine-test: $VANTORO_PROGRAM against the test offset server"
  timeout --kill-after=10 600 "$wine64" "$build/bin/program_test.exe" \
    --gtest_filter='Program.CoachesTheCircuit*'
  exit
fi

# Root writes anywhere: its data folder is made immutable where the machine
# allows it (else the test says it is skipped); anyone else is refused by
# the folder's rights.
mkdir -p "$locked"
cp "$build/bin/vantoro.exe" "$locked/"
tar -C "$source_dir" --exclude=data/Sound -cf - data | tar -C "$locked" -xf -
if { [ "$(id -u)" -eq 0 ] && chattr +i "$locked/data" 2>/dev/null; } ||
  { [ "$(id -u)" -ne 0 ] && chmod a-w "$locked/data"; }; then
  export VANTORO_LOCKED_PROGRAM='C:\Program Files\Vantoro locked\vantoro.exe'
fi

status=0
for test in "$build"/bin/*_test.exe; do
  echo "wine-test: $(basename "$test")"
  timeout --kill-after=10 600 "$wine64" "$test" --gtest_brief=1 || status=$?
done
exit $status
