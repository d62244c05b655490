// The numbers that resource scripts take from the headers of Windows.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pal {

// Headers that a script may include in angle brackets; all of them bring all constants.
bool IsSystemHeader(std::string_view name);

std::optional<uint32_t> FindResourceConstant(std::string_view name);

}  // namespace pal
