// Lines that people and scripts write, cut into words.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

// What is wrong with a line, in a few words for the person who wrote it; empty when all is well.
using Problem = std::optional<std::string>;
using Words = std::span<const std::string>;

// Words stand between blanks; a word in double quotes keeps its blanks. A '#' in front of a word begins a
// comment. Returns false when a quote is not closed.
bool SplitWords(std::string_view line, std::vector<std::string>& words);
// The words with one blank between.
std::string JoinWords(Words words);

// Decimal, or hexadecimal with 0x, with an optional sign.
std::optional<int64_t> ParseNumber(std::string_view word);
// "20ms", "1.5s", "3s", "250us".
std::optional<std::chrono::microseconds> ParseTime(std::string_view word);
// "on" is true, "off" is false.
std::optional<bool> ParseOnOff(std::string_view word);
// One UTF-16 unit for each ASCII character and back; what is not ASCII becomes '?'.
std::u16string Utf16(std::string_view text);
std::string Ascii(std::u16string_view text);
// Seconds with three decimals, as timelines show them: "3.005".
std::string FormatSeconds(std::chrono::microseconds time);

}  // namespace simulator
