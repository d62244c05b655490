// Programs that the user's actions start.
#pragma once

#include "base/text.h"

namespace veltra {

// Opens the path through the shell, in the folder that the path names. On a 64-bit Windows the 32-bit tool
// sees the real system folder meanwhile.
void StartProgram(const WideText& path);

}  // namespace veltra
