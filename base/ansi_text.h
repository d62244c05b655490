// 8-bit text for neighbours that speak no UTF-16: in the thread's ANSI code page, or UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"

namespace veltra {

// Empty when Windows cannot convert the text. Characters that the code page lacks become its default
// character.
std::optional<std::string> ConvertToAnsi(WideView text);
// And back.
std::optional<WideText> ConvertFromAnsi(std::string_view text);

std::string ConvertToUtf8(WideView text);

}  // namespace veltra
