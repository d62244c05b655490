#include "simulator/flash.h"

#include <algorithm>

namespace simulator {
namespace {

constexpr uint32_t kInstructionSize = 4;

bool Exists(uint32_t address) {
  return address % kInstructionSize != kInstructionSize - 1;
}

}  // namespace

Flash::Flash() : bytes_(kSize) {
  constexpr uint32_t kMixer = 2654435761;  // spreads the number of the instruction over its bits
  for (uint32_t address = 0; address < kSize; ++address) {
    const uint32_t instruction = (address / kInstructionSize + 1) * kMixer >> 8;
    if (Exists(address))
      bytes_[address] = static_cast<uint8_t>(instruction >> 8 * (address % kInstructionSize));
  }
}

void Flash::ErasePage(uint32_t page, uint32_t length) {
  for (uint32_t address = page; address < page + length; ++address)
    bytes_[address] = Exists(address) ? 0xFF : 0x00;
}

void Flash::WriteRow(uint32_t row, std::span<const uint8_t> bytes) {
  for (uint32_t n = 0; n < bytes.size(); ++n) bytes_[row + n] &= bytes[n];
}

}  // namespace simulator
