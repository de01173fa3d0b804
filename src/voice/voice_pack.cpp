#include "voice/voice_pack.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <unordered_map>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/wait.h>
#include <unistd.h>
#define VANTORO_HAVE_FORK 1
#endif

extern "C" {
#include <flite/flite.h>
cst_voice* register_cmu_us_slt(const char* voxdir);
void unregister_cmu_us_slt(cst_voice* v);
cst_voice* register_cmu_us_rms(const char* voxdir);
void unregister_cmu_us_rms(cst_voice* v);
cst_voice* register_cmu_us_awb(const char* voxdir);
void unregister_cmu_us_awb(cst_voice* v);
cst_voice* register_cmu_us_kal16(const char* voxdir);
void unregister_cmu_us_kal16(cst_voice* v);
}

#include "base/files.h"
#include "base/ini.h"
#include "base/text.h"

namespace vantoro {

namespace fs = std::filesystem;

namespace {

// Raised whenever the way a file is made changes, so that every pack is made again.
constexpr std::string_view kFormatVersion = "vantoro-voicepack-2";
constexpr std::string_view kManifest = "Sound\\.voicepack";
constexpr int kSilenceRate = 16000;
constexpr int kFSSilenceMs = 250;
// The synthesiser pads each utterance with silence; a composed sentence runs
// together only when that is cut back to a short lead and tail.
constexpr int kQuietLevel = 300;  // of 32767
constexpr int kLeadMs = 30;
constexpr int kTailMs = 60;

std::vector<int16_t> TrimSilence(std::vector<int16_t> samples, int sampleRate) {
  auto loud = [](int16_t s) { return s > kQuietLevel || s < -kQuietLevel; };
  const auto first = std::find_if(samples.begin(), samples.end(), loud);
  if (first == samples.end()) return samples;
  const auto last = std::find_if(samples.rbegin(), samples.rend(), loud).base();
  const long lead = static_cast<long>(sampleRate) * kLeadMs / 1000;
  const long tail = static_cast<long>(sampleRate) * kTailMs / 1000;
  const long begin = std::max<long>(0, (first - samples.begin()) - lead);
  const long end =
      std::min<long>(static_cast<long>(samples.size()), (last - samples.begin()) + tail);
  return std::vector<int16_t>(samples.begin() + begin, samples.begin() + end);
}

uint64_t Fnv1a(std::string_view text, uint64_t hash = 1469598103934665603ull) {
  for (unsigned char c : text) {
    hash ^= c;
    hash *= 1099511628211ull;
  }
  return hash;
}

void PutU16(std::string& out, uint16_t v) {
  out += static_cast<char>(v & 0xFF);
  out += static_cast<char>(v >> 8);
}

void PutU32(std::string& out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

std::string WaveHeader(uint32_t dataBytes, int sampleRate) {
  std::string out;
  out.reserve(44);
  out += "RIFF";
  PutU32(out, 36 + dataBytes);
  out += "WAVEfmt ";
  PutU32(out, 16);
  PutU16(out, 1);  // PCM
  PutU16(out, 1);  // mono
  PutU32(out, static_cast<uint32_t>(sampleRate));
  PutU32(out, static_cast<uint32_t>(sampleRate) * 2);
  PutU16(out, 2);   // block align
  PutU16(out, 16);  // bits per sample
  out += "data";
  PutU32(out, dataBytes);
  return out;
}

std::string Native(const std::string& root, std::string_view path) {
  return NativePath(TidyFolder(root) + std::string(path));
}

// The synthesiser's voices, registered on first use and released at the end.
class Synthesiser {
 public:
  Synthesiser() { flite_init(); }
  ~Synthesiser() {
    for (auto& [name, voice] : voices_) Unregister(name, voice);
  }
  Synthesiser(const Synthesiser&) = delete;
  Synthesiser& operator=(const Synthesiser&) = delete;

  std::string Speak(std::string_view voiceName, std::string_view text) {
    cst_voice* voice = Voice(std::string(voiceName));
    if (voice == nullptr) return {};
    const std::string copy(text);
    cst_wave* wave = flite_text_to_wave(copy.c_str(), voice);
    if (wave == nullptr) return {};
    std::vector<int16_t> samples(wave->samples, wave->samples + wave->num_samples);
    const int rate = wave->sample_rate;
    delete_wave(wave);
    return WaveFile(TrimSilence(std::move(samples), rate), rate);
  }

 private:
  cst_voice* Voice(const std::string& name) {
    auto it = voices_.find(name);
    if (it != voices_.end()) return it->second;
    cst_voice* v = nullptr;
    if (name == "slt") v = register_cmu_us_slt(nullptr);
    if (name == "rms") v = register_cmu_us_rms(nullptr);
    if (name == "awb") v = register_cmu_us_awb(nullptr);
    if (name == "kal16") v = register_cmu_us_kal16(nullptr);
    if (v != nullptr) voices_[name] = v;
    return v;
  }
  static void Unregister(const std::string& name, cst_voice* v) {
    if (name == "slt") unregister_cmu_us_slt(v);
    if (name == "rms") unregister_cmu_us_rms(v);
    if (name == "awb") unregister_cmu_us_awb(v);
    if (name == "kal16") unregister_cmu_us_kal16(v);
  }
  std::map<std::string, cst_voice*> voices_;
};

bool WriteItem(const std::string& root, const PackItem& item, const std::string& bytes) {
  const std::string native = Native(root, item.Path);
  std::error_code ec;
  fs::create_directories(fs::path(native).parent_path(), ec);
  return WriteFileAtomic(native, bytes);
}

// Renders its share of the items (those whose words hash to `shard`); the
// same words in the same voice are synthesised once. False when a file
// could not be made.
bool RenderShare(const std::string& root, const std::vector<const PackItem*>& items, int shard,
                 int shards) {
  Synthesiser synth;
  std::unordered_map<uint64_t, std::string> made;
  bool ok = true;
  for (const PackItem* item : items) {
    const uint64_t key =
        Fnv1a(item->Text, Fnv1a(item->Voice)) ^ static_cast<uint64_t>(item->SilenceMs + 1);
    if (static_cast<int>(key % static_cast<uint64_t>(shards)) != shard) continue;
    auto it = made.find(key);
    if (it == made.end()) {
      std::string bytes = item->SilenceMs >= 0 ? SilenceWave(item->SilenceMs, kSilenceRate)
                                               : synth.Speak(item->Voice, item->Text);
      it = made.emplace(key, std::move(bytes)).first;
    }
    if (it->second.empty() || !WriteItem(root, *item, it->second)) ok = false;
  }
  return ok;
}

std::map<std::string, uint64_t> ReadManifest(const std::string& root) {
  std::map<std::string, uint64_t> stamps;
  const std::string text = ReadFile(Native(root, kManifest));
  for (const std::string& line : Split(text, '\n')) {
    const size_t tab = line.find('\t');
    if (tab == std::string::npos) continue;
    stamps[Trim(line.substr(tab + 1))] = std::strtoull(line.substr(0, tab).c_str(), nullptr, 16);
  }
  return stamps;
}

}  // namespace

const std::vector<InstructorVoice>& BuiltInInstructors() {
  static const std::vector<InstructorVoice> kInstructors = {
      {"Claire", "slt"},
      {"Ken", "kal16"},
  };
  return kInstructors;
}

CaptionFile ParseCaptionText(std::string_view text, std::string_view name) {
  CaptionFile out;
  std::set<std::string> seen;
  for (INIEntry& e : ParseINISectionText(text, "[Sound Files]", false)) {
    if (!EndsWith(e.Key, ".WAV")) {
      out.Problems.push_back(std::string(name) + ":" + std::to_string(e.Line) +
                             ": not a wave file name: " + e.Key);
      continue;
    }
    if (!seen.insert(e.Key).second) {
      out.Problems.push_back(std::string(name) + ":" + std::to_string(e.Line) +
                             ": caption given twice: " + e.Key);
      continue;
    }
    out.Captions.push_back({e.Key, e.Value, e.Line});
  }
  for (INIEntry& e : ParseINISectionText(text, "[Sound Locations]", false)) {
    if (seen.count(e.Key) == 0) {
      out.Problems.push_back(std::string(name) + ":" + std::to_string(e.Line) +
                             ": location of a file without caption: " + e.Key);
      continue;
    }
    out.Locations.emplace_back(e.Key, e.Value);
  }
  for (INIEntry& e : ParseINISectionText(text, "[Spoken Forms]", false)) {
    out.SpokenForms.emplace_back(e.Key, e.Value);
  }
  return out;
}

CaptionFile LoadCaptionFile(std::string_view path) {
  if (!FileExists(path)) {
    CaptionFile out;
    out.Problems.push_back(std::string(path) + ": the captions file is missing");
    return out;
  }
  return ParseCaptionText(ReadFile(path), GetFileName(path));
}

std::string PackFileOfKey(std::string_view key) {
  return Lower(key);
}

int SilenceMilliseconds(std::string_view key) {
  const std::string k = Upper(key);
  if (k == "FSSILENCE.WAV") return kFSSilenceMs;
  // "PAUSE" + milliseconds + "MS" + ".WAV"
  const std::string stem = RemoveFileExtension(k);
  if (StartsWith(stem, "PAUSE") && EndsWith(stem, "MS") && EndsWith(k, ".WAV")) {
    const std::string digits = stem.substr(5, stem.size() - 5 - 2);
    if (!digits.empty() &&
        std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
      return std::atoi(digits.c_str());
    }
  }
  return -1;
}

std::string SpeakableText(std::string_view words,
                          const std::vector<std::pair<std::string, std::string>>& forms) {
  std::unordered_map<std::string, const std::string*> byToken;
  for (const auto& [token, spoken] : forms) byToken.emplace(Upper(token), &spoken);
  std::string out;
  size_t i = 0;
  while (i < words.size()) {
    if (!std::isalnum(static_cast<unsigned char>(words[i]))) {
      out += words[i++];
      continue;
    }
    size_t j = i;
    while (j < words.size() && std::isalnum(static_cast<unsigned char>(words[j]))) ++j;
    const std::string token(words.substr(i, j - i));
    auto it = byToken.find(Upper(token));
    out += it != byToken.end() ? *it->second : token;
    i = j;
  }
  return out;
}

std::vector<PackItem> PlanVoicePacks(const CaptionFile& captions,
                                     const std::vector<InstructorVoice>& instructors) {
  std::map<std::string, PackItem> byPath;  // lower-case path: one file per place
  std::unordered_map<std::string, const CaptionLine*> byKey;
  for (const CaptionLine& c : captions.Captions) byKey.emplace(c.Key, &c);

  auto add = [&](const std::string& path, const CaptionLine& c, const InstructorVoice& who) {
    PackItem item;
    item.Path = path;
    item.Voice = who.Voice;
    item.SilenceMs = SilenceMilliseconds(c.Key);
    if (item.SilenceMs < 0) {
      item.Text = SpeakableText(c.Words, captions.SpokenForms);
      if (Trim(item.Text).empty()) item.SilenceMs = kFSSilenceMs;
    }
    std::string print(kFormatVersion);
    print += '\n' + item.Voice + '\n' + item.Text + '\n' + std::to_string(item.SilenceMs);
    item.Stamp = Fnv1a(print);
    byPath.emplace(Lower(path), std::move(item));
  };

  for (size_t i = 0; i < instructors.size(); ++i) {
    const InstructorVoice& who = instructors[i];
    const std::string folder = "Sound\\" + who.Folder + "\\";
    for (const CaptionLine& c : captions.Captions) add(folder + PackFileOfKey(c.Key), c, who);
    for (const auto& [key, where] : captions.Locations) {
      const CaptionLine& c = *byKey.at(key);
      const std::string place = Trim(where);
      if (place == "\\") {
        // Common to all instructors: spoken once, by the first.
        if (i == 0) add("Sound\\" + PackFileOfKey(GetFileName(key)), c, who);
      } else {
        add(folder + Lower(TidyFolder(place)) + PackFileOfKey(GetFileName(key)), c, who);
      }
    }
  }
  std::vector<PackItem> plan;
  plan.reserve(byPath.size());
  for (auto& [path, item] : byPath) plan.push_back(std::move(item));
  return plan;
}

std::string WaveFile(const std::vector<int16_t>& samples, int sampleRate) {
  std::string out = WaveHeader(static_cast<uint32_t>(samples.size() * 2), sampleRate);
  out.reserve(out.size() + samples.size() * 2);
  for (int16_t s : samples) PutU16(out, static_cast<uint16_t>(s));
  return out;
}

std::string SilenceWave(int milliseconds, int sampleRate) {
  const size_t count = static_cast<size_t>(milliseconds) * static_cast<size_t>(sampleRate) / 1000;
  return WaveFile(std::vector<int16_t>(count, 0), sampleRate);
}

std::string RenderSpeech(std::string_view voice, std::string_view text) {
  Synthesiser synth;
  return synth.Speak(voice, text);
}

VoicePackReport BuildVoicePacks(const VoicePackOptions& options) {
  VoicePackReport report;
  const std::string captionsPath = Native(options.Root, "text\\english.txt");
  CaptionFile captions = LoadCaptionFile(captionsPath);
  report.Problems = captions.Problems;
  if (captions.Captions.empty()) return report;

  const std::vector<PackItem> plan = PlanVoicePacks(captions, options.Instructors);
  report.Files = static_cast<int>(plan.size());
  const std::map<std::string, uint64_t> stamps = ReadManifest(options.Root);

  std::vector<const PackItem*> toMake;
  for (const PackItem& item : plan) {
    auto it = stamps.find(item.Path);
    const bool current = it != stamps.end() && it->second == item.Stamp &&
                         fs::is_regular_file(Native(options.Root, item.Path));
    if (current) {
      ++report.UpToDate;
    } else {
      toMake.push_back(&item);
    }
  }

  const int jobs = std::max(1, std::min(options.Jobs, static_cast<int>(toMake.size())));
  bool rendered = true;
#ifdef VANTORO_HAVE_FORK
  if (jobs > 1) {
    std::vector<pid_t> children;
    for (int shard = 0; shard < jobs; ++shard) {
      const pid_t pid = fork();
      if (pid == 0) _exit(RenderShare(options.Root, toMake, shard, jobs) ? 0 : 1);
      if (pid < 0) {
        rendered = RenderShare(options.Root, toMake, shard, jobs) && rendered;
      } else {
        children.push_back(pid);
      }
    }
    for (pid_t pid : children) {
      int status = 0;
      if (waitpid(pid, &status, 0) < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        rendered = false;
      }
    }
  } else {
    rendered = RenderShare(options.Root, toMake, 0, 1);
  }
#else
  for (int shard = 0; shard < jobs; ++shard) {
    rendered = RenderShare(options.Root, toMake, shard, jobs) && rendered;
  }
#endif
  if (!rendered) report.Problems.push_back("some files could not be rendered");
  std::set<const PackItem*> unsure;
  if (!rendered) unsure.insert(toMake.begin(), toMake.end());

  // The manifest records what is now on disk, so an interrupted build goes
  // on where it stopped.
  std::string manifest;
  for (const PackItem& item : plan) {
    std::error_code ec;
    const std::string native = Native(options.Root, item.Path);
    const auto size = fs::file_size(native, ec);
    if (ec) {
      report.Problems.push_back(item.Path + ": not written");
      continue;
    }
    report.Bytes += size;
    if (unsure.count(&item) != 0) continue;  // made again next time
    char stamp[17];
    std::snprintf(stamp, sizeof stamp, "%016llx", static_cast<unsigned long long>(item.Stamp));
    manifest += std::string(stamp) + "\t" + item.Path + "\n";
  }
  report.Rendered = static_cast<int>(toMake.size());
  std::error_code ec;
  fs::create_directories(fs::path(Native(options.Root, "Sound")), ec);
  if (!WriteFileAtomic(Native(options.Root, kManifest), manifest)) {
    report.Problems.push_back(std::string(kManifest) + ": not written");
  }
  return report;
}

}  // namespace vantoro
