// The layer's way to fail loudly.
#pragma once

#include <string_view>

namespace pal {

// Writes "pal: <what>" to stderr and aborts. For calls and arguments that the layer does not know, and for
// misuse of the machine: a layer that pretends success would hide a fault of the program.
[[noreturn]] void Die(std::string_view what);

}  // namespace pal
