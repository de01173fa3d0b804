#include "voice/sound_queue.h"
// Sound queue: built next.
namespace vantoro {
void InitSound(SoundState&) {}
void LoadCaptions(SoundState&, std::string_view) {}
void LoadInstructors(SoundState&) {}
void SoundTimer(Voice&, int) {}
}  // namespace vantoro
