// The rules of a HEX file written down step by step, a character and a byte at a time: slow, and the measure
// of the fast reader.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "firmware/hex_file.h"

namespace veltra {

class PlainHexReader {
 public:
  // The bytes of a whole text, ascending; none when a line is at fault.
  static std::optional<std::vector<HexByte>> Read(std::string_view text) {
    PlainHexReader reader;
    std::string line;
    for (const char c : text) {
      if (c != '\r' && c != '\n') {
        line += c;
        continue;
      }
      if (!line.empty() && !reader.OnLine(line)) return std::nullopt;
      line.clear();
    }
    std::vector<HexByte> bytes;
    for (const auto& [address, value] : reader.bytes_) bytes.push_back({address, value});
    return bytes;
  }

 private:
  static std::optional<unsigned> Number(std::string_view digits) {
    unsigned number = 0;
    for (const char c : digits) {
      number *= 16;
      if (c >= '0' && c <= '9')
        number += static_cast<unsigned>(c - '0');
      else if (c >= 'a' && c <= 'f')
        number += static_cast<unsigned>(c - 'a' + 10);
      else if (c >= 'A' && c <= 'F')
        number += static_cast<unsigned>(c - 'A' + 10);
      else
        return std::nullopt;
    }
    return number;
  }

  bool OnLine(std::string_view line) {
    if (line.size() < 11) return false;
    if (line[0] == ';') return true;
    if (line[0] != ':') return false;
    for (size_t n = 1; n < line.size(); ++n)
      if (!Number(line.substr(n, 1))) return false;
    const unsigned count = *Number(line.substr(1, 2));
    if (line.size() != 2 * count + 11) return false;
    if (line[7] != '0' || line[8] > '5') return false;
    unsigned sum = 0;
    for (size_t n = 1; n + 2 < line.size(); n += 2) sum += *Number(line.substr(n, 2));
    if ((0x100 - sum % 0x100) % 0x100 != *Number(line.substr(line.size() - 2))) return false;
    OnRecord(line[8], *Number(line.substr(3, 4)), line.substr(9, 2 * count));
    return !dataBehindEnd_;
  }

  void OnRecord(char type, unsigned address, std::string_view data) {
    if (type != '1' && endSeen_) dataBehindEnd_ = true;
    if (type == '1') endSeen_ = true;
    if (type == '4') upper_ = *Number((std::string(data) + "0000").substr(0, 4)) << 16;
    if (type == '0')
      for (size_t n = 0; 2 * n < data.size(); ++n)
        bytes_[static_cast<uint32_t>((upper_ | address) + n)] =
            static_cast<uint8_t>(*Number(data.substr(2 * n, 2)));
  }

  std::map<uint32_t, uint8_t> bytes_;
  uint32_t upper_ = 0;
  bool endSeen_ = false;
  bool dataBehindEnd_ = false;
};

}  // namespace veltra
