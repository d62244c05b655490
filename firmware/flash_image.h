// The controller's program memory as the update sees it, a pure core.
//
// Addresses are image addresses, twice the controller's word addresses: an instruction of 24 bits takes four
// bytes, three of its own and one that reads as 0.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "firmware/hex_file.h"

namespace veltra {

constexpr uint32_t kFlashRowSize = 256;                 // bytes that are programmed at once
constexpr uint32_t kFlashPageSize = 8 * kFlashRowSize;  // bytes that are erased at once
constexpr uint32_t kFlashRowCount = 344;
constexpr uint32_t kFlashSize = kFlashRowCount * kFlashRowSize;

struct AddressRange {
  uint32_t begin;
  uint32_t end;  // after the last address
};

// Where an update writes. The first three pages, the last two and one row between are never written.
constexpr uint32_t kReservedFlashRow = kFlashSize - 6 * kFlashPageSize;
constexpr std::array<AddressRange, 2> kProgrammableWindow = {{
    {3 * kFlashPageSize, kReservedFlashRow},
    {kReservedFlashRow + kFlashRowSize, kFlashSize - 2 * kFlashPageSize},
}};

bool IsProgrammable(uint32_t address);

struct FlashRow {
  // An erased row.
  explicit FlashRow(uint32_t rowAddress);

  // Whether the other row has the same bytes at the same image addresses; outside the other one they count as
  // 0.
  [[nodiscard]] bool Equals(const FlashRow& other) const;

  uint32_t address;  // a multiple of the row size
  std::array<uint8_t, kFlashRowSize> bytes;
  bool dirty = false;  // a byte was set since the row was created
};

// Rows in ascending order; none before the first Reset.
class FlashImage {
 public:
  // All rows, erased.
  void Reset();
  // False when no row holds the address.
  bool SetByte(uint32_t address, uint8_t value);
  // The row that begins at exactly that address, null when there is none. Valid until Reset.
  [[nodiscard]] const FlashRow* FindRow(uint32_t rowAddress) const;
  [[nodiscard]] std::span<const FlashRow> Rows() const { return rows_; }

 private:
  std::vector<FlashRow> rows_;
};

// Sets the programmable bytes of a file and skips the others. False, and stops, when the image lacks a row
// for one.
bool LoadFileImage(FlashImage& image, const HexBytes& bytes);

// What the dirty rows of an image ask for, ascending: the rows to write and the pages to erase.
std::vector<uint32_t> DirtyRows(const FlashImage& image);
std::vector<uint32_t> PagesOf(std::span<const uint32_t> rows);

}  // namespace veltra
