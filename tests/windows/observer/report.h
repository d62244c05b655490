// What the observer says: one line for each event and one for each command, UTF-8, words separated by tabs.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace observer {

// Writes the words as one line. Called on the main thread only.
void Report(std::initializer_list<std::string_view> words);

std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view utf8);
// "5361": two digits a byte, nothing between.
std::string Hex(std::span<const uint8_t> bytes);
// Throws std::invalid_argument when it is not hexadecimal.
std::string BytesFromHex(std::string_view hex);

}  // namespace observer
