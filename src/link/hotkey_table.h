// The simulator's hot key table: entries of four bytes from 0x3210, each the
// key code (two bytes: the virtual key, then the shift state), a flag byte
// and a hit marker that the simulator sets when the key is pressed.
#pragma once

#include <cstdint>

namespace vantoro {

class OffsetImage;

inline constexpr uint32_t kHotKeyTableOffset = 0x3210;
inline constexpr int kHotKeyEntries = 56;
inline constexpr uint32_t kHotKeyEntrySize = 4;
inline constexpr uint32_t kHotKeyFlagsByte = 2;
inline constexpr uint32_t kHotKeyHitByte = 3;

inline constexpr uint32_t HotKeyEntryOffset(int entry) {
  return kHotKeyTableOffset + static_cast<uint32_t>(entry) * kHotKeyEntrySize;
}

// The key pressed inside the simulator: the hit marker of the first entry
// holding this key code is set. False when no entry holds it (the key was
// never registered, so the simulator would not have caught it).
bool PressHotKeyEntry(OffsetImage& image, uint16_t keyCode);

}  // namespace vantoro
