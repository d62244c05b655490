// The two volumes of the user.
#pragma once

#include <cstdint>

namespace veltra {

constexpr int32_t kVolumeNotSet = -1;  // as an argument: apply the stored setting again

// Stores the volume (10 to 100; 50 when none was ever set), sets Windows' playback level, trying five times
// over up to 10 s, and the amplifier's gain step. Returns whether the amplifier took it.
bool SetSpeakerVolume(int32_t volume);

// Stores the level (1 to 9; 7 when none was ever set), routes the microphone and writes the gains of the
// level. Other levels leave the gains.
void SetMicrophoneVolume(int32_t level);

// 0 raises the speaker volume by 10, 1 lowers it, each with a sound; anything else does nothing. The setting
// is not saved.
void StepSpeakerVolume(int32_t direction);

}  // namespace veltra
