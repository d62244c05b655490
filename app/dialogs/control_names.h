// What screen readers call the controls whose own text, or the label before them, does not say what they are.
#pragma once

#include <windows.h>

namespace veltra {

// Names the controls of the dialog by the texts that it shows now. Does nothing where Windows cannot.
void NameControls(HWND dialog);

// Before its controls go.
void ForgetControlNames(HWND dialog);

}  // namespace veltra
