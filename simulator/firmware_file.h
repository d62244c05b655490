// Intel HEX files as a firmware build makes them, for updates in scenarios and tests, and what a flash holds
// as such a file.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace simulator {

// Bytes at their image addresses.
using FirmwareBytes = std::map<uint32_t, uint8_t>;

// Whole rows of instructions, no two of them the same and none like the factory's; `version` makes others.
void AddFirmwareRow(FirmwareBytes& bytes, uint32_t row, uint32_t version = 1);
// All 303 rows that an update may write.
std::vector<uint32_t> ProgrammableRows();

// Records of 16 bytes, with an end record and a line end after it.
std::string HexText(const FirmwareBytes& bytes);

// What a flash that held `before` holds after an update with that file: pages that it touches are erased,
// rows that it touches are written whole.
std::vector<uint8_t> FlashAfterUpdate(std::span<const uint8_t> before, const FirmwareBytes& bytes);

}  // namespace simulator
