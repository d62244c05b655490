// Texts and numbers as the descriptions of effects show them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace pal {

// "0x1B", with at least that many digits.
std::string Hex(uint64_t number, int digits);
// "55 0A FF".
std::string HexBytes(std::span<const uint8_t> bytes);
// UTF-8 on one line: line ends at the end are left out, other control characters stand as \n, \t, \x1B.
std::string OneLine(std::u16string_view text);
// 8-bit text, one character a byte, in the same way.
std::string OneLine(std::string_view bytes);

// What the person reads of a menu item: no mark of the access key, nothing of the short cut after the text.
std::u16string MenuLabel(std::u16string_view text);

}  // namespace pal
