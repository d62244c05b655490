// The language of the user interface.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// Sets the user-interface language of the calling thread.
void ApplyUiLanguage(LANGID language);

// The display name of the current language; "english" when it is none of the list.
WideText GetCurrentLanguageName();

// The data of a resource in the current language, in its neutral form, or in English; empty when there is
// none.
Bytes FindLocalResource(const WCHAR* type, const WCHAR* name);
Bytes FindLocalResource(const WCHAR* type, WORD id);

// The string of the program's resources in the current language, in its neutral form, or in English; at most
// 254 characters. Empty when there is none.
WideText LoadResString(UINT id);

}  // namespace veltra
