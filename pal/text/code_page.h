// The code page of 8-bit programs: Windows-1252.
#pragma once

#include <cstdint>
#include <optional>

namespace pal {

constexpr char kDefaultChar = '?';  // for a character that has no byte

char16_t DecodeCodePage(uint8_t byte);
// The byte of a character that the code page has.
std::optional<uint8_t> EncodeCodePage(char16_t unit);
// The byte of a character that looks or sounds alike, as Windows chooses it: a letter for the same with an
// accent, ...
std::optional<uint8_t> FitToCodePage(char16_t unit);

}  // namespace pal
