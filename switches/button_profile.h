// The actions of the side buttons on disk: a profile (ini) file with a section for each button.
#pragma once

#include "base/text.h"

namespace veltra {

// Fills the four records of the state from the profile at that full path. A section or key that is missing
// gives no action, 0 and an empty text. Without the file: volume up and down on the short presses, nothing on
// the long ones, and the texts stay as they are.
void LoadProfile(const WideText& path);

// Writes the four records. A name with a colon is a path; any other is a profile of the data folder, without
// its extension. Other sections of the file stay. A text that Windows' 8-bit code page cannot hold makes the
// file UTF-16. A failure leaves the file as it was, or the sections that were written before it; nobody is
// told.
void SaveProfile(const WideText& name);

// The profile in use, in the data folder.
WideText CurrentProfilePath();

}  // namespace veltra
