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

Usage: fly_flightgear.py VANTORO DATA_ROOT WORK_DIR
Runs only when fgfs is installed and VANTORO_FLIGHTGEAR=1 asks for it (make
test-flightgear); otherwise it is skipped (exit status 77).
"""
import glob
import json
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


def fly(fg, instruments, events, trace):
    """Take-off, climb and level-off: full power, the runway heading with the
    rudder on the ground and the ailerons in the air, rotate at 55 KIAS, hold
    the climb pitch, then level at 1,300 ft and cruise power until the
    instructor says Cruise (it waits for steady level flight). Ten times a
    second, on each sample FlightGear streams."""
    fg.set("/controls/flight/flaps", 0)
    # The c172p's own levers, which its systems copy to the engine's.
    fg.set("/sim/model/c172p/brake-parking", 0)
    fg.set("/controls/engines/current-engine/mixture", 1)
    fg.set("/controls/engines/current-engine/throttle", 1)
    fg.set("/controls/lighting/landing-lights", 1)
    airborne = level = False
    started = time.time()
    number, count, previous, rates = Instruments.number, 0, None, (0.0, 0.0, 0.0)
    while time.time() - started < CLIMB_TIMEOUT:
        sample, count = instruments.next(count)
        if sample is None:
            continue
        ias = number(sample, "/velocities/airspeed-kt")
        pitch = number(sample, "/orientation/pitch-deg")
        roll = number(sample, "/orientation/roll-deg")
        heading = number(sample, "/orientation/heading-deg")
        agl = number(sample, "/position/altitude-agl-ft")
        altitude = number(sample, "/position/altitude-ft")
        climb = number(sample, "/velocities/vertical-speed-fps")
        now = time.time()
        if previous is not None:
            dt = max(now - previous[0], 0.05)
            turn = ((heading - previous[3] + 540) % 360 - 180) / dt
            measured = ((pitch - previous[1]) / dt, (roll - previous[2]) / dt, turn)
            rates = tuple(0.5 * r + 0.5 * m for r, m in zip(rates, measured))
        previous = (now, pitch, roll, heading)
        pitch_rate, roll_rate, yaw_rate = rates
        error = (RUNWAY_HEADING - heading + 540) % 360 - 180
        if not airborne:
            rudder = 0.04 * error - 0.01 * yaw_rate
            fg.set("/controls/flight/rudder", round(clamp(rudder, -0.6, 0.6), 3))
            target = CLIMB_PITCH if ias >= ROTATE_KIAS else 0.0
            airborne = agl > 50
        elif altitude < LEVEL_ALTITUDE - 100 and not level:
            fg.set("/controls/flight/rudder", 0)
            target = CLIMB_PITCH
        else:
            if not level:
                fg.set("/controls/engines/current-engine/throttle", 0.7)
                level = True
            # Altitude hold: a climb rate towards the level, a pitch towards the rate.
            wanted = clamp((LEVEL_ALTITUDE - altitude) * 0.03, -4, 4)
            target = clamp(2.0 + 0.4 * (wanted - climb), -4, 6)
        bank = clamp(error * 1.0, -15, 15) if airborne else 0.0
        aileron = 0.03 * (bank - roll) - 0.01 * roll_rate
        fg.set("/controls/flight/aileron", round(clamp(aileron, -0.5, 0.5), 3))
        if ias >= ROTATE_KIAS or airborne:
            # Pitch towards the target, damped by the pitch rate.
            elevator = 0.04 * (pitch - target) + 0.015 * pitch_rate - 0.05
            fg.set("/controls/flight/elevator", round(clamp(elevator, -0.7, 0.4), 3))
        trace.write(f"{now - started:6.1f} ias {ias:5.1f} alt {altitude:6.0f} agl {agl:6.0f} "
                    f"pitch {pitch:5.1f} target {target:5.1f} roll {roll:5.1f} "
                    f"heading {heading:5.1f} climb {climb:5.1f}\n")
        if "Cruise" in events.modes():
            return True
    return False


def main():
    if len(sys.argv) != 4:
        print(__doc__)
        return 2
    vantoro, source, work = sys.argv[1:4]
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
            connected = fly(fg, instruments, events, trace)
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
            failures.append("the instructor never said Cruise")
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
