// A simulator on the bench: an offset image with its link and an instructor
// over a temporary root. A test flies legs (keys and the aircraft's values,
// written in the simulator's own units and offsets), runs ticks and reads
// what the instructor said, showed, counted and changed.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "link/image_link.h"
#include "shell/instructor.h"
#include "voice/virtual_audio.h"

namespace vantoro {

inline constexpr double K = -99999;  // a leg leaves this value as it is

// Draws that the test decides: each draw takes the next value, then 0.1.
class ScriptedRandom final : public Random {
 public:
  std::deque<double> draws;
  double Uniform() override {
    if (draws.empty()) return 0.1;
    const double d = draws.front();
    draws.pop_front();
    return d;
  }
};

// The cockpit of an instructor with the test's own random draws.
inline Cockpit WithRandom(Cockpit k, Random& random) {
  return Cockpit{.link = k.link,
                 .flight = k.flight,
                 .sound = k.sound,
                 .aircraft = k.aircraft,
                 .world = k.world,
                 .plan = k.plan,
                 .scores = k.scores,
                 .approach = k.approach,
                 .procedures = k.procedures,
                 .checklists = k.checklists,
                 .circuit = k.circuit,
                 .failures = k.failures,
                 .traffic = k.traffic,
                 .voiceCommands = k.voiceCommands,
                 .route = k.route,
                 .options = k.options,
                 .root = k.root,
                 .sim = k.sim,
                 .audio = k.audio,
                 .events = k.events,
                 .clock = k.clock,
                 .random = random};
}

// Part of a flight: a hot key, the aircraft's new values, some ticks.
struct Leg {
  int key = 0;
  double onGround = K, agl = K, gs = K, vs = K;
  int ticks = 1;
};

class FlightRig {
 public:
  FlightRig()
      : link(image), instructor(Root(), Seams{&link, {&audio, &idle}, &events, &clock, &random}) {
    image.SetU16(0x023E, 100);  // day of the year; the clock runs from 12:00:00
    SimRate(256);
    image.SetString(0x3D00, "Cessna Skyhawk");
    AirFile("SimObjects\\Airplanes\\C172\\Cessna172SP.air");
    Position(47.25, 11.35);
    image.SetU8(0x0366, 1);  // on the ground
    Gear(true);
    Engine(true);
  }
  ~FlightRig() { std::filesystem::remove_all(dir_); }

  void AGL(double ft) { image.SetU16(0x31E6, static_cast<uint16_t>(std::lround(ft / 3.281))); }
  void Altitude(double ft) { image.SetI16(0x0574, static_cast<int16_t>(std::lround(ft / 3.281))); }
  void GS(double kt) { image.SetU16(0x02B6, static_cast<uint16_t>(std::lround(kt / 1.9438))); }
  void VS(double fpm) { image.SetI16(0x0842, static_cast<int16_t>(std::lround(-fpm / 3.28084))); }
  void Bank(int deg) { image.SetU16(0x057E, Attitude(deg)); }   // right wing down positive
  void Pitch(int deg) { image.SetU16(0x057A, Attitude(deg)); }  // nose up positive
  void Position(long double lat, long double lon) {
    image.SetI64(0x0560, std::llround(lat * 10001750.0L * 65536.0L * 65536.0L / 90.0L));
    image.SetI64(0x0568, std::llround(lon * 18446744073709551616.0L / 360.0L));
  }
  void SimRate(int x256) { image.SetU16(0x0C1A, static_cast<uint16_t>(x256)); }
  void Autopilot(bool on) { image.SetU8(0x07BC, on); }
  void Crashed(bool on) { image.SetU8(0x0840, on); }
  void Paused(bool on) { image.SetU8(0x0264, on); }
  void Water(bool on) { image.SetU8(0x31E8, on ? 2 : 0); }
  void Gear(bool down) { image.SetU8(0x0BE8, down); }
  void Engine(bool firing) { image.SetU8(0x0894, firing); }
  void ElectricsFailed(bool on) { image.SetU8(0x0B6A, on); }
  void Heavy(bool on) { image.SetU16(0x3BFE, on ? 500 : 0); }
  void AirFile(const std::string& path) { image.SetString(0x3C00, path); }
  void SimTime(double secondsOfDay) { seconds_ = secondsOfDay; }

  void Tick(int count = 1) {
    for (int i = 0; i < count; ++i, seconds_ += 0.5) {
      const int s = static_cast<int>(seconds_) % 86400;
      image.SetU8(0x023B, static_cast<uint8_t>(s / 3600));
      image.SetU8(0x023C, static_cast<uint8_t>(s / 60 % 60));
      image.SetU8(0x023A, static_cast<uint8_t>(s % 60));
      instructor.Tick();
    }
  }
  void Fly(const Leg& leg) {
    if (leg.key != 0) instructor.PressHotKey(leg.key);
    if (leg.onGround != K) image.SetU8(0x0366, leg.onGround > 0);
    if (leg.agl != K) AGL(leg.agl);
    if (leg.gs != K) GS(leg.gs);
    if (leg.vs != K) VS(leg.vs);
    Tick(leg.ticks);
  }
  void Follow(const std::vector<Leg>& legs) {
    for (const Leg& leg : legs) Fly(leg);
  }
  // Connected on the runway in Taxiing, every sound family's gap run out.
  void Ready() {
    instructor.Connect();
    Tick(130);
  }

  void Mark() { mark_ = events.events.size(); }
  std::vector<Event> Since(const std::string& type) const {
    std::vector<Event> out;
    for (size_t i = mark_; i < events.events.size(); ++i)
      if (events.events[i].type == type) out.push_back(events.events[i]);
    return out;
  }
  // The field of each event of the type since the mark, joined by "|".
  std::string Texts(const std::string& type, const std::string& field) const {
    std::string out;
    for (const Event& e : Since(type)) out += (out.empty() ? "" : "|") + e.Text(field);
    return out;
  }
  std::string Modes() const { return Texts("mode", "mode"); }
  std::string Messages() const { return Texts("message", "text"); }
  std::string Queued() const { return Texts("queued", "file"); }
  std::string Disconnects() const { return Texts("disconnect", "reason"); }
  int Seconds(const std::string& text) const {
    for (const Event& e : Since("message"))
      if (e.Text("text") == text) return static_cast<int>(e.Int("seconds"));
    return -1;
  }
  const FlightState& flight() const { return instructor.flight; }
  FlightStats& stats() { return instructor.flight.Flight(); }

  std::filesystem::path dir_;
  OffsetImage image;
  ImageLink link;
  EventLog events;
  VirtualAudio audio{true};
  VirtualAudio idle{true};
  FixedClock clock;
  SeededRandom random{1};
  Instructor instructor;

 private:
  std::string Root() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = std::filesystem::temp_directory_path() /
           (std::string("vantoro-engine-") + std::to_string(::getpid()) + "-" +
            test->test_suite_name() + "-" + test->name());
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_ / "Sound" / "Bench");
    return dir_.string() + "/";
  }
  // The decoder reads the attitude word's degrees x under 180 as -x, else as 360 - x.
  static uint16_t Attitude(int deg) {
    return static_cast<uint16_t>(std::lround((deg > 0 ? 360 - deg : -deg) * 65536.0 / 360.0));
  }
  double seconds_ = 12 * 3600;
  size_t mark_ = 0;
};

// The way up and down of a light single, from the runway.
inline const std::vector<Leg> kTakeOffOnGround = {{.key = 7}};
inline std::vector<Leg> Climb(double agl) {
  return {{.key = 7}, {.onGround = 0, .agl = 20, .gs = 70}, {.agl = agl}};
}
inline std::vector<Leg> CruiseAt(double agl) {
  auto legs = Climb(3000);
  legs.push_back({.key = 7});
  legs.push_back({.agl = agl});
  return legs;
}
inline std::vector<Leg> LandingAt(double agl) {
  auto legs = CruiseAt(3000);
  legs.push_back({.key = 7});
  legs.push_back({.agl = agl});
  return legs;
}

}  // namespace vantoro
