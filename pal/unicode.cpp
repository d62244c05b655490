#include "pal/unicode.h"

#include <algorithm>
#include <cstdint>

namespace pal {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

void AppendUtf8(std::string& bytes, char32_t point) {
  const auto add = [&bytes](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
  const auto tail = [&](int shift) { add(0x80 | (point >> shift & 0x3F)); };
  if (point < 0x80) {
    add(point);
  } else if (point < 0x800) {
    add(0xC0 | point >> 6);
    tail(0);
  } else if (point < 0x10000) {
    add(0xE0 | point >> 12);
    tail(6);
    tail(0);
  } else {
    add(0xF0 | point >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

void AppendUtf16(std::u16string& text, char32_t point) {
  if (point < 0x10000) {
    text.push_back(static_cast<char16_t>(point));
    return;
  }
  text.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
}

// What a lead byte promises: how many bytes follow, and the range of the first of them (which keeps out
// overlong forms, surrogates and what lies beyond Unicode).
struct Lead {
  int tails;
  uint8_t low;
  uint8_t high;
};

Lead ReadLead(uint8_t byte) {
  if (byte < 0xC2 || byte > 0xF4) return {0, 0, 0};
  if (byte < 0xE0) return {1, 0x80, 0xBF};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte < 0xF0) return {2, 0x80, 0xBF};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {3, 0x80, 0xBF};
}

char16_t UpperCase(char16_t unit) {
  const auto shifted = [unit](int by) { return static_cast<char16_t>(unit + by); };
  const auto within = [unit](char16_t first, char16_t last) { return unit >= first && unit <= last; };
  if (within(u'a', u'z')) return shifted(-0x20);
  if (unit < 0xE0) return unit;
  if (within(0xE0, 0xFE)) return unit == 0xF7 ? unit : shifted(-0x20);
  if (unit == 0xFF) return 0x178;
  // Pairs of one upper and one lower letter each, in rows that begin at an even or an odd number.
  if (within(0x100, 0x12F) || within(0x132, 0x137) || within(0x14A, 0x177)) return shifted(-(unit & 1));
  if (within(0x139, 0x148) || within(0x179, 0x17E)) return shifted(-(~unit & 1));
  if (within(0x3B1, 0x3C9) && unit != 0x3C2) return shifted(-0x20);
  if (within(0x430, 0x44F)) return shifted(-0x20);
  if (within(0x450, 0x45F)) return shifted(-0x50);
  return unit;
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (size_t at = 0; at < text.size(); ++at) {
    const char32_t unit = text[at];
    if (IsHighSurrogate(unit) && at + 1 < text.size() && IsLowSurrogate(text[at + 1])) {
      AppendUtf8(bytes, 0x10000 + ((unit - 0xD800) << 10) + (text[at + 1] - 0xDC00U));
      ++at;
    } else {
      AppendUtf8(bytes, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit);
    }
  }
  return bytes;
}

DecodedText DecodeUtf8(std::string_view bytes) {
  DecodedText decoded;
  decoded.text.reserve(bytes.size());
  size_t at = 0;
  while (at < bytes.size()) {
    const auto first = static_cast<uint8_t>(bytes[at++]);
    if (first < 0x80) {
      decoded.text.push_back(first);
      continue;
    }
    const Lead lead = ReadLead(first);
    char32_t point = first & (0x3F >> lead.tails);
    int tails = 0;
    while (tails < lead.tails && at < bytes.size()) {
      const auto byte = static_cast<uint8_t>(bytes[at]);
      const uint8_t low = tails == 0 ? lead.low : 0x80;
      const uint8_t high = tails == 0 ? lead.high : 0xBF;
      if (byte < low || byte > high) break;
      point = point << 6 | (byte & 0x3F);
      ++tails;
      ++at;
    }
    const bool complete = lead.tails > 0 && tails == lead.tails;
    decoded.valid = decoded.valid && complete;
    AppendUtf16(decoded.text, complete ? point : kReplacement);
  }
  return decoded;
}

std::u16string FoldCase(std::u16string_view text) {
  std::u16string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), UpperCase);
  return folded;
}

bool EqualFolded(std::u16string_view a, std::u16string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return UpperCase(x) == UpperCase(y); });
}

}  // namespace pal
