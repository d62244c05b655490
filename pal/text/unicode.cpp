#include "pal/text/unicode.h"

#include <wctype.h>

#include <algorithm>
#include <cstdint>
#include <locale>

namespace pal {
namespace {

using Converter = std::codecvt<char16_t, char8_t, std::mbstate_t>;

const Converter& TheConverter() {
  return std::use_facet<Converter>(std::locale::classic());
}

bool IsTail(char8_t byte) {
  return (byte & 0xC0) == 0x80;
}

char16_t UpperCase(char16_t unit) {
  static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return static_cast<char16_t>(towupper_l(unit, unicode));
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
  std::u8string bytes;
  std::u8string part(text.size() * 3, u8'\0');
  while (!text.empty()) {
    std::mbstate_t state{};
    const char16_t* read = nullptr;
    char8_t* written = nullptr;
    TheConverter().out(state, text.data(), text.data() + text.size(), read, part.data(),
                       part.data() + part.size(), written);
    bytes.append(part.data(), written);
    text.remove_prefix(static_cast<size_t>(read - text.data()));
    if (text.empty()) break;
    bytes += u8"\uFFFD";
    text.remove_prefix(1);
  }
  return {bytes.begin(), bytes.end()};
}

DecodedText DecodeUtf8(std::string_view text) {
  DecodedText decoded;
  const std::u8string bytes(text.begin(), text.end());
  std::u16string part(bytes.size(), u'\0');
  for (const char8_t* at = bytes.data(); at != bytes.data() + bytes.size();) {
    std::mbstate_t state{};
    const char8_t* read = nullptr;
    char16_t* written = nullptr;
    const char8_t* end = bytes.data() + bytes.size();
    TheConverter().in(state, at, end, read, part.data(), part.data() + part.size(), written);
    decoded.text.append(part.data(), written);
    at = read;
    if (at == end) break;
    decoded.valid = false;
    decoded.text.push_back(u'\uFFFD');
    at = std::find_if_not(at + 1, end, IsTail);
  }
  // The library lets an encoded half of a surrogate pair pass.
  const std::string again = decoded.valid ? ToUtf8(decoded.text) : std::string(text);
  return again == text ? decoded : DecodedText{DecodeUtf8(again).text, false};
}

std::u16string FoldCase(std::u16string_view text) {
  std::u16string folded(text);
  std::ranges::transform(folded, folded.begin(), UpperCase);
  return folded;
}

bool EqualFolded(std::u16string_view a, std::u16string_view b) {
  return std::ranges::equal(a, b, {}, UpperCase, UpperCase);
}

}  // namespace pal
