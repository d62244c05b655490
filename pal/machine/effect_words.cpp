#include "pal/machine/effect_words.h"

#include <cstdio>

#include "pal/text/unicode.h"

namespace pal {

std::string Hex(uint64_t number, int digits) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%0*llX", digits, static_cast<unsigned long long>(number));
  return text;
}

std::string HexBytes(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) text += (text.empty() ? "" : " ") + Hex(byte, 2).substr(2);
  return text;
}

std::string OneLine(std::u16string_view text) {
  while (text.ends_with(u'\r') || text.ends_with(u'\n')) text.remove_suffix(1);
  std::string line;
  for (const char c : ToUtf8(text)) {
    const auto byte = static_cast<uint8_t>(c);
    if (c == '\n')
      line += "\\n";
    else if (c == '\r')
      line += "\\r";
    else if (c == '\t')
      line += "\\t";
    else if (byte < 0x20 || byte == 0x7F)
      line += "\\x" + Hex(byte, 2).substr(2);
    else
      line.push_back(c);
  }
  return line;
}

std::string OneLine(std::string_view bytes) {
  std::u16string text;
  for (const char c : bytes) text.push_back(static_cast<uint8_t>(c));
  return OneLine(text);
}

std::u16string MenuLabel(std::u16string_view text) {
  std::u16string label;
  for (size_t i = 0; i < text.size() && text[i] != u'\t'; ++i) {
    if (text[i] == u'&' && i + 1 < text.size()) ++i;
    label.push_back(text[i]);
  }
  return label;
}

}  // namespace pal
