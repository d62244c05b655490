#include "firmware/flash_image.h"

#include <algorithm>

namespace veltra {
namespace {

constexpr uint32_t kInstructionSize = 4;

uint32_t RoundDown(uint32_t address, uint32_t unit) {
  return address - address % unit;
}

}  // namespace

bool IsProgrammable(uint32_t address) {
  return std::any_of(kProgrammableWindow.begin(), kProgrammableWindow.end(), [&](const AddressRange& range) {
    return address >= range.begin && address < range.end;
  });
}

FlashRow::FlashRow(uint32_t rowAddress) : address(rowAddress) {
  bytes.fill(0xFF);
  for (size_t n = kInstructionSize - 1; n < bytes.size(); n += kInstructionSize) bytes[n] = 0x00;
}

bool FlashRow::Equals(const FlashRow& other) const {
  if (address == other.address) return bytes == other.bytes;
  // No address is in both: rows begin at multiples of their size.
  return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

void FlashImage::Reset() {
  rows_.clear();
  rows_.reserve(kFlashRowCount);
  for (uint32_t n = 0; n < kFlashRowCount; ++n) rows_.emplace_back(n * kFlashRowSize);
}

bool FlashImage::SetByte(uint32_t address, uint8_t value) {
  const size_t n = address / kFlashRowSize;
  if (n >= rows_.size()) return false;
  rows_[n].bytes[address % kFlashRowSize] = value;
  rows_[n].dirty = true;
  return true;
}

const FlashRow* FlashImage::FindRow(uint32_t rowAddress) const {
  const size_t n = rowAddress / kFlashRowSize;
  return rowAddress % kFlashRowSize == 0 && n < rows_.size() ? &rows_[n] : nullptr;
}

bool LoadFileImage(FlashImage& image, const HexBytes& bytes) {
  for (const HexByte byte : bytes)
    if (IsProgrammable(byte.address) && !image.SetByte(byte.address, byte.value)) return false;
  return true;
}

std::vector<uint32_t> DirtyRows(const FlashImage& image) {
  std::vector<uint32_t> rows;
  for (const FlashRow& row : image.Rows())
    if (row.dirty) rows.push_back(row.address);
  return rows;
}

std::vector<uint32_t> PagesOf(std::span<const uint32_t> rows) {
  std::vector<uint32_t> pages;
  for (const uint32_t row : rows) {
    const uint32_t page = RoundDown(row, kFlashPageSize);
    if (pages.empty() || pages.back() != page) pages.push_back(page);
  }
  return pages;
}

}  // namespace veltra
