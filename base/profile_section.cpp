#include "base/profile_section.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace veltra {
namespace {

bool IsBlank(WideChar c) {
  return static_cast<uint32_t>(c) <= ' ';
}

WideView Trim(WideView text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

WideView WithoutQuotes(WideView text) {
  const bool isQuoted =
      text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

uint32_t DigitValue(WideChar c) {
  if (c >= '0' && c <= '9') return static_cast<uint32_t>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<uint32_t>(c - 'A' + 10);
  if (c >= 'a' && c <= 'f') return static_cast<uint32_t>(c - 'a' + 10);
  return UINT32_MAX;
}

// Takes the prefix that says so off.
uint32_t TakeBase(WideView& digits) {
  constexpr std::pair<char, uint32_t> kBases[] = {{'x', 16}, {'o', 8}, {'b', 2}};
  if (digits.size() < 2 || digits[0] != '0') return 10;
  for (const auto& [letter, base] : kBases) {
    if (digits[1] != static_cast<WideChar>(letter)) continue;
    digits.remove_prefix(2);
    return base;
  }
  return 10;
}

uint32_t ReadNumber(WideView text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const uint32_t base = TakeBase(text);
  uint32_t number = 0;
  for (const WideChar c : text) {
    const uint32_t digit = DigitValue(c);
    if (digit >= base) break;
    number = number * base + digit;
  }
  return negative ? 0 - number : number;
}

}  // namespace

WideText AsStored(WideView text) {
  constexpr WideChar kEnds[] = {'\r', '\n', 0};
  text = text.substr(0, text.find_first_of(WideView(kEnds, std::size(kEnds))));
  for (;;) {
    const WideView inside = WithoutQuotes(Trim(text));
    if (inside.size() == text.size()) return WideText(text);
    text = inside;
  }
}

ProfileSection::ProfileSection(WideView lines) {
  while (!lines.empty()) {
    const size_t end = std::min(lines.find(WideChar{0}), lines.size());
    const WideView line = lines.substr(0, end);
    lines.remove_prefix(std::min(end + 1, lines.size()));
    const size_t equals = line.find('=');
    if (equals == line.npos) continue;
    values_.emplace(UpperAscii(Trim(line.substr(0, equals))), WithoutQuotes(Trim(line.substr(equals + 1))));
  }
}

WideText ProfileSection::Text(WideView key) const {
  const auto found = values_.find(UpperAscii(key));
  return found == values_.end() ? WideText() : found->second;
}

int32_t ProfileSection::Number(WideView key, int32_t otherwise) const {
  const WideText text = Text(key);
  return text.empty() ? otherwise : static_cast<int32_t>(ReadNumber(Trim(text)));
}

}  // namespace veltra
