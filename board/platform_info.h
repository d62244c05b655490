// What the board's library says about the board, its processor and its memory.
#pragma once

#include <optional>
#include <string_view>

#include "board/board_library.h"

namespace veltra {

struct PlatformInfo {
  BoardInfo board;
  CpuInfo cpu;
  MemoryInfo memory;
};

// Empty when the library is missing or one of its three answers is.
std::optional<PlatformInfo> ReadPlatformInfo();

// The text of a field, which has a terminator only when it does not fill the field.
template <size_t Size>
std::string_view TextOfField(const char (&field)[Size]) {
  const std::string_view whole(field, Size);
  return whole.substr(0, whole.find('\0'));
}

}  // namespace veltra
