// A simulator on the bench: an offset image with its link, an instructor over
// a temporary root folder, and setters that write the simulator's values in
// its own units and layout. A test sets what the aircraft does, runs ticks
// and reads what the instructor said, showed, counted and changed.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/events.h"
#include "base/seams.h"
#include "link/image_link.h"
#include "shell/instructor.h"
#include "voice/audio_out.h"

namespace vantoro {

// A sound device on which every file ends at once.
class SilentAudio final : public AudioOut {
 public:
  int DeviceCount() const override { return 1; }
  std::string DeviceName(int) const override { return "bench"; }
  void SetDevice(int) override {}
  void Play(const std::string&) override {}
  void Stop() override {}
  bool IsPlaying() const override { return false; }
  void SetVolume(int) override {}
};

// A program root with one instructor and nothing else.
class TempRoot {
 public:
  TempRoot() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "vantoro-engine-";
    if (info != nullptr) name += std::string(info->test_suite_name()) + "-" + info->name();
    for (char& ch : name)
      if (ch == '/') ch = '_';
    dir_ = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_ / "Sound" / "Bench");
  }
  ~TempRoot() { std::filesystem::remove_all(dir_); }
  std::string Path() const { return dir_.string() + "/"; }
  void AddFile(const std::string& name) const {
    std::filesystem::create_directories(dir_);
    FILE* f = std::fopen((dir_ / name).c_str(), "w");
    if (f != nullptr) std::fclose(f);
  }

 private:
  std::filesystem::path dir_;
};

class FlightRig {
 public:
  FlightRig()
      : link(image),
        instructor(root.Path(), Seams{&link, {&audio, &idle}, &events, &clock, &random}) {
    // A light single standing on the runway, engine running, ready to fly.
    Day(100);
    SimTime(12 * 3600);
    image.SetU16(0x0C1A, 256);  // normal simulation rate
    image.SetString(0x3D00, "Cessna Skyhawk");
    image.SetString(0x3C00, "SimObjects\\Airplanes\\C172\\Cessna172SP.air");
    Position(47.25, 11.35);
    OnGround(true);
    Gear(true);
    Engine(true);
  }

  // --- The simulator's values, in its units and offsets. ---
  void OnGround(bool on) { image.SetU8(0x0366, on ? 1 : 0); }
  void AGL(double feet) { image.SetU16(0x31E6, static_cast<uint16_t>(std::lround(feet / 3.281))); }
  void Altitude(double feet) {
    image.SetI16(0x0574, static_cast<int16_t>(std::lround(feet / 3.281)));
  }
  void GS(double knots) {
    image.SetU16(0x02B6, static_cast<uint16_t>(std::lround(knots / 1.9438)));
  }
  void VS(double feetPerMinute) {
    image.SetI16(0x0842, static_cast<int16_t>(std::lround(-feetPerMinute / 3.28084)));
  }
  void Bank(int degrees) { image.SetU16(0x057E, Attitude(degrees)); }   // right wing down positive
  void Pitch(int degrees) { image.SetU16(0x057A, Attitude(degrees)); }  // nose up positive
  void Position(double latitude, double longitude) {
    image.SetI64(
        0x0560, static_cast<int64_t>(std::llround(static_cast<long double>(latitude) * 10001750.0L *
                                                  65536.0L * 65536.0L / 90.0L)));
    image.SetI64(0x0568, static_cast<int64_t>(std::llround(static_cast<long double>(longitude) *
                                                           18446744073709551616.0L / 360.0L)));
  }
  void SimRate(int rateTimes256) { image.SetU16(0x0C1A, static_cast<uint16_t>(rateTimes256)); }
  void Autopilot(bool on) { image.SetU8(0x07BC, on ? 1 : 0); }
  void Crashed(bool on) { image.SetU8(0x0840, on ? 1 : 0); }
  void Paused(bool on) { image.SetU8(0x0264, on ? 1 : 0); }
  void Water(bool on) { image.SetU8(0x31E8, on ? 2 : 0); }
  void Gear(bool down) { image.SetU8(0x0BE8, down ? 1 : 0); }
  void Engine(bool firing) { image.SetU8(0x0894, firing ? 1 : 0); }
  void ElectricsFailed(bool on) { image.SetU8(0x0B6A, on ? 1 : 0); }
  void Heavy(bool on) { image.SetU16(0x3BFE, on ? 500 : 0); }
  void AirFile(const std::string& path) { image.SetString(0x3C00, path); }
  void Day(int day) { image.SetU16(0x023E, static_cast<uint16_t>(day)); }
  // The simulator's clock, seconds of the day; every tick moves it on 0.5 s.
  void SimTime(double secondsOfDay) { simSeconds_ = secondsOfDay; }

  // --- The pilot. ---
  void Connect() { instructor.Connect(); }
  void Key(int slot) { instructor.PressHotKey(slot); }

  void Tick(int count = 1) {
    for (int i = 0; i < count; ++i) {
      const int whole = static_cast<int>(simSeconds_) % 86400;
      image.SetU8(0x023B, static_cast<uint8_t>(whole / 3600));
      image.SetU8(0x023C, static_cast<uint8_t>(whole / 60 % 60));
      image.SetU8(0x023A, static_cast<uint8_t>(whole % 60));
      instructor.Tick();
      simSeconds_ += 0.5;
    }
  }

  // Connected and on the ground in Taxiing, with every sound family's gap run
  // out (a family cannot speak before its gap has run from the start).
  void ReadyOnTheRunway() {
    Connect();
    Tick(130);
  }
  // From the runway: key to TakeOff, lift-off and climb to `feet`.
  void Airborne(double feet) {
    Key(7);
    Tick();
    OnGround(false);
    GS(70);
    AGL(20);
    Tick();
    AGL(feet);
    Tick();
  }

  // --- What the instructor did since the last Mark. ---
  void Mark() { mark_ = events.events.size(); }
  std::vector<Event> Since(const std::string& type) const {
    std::vector<Event> out;
    for (size_t i = mark_; i < events.events.size(); ++i)
      if (events.events[i].type == type) out.push_back(events.events[i]);
    return out;
  }
  std::vector<std::string> Texts(const std::string& type, const std::string& field) const {
    std::vector<std::string> out;
    for (const Event& e : Since(type)) out.push_back(e.Text(field));
    return out;
  }
  std::vector<std::string> Modes() const { return Texts("mode", "mode"); }
  std::vector<std::string> Messages() const { return Texts("message", "text"); }
  std::vector<std::string> Queued() const { return Texts("queued", "file"); }
  std::vector<std::string> Remarks() const { return Texts("remark", "file"); }
  std::vector<std::string> Disconnects() const { return Texts("disconnect", "reason"); }
  bool Said(const std::string& file) const {
    for (const std::string& f : Queued())
      if (f == file) return true;
    return false;
  }
  bool Showed(const std::string& text) const {
    for (const std::string& m : Messages())
      if (m == text) return true;
    return false;
  }
  int MessageSeconds(const std::string& text) const {
    for (const Event& e : Since("message"))
      if (e.Text("text") == text) return static_cast<int>(e.Int("seconds"));
    return -1;
  }

  const FlightState& flight() const { return instructor.flight; }
  FlightStats& stats() { return instructor.flight.Flight(); }

  TempRoot root;
  OffsetImage image;
  ImageLink link;
  EventLog events;
  SilentAudio audio;
  SilentAudio idle;
  FixedClock clock;
  SeededRandom random{1};
  Instructor instructor;

 private:
  // Degrees as the simulator's attitude word: the decoder reads x under 180
  // as -x and else 360 - x.
  static uint16_t Attitude(int degrees) {
    const int x = degrees > 0 ? 360 - degrees : -degrees;
    return static_cast<uint16_t>(std::lround(x * 65536.0 / 360.0));
  }

  double simSeconds_ = 0;
  size_t mark_ = 0;
};

}  // namespace vantoro
