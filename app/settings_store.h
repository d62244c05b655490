// The user's and the machine's settings in the registry.
#pragma once

#include <windows.h>

namespace veltra {

// Reads the settings, applies the language and writes all saved values back. A value that is missing, or not
// 4 bytes long, leaves its setting as it was.
void LoadSettings();

// Writes the saved values; returns the registry's error code, 0 on success.
LONG SaveSettings();

// Stores the language, applies it to the thread and saves the settings.
void SetLanguage(LANGID language);

}  // namespace veltra
