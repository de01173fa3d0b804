#!/usr/bin/env python3
"""A real take-off in FlightGear with Vantoro coaching it live.

FlightGear flies the c172p at Honolulu headless under Xvfb and streams its
state through the generic protocol; `vantoro --sim flightgear` reads it, as a
pilot's would. This script is the pilot: it starts the engine, releases the
brake and flies the take-off and climb through FlightGear's property server,
holding pitch, wings level and the runway heading. It then checks what the
pilot would have met: the modes Taxiing or TakeOff, then Cruise, in the event
stream; phrases spoken; the instructor's lines on FlightGear's screen; and the
flight's recording kept beside the pilot's log.

Usage: fly_flightgear.py [--circuit] VANTORO DATA_ROOT WORK_DIR
With --circuit it flies a whole left-hand circuit and a full-stop landing
instead, as the recorded FlightGear demo flight was made.
Runs only when fgfs is installed and VANTORO_FLIGHTGEAR=1 asks for it (make
test-flightgear); otherwise it is skipped (exit status 77).
"""
import glob
import json
import math
import os
import shutil
import signal
import socket
import subprocess
import sys
import threading
import time
import urllib.request

SKIP = 77
DATA_PORT = 5500  # the link's defaults: the data port and the property server
TELNET_PORT = 5501
SCRIPT_PORT = 5510  # the same stream, a second time, for the script that flies
FGFS = os.environ.get("FGFS", "/usr/games/fgfs")
FG_ROOT = os.environ.get("FG_ROOT", "/usr/share/games/flightgear")
RUNWAY_HEADING = 89.0  # PHNL 08L, true
ROTATE_KIAS = 55
CLIMB_PITCH = 7.0
LEVEL_ALTITUDE = 1300  # feet above the sea where the climb levels off (the runway is at 13)
CLIMB_TIMEOUT = 480  # seconds of flying before the test gives up on Cruise


def log(text):
    print(text, flush=True)


def clamp(v, lo, hi):
    return max(lo, min(hi, v))


class PropertyServer:
    """FlightGear's telnet property server in its data mode: a line set,
    a line read."""

    def __init__(self, port, wait):
        deadline = time.time() + wait
        while True:
            try:
                # FlightGear answers only between frames: while it loads, minutes pass.
                self.sock = socket.create_connection(("127.0.0.1", port), timeout=600)
                break
            except OSError:
                if time.time() > deadline:
                    raise
                time.sleep(2)
        self.file = self.sock.makefile("rw", newline="")
        self.file.write("data\r\n")
        self.file.flush()

    def set(self, prop, value):
        self.file.write(f"set {prop} {value}\r\n")
        self.file.flush()

    def get(self, prop):
        self.file.write(f"get {prop}\r\n")
        self.file.flush()
        return self.file.readline().strip()

    def number(self, prop):
        try:
            return float(self.get(prop))
        except ValueError:
            return 0.0


class EventStream(threading.Thread):
    """The app's event stream (/api/events), kept as a list of events."""

    def __init__(self, url):
        super().__init__(daemon=True)
        self.url = url
        self.events = []
        self.lock = threading.Lock()

    def run(self):
        try:
            with urllib.request.urlopen(self.url + "api/events", timeout=3600) as stream:
                for raw in stream:
                    line = raw.decode("utf-8", "replace").rstrip("\n")
                    if line.startswith("data: "):
                        try:
                            event = json.loads(line[6:])
                        except ValueError:
                            continue
                        with self.lock:
                            self.events.append(event)
        except OSError:
            pass

    def of(self, kind):
        with self.lock:
            return [e for e in self.events if e.get("type") == kind]

    def modes(self):
        return [e.get("mode") for e in self.of("mode")]


def post(url, path):
    request = urllib.request.Request(url + path, data=b"", method="POST")
    with urllib.request.urlopen(request, timeout=10) as reply:
        return reply.read()


def start_engine(fg):
    """The c172p starts cold with its parking brake set: the start its own
    autostart makes (magnetos, mixture rich, master, primer, starter)."""
    for tank in (0, 1):
        fg.set(f"/consumables/fuel/tank[{tank}]/level-gal_us", 20)
    fg.set("/controls/switches/magnetos", 3)
    fg.set("/controls/engines/current-engine/throttle", 0.2)
    fg.set("/controls/engines/current-engine/mixture", 1)
    fg.set("/controls/switches/master-bat", 1)
    fg.set("/controls/switches/master-alt", 1)
    fg.set("/controls/switches/master-avionics", 1)
    fg.set("/controls/lighting/beacon", 1)
    fg.set("/controls/lighting/nav-lights", 1)
    fg.set("/controls/engines/engine/primer", 3)
    fg.set("/controls/switches/starter", 1)
    fg.set("/engines/active-engine/auto-start", 1)
    for _ in range(60):
        if fg.get("/engines/engine[0]/running") == "true":
            break
        time.sleep(1)
    fg.set("/controls/switches/starter", 0)
    fg.set("/engines/active-engine/auto-start", 0)
    return fg.get("/engines/engine[0]/running") == "true"


class Instruments(threading.Thread):
    """The aircraft as FlightGear streams it: a second copy of Vantoro's own
    protocol on a port of the script's, read as its definition orders the
    fields. The property server answers one question a frame or so; flying
    by it would steer on values most of a second old."""

    def __init__(self, definition, port):
        super().__init__(daemon=True)
        text = open(definition, encoding="utf-8").read()
        self.nodes = [n.split("</node>")[0] for n in text.split("<node>")[1:]]
        self.sock = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.sock.bind(("127.0.0.1", port))
        self.latest = None
        self.count = 0
        self.ready = threading.Condition()

    def run(self):
        while True:
            fields = self.sock.recv(65536).decode("utf-8", "replace").rstrip("\n").split("\t")
            if len(fields) != len(self.nodes):
                continue
            with self.ready:
                self.latest = dict(zip(self.nodes, fields))
                self.count += 1
                self.ready.notify_all()

    def next(self, after):
        """The first sample after sample number `after`, and its number."""
        with self.ready:
            self.ready.wait_for(lambda: self.count > after, timeout=5)
            return self.latest, self.count

    @staticmethod
    def number(sample, node):
        try:
            return float(sample[node])
        except (KeyError, TypeError, ValueError):
            return 0.0


FEET_PER_DEGREE = 364_000  # of latitude


class Autopilot:
    """The script's hands on the c172p: on each sample, the rudder (on the
    ground) or the ailerons towards a heading, and the elevator towards a
    pitch, each damped by its rate."""

    def __init__(self, fg, trace):
        self.fg = fg
        self.trace = trace
        self.previous = None
        self.rates = (0.0, 0.0, 0.0)
        self.origin = None
        self.trim = 0.0  # the elevator that holds a pitch, learnt as it flies
        self.started = time.time()

    def read(self, sample):
        n = Instruments.number
        a = {k: n(sample, node) for k, node in (
            ("ias", "/velocities/airspeed-kt"), ("gs", "/velocities/groundspeed-kt"),
            ("pitch", "/orientation/pitch-deg"), ("roll", "/orientation/roll-deg"),
            ("heading", "/orientation/heading-deg"), ("agl", "/position/altitude-agl-ft"),
            ("altitude", "/position/altitude-ft"), ("climb", "/velocities/vertical-speed-fps"),
            ("lat", "/position/latitude-deg"), ("lon", "/position/longitude-deg"))}
        a["ground"] = sample.get("/gear/gear[1]/wow") == "1" or sample.get("/gear/gear[2]/wow") == "1"
        if self.origin is None:
            self.origin = (a["lat"], a["lon"])
        # Feet from where the take-off began: x along the runway (east), y north.
        a["x"] = (a["lon"] - self.origin[1]) * FEET_PER_DEGREE * math.cos(math.radians(a["lat"]))
        a["y"] = (a["lat"] - self.origin[0]) * FEET_PER_DEGREE
        now = time.time()
        if self.previous is not None:
            dt = max(now - self.previous[0], 0.05)
            turn = ((a["heading"] - self.previous[3] + 540) % 360 - 180) / dt
            measured = ((a["pitch"] - self.previous[1]) / dt, (a["roll"] - self.previous[2]) / dt,
                        turn)
            self.rates = tuple(0.5 * r + 0.5 * m for r, m in zip(self.rates, measured))
        self.previous = (now, a["pitch"], a["roll"], a["heading"])
        a["t"] = now - self.started
        return a

    def steer(self, a, heading, pitch, on_ground, max_bank=20):
        pitch_rate, roll_rate, yaw_rate = self.rates
        error = (heading - a["heading"] + 540) % 360 - 180
        if on_ground:
            rudder = 0.04 * error - 0.01 * yaw_rate
            self.fg.set("/controls/flight/rudder", round(clamp(rudder, -0.6, 0.6), 3))
            bank = 0.0
        else:
            self.fg.set("/controls/flight/rudder", 0)
            bank = clamp(error * 1.0, -max_bank, max_bank)
        aileron = 0.03 * (bank - a["roll"]) - 0.01 * roll_rate
        self.fg.set("/controls/flight/aileron", round(clamp(aileron, -0.5, 0.5), 3))
        if pitch is not None:
            if not on_ground:
                self.trim = clamp(self.trim + 0.003 * (a["pitch"] - pitch), -0.4, 0.3)
            elevator = 0.04 * (a["pitch"] - pitch) + 0.015 * pitch_rate - 0.05 + self.trim
            self.fg.set("/controls/flight/elevator", round(clamp(elevator, -0.7, 0.4), 3))
        self.trace.write(f"{a['t']:6.1f} ias {a['ias']:5.1f} alt {a['altitude']:6.0f} "
                         f"agl {a['agl']:6.0f} x {a['x']:7.0f} y {a['y']:6.0f} "
                         f"pitch {a['pitch']:5.1f}/{pitch if pitch is not None else 0:5.1f} "
                         f"roll {a['roll']:5.1f} heading {a['heading']:5.1f}/{heading:5.1f} "
                         f"climb {a['climb']:5.1f}\n")

    @staticmethod
    def hold(a, altitude, level_pitch, most=5.0):
        """The pitch that brings the aircraft to an altitude: a climb rate
        towards it, a pitch towards the rate."""
        wanted = clamp((altitude - a["altitude"]) * 0.03, -most, most)
        return clamp(level_pitch + 0.4 * (wanted - a["climb"]), -6, 8)

    def throttle(self, value):
        self.fg.set("/controls/engines/current-engine/throttle", round(clamp(value, 0, 1), 3))


def take_off(fg):
    fg.set("/controls/flight/flaps", 0)
    # The c172p's own levers, which its systems copy to the engine's.
    fg.set("/sim/model/c172p/brake-parking", 0)
    fg.set("/controls/engines/current-engine/mixture", 1)
    fg.set("/controls/engines/current-engine/throttle", 1)
    fg.set("/controls/lighting/landing-lights", 1)


def fly(fg, instruments, events, trace):
    """Take-off, climb and level-off: full power, the runway heading with the
    rudder on the ground and the ailerons in the air, rotate at 55 KIAS, hold
    the climb pitch, then level at 1,300 ft and cruise power until the
    instructor says Cruise (it waits for steady level flight). Ten times a
    second, on each sample FlightGear streams."""
    pilot = Autopilot(fg, trace)
    take_off(fg)
    airborne = level = False
    count = 0
    while time.time() - pilot.started < CLIMB_TIMEOUT:
        sample, count = instruments.next(count)
        if sample is None:
            continue
        a = pilot.read(sample)
        if not airborne:
            target = CLIMB_PITCH if a["ias"] >= ROTATE_KIAS else None
            airborne = a["agl"] > 50
        elif a["altitude"] < LEVEL_ALTITUDE - 100 and not level:
            target = CLIMB_PITCH
        else:
            if not level:
                pilot.throttle(0.7)
                level = True
            target = pilot.hold(a, LEVEL_ALTITUDE, 2.0, most=4)
        pilot.steer(a, RUNWAY_HEADING, target, on_ground=not airborne, max_bank=15)
        if "Cruise" in events.modes():
            return True
    return False


CIRCUIT_ALTITUDE = 1000  # feet above the sea; the runway is at 13
GLIDE_SLOPE = math.tan(math.radians(3))
AIM_POINT = 1000  # feet down the runway from where the take-off began
RUNWAY_OBS = 80  # 08L's magnetic heading, set on NAV1's OBS as the instructor expects


def fly_circuit(fg, instruments, events, trace):
    """A left-hand circuit of runway 08L and a full-stop landing: crosswind at
    700 ft, downwind at 1,000 ft with 10 degrees of flap abeam the runway's
    start, base with 20, final on the centreline and a three-degree path with
    30 at 62 knots, a flare at 15 ft and the brakes on the roll-out. The landing is the
    instructor's to score; the flight ends when it has."""
    pilot = Autopilot(fg, trace)
    fg.set("/instrumentation/nav[0]/radials/selected-deg", RUNWAY_OBS)
    take_off(fg)
    phase, count = "roll", 0
    while time.time() - pilot.started < 1500:
        sample, count = instruments.next(count)
        if sample is None:
            continue
        a = pilot.read(sample)
        x, y = a["x"], a["y"]
        if phase == "roll":
            pilot.steer(a, RUNWAY_HEADING, CLIMB_PITCH if a["ias"] >= ROTATE_KIAS else None, True)
            if a["agl"] > 50:
                phase = "climb"
        elif phase == "climb":
            pilot.steer(a, RUNWAY_HEADING, CLIMB_PITCH, False)
            if a["altitude"] > 700:
                phase = "crosswind"
        elif phase == "crosswind":
            pitch = CLIMB_PITCH if a["altitude"] < CIRCUIT_ALTITUDE - 80 else pilot.hold(
                a, CIRCUIT_ALTITUDE, 2.0)
            pilot.steer(a, 0, pitch, False)
            if y > 3500:
                phase = "downwind"
        elif phase == "downwind":
            if a["altitude"] > CIRCUIT_ALTITUDE - 80:
                pilot.throttle(0.55 + 0.04 * (80 - a["ias"]))
            pilot.steer(a, 270 - clamp((y - 5000) * 0.01, -20, 20),
                        pilot.hold(a, CIRCUIT_ALTITUDE, 2.0), False)
            if x < 0:
                fg.set("/controls/flight/flaps", 0.333)
            if x < -4500:
                phase = "base"
                fg.set("/controls/flight/flaps", 0.667)
        elif phase == "base":
            pilot.throttle(0.35 + 0.04 * (70 - a["ias"]))
            pilot.steer(a, 180, pilot.hold(a, 600, 0.0, most=6), False)
            if y < 1500:
                phase = "final"
                fg.set("/controls/flight/flaps", 1.0)
        elif phase == "final":
            # The centreline by heading, the path by pitch, the speed by power.
            track = RUNWAY_HEADING + clamp(y * 0.1, -30, 30)
            path = 13 + max(AIM_POINT - x, 0) * GLIDE_SLOPE
            pilot.throttle(0.35 + 0.04 * (62 - a["ias"]))
            pilot.steer(a, track, pilot.hold(a, path, -1.0, most=8), False, max_bank=15)
            if a["agl"] < 15:
                phase = "flare"
                pilot.throttle(0)
        elif phase == "flare":
            pilot.steer(a, RUNWAY_HEADING + clamp(y * 0.1, -10, 10), 5.0, False, max_bank=5)
            if a["ground"]:
                phase = "rollout"
        elif phase == "rollout":
            pilot.steer(a, RUNWAY_HEADING + clamp(y * 0.1, -10, 10), None, True)
            fg.set("/controls/flight/elevator", -0.2)
            fg.set("/controls/gear/brake-left", 0.6)
            fg.set("/controls/gear/brake-right", 0.6)
            if a["gs"] < 3:
                phase = "stopped"
                fg.set("/controls/flight/flaps", 0)
                stopped = time.time()
        elif phase == "stopped":
            if events.of("landing") or time.time() - stopped > 60:
                return bool(events.of("landing"))
    return False


def main():
    circuit = "--circuit" in sys.argv
    args = [a for a in sys.argv[1:] if a != "--circuit"]
    if len(args) != 3:
        print(__doc__)
        return 2
    vantoro, source, work = args
    if os.environ.get("VANTORO_FLIGHTGEAR") != "1":
        log("SKIPPED: a real FlightGear flight runs only with VANTORO_FLIGHTGEAR=1 "
            "(make test-flightgear)")
        return SKIP
    if not os.access(FGFS, os.X_OK):
        log("SKIPPED: FlightGear is not installed (apt-get install flightgear, 1.3 GB of data)")
        return SKIP

    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(os.path.join(work, "home"))
    # A data root to write in; the voice packs, large and only read, are linked.
    root = os.path.join(work, "data")
    shutil.copytree(source, root, ignore=shutil.ignore_patterns("Sound"))
    os.symlink(os.path.abspath(os.path.join(source, "Sound")), os.path.join(root, "Sound"))

    procs = []

    def spawn(cmd, name, **kw):
        out = open(os.path.join(work, name + ".log"), "w")
        p = subprocess.Popen(cmd, stdout=out, stderr=subprocess.STDOUT, **kw)
        procs.append(p)
        return p

    try:
        display = f":{100 + os.getpid() % 100}"
        spawn(["Xvfb", display, "-screen", "0", "320x240x24"], "xvfb")
        time.sleep(2)
        # Vantoro first: it puts its protocol definition into FlightGear's
        # Protocol/ folder (or says it cannot), which fgfs reads at start.
        app_port = free_port()
        live = subprocess.Popen(
            [vantoro, "--root", root, "--sim", "flightgear", "--no-browser",
             "--port", str(app_port)],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        procs.append(live)
        url, console = None, []
        while url is None:
            line = live.stdout.readline()
            if not line:
                log("FAIL: vantoro did not start:\n" + "".join(console))
                return 1
            console.append(line)
            for word in line.split():
                if word.startswith("http://"):
                    url = word.rstrip("/") + "/"
        threading.Thread(target=lambda: console.extend(iter(live.stdout.readline, "")),
                         daemon=True).start()
        events = EventStream(url)
        events.start()

        instruments = Instruments(os.path.join(root, "FlightGear", "vantoro.xml"), SCRIPT_PORT)
        instruments.start()
        env = dict(os.environ, HOME=os.path.join(work, "home"), DISPLAY=display,
                   DBUS_FATAL_WARNINGS="0")
        # Drawing is off: on two cores FlightGear reaches real time only so.
        spawn([FGFS, "--aircraft=c172p", "--airport=PHNL", "--runway=08L", "--timeofday=noon",
               # Honolulu's trade wind, so that 08L is the runway into the wind.
               "--wind=085@8",
               "--geometry=160x120", "--disable-clouds", "--disable-hud", "--disable-panel",
               "--disable-ai-traffic", "--disable-terrasync", "--disable-sound",
               "--disable-splash-screen",
               "--prop:/sim/rendering/draw-mask/terrain=false",
               "--prop:/sim/rendering/draw-mask/models=false",
               "--prop:/sim/rendering/draw-mask/aircraft=false",
               "--prop:/sim/rendering/draw-mask/clouds=false",
               f"--generic=socket,out,10,127.0.0.1,{DATA_PORT},udp,vantoro",
               f"--generic=socket,out,10,127.0.0.1,{SCRIPT_PORT},udp,vantoro",
               # The property server at 60 Hz: at its default rate every answer
               # waits most of a second, too slow to fly by.
               f"--telnet=socket,bi,60,127.0.0.1,{TELNET_PORT},tcp"], "fgfs", env=env)
        log("waiting for FlightGear (its first start builds its navigation cache)")
        fg = PropertyServer(TELNET_PORT, wait=900)
        for _ in range(600):
            if fg.get("/sim/signals/fdm-initialized") == "true":
                break
            time.sleep(1)
        else:
            log("FAIL: FlightGear's flight model never started")
            return 1
        post(url, "api/connect")
        if not start_engine(fg):
            log("FAIL: the c172p's engine did not start")
            return 1
        time.sleep(10)  # the instructor sees the aircraft standing on the runway first
        with open(os.path.join(work, "fly.log"), "w") as trace:
            connected = (fly_circuit if circuit else fly)(fg, instruments, events, trace)
        # Whatever Vantoro wrote on FlightGear's screen.
        screen = fg.get("/sim/screen/white")
        time.sleep(3)
        post(url, "api/disconnect")
        time.sleep(3)
        live.send_signal(signal.SIGINT)
        live.wait(30)

        modes = events.modes()
        spoken = [e.get("file") for e in events.of("spoken")]
        messages = [e.get("text") for e in events.of("message")]
        recordings = glob.glob(os.path.join(root, "PilotRoster", "*.vrec*"))
        log(f"modes: {' '.join(m or '' for m in modes)}")
        log(f"phrases spoken ({len(spoken)}): {' '.join(spoken[:40])}")
        log(f"messages on FlightGear's screen: {len(messages)} (last shown: {screen!r})")
        log(f"recordings: {recordings}")
        failures = []
        if not connected:
            failures.append("the instructor never scored the landing" if circuit
                            else "the instructor never said Cruise")
        climbed_out = "Cruise" in modes and any(
            m in ("Taxiing", "TakeOff") for m in modes[:modes.index("Cruise")])
        if not climbed_out:
            failures.append("the instructor did not see Taxiing or TakeOff, then Cruise")
        if not spoken:
            failures.append("the instructor said nothing")
        if not recordings:
            failures.append("the flight was not recorded beside the pilot's log")
        for f in failures:
            log("FAIL: " + f)
        if failures:
            log("vantoro's console:\n" + "".join(console[-40:]))
            return 1
        log("1 passed, 0 failed")
        return 0
    finally:
        for p in reversed(procs):
            if p.poll() is None:
                p.terminate()
                try:
                    p.wait(10)
                except subprocess.TimeoutExpired:
                    p.kill()


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


if __name__ == "__main__":
    sys.exit(main())
