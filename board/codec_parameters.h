// The audio codec's parameter memory, a pure core: what stands at which address, and the form of its values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltra {

// A parameter value on the bus: signed fixed point with 23 fraction bits, most significant byte first. 1.0 is
// 00 80 00 00.
using CodecValue = std::array<uint8_t, 4>;

constexpr CodecValue CodecBits(uint32_t bits) {
  return {static_cast<uint8_t>(bits >> 24), static_cast<uint8_t>(bits >> 16), static_cast<uint8_t>(bits >> 8),
          static_cast<uint8_t>(bits)};
}
constexpr CodecValue CodecWhole(uint32_t number) {
  return CodecBits(number << 23);
}
constexpr CodecValue kCodecOne = CodecWhole(1);
constexpr CodecValue kCodecZero = CodecWhole(0);

// Two switches of one path; both are set to the same value, `first` first.
struct CodecPair {
  uint16_t first;
  uint16_t second;
};

constexpr CodecPair kP1 = {0x0017, 0x0016};
constexpr CodecPair kP2 = {0x00C9, 0x00CB};  // the microphone path
constexpr CodecPair kP3 = {0x0019, 0x0018};
constexpr CodecPair kP4 = {0x001B, 0x001A};
constexpr CodecPair kP5 = {0x00E5, 0x00E4};
constexpr CodecPair kP6 = {0x0102, 0x0103};
constexpr CodecPair kP7 = {0x0107, 0x0106};
constexpr CodecPair kP8 = {0x0104, 0x0105};
constexpr CodecPair kP9 = {0x00E6, 0x00E7};

// Microphone gains; G2 is written before G1.
constexpr CodecPair kG2 = {0x001E, 0x001F};
constexpr CodecPair kG1 = {0x001C, 0x001D};

// A row of switches of which one at most is 1.0.
struct CodecSelector {
  uint16_t first;
  uint16_t count;
};

constexpr CodecSelector kS1 = {0x00CD, 5};
constexpr CodecSelector kS2 = {0x00D2, 7};
constexpr CodecSelector kS3 = {0x00D9, 7};
constexpr CodecSelector kS4 = {0x00ED, 6};
constexpr CodecSelector kS5 = {0x00F3, 6};

// The microphone's routing: a switch and two selectors, twice.
constexpr uint16_t kMicrophoneSwitchA = 0x0084;
constexpr CodecSelector kMicrophoneSourceA = {0x0085, 5};
constexpr CodecSelector kMicrophoneTargetA = {0x008A, 5};
constexpr uint16_t kMicrophoneSwitchB = 0x008F;
constexpr CodecSelector kMicrophoneSourceB = {0x0090, 5};
constexpr CodecSelector kMicrophoneTargetB = {0x0095, 5};

struct CodecParameter {
  uint16_t address;
  CodecValue value;
};

// Written at the end of the mixer reset, in this order.
constexpr CodecParameter kResetParameters[] = {
    {0x0008, CodecBits(0x000000FF)}, {0x0009, CodecBits(0x000AAAAB)}, {0x000A, kCodecZero},
    {0x000B, CodecBits(0x000000FF)}, {0x000C, CodecBits(0x000AAAAB)}, {0x000D, kCodecZero},
};

// A second-order high-pass section and one that lets everything through, five coefficients each.
constexpr CodecParameter kFilterParameters[] = {
    {0x00E8, CodecBits(0x007F68B3)},
    {0x00E9, CodecBits(0xFF012E9A)},
    {0x00EA, CodecBits(0x007F68B3)},
    {0x00EB, CodecBits(0x00FED0B4)},
    {0x00EC, CodecBits(0xFF812DE7)},
    {0x00FB, kCodecOne},
    {0x00FC, kCodecZero},
    {0x00FD, kCodecZero},
    {0x00FE, kCodecZero},
    {0x00FF, kCodecZero},
};

// Microphone gains by level.
struct MicrophoneGain {
  int32_t level;
  uint32_t g2;
  uint32_t g1;
};

constexpr MicrophoneGain kMicrophoneGains[] = {
    {1, 1, 1}, {2, 2, 1}, {3, 2, 2}, {4, 5, 1}, {5, 10, 1}, {6, 5, 2}, {7, 10, 2}, {8, 10, 5}, {9, 10, 10},
};
constexpr int32_t kDefaultMicrophoneLevel = 7;

}  // namespace veltra
