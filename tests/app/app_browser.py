#!/usr/bin/env python3
"""The pilot's app in a real browser (Chromium, headless, through Selenium).

  app_browser.py test --host PROGRAM --source DIR
      The Fly page shows the flight modes and captions as the demo circuit
      flies, a reload shows the same captions again, and the Pilot page saves
      a pilot file. Exit status 77 (skipped) when Chromium or Selenium is
      missing.
  app_browser.py screenshots --host PROGRAM --source DIR --out DIR
      A picture of each page, after the demo circuit has been flown.

PROGRAM serves the app over the demo recording: `vantoro`, run with --replay
(in real time), or the stand-in host vantoro-app-standin, which flies it
faster (the screenshots need the whole flight).
"""
import argparse
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

SKIP = 77
CHROMIUM = shutil.which("chromium") or shutil.which("chromium-browser")
DRIVER = shutil.which("chromedriver") or "/usr/lib/chromium/chromedriver"


def skip(why):
    print("SKIP: " + why)
    sys.exit(SKIP)


try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.by import By
    from selenium.webdriver.support.ui import WebDriverWait
except ImportError:
    webdriver = None


class App:
    """A copy of the data folder and the program serving the app over it."""

    def __init__(self, host, source, tick_ms):
        self.root = tempfile.mkdtemp(prefix="vantoro-app-")
        data = os.path.join(self.root, "data")
        # A copy to write in; the voice packs, large and only read, are linked.
        shutil.copytree(os.path.join(source, "data"), data, ignore=shutil.ignore_patterns("Sound"))
        if os.path.isdir(os.path.join(source, "data", "Sound")):
            os.symlink(os.path.abspath(os.path.join(source, "data", "Sound")), os.path.join(data, "Sound"))
        self.data = data
        recording = os.path.join(data, "Recordings", "demo-c172-circuit.vrec")
        self.real_time = os.path.basename(host) == "vantoro"
        if self.real_time:
            cmd = [host, "--root", data, "--replay", recording, "--no-browser",
                   "--port", str(free_port())]
        else:
            cmd = [host, "--root", data, "--recording", recording, "--tick-ms", str(tick_ms),
                   "--pilot", os.path.join(data, "PilotRoster", "LightSpeed.plt")]
        self.proc = subprocess.Popen(cmd, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                     text=True)
        self.url = None
        deadline = time.time() + 20
        while time.time() < deadline and self.url is None:
            line = self.proc.stdout.readline()
            if not line:
                break
            for word in line.split():
                if word.startswith("http://"):
                    self.url = word.rstrip("/") + "/"
        if self.url is None:
            self.close()
            raise RuntimeError("the app did not start: " + self.proc.stderr.read())

    def close(self):
        if self.proc.poll() is None:
            self.proc.send_signal(signal.SIGTERM)
            try:
                self.proc.wait(10)
            except subprocess.TimeoutExpired:
                self.proc.kill()
        shutil.rmtree(self.root, ignore_errors=True)


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def browser(width=1280, height=900):
    if webdriver is None:
        skip("python3-selenium is not installed")
    if CHROMIUM is None or not os.path.exists(DRIVER):
        skip("chromium or chromium-driver is not installed")
    options = webdriver.ChromeOptions()
    options.binary_location = CHROMIUM
    profile = tempfile.mkdtemp(prefix="vantoro-chromium-")
    for flag in ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                 "--disable-background-networking", "--disable-component-update",
                 "--disable-sync", "--disable-dev-shm-usage", "--user-data-dir=" + profile,
                 "--window-size=%d,%d" % (width, height)]:
        options.add_argument(flag)
    driver = webdriver.Chrome(service=Service(DRIVER), options=options)
    driver.profile_dir = profile
    return driver


def quit_browser(driver):
    driver.quit()
    shutil.rmtree(driver.profile_dir, ignore_errors=True)


def text(driver, element_id):
    return driver.find_element(By.ID, element_id).text


def captions(driver):
    return [li.text for li in driver.find_elements(By.CSS_SELECTOR, "#captions li")]


def run_test(args):
    driver = browser()
    app = App(args.host, args.source, 60)
    failures = []
    try:
        driver.get(app.url)
        # In real time the demo taxies for two minutes before it takes off.
        wanted = 2 if app.real_time else 3
        wait = WebDriverWait(driver, 240 if app.real_time else 90, poll_frequency=0.2)
        modes = []

        def mode_seen(d):
            m = text(d, "mode")
            if m and (not modes or modes[-1] != m):
                modes.append(m)
            return len(set(modes) - {"No flight mode"}) >= wanted

        wait.until(mode_seen)
        spoken = [c for c in captions(driver) if not c.startswith(("Flight mode", "Landing", "Flight "))]
        if not spoken:
            failures.append("no caption was shown while the flight went through " + ", ".join(modes))
        if text(driver, "lblFSUIPCStatus") in ("", "Not connected"):
            failures.append("the status line is empty while flying")
        if text(driver, "aircraft") in ("", "No aircraft"):
            failures.append("no aircraft shown")
        before = captions(driver)
        driver.refresh()
        WebDriverWait(driver, 20).until(lambda d: len(captions(d)) >= len(before))
        after = captions(driver)
        if after[len(after) - len(before):] != before[len(before) - len(before):] and \
                not all(b in after for b in before[-5:]):
            failures.append("a reload does not show the captions shown before it")

        driver.get(app.url + "pilot.html")
        WebDriverWait(driver, 20).until(lambda d: d.find_element(By.ID, "name").get_attribute("value"))
        name = driver.find_element(By.ID, "name")
        name.clear()
        name.send_keys("Browser Pilot\t")
        WebDriverWait(driver, 10).until(lambda d: "Changes not saved" in text(d, "unsavedLine"))
        driver.find_element(By.ID, "saveName").send_keys("Browser Test")
        driver.find_element(By.ID, "cmdSaveAs").click()
        WebDriverWait(driver, 10).until(lambda d: "Saved Browser Test.plt" in text(d, "msg"))
        saved = os.path.join(app.data, "PilotRoster", "Browser Test.plt")
        if not os.path.exists(saved):
            failures.append("the Pilot page did not write " + saved)
        elif "name=Browser Pilot" not in open(saved, encoding="latin-1").read():
            failures.append("the saved pilot file does not hold the name typed")
        driver.find_element(By.ID, "saveName").clear()
        driver.find_element(By.ID, "cmdSaveAs").click()
        WebDriverWait(driver, 10).until(
            lambda d: "Please enter a file to save the Pilot to!" in text(d, "msg"))

        # The pilot's own profile on the Aircraft page: a mistake is told line
        # by line and nothing is written; good figures are saved.
        driver.get(app.url + "aircraft.html")
        WebDriverWait(driver, 20).until(lambda d: "Cessna" in text(d, "lblCurrentAircraft"))
        driver.find_element(By.ID, "optUserData").click()
        WebDriverWait(driver, 10).until(lambda d: d.find_element(By.ID, "IASStallCruise").is_enabled())
        fsu = lambda: [f for _, _, files in os.walk(app.data) for f in files if f.endswith(".fsu")]
        before = fsu()
        for value, wanted in [("fast", "Clean Stall Speed is invalid"), ("47", "Saved")]:
            stall = driver.find_element(By.ID, "IASStallCruise")
            stall.clear()
            stall.send_keys(value)
            driver.find_element(By.ID, "cmdWriteINI").click()
            where = "validation" if wanted != "Saved" else "msg"
            WebDriverWait(driver, 10).until(lambda d: wanted in text(d, where))
            if wanted != "Saved" and fsu() != before:
                failures.append("a profile with a mistake was written")
        if len(fsu()) <= len(before) and not any("C172" in f for f in fsu()):
            failures.append("the pilot's own profile was not written")
    finally:
        quit_browser(driver)
        app.close()
    for f in failures:
        print("FAIL: " + f)
    print("modes seen: " + " -> ".join(modes))
    return 1 if failures else 0


def whole_page(driver, width, path):
    """A picture of the whole page, however long, at the given width."""
    metrics = {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False}
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", metrics)
    time.sleep(0.5)
    height = driver.execute_script("return document.documentElement.scrollHeight")
    metrics["height"] = max(600, min(height, 5000))
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", metrics)
    time.sleep(0.5)
    driver.save_screenshot(path)
    driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})
    print(path)


def run_screenshots(args):
    os.makedirs(args.out, exist_ok=True)
    driver = browser(1280, 1000)
    app = App(args.host, args.source, 15)
    try:
        driver.get(app.url)
        # Fly the circuit to its end, so that the log book has the flight.
        WebDriverWait(driver, 120, poll_frequency=0.5).until(
            lambda d: "Landing scored" in " ".join(captions(d)))
        time.sleep(2)
        for page, name in [("", "fly"), ("pilot.html", "pilot"), ("aircraft.html", "aircraft"),
                           ("flightplan.html", "flightplan"), ("settings.html", "settings"),
                           ("logbook.html", "logbook")]:
            driver.get(app.url + page)
            time.sleep(1.5)
            if name == "logbook":
                WebDriverWait(driver, 20).until(
                    lambda d: d.find_elements(By.CSS_SELECTOR, "#recordings option"))
                driver.find_element(By.ID, "cmdPlot").click()
                WebDriverWait(driver, 60).until(
                    lambda d: d.find_elements(By.CSS_SELECTOR, ".tdcard canvas"))
                time.sleep(1)
            whole_page(driver, 1280, os.path.join(args.out, name + ".png"))
        driver.get(app.url)
        time.sleep(1.5)
        whole_page(driver, 800, os.path.join(args.out, "fly-tablet.png"))  # a tablet, upright
    finally:
        quit_browser(driver)
        app.close()
    return 0


def main():
    p = argparse.ArgumentParser()
    p.add_argument("what", choices=["test", "screenshots"])
    p.add_argument("--host", required=True)
    p.add_argument("--source", required=True)
    p.add_argument("--out", default="build/screenshots")
    args = p.parse_args()
    return run_test(args) if args.what == "test" else run_screenshots(args)


if __name__ == "__main__":
    sys.exit(main())
