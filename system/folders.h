// Where things lie: the program's own directory and the data folder.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// The fixed name of the tablet model: caption, balloon title, folder name.
WideText GetDeviceModelName();

// The directory of the program, with a trailing backslash; empty when Windows does not tell.
WideText ModuleDirectory();

// The data folder, with a trailing backslash, created when it was missing: the model's folder in the common
// documents, or beside the program when the shell has no such folder.
WideText GetDataFolder();

}  // namespace veltra
