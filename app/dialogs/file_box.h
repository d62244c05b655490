// The box in which a person chooses a file.
#pragma once

#include <windows.h>

#include <commdlg.h>

namespace veltra {

// Shows it; when its text is no file name, again with none. Leaves the current directory as it was: a stick
// with the chosen file could not be ejected otherwise. False when the person chose nothing.
bool AskForFile(OPENFILENAMEW& box);

}  // namespace veltra
