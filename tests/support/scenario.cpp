#include "support/scenario.h"

#include <filesystem>
#include <stdexcept>

#include "base/files.h"
#include "base/text.h"
#include "flightgen/flightgen.h"
#include "shell/replay.h"

namespace vantoro::testing {

std::string DataRoot() {
  return std::string(VANTORO_SOURCE_DIR) + "/data";
}

std::vector<Event> Scenario::OfType(std::string_view type) const {
  std::vector<Event> out;
  for (const Event& e : events)
    if (e.type == type) out.push_back(e);
  return out;
}

std::vector<std::string> Scenario::Modes() const {
  std::vector<std::string> out;
  for (const Event& e : OfType("mode")) out.push_back(e.Text("mode"));
  return out;
}

std::vector<std::string> Scenario::Spoken() const {
  std::vector<std::string> out;
  for (const Event& e : OfType("spoken")) out.push_back(e.Text("file"));
  return out;
}

bool Scenario::Said(std::string_view file) const {
  for (const Event& e : OfType("spoken"))
    if (EqualsNoCase(e.Text("file"), file)) return true;
  return false;
}

namespace {

// A mono 16-bit wave of silence at 8000 samples a second.
std::string QuietWave(int ms) {
  const uint32_t rate = 8000, data = rate * 2 * static_cast<uint32_t>(ms) / 1000;
  std::string w;
  auto u32 = [&](uint32_t v) {
    for (int i = 0; i < 4; ++i) w += static_cast<char>(v >> (8 * i));
  };
  auto u16 = [&](uint16_t v) {
    w += static_cast<char>(v);
    w += static_cast<char>(v >> 8);
  };
  w += "RIFF";
  u32(36 + data);
  w += "WAVEfmt ";
  u32(16);
  u16(1);
  u16(1);
  u32(rate);
  u32(rate * 2);
  u16(2);
  u16(16);
  w += "data";
  u32(data);
  w.append(data, '\0');
  return w;
}

}  // namespace

std::string MakeVoiceRoot(const std::string& folder, const std::string& instructor,
                          const std::vector<std::string>& files, int ms) {
  namespace fs = std::filesystem;
  const fs::path voice = fs::path(folder) / "Sound" / instructor;
  fs::create_directories(voice);
  WriteFileAtomic((fs::path(folder) / "Sound" / "FSSilence.wav").string(), QuietWave(ms));
  for (const std::string& f : files) WriteFileAtomic((voice / f).string(), QuietWave(ms));
  return folder;
}

std::string GenerateScript(std::string_view script) {
  std::string recording, error;
  if (!GenerateFlight("script", script, recording, error)) throw std::runtime_error(error);
  return recording;
}

Scenario ReplayText(std::string_view text, const ScenarioOptions& options) {
  Recording recording;
  std::string error;
  if (!ParseRecording("recording", text, recording, error)) throw std::runtime_error(error);
  EventLog log;
  Replay replay(ReplaySetup{options.root, options.seed, options.instant, options.pilot, {}}, log);
  Scenario s;
  s.ticks = replay.Run(recording);
  s.recording = std::string(text);
  s.events = std::move(log.events);
  s.phrases = replay.Phrases();
  return s;
}

Scenario FlyScript(std::string_view script, const ScenarioOptions& options) {
  return ReplayText(GenerateScript(script), options);
}

void ForEachTick(std::string_view text,
                 const std::function<void(const OffsetImage&, int64_t)>& each) {
  Recording recording;
  std::string error;
  if (!ParseRecording("recording", text, recording, error)) throw std::runtime_error(error);
  OffsetImage image;
  int64_t tick = 0;
  for (const RecordingStep& step : recording.steps) {
    if (step.kind == RecordingStep::Kind::Write) ApplyWrite(image, step);
    if (step.kind != RecordingStep::Kind::Tick) continue;
    for (int32_t i = 0; i < step.ticks; ++i) each(image, ++tick);
  }
}

const FSData& DecodeImage(const OffsetImage& image, LinkState& link, int32_t tickCount) {
  image.GetBytes(kMainBlockOffset, link.ByteBuffer.data(), kMainBlockSize);
  image.GetBytes(kGpsBlockOffset, link.GpsBuffer.data(), kGpsBlockSize);
  image.GetBytes(kMetarBlockOffset, link.MetarBuffer.data(), kMetarBlockSize);
  image.GetBytes(kTrafficBlockOffset, link.TrafficBuffer.data(), kTrafficBlockSize);
  DecodeInputs in;
  in.TickCount = tickCount;
  ProcessFSData(link, in);
  return link.Now();
}

}  // namespace vantoro::testing
