// What a firmware update will do with the bytes of a HEX file, worked out by its own steps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "firmware/hex_file.h"

namespace veltra {

struct Range {
  uint64_t begin;
  uint64_t end;  // after the last address
};

struct UpdateForecast {
  bool starts = false;            // else there is nothing to write, and only `outside` counts
  size_t pages = 0;               // to erase
  size_t rows = 0;                // to write and read back
  std::vector<Range> written;     // whole rows, ascending like all of these
  std::vector<Range> erasedOnly;  // the rest of the erased pages
  std::vector<Range> outside;     // bytes of the file that are left out
  uint64_t outsideBytes = 0;
  bool erasesReservedRow = false;
  uint32_t checksum = 0;              // CRC-32, as zip files have it, of all rows that are written
  std::vector<HexByte> unverifiable;  // read back as 0 whatever is written there
  double bytesOnLine = 0;             // in both directions
  double seconds = 0;                 // on the line; what the controller needs comes on top
};

constexpr double kBitsPerSecond = 57600;

UpdateForecast Foresee(const HexBytes& bytes);

}  // namespace veltra
