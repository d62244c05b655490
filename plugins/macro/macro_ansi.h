// Texts at the border of the plug-in: 8-bit, in the thread's ANSI code page.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "base/text.h"

namespace macro {

veltra::WideText FromAnsi(const char* text);
std::string ToAnsi(veltra::WideView text);
// The first character that the code page lacks; empty when it has them all.
std::optional<size_t> FindForeignCharacter(veltra::WideView text);

}  // namespace macro
