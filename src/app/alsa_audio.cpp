#include "app/alsa_audio.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include "app/wave_samples.h"
#include "base/files.h"
#include "voice/wav.h"

namespace vantoro {

namespace {

constexpr snd_pcm_uframes_t kChunkFrames = 1024;

// ALSA's own complaints on standard error are replaced by the program's
// report of the problem.
void QuietAlsa(const char*, int, const char*, int, const char*, ...) {}

std::optional<snd_pcm_format_t> AlsaFormat(const WavInfo& info) {
  const std::optional<SampleForm> form = SampleFormOf(info);
  if (!form) return std::nullopt;
  switch (*form) {
    case SampleForm::Unsigned8:
      return SND_PCM_FORMAT_U8;
    case SampleForm::Signed16:
      return SND_PCM_FORMAT_S16_LE;
    case SampleForm::Signed24:
      return SND_PCM_FORMAT_S24_3LE;
    case SampleForm::Signed32:
      return SND_PCM_FORMAT_S32_LE;
    case SampleForm::Float32:
      return SND_PCM_FORMAT_FLOAT_LE;
  }
  return std::nullopt;
}

std::vector<std::string> ListOutputDevices() {
  std::vector<std::string> names;
  void** hints = nullptr;
  if (snd_device_name_hint(-1, "pcm", &hints) < 0 || hints == nullptr) return names;
  for (void** h = hints; *h != nullptr; ++h) {
    char* name = snd_device_name_get_hint(*h, "NAME");
    char* io = snd_device_name_get_hint(*h, "IOID");
    if (name != nullptr && (io == nullptr || std::strcmp(io, "Output") == 0) &&
        std::strcmp(name, "null") != 0)
      names.emplace_back(name);
    std::free(name);
    std::free(io);
  }
  snd_device_name_free_hint(hints);
  return names;
}

}  // namespace

AlsaAudioOut::AlsaAudioOut(std::string systemDefault)
    : systemDefault_(std::move(systemDefault)), device_(systemDefault_) {
  snd_lib_error_set_handler(QuietAlsa);
}

const std::vector<std::string>& AlsaAudioOut::Devices() const {
  if (!devices_) devices_ = ListOutputDevices();
  return *devices_;
}

AlsaAudioOut::~AlsaAudioOut() {
  stop_ = true;
  stopped_.notify_all();
  Join();
}

std::string AlsaAudioOut::DeviceName(int index) const {
  if (index < 0 || index >= DeviceCount()) return {};
  return Devices()[static_cast<size_t>(index)];
}

void AlsaAudioOut::SetDevice(int index) {
  if (index < 0) {
    device_ = systemDefault_;
  } else if (index < DeviceCount()) {
    device_ = Devices()[static_cast<size_t>(index)];
  } else {
    device_ = systemDefault_;
    Report("Sound: device " + std::to_string(index) + " is not there; playing on " +
           systemDefault_);
  }
}

void AlsaAudioOut::Report(std::string problem) {
  std::lock_guard lock(mutex_);
  problem_ = std::move(problem);
}

void AlsaAudioOut::Join() {
  if (thread_.joinable()) thread_.join();
}

void AlsaAudioOut::Play(const std::string& nativePath) {
  // One file at a time: a file still playing is cut short.
  if (playing_) Stop();
  Join();
  stop_ = false;
  ended_ = false;
  frames_ = 0;
  playing_ = true;
  thread_ = std::thread(&AlsaAudioOut::Playback, this, nativePath, device_, gain_.load());
}

void AlsaAudioOut::Stop() {
  if (!playing_) return;
  stop_ = true;
  stopped_.notify_all();
  Join();
  playing_ = false;
  if (onFinished) onFinished();
}

std::string AlsaAudioOut::Deliver() {
  if (playing_ && ended_) {
    Join();
    playing_ = false;
    if (onFinished) onFinished();
  }
  std::lock_guard lock(mutex_);
  if (problem_.empty() || problem_ == lastTold_) return {};
  lastTold_ = std::exchange(problem_, {});
  return lastTold_;
}

void AlsaAudioOut::SilentFor(int64_t milliseconds) {
  std::unique_lock lock(mutex_);
  stopped_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return stop_.load(); });
}

void AlsaAudioOut::Playback(std::string path, std::string device, double gain) {
  std::string bytes = ReadFile(path);
  const WavInfo info = ParseWavHeader(bytes);
  const std::optional<size_t> start = DataStart(bytes);
  const std::optional<snd_pcm_format_t> format = AlsaFormat(info);
  if (!info.valid || !start || !format || info.channels == 0 || info.blockAlign == 0) {
    // A file the card cannot take plays for the length its header gives.
    SilentFor(info.durationMs);
    ended_ = true;
    return;
  }
  snd_pcm_t* pcm = nullptr;
  int rc = snd_pcm_open(&pcm, device.c_str(), SND_PCM_STREAM_PLAYBACK, 0);
  if (rc >= 0)
    rc = snd_pcm_set_params(pcm, *format, SND_PCM_ACCESS_RW_INTERLEAVED, info.channels,
                            info.sampleRate, 1, kAlsaLatencyMicroseconds);
  if (rc < 0) {
    if (pcm != nullptr) snd_pcm_close(pcm);
    Report("Sound: the device " + device + " cannot play (" + snd_strerror(rc) +
           "); the instructor goes on in silence");
    SilentFor(info.durationMs);
    ended_ = true;
    return;
  }
  // A good start clears a problem told before, so that a new one is told.
  {
    std::lock_guard lock(mutex_);
    lastTold_.clear();
  }
  const size_t available = std::min<size_t>(info.dataBytes, bytes.size() - *start);
  char* data = bytes.data() + *start;
  const size_t frames = available / info.blockAlign;
  ApplyGain(data, frames * info.blockAlign, *SampleFormOf(info), gain);
  size_t done = 0;
  while (done < frames && !stop_) {
    const snd_pcm_uframes_t n = std::min<snd_pcm_uframes_t>(kChunkFrames, frames - done);
    snd_pcm_sframes_t written = snd_pcm_writei(pcm, data + done * info.blockAlign, n);
    if (written < 0) written = snd_pcm_recover(pcm, static_cast<int>(written), 1);
    if (written < 0) {
      Report(std::string("Sound: the device ") + device + " failed (" +
             snd_strerror(static_cast<int>(written)) + "); the instructor goes on in silence");
      break;
    }
    done += static_cast<size_t>(written);
    frames_ = static_cast<int64_t>(done);
  }
  if (stop_)
    snd_pcm_drop(pcm);
  else
    snd_pcm_drain(pcm);
  snd_pcm_close(pcm);
  ended_ = true;
}

}  // namespace vantoro
