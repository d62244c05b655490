// The controller's program memory: rows that are written and pages that are erased. Flash can only be erased
// to ones and written to zeros: what is written over bytes that were not erased is neither the one nor the
// other.
//
// Addresses are those of a HEX file, twice the controller's word addresses. Of the four bytes of an
// instruction the last one does not exist and reads as 0.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace simulator {

class Flash {
 public:
  static constexpr uint32_t kRowSize = 256;
  static constexpr uint32_t kPageSize = 2048;
  static constexpr uint32_t kSize = 344 * kRowSize;

  Flash();  // as the factory programmed it: no two instructions are the same

  // `length` bytes from the page's beginning, all of them unless the power fails in the middle.
  void ErasePage(uint32_t page, uint32_t length = kPageSize);
  void WriteRow(uint32_t row, std::span<const uint8_t> bytes);
  // One bit is stuck and stays as it is.
  void SpoilBit(uint32_t address) { bytes_[address] ^= 1; }

  [[nodiscard]] std::span<const uint8_t> Row(uint32_t row) const { return Bytes().subspan(row, kRowSize); }
  [[nodiscard]] std::span<const uint8_t> Bytes() const { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

}  // namespace simulator
