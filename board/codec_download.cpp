#include "board/codec_download.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "board/codec_parameters.h"

namespace veltra {
namespace {

constexpr size_t kBytesPerTransfer = 240;
constexpr size_t kProgramBlock = 3200;  // bytes; from here on a block holds program words
constexpr uint16_t kProgramStep = kBytesPerTransfer / 6;
constexpr uint16_t kParameterStep = kBytesPerTransfer / 4;

using Data = std::vector<uint8_t>;

Data Repeat(size_t times, const Data& data) {
  Data repeated;
  for (size_t n = 0; n < times; ++n) std::copy(data.begin(), data.end(), std::back_inserter(repeated));
  return repeated;
}

Data Zeros(size_t count) {
  return Data(count, 0);
}

Data Join(std::initializer_list<Data> pieces) {
  Data joined;
  for (const Data& piece : pieces) std::copy(piece.begin(), piece.end(), std::back_inserter(joined));
  return joined;
}

// ---- the program ------------------------------------------------------------------------------------------

// A program word: opcode, 16-bit source, 16-bit target, and a byte that makes the six add up to 0 modulo 256,
// so that a memory dump shows where a word was damaged.
enum class Opcode : uint8_t { kNothing = 0x00, kCopy = 0x01, kEndOfFrame = 0x02 };

void PutWord(Data& image, size_t index, Opcode opcode, uint16_t source, uint16_t target) {
  std::array<uint8_t, 6> word = {static_cast<uint8_t>(opcode), static_cast<uint8_t>(source >> 8),
                                 static_cast<uint8_t>(source), static_cast<uint8_t>(target >> 8),
                                 static_cast<uint8_t>(target), 0};
  for (const uint8_t byte : word) word[5] = static_cast<uint8_t>(word[5] - byte);
  std::copy(word.begin(), word.end(), image.begin() + static_cast<ptrdiff_t>(index * word.size()));
}

// ---- the parameters ---------------------------------------------------------------------------------------

void Put(Data& image, uint16_t address, const CodecValue& value) {
  std::copy(value.begin(), value.end(), image.begin() + static_cast<ptrdiff_t>(address * value.size()));
}

void Put(Data& image, const CodecPair& pair, const CodecValue& value) {
  Put(image, pair.first, value);
  Put(image, pair.second, value);
}

void Put(Data& image, const CodecSelector& selector, const CodecValue& value) {
  for (uint16_t n = 0; n < selector.count; ++n) Put(image, static_cast<uint16_t>(selector.first + n), value);
}

}  // namespace

Data CodecProgramImage() {
  constexpr uint16_t kInputs = 0x0000;
  constexpr uint16_t kOutputs = 0x0100;
  constexpr uint16_t kChannels = 4;
  Data image = Zeros(kCodecProgramBytes);  // zeros are kNothing
  for (uint16_t channel = 0; channel < kChannels; ++channel)
    PutWord(image, channel, Opcode::kCopy, static_cast<uint16_t>(kInputs + channel),
            static_cast<uint16_t>(kOutputs + channel));
  PutWord(image, kChannels, Opcode::kEndOfFrame, 0, 0);
  return image;
}

Data CodecParameterImage() {
  Data image = Repeat(kCodecParameters, Data(kCodecOne.begin(), kCodecOne.end()));
  for (const CodecPair& pair : {kP1, kP2, kP3, kP4, kP5, kP6, kP7, kP8, kP9}) Put(image, pair, kCodecZero);
  for (const CodecSelector& selector : {kS1, kS2, kS3, kS4, kS5}) Put(image, selector, kCodecZero);
  for (const MicrophoneGain& gain : kMicrophoneGains) {
    if (gain.level != kDefaultMicrophoneLevel) continue;
    Put(image, kG2, CodecWhole(gain.g2));
    Put(image, kG1, CodecWhole(gain.g1));
  }
  return image;
}

std::vector<CodecBlock> CodecDownloadBlocks() {
  return {
      {0xE220, {0x00, 0x1C}},
      {0xE228, {0x00, 0x00}},
      {0x2000, CodecProgramImage()},
      {0xE000,
       {0x10, 0x00, 0x04, 0x00, 0x0C, 0x00, 0x10, 0x00, 0x10, 0x00, 0x14, 0x00, 0x18, 0x00, 0x1C, 0x00, 0x20,
        0x00}},
      {0xE040,
       {0x10, 0x00, 0xA4, 0x00, 0x14, 0x00, 0x18, 0x00, 0x1C, 0x00, 0x14, 0x00, 0x1C, 0x00, 0x1C, 0x00, 0x0C,
        0x00}},
      {0xE049, {0x00, 0x00}},
      {0xE080,
       {0x00, 0x05, 0x00, 0x11, 0x00, 0x06, 0x00, 0x13, 0x00, 0x3F, 0x00, 0x3F, 0x00, 0x3F, 0x00, 0x3F}},
      {0xE088,
       {0x00, 0x10, 0x00, 0x02, 0x00, 0x10, 0x00, 0x03, 0x00, 0x3F, 0x00, 0x3F, 0x00, 0x3F, 0x00, 0x3F}},
      {0xE090,
       Join({{0x00, 0x10, 0x00, 0x3F, 0x00, 0x21, 0x00, 0x23, 0x00, 0x14, 0x00, 0x3F, 0x00, 0x16, 0x00, 0x3F},
             Repeat(4, {0x00, 0x3F})})},
      {0xE0C0, Join({Zeros(23), {0x01}})},
      {0xE101, {0x00, 0x00}},
      {0xE141, {0x00, 0x0F}},
      {0xE180, Repeat(24, {0x01, 0x3F})},
      {0xE1C0, Repeat(64, {0x80})},
      {0xE200, Join({{0x23, 0x24, 0x41, 0xB0},
                     Zeros(21),
                     {0x05, 0x00, 0x05, 0x00, 0x00, 0x00, 0x0B, 0x00, 0x00, 0x00, 0x0E},
                     Zeros(12),
                     {0x1F, 0x00, 0x00, 0x01},
                     Zeros(4),
                     {0x10, 0x00, 0x00, 0x01, 0x00, 0x00, 0x1F, 0x00, 0x00, 0x1C, 0x00, 0x05},
                     Zeros(16)})},
      {0xE240, Zeros(4)},
      {0xE247, Zeros(12)},
      {0xE280, {0x00, 0x2F}},
      {0x0000, CodecParameterImage()},
      {0xE21F, {0x1F, 0xFA}},
      {0x5FFA, Repeat(3, {0x00, 0x7F, 0xBB, 0xCE, 0x00, 0x00, 0x44, 0x32})},
      {0xE220, {0x00, 0x00}},
      {0xE228, {0x00, 0x01}},
      {0xE221, {0x00, 0x00}},
      {0xE221, {0x00, 0x05}},
  };
}

std::vector<Data> SplitCodecWrite(uint16_t address, std::span<const uint8_t> data) {
  const uint16_t step = data.size() >= kProgramBlock ? kProgramStep : kParameterStep;
  std::vector<Data> transfers;
  do {
    const size_t length = std::min(data.size(), kBytesPerTransfer);
    Data transfer(2 + length);
    transfer[0] = static_cast<uint8_t>(address >> 8);
    transfer[1] = static_cast<uint8_t>(address);
    std::copy_n(data.begin(), length, transfer.begin() + 2);
    transfers.push_back(std::move(transfer));
    data = data.subspan(length);
    address = static_cast<uint16_t>(address + step);
  } while (!data.empty());
  return transfers;
}

}  // namespace veltra
