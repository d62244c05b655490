// The default playback device, as the program reaches it through COM objects.
#pragma once

#include <mmdeviceapi.h>

namespace pal {

struct State;

struct PlaybackVolume {
  float level = 0.5F;  // 0 to 1
  bool isMuted = false;
};

struct Playback {
  PlaybackVolume volume;
};

inline constexpr CLSID kDeviceEnumeratorClass = {
    0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
inline constexpr IID kDeviceEnumeratorInterface = {
    0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};

// Called with the machine's lock.
IMMDeviceEnumerator* MakeDeviceEnumerator(State& state);

}  // namespace pal
