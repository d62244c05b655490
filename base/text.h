// Text as Windows has it: UTF-16 code units, wchar_t where that is 16 bits wide, char16_t elsewhere. This
// file needs no Windows header, so that pure cores can use it; WCHAR and TEXT("...") give the same types.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace veltra {

using WideChar = std::conditional_t<sizeof(wchar_t) == 2, wchar_t, char16_t>;
using WideText = std::basic_string<WideChar>;
using WideView = std::basic_string_view<WideChar>;
using Bytes = std::span<const uint8_t>;

// The bytes of an 8-bit text.
inline Bytes BytesOf(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}
// The 8-bit text that the bytes hold.
inline std::string_view TextOf(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// One character for each byte, as the controller's texts become wide texts (no code page).
WideText Widen(std::string_view text);

// Case of the ASCII letters only, whatever the user's language.
char UpperAscii(char c);
WideText UpperAscii(WideView text);
bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b);
bool StartsWithIgnoringAsciiCase(std::string_view text, std::string_view prefix);

// One argument of FormatText.
class FormatArgument {
 public:
  template <class Number>
  requires std::is_integral_v<Number> FormatArgument(Number number)
      : signedValue_(static_cast<int64_t>(number)),
        bits_(static_cast<uint64_t>(static_cast<std::make_unsigned_t<Number>>(number))) {}
  FormatArgument(WideView text) : text_(text) {}
  FormatArgument(const WideText& text) : text_(text) {}
  FormatArgument(const WideChar* text) : text_(text) {}

  [[nodiscard]] int64_t SignedValue() const { return signedValue_; }
  [[nodiscard]] uint64_t Bits() const { return bits_; }  // two's complement in the width of the argument
  [[nodiscard]] WideView Text() const { return text_; }

 private:
  int64_t signedValue_ = 0;
  uint64_t bits_ = 0;
  WideView text_;
};

// The formats that the system's texts use: %d %u %X %c %s %%, with a width and a leading 0 before a number.
// What is no such format, or has no argument left, stands in the result as it is written.
WideText FormatArguments(WideView format, std::initializer_list<FormatArgument> arguments);

template <class... Arguments>
WideText FormatText(WideView format, const Arguments&... arguments) {
  return FormatArguments(format, {FormatArgument(arguments)...});
}

}  // namespace veltra
