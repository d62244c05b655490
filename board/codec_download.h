// What is downloaded into the audio codec at power-up, a pure core.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace veltra {

constexpr size_t kCodecProgramBytes = 5232;  // 872 words of 6 bytes
constexpr size_t kCodecParameters = 317;     // of 4 bytes

// One block write: the codec's 16-bit address and the data.
struct CodecBlock {
  uint16_t address;
  std::vector<uint8_t> data;
};

// The 25 blocks, in the order in which they are written.
std::vector<CodecBlock> CodecDownloadBlocks();

// The program memory: passes both channels of both inputs through to the outputs of the same number.
std::vector<uint8_t> CodecProgramImage();
// The parameter memory: mixers off, microphone gains of the default level, 1.0 elsewhere.
std::vector<uint8_t> CodecParameterImage();

// The transfers of one block write, each with its address in front, high byte first. The bus takes 240 data
// bytes at a time; blocks of 3200 bytes and more hold 6-byte words, shorter ones 4-byte words, and the
// address counts words.
std::vector<std::vector<uint8_t>> SplitCodecWrite(uint16_t address, std::span<const uint8_t> data);

}  // namespace veltra
