// Programs that the user's actions start.
#pragma once

#include "base/text.h"

namespace veltra {

// Whether this is a 32-bit program on a 64-bit Windows.
bool IsWow64();

// Opens the path through the shell, in the folder that the path names. A 32-bit tool on a 64-bit Windows
// means the real system folder, as the user does.
void StartProgram(const WideText& path);

}  // namespace veltra
