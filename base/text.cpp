#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace veltra {
namespace {

struct Conversion {
  bool zeroFilled = false;
  size_t width = 0;
  WideChar kind = 0;
  size_t length = 0;  // of its text in the format, the percent sign included
};

bool IsDigit(WideChar c) {
  return c >= '0' && c <= '9';
}

std::optional<Conversion> ReadConversion(WideView text) {
  constexpr size_t kWidestField = 64;
  Conversion conversion;
  size_t at = 1;
  if (at < text.size() && text[at] == '0') {
    conversion.zeroFilled = true;
    ++at;
  }
  while (at < text.size() && IsDigit(text[at]) && conversion.width <= kWidestField)
    conversion.width = conversion.width * 10 + static_cast<size_t>(text[at++] - '0');
  if (at >= text.size() || conversion.width > kWidestField) return std::nullopt;
  conversion.kind = text[at];
  conversion.length = at + 1;
  return conversion;
}

template <class Number>
std::string Digits(Number number, int base) {
  char buffer[24];
  const auto end = std::to_chars(std::begin(buffer), std::end(buffer), number, base).ptr;
  std::string digits(std::begin(buffer), end);
  std::transform(digits.begin(), digits.end(), digits.begin(), [](char c) { return UpperAscii(c); });
  return digits;
}

void AppendNumber(WideText& result, std::string digits, const Conversion& conversion) {
  const bool negative = digits.starts_with('-');
  if (negative && conversion.zeroFilled) {
    result.push_back('-');
    digits.erase(0, 1);
  }
  const size_t used = digits.size() + (negative && conversion.zeroFilled ? 1 : 0);
  if (used < conversion.width)
    result.append(conversion.width - used, static_cast<WideChar>(conversion.zeroFilled ? '0' : ' '));
  result += Widen(digits);
}

}  // namespace

WideText Widen(std::string_view text) {
  WideText wide;
  wide.reserve(text.size());
  for (const char c : text) wide.push_back(static_cast<WideChar>(static_cast<unsigned char>(c)));
  return wide;
}

char UpperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

WideText UpperAscii(WideView text) {
  WideText upper(text);
  for (WideChar& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<WideChar>(c - 'a' + 'A');
  return upper;
}

bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && StartsWithIgnoringAsciiCase(a, b);
}

bool StartsWithIgnoringAsciiCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() &&
         std::equal(prefix.begin(), prefix.end(), text.begin(),
                    [](char a, char b) { return UpperAscii(a) == UpperAscii(b); });
}

WideText FormatArguments(WideView format, std::initializer_list<FormatArgument> arguments) {
  WideText result;
  const FormatArgument* argument = arguments.begin();
  while (!format.empty()) {
    if (format.front() != '%') {
      result.push_back(format.front());
      format.remove_prefix(1);
      continue;
    }
    const std::optional<Conversion> conversion = ReadConversion(format);
    const size_t length = conversion ? conversion->length : 1;
    if (conversion && conversion->kind == '%') {
      result.push_back('%');
    } else if (!conversion || argument == arguments.end()) {
      result += format.substr(0, length);
    } else {
      switch (conversion->kind) {
        case 'd':
          AppendNumber(result, Digits((argument++)->SignedValue(), 10), *conversion);
          break;
        case 'u':
          AppendNumber(result, Digits((argument++)->Bits(), 10), *conversion);
          break;
        case 'X':
          AppendNumber(result, Digits((argument++)->Bits(), 16), *conversion);
          break;
        case 'c':
          result.push_back(static_cast<WideChar>((argument++)->Bits()));
          break;
        case 's':
          result += (argument++)->Text();
          break;
        default:
          result += format.substr(0, length);
          break;
      }
    }
    format.remove_prefix(length);
  }
  return result;
}

}  // namespace veltra
