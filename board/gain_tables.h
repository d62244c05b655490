// Volumes in steps of the user and in steps of the hardware, a pure core.
#pragma once

#include <algorithm>
#include <cstdint>

namespace veltra {

struct SpeakerGain {
  int32_t from;  // speaker volume from here on
  uint8_t step;  // of the amplifier
};

constexpr SpeakerGain kSpeakerGains[] = {
    {5, 0x30}, {55, 0x32}, {65, 0x34}, {75, 0x36}, {85, 0x38}, {95, 0x3A},
};

// The amplifier's gain step for a speaker volume; 0 below 5.
constexpr uint8_t SpeakerGainStep(int32_t volume) {
  uint8_t step = 0x00;
  for (const SpeakerGain& gain : kSpeakerGains)
    if (volume >= gain.from) step = gain.step;
  return step;
}

// The playback level in percent for a speaker volume: the lower half of the setting scales it, from 55 on it
// is 100.
constexpr int32_t EndpointPercent(int32_t volume) {
  return static_cast<int32_t>(std::clamp<int64_t>(2 * int64_t{volume} - 10, 0, 100));
}

}  // namespace veltra
