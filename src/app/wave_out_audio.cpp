#include "app/wave_out_audio.h"

// clang-format off
#include <windows.h>
#include <mmsystem.h>
#include <mmreg.h>
// clang-format on

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>

#include "app/wave_samples.h"
#include "base/files.h"
#include "voice/wav.h"

namespace vantoro {

namespace {

std::string Utf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string out(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), size, nullptr, nullptr);
  out.pop_back();  // the terminating zero
  return out;
}

std::string ErrorText(MMRESULT rc) {
  wchar_t text[MAXERRORLENGTH] = {};
  if (waveOutGetErrorTextW(rc, text, MAXERRORLENGTH) != MMSYSERR_NOERROR)
    return "error " + std::to_string(rc);
  return Utf8(text);
}

std::vector<std::string> ListOutputDevices() {
  std::vector<std::string> names;
  const UINT count = waveOutGetNumDevs();
  for (UINT i = 0; i < count; ++i) {
    WAVEOUTCAPSW caps{};
    if (waveOutGetDevCapsW(i, &caps, sizeof caps) == MMSYSERR_NOERROR)
      names.push_back(Utf8(caps.szPname));
    else
      names.push_back("Device " + std::to_string(i + 1));
  }
  return names;
}

}  // namespace

struct WaveOutAudio::Opened {
  HWAVEOUT device = nullptr;
  WAVEHDR header{};
  std::string samples;
  std::atomic<bool> ended{false};
};

// The device's callback, on a thread of the system's: the only thing done
// here is to mark the end, as the multimedia system allows no call back into
// it from its callback.
static void CALLBACK WaveOutDone(HWAVEOUT, UINT message, DWORD_PTR instance, DWORD_PTR, DWORD_PTR) {
  if (message == WOM_DONE) reinterpret_cast<std::atomic<bool>*>(instance)->store(true);
}

WaveOutAudio::WaveOutAudio() = default;

WaveOutAudio::~WaveOutAudio() {
  CloseDevice();
}

const std::vector<std::string>& WaveOutAudio::Devices() const {
  if (!devices_) devices_ = ListOutputDevices();
  return *devices_;
}

std::string WaveOutAudio::DeviceName(int index) const {
  if (index < 0 || index >= DeviceCount()) return {};
  return Devices()[static_cast<size_t>(index)];
}

void WaveOutAudio::SetDevice(int index) {
  if (index < DeviceCount()) {
    device_ = std::max(index, -1);
    return;
  }
  device_ = -1;
  Report("Sound: device " + std::to_string(index) + " is not there; playing on the default device");
}

void WaveOutAudio::SetVolume(int volume) {
  gain_ = VolumeGain(volume);
}

void WaveOutAudio::Report(std::string problem) {
  problem_ = std::move(problem);
}

void WaveOutAudio::CloseDevice() {
  if (!opened_) return;
  waveOutReset(opened_->device);
  // A reset returns the buffer to the program; the device is closed only
  // once it has.
  for (int i = 0; i < 100 && (opened_->header.dwFlags & WHDR_DONE) == 0; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  waveOutUnprepareHeader(opened_->device, &opened_->header, sizeof opened_->header);
  waveOutClose(opened_->device);
  opened_.reset();
}

void WaveOutAudio::SilentFor(int64_t milliseconds) {
  silentUntil_ = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}

void WaveOutAudio::Play(const std::string& nativePath) {
  // One file at a time: a file still playing is cut short.
  if (playing_) Stop();
  playing_ = true;
  audible_ = false;
  silentUntil_.reset();

  auto opened = std::make_unique<Opened>();
  std::string bytes = ReadFile(nativePath);
  const WavInfo info = ParseWavHeader(bytes);
  const std::optional<size_t> start = DataStart(bytes);
  const std::optional<SampleForm> form = SampleFormOf(info);
  if (!info.valid || !start || !form || info.channels == 0 || info.blockAlign == 0) {
    // A file the card cannot take plays for the length its header gives.
    SilentFor(info.durationMs);
    return;
  }
  // An extensible file plays in the plain form of its bits.
  WAVEFORMATEX format{};
  format.wFormatTag = *form == SampleForm::Float32 ? WAVE_FORMAT_IEEE_FLOAT : WAVE_FORMAT_PCM;
  format.nChannels = info.channels;
  format.nSamplesPerSec = info.sampleRate;
  format.wBitsPerSample = info.bitsPerSample;
  format.nBlockAlign = info.blockAlign;
  format.nAvgBytesPerSec = info.sampleRate * info.blockAlign;

  const size_t available = std::min<size_t>(info.dataBytes, bytes.size() - *start);
  const size_t whole = available / info.blockAlign * info.blockAlign;
  opened->samples.assign(bytes, *start, whole);
  ApplyGain(opened->samples.data(), whole, *form, gain_);

  const UINT device = device_ < 0 ? WAVE_MAPPER : static_cast<UINT>(device_);
  MMRESULT rc =
      waveOutOpen(&opened->device, device, &format, reinterpret_cast<DWORD_PTR>(&WaveOutDone),
                  reinterpret_cast<DWORD_PTR>(&opened->ended), CALLBACK_FUNCTION);
  if (rc == MMSYSERR_NOERROR) {
    opened->header.lpData = opened->samples.data();
    opened->header.dwBufferLength = static_cast<DWORD>(whole);
    rc = waveOutPrepareHeader(opened->device, &opened->header, sizeof opened->header);
    if (rc == MMSYSERR_NOERROR) {
      rc = waveOutWrite(opened->device, &opened->header, sizeof opened->header);
      if (rc != MMSYSERR_NOERROR)
        waveOutUnprepareHeader(opened->device, &opened->header, sizeof opened->header);
    }
    if (rc != MMSYSERR_NOERROR) waveOutClose(opened->device);
  }
  if (rc != MMSYSERR_NOERROR) {
    Report("Sound: the device cannot play (" + ErrorText(rc) +
           "); the instructor goes on in silence");
    SilentFor(info.durationMs);
    return;
  }
  // A good start clears a problem told before, so that a new one is told.
  lastTold_.clear();
  opened_ = std::move(opened);
  audible_ = true;
}

void WaveOutAudio::Stop() {
  if (!playing_) return;
  CloseDevice();
  silentUntil_.reset();
  playing_ = false;
  if (onFinished) onFinished();
}

std::string WaveOutAudio::Deliver() {
  if (playing_) {
    const bool ended = opened_ ? opened_->ended.load()
                               : !silentUntil_ || std::chrono::steady_clock::now() >= *silentUntil_;
    if (ended) {
      CloseDevice();
      silentUntil_.reset();
      playing_ = false;
      if (onFinished) onFinished();
    }
  }
  if (problem_.empty() || problem_ == lastTold_) return {};
  lastTold_ = std::exchange(problem_, {});
  return lastTold_;
}

}  // namespace vantoro
