// The dialog in which the user edits a macro.
#pragma once

#include <windows.h>

#include <optional>

#include "base/text.h"

namespace macro {

constexpr size_t kLongestMacro = 1022;  // characters that the tool's profile keeps

// Modal to `owner`. Empty when the user gave up. A macro with a mistake cannot be confirmed: its place is
// selected and what is wrong is said.
std::optional<veltra::WideText> EditMacro(HINSTANCE instance, HWND owner, veltra::WideView text);

}  // namespace macro
