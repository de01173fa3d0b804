#!/bin/bash
# A real take-off in FlightGear, recorded live through the FlightGear link
# and replayed through the instructor: the recording must hold the take-off
# roll and the climb, and the instructor must see TakeOff, then Cruise.
#
# Usage: fly_flightgear.sh VANTORO_CLI DATA_ROOT WORK_DIR
# FlightGear with its data is a 1.3 GB download: the test runs only when
# fgfs is installed and VANTORO_FLIGHTGEAR=1 asks for it (make
# test-flightgear); otherwise it is skipped (exit status 77).
set -u
CLI=$1
ROOT=$2
WORK=$3
FGFS=${FGFS:-/usr/games/fgfs}
SKIP=77

if [ "${VANTORO_FLIGHTGEAR:-0}" != 1 ]; then
  echo "SKIPPED: a real FlightGear flight runs only with VANTORO_FLIGHTGEAR=1 (make test-flightgear)"
  exit $SKIP
fi
if [ ! -x "$FGFS" ]; then
  echo "SKIPPED: FlightGear is not installed (apt-get install flightgear, 1.3 GB of data)"
  exit $SKIP
fi
FG_ROOT=${FG_ROOT:-/usr/share/games/flightgear}
if ! cmp -s "$ROOT/FlightGear/vantoro.xml" "$FG_ROOT/Protocol/vantoro.xml"; then
  cp "$ROOT/FlightGear/vantoro.xml" "$FG_ROOT/Protocol/vantoro.xml" 2>/dev/null || {
    echo "SKIPPED: cannot put vantoro.xml into $FG_ROOT/Protocol (run as root once)"
    exit $SKIP
  }
fi

rm -rf "$WORK" && mkdir -p "$WORK/home"
DATA_PORT=$((20000 + RANDOM % 10000))
TELNET_PORT=$((DATA_PORT + 1))
DISPLAY_NO=$((100 + RANDOM % 100))
PIDS=()
cleanup() {
  for p in "${PIDS[@]}"; do kill "$p" 2>/dev/null; done
  wait 2>/dev/null
}
trap cleanup EXIT

Xvfb ":$DISPLAY_NO" -screen 0 320x240x24 >"$WORK/xvfb.log" 2>&1 &
PIDS+=($!)
sleep 2
# Drawing is off: on two cores FlightGear reaches real time only so.
HOME="$WORK/home" DISPLAY=":$DISPLAY_NO" DBUS_FATAL_WARNINGS=0 "$FGFS" \
  --aircraft=c172p --airport=PHNL --runway=08L --state=take-off --timeofday=noon \
  --geometry=160x120 --disable-clouds --disable-hud --disable-panel --disable-ai-traffic \
  --disable-terrasync --disable-sound --disable-splash-screen \
  --prop:/sim/rendering/draw-mask/terrain=false --prop:/sim/rendering/draw-mask/models=false \
  --prop:/sim/rendering/draw-mask/aircraft=false --prop:/sim/rendering/draw-mask/clouds=false \
  --generic=socket,out,10,127.0.0.1,$DATA_PORT,udp,vantoro --telnet=$TELNET_PORT \
  >"$WORK/fgfs.log" 2>&1 &
PIDS+=($!)

# The property server: one line set, one line read.
fg_open() { exec 3<>"/dev/tcp/127.0.0.1/$TELNET_PORT" && echo "data" >&3; }
fg_set() { printf 'set %s %s\r\n' "$1" "$2" >&3; }
fg_get() {
  printf 'get %s\r\n' "$1" >&3
  local line
  IFS= read -r -t 5 line <&3 && echo "${line%$'\r'}"
}

echo "waiting for FlightGear's property server (its first start builds its navigation cache)"
for _ in $(seq 1 600); do
  fg_open 2>/dev/null && break
  sleep 1
done
fg_get /sim/aircraft >/dev/null || { echo "FAIL: FlightGear did not start"; tail "$WORK/fgfs.log"; exit 1; }
for _ in $(seq 1 300); do
  [ "$(fg_get /sim/signals/fdm-initialized)" = "true" ] && break
  sleep 1
done

"$CLI" record --sim flightgear --sim-port "$DATA_PORT" --ticks 240 --root "$ROOT" \
  "$WORK/takeoff.vrec" >"$WORK/record.log" 2>&1 &
RECORD=$!
PIDS+=($RECORD)

# The c172p's take-off state has its engine running; wait for it, then roll.
for _ in $(seq 1 120); do
  [ "$(fg_get '/engines/engine[0]/running')" = "true" ] && break
  sleep 1
done
sleep 10  # the instructor sees the aircraft standing on the runway first
fg_set /controls/gear/brake-parking 0
fg_set /controls/flight/flaps 0
fg_set '/controls/engines/engine[0]/mixture' 1
fg_set '/controls/engines/engine[0]/throttle' 1
for _ in $(seq 1 120); do
  ias=$(fg_get /velocities/airspeed-kt)
  [ "${ias%%.*}" -ge 55 ] 2>/dev/null && break
  sleep 0.5
done
fg_set /controls/flight/elevator -0.15
sleep 8
fg_set /controls/flight/elevator -0.05
wait $RECORD
echo "record: $(cat "$WORK/record.log")"

"$CLI" replay "$WORK/takeoff.vrec" --root "$ROOT" --out "$WORK/out" --instant \
  --events "$WORK/events.jsonl" >"$WORK/replay.log" 2>&1
modes=$(grep '"type":"mode"' "$WORK/events.jsonl" | sed 's/.*"mode":"\([A-Za-z]*\)".*/\1/' | tr '\n' ' ')
spoken=$(grep -c '"type":"spoken"' "$WORK/events.jsonl")
echo "modes: $modes; phrases spoken: $spoken"
case " $modes" in
  *" TakeOff "*"Cruise"*) ;;
  *) echo "FAIL: the instructor did not see TakeOff, then Cruise"; exit 1 ;;
esac
[ "$spoken" -gt 0 ] || { echo "FAIL: the instructor said nothing"; exit 1; }
echo "1 passed, 0 failed"
