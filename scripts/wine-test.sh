#!/usr/bin/env bash
# Runs the Windows link tests of a cross build (tests/wine) under wine, on a
# virtual X display, in a wine prefix of their own made afresh inside the
# build folder. Works as root on a machine with no display.
#
#   scripts/wine-test.sh BUILD_DIR
set -euo pipefail

if [ "${1:-}" != "--on-display" ]; then
  exec xvfb-run -a -s "-screen 0 1024x768x24" "$0" --on-display "$@"
fi
shift

build=$(cd "${1:?usage: wine-test.sh BUILD_DIR}" && pwd)
wine64=$(command -v wine64 || echo /usr/lib/wine/wine64)
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)

export WINEPREFIX="$build/wineprefix"
export WINEARCH=win64
export WINEDEBUG=-all
# No Mono or Gecko installer prompts at the prefix's first start.
export WINEDLLOVERRIDES="mscoree,mshtml="

cleanup() { "$wineserver" -k 2>/dev/null || true; }
trap cleanup EXIT

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

status=0
for test in "$build"/bin/*_test.exe; do
  echo "wine-test: $(basename "$test")"
  timeout --kill-after=10 600 "$wine64" "$test" --gtest_brief=1 || status=$?
done
exit $status
