// Ending Windows.
#pragma once

#include <windows.h>

namespace veltra {

// Gives the process the right to shut Windows down; false when it cannot have it.
bool EnableShutdownPrivilege();

// Powers the tablet off without asking other programs; true when Windows accepted that.
bool PowerOffSystem();

}  // namespace veltra
