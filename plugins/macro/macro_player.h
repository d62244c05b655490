// Does a macro: keys and text go to the window that has the keyboard.
#pragma once

#include <vector>

#include "plugins/macro/macro_text.h"

namespace macro {

void Play(const std::vector<MacroStep>& steps);

}  // namespace macro
