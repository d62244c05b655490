// UTF-16, UTF-8, and names that Windows compares without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace pal {

// A surrogate without its partner becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);

struct DecodedText {
  std::u16string text;
  bool valid = true;  // false: something in the bytes was no UTF-8 and stands in the text as U+FFFD
};
DecodedText DecodeUtf8(std::string_view bytes);

// As file names, registry and resources are compared: one unit for one.
std::u16string FoldCase(std::u16string_view text);
bool EqualFolded(std::u16string_view a, std::u16string_view b);

}  // namespace pal
