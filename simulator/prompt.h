// Commands from a person on standard input, until the console has ended or the input has. On a terminal, and
// with libedit, the line can be edited: cursor keys, history, and the tabulator completes commands and names.
#pragma once

#include "simulator/console.h"

namespace simulator {

void RunPrompt(Console& console);

// Standard output is a terminal in colour, and NO_COLOR is not set.
bool TerminalHasColours();

}  // namespace simulator
