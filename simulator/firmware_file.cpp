#include "simulator/firmware_file.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "simulator/flash.h"

namespace simulator {
namespace {

constexpr uint32_t kPhantom = 3;  // place of the byte that does not exist, in an instruction of 4
constexpr size_t kRecordSize = 16;

// What an update may write, seen from the controller: everything but its bootloader in front, its last two
// pages and one row of its own.
bool IsProgrammable(uint32_t address) {
  constexpr uint32_t kFirst = 3 * Flash::kPageSize;
  constexpr uint32_t kEnd = Flash::kSize - 2 * Flash::kPageSize;
  constexpr uint32_t kOwnRow = Flash::kSize - 6 * Flash::kPageSize;
  return address >= kFirst && address < kEnd && address / Flash::kRowSize != kOwnRow / Flash::kRowSize;
}

std::string Record(uint32_t type, uint32_t address, std::span<const uint8_t> data) {
  char text[16];
  const auto size = static_cast<uint32_t>(data.size());
  std::snprintf(text, sizeof text, ":%02X%04X%02X", size, address & 0xFFFF, type);
  std::string record = text;
  uint32_t sum = size + (address >> 8 & 0xFF) + (address & 0xFF) + type;
  for (const uint8_t byte : data) {
    std::snprintf(text, sizeof text, "%02X", byte);
    record.append(text);
    sum += byte;
  }
  std::snprintf(text, sizeof text, "%02X\r\n", (0x100 - sum) & 0xFF);
  return record.append(text);
}

}  // namespace

void AddFirmwareRow(FirmwareBytes& bytes, uint32_t row, uint32_t version) {
  constexpr uint32_t kMixer = 2246822519;
  for (uint32_t address = row; address < row + Flash::kRowSize; ++address) {
    const uint32_t instruction = (address / 4 + version) * kMixer >> 8;
    const uint32_t place = address % 4;
    const auto value = static_cast<uint8_t>(instruction >> 8 * place);
    bytes[address] = place == kPhantom ? uint8_t{0} : value;
  }
}

std::vector<uint32_t> ProgrammableRows() {
  std::vector<uint32_t> rows;
  for (uint32_t row = 0; row < Flash::kSize; row += Flash::kRowSize)
    if (IsProgrammable(row)) rows.push_back(row);
  return rows;
}

std::string HexText(const FirmwareBytes& bytes) {
  std::string text;
  uint32_t upper = 0;
  for (auto byte = bytes.begin(); byte != bytes.end();) {
    const uint32_t address = byte->first;
    std::vector<uint8_t> data;
    while (byte != bytes.end() && byte->first == address + data.size() && data.size() < kRecordSize &&
           byte->first >> 16 == address >> 16)
      data.push_back((byte++)->second);
    if (address >> 16 != upper) {
      upper = address >> 16;
      const uint8_t half[] = {static_cast<uint8_t>(upper >> 8), static_cast<uint8_t>(upper)};
      text += Record(4, 0, half);
    }
    text += Record(0, address, data);
  }
  return text + Record(1, 0, {});
}

std::vector<uint8_t> FlashAfterUpdate(std::span<const uint8_t> before, const FirmwareBytes& bytes) {
  std::vector<uint8_t> after(before.begin(), before.end());
  std::set<uint32_t> pages;
  for (const auto& [address, value] : bytes)
    if (IsProgrammable(address)) pages.insert(address / Flash::kPageSize * Flash::kPageSize);
  for (const uint32_t page : pages)
    for (uint32_t address = page; address < page + Flash::kPageSize; ++address)
      after[address] = address % 4 == kPhantom ? 0x00 : 0xFF;
  for (const auto& [address, value] : bytes)
    if (IsProgrammable(address)) after[address] = value;
  return after;
}

}  // namespace simulator
