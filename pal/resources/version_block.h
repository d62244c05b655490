// Looking things up in a block of version information.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace pal {

struct VersionValue {
  const uint8_t* data = nullptr;
  uint16_t length = 0;  // in characters of a text, in bytes of anything else
};

// Whether the block is as long as it says. What it holds may still be damaged: then values are not found.
bool IsVersionBlock(std::span<const uint8_t> block);

// The value at a path such as "\StringFileInfo\080904b0\FileVersion"; "\" is the block's own.
std::optional<VersionValue> FindVersionValue(const uint8_t* block, std::u16string_view path);

}  // namespace pal
