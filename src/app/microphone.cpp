#include "app/microphone.h"

#include <alsa/asoundlib.h>

#include <array>
#include <span>

#include "voice/sphinx_recogniser.h"
#include "voice/voice_commands.h"
#include "voice/wav.h"

namespace vantoro {

namespace {

// Samples read at a time: 32 ms, so that the end of a phrase is seen soon
// and Stop is never kept waiting long.
constexpr snd_pcm_uframes_t kCaptureFrames = 512;
constexpr unsigned kCaptureLatencyMicroseconds = 200'000;

}  // namespace

struct MicrophoneListener::Parts {
  SphinxRecogniser recogniser;
  snd_pcm_t* pcm = nullptr;
  ~Parts() {
    if (pcm != nullptr) snd_pcm_close(pcm);
  }
};

MicrophoneListener::MicrophoneListener(Heard heard, std::string device)
    : heard_(std::move(heard)), device_(std::move(device)) {}

MicrophoneListener::~MicrophoneListener() {
  Stop();
}

bool MicrophoneListener::Start(std::string& error) {
  Stop();
  auto parts = std::make_unique<Parts>();
  if (!parts->recogniser.LoadGrammar(VoiceGrammarLists(), error)) return false;
  int rc = snd_pcm_open(&parts->pcm, device_.c_str(), SND_PCM_STREAM_CAPTURE, 0);
  if (rc < 0) {
    parts->pcm = nullptr;
    error = "the microphone " + device_ + " cannot be opened: " + snd_strerror(rc);
    return false;
  }
  rc = snd_pcm_set_params(parts->pcm, SND_PCM_FORMAT_S16_LE, SND_PCM_ACCESS_RW_INTERLEAVED, 1,
                          kSpeechSampleRate, 1, kCaptureLatencyMicroseconds);
  if (rc < 0) {
    error = "the microphone " + device_ + " cannot record 16 kHz mono: " + snd_strerror(rc);
    return false;
  }
  parts_ = std::move(parts);
  stopping_ = false;
  thread_ = std::thread([this] { Capture(); });
  return true;
}

void MicrophoneListener::Stop() {
  stopping_ = true;
  if (thread_.joinable()) thread_.join();
  parts_.reset();
}

void MicrophoneListener::Capture() {
  std::array<int16_t, kCaptureFrames> buffer{};
  while (!stopping_) {
    snd_pcm_sframes_t n = snd_pcm_readi(parts_->pcm, buffer.data(), kCaptureFrames);
    if (n < 0) {
      // An overrun or a suspended device is recovered; anything else ends
      // the listening, quietly: the pilot still has the hot keys.
      if (snd_pcm_recover(parts_->pcm, static_cast<int>(n), 1) < 0) break;
      continue;
    }
    parts_->recogniser.Listen(std::span<const int16_t>(buffer.data(), static_cast<size_t>(n)),
                              heard_);
  }
  parts_->recogniser.EndOfAudio(heard_);
}

}  // namespace vantoro
