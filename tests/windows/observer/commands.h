// The observer's commands, as they arrive on standard input: words separated by tabs.
#pragma once

#include <string>

namespace observer {

// Carries the command out and reports "=" with its result, or "!" with what went wrong.
void RunCommand(const std::string& line);

}  // namespace observer
