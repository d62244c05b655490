// The maker's own applications, found by window class at the moment of use, and the messages that they
// understand.
#pragma once

#include <windows.h>

namespace veltra {

constexpr const WCHAR* kTalkBuilderClass = TEXT("Talk Builder");
constexpr const WCHAR* kTalkBuilder4Class = TEXT("Talk Builder 4 Class");
constexpr const WCHAR* kLexoraClass = TEXT("Lexora");

// To "Talk Builder" and "Lexora": wParam 0, lParam the letter of a switch event.
constexpr UINT kSwitchLetterMessage = WM_APP + 100;

}  // namespace veltra
