#include "simulator/words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace simulator {

bool SplitWords(std::string_view line, std::vector<std::string>& words) {
  words.clear();
  constexpr std::string_view kBlanks = " \t\r\n";
  size_t at = 0;
  while ((at = line.find_first_not_of(kBlanks, at)) != line.npos && line[at] != '#') {
    const bool quoted = line[at] == '"';
    const size_t begin = quoted ? at + 1 : at;
    size_t end = quoted ? line.find('"', begin) : line.find_first_of(kBlanks, begin);
    if (quoted && end == line.npos) return false;
    if (end == line.npos) end = line.size();
    words.emplace_back(line.substr(begin, end - begin));
    if (quoted) words.back() += line.substr(end + 1, line.find_first_of(kBlanks, end) - end - 1);
    at = std::min(line.find_first_of(kBlanks, end), line.size());
  }
  return true;
}

std::string JoinWords(Words words) {
  std::string text;
  for (const std::string& word : words) text += (&word == words.data() ? "" : " ") + word;
  return text;
}

std::optional<int64_t> ParseNumber(std::string_view word) {
  const bool negative = word.starts_with('-');
  if (negative) word.remove_prefix(1);
  const int base = word.starts_with("0x") ? 16 : 10;
  if (base == 16) word.remove_prefix(2);
  uint32_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value, base);
  if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
  return negative ? -int64_t{value} : int64_t{value};
}

std::optional<std::chrono::microseconds> ParseTime(std::string_view word) {
  double number = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error != std::errc() || number < 0 || number > 1e6) return std::nullopt;
  const std::string_view unit(end, static_cast<size_t>(word.data() + word.size() - end));
  double microseconds = 0;
  if (unit == "s")
    microseconds = number * 1e6;
  else if (unit == "ms")
    microseconds = number * 1e3;
  else if (unit == "us")
    microseconds = number;
  else
    return std::nullopt;
  return std::chrono::microseconds(std::llround(microseconds));
}

std::optional<bool> ParseOnOff(std::string_view word) {
  if (word == "on") return true;
  if (word == "off") return false;
  return std::nullopt;
}

std::u16string Utf16(std::string_view text) {
  std::u16string wide;
  for (const char c : text) wide += static_cast<unsigned char>(c) < 0x80 ? static_cast<char16_t>(c) : u'?';
  return wide;
}

std::string Ascii(std::u16string_view text) {
  std::string narrow;
  for (const char16_t c : text) narrow += c < 0x80 ? static_cast<char>(c) : '?';
  return narrow;
}

std::string FormatSeconds(std::chrono::microseconds time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(time.count()) / 1e6);
  return text;
}

}  // namespace simulator
