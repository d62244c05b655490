// The named values of an action, in the language of the user: tables in an ini file beside the program.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "base/text.h"

namespace veltra {

struct FunctionEntry {
  int32_t value = 0;
  WideText name;  // at most 126 characters
};

// Sections of the file, one table each.
constexpr const WCHAR* kVirtualKeysTable = TEXT("VirtualKeys");
constexpr const WCHAR* kWindowsFunctionsTable = TEXT("WindowsFunctions");
constexpr const WCHAR* kTalkBuilderTable = TEXT("TalkBuilder");
constexpr const WCHAR* kPageVoiceTable = TEXT("PageVoice");
constexpr const WCHAR* kWendleTable = TEXT("Wendle");
constexpr const WCHAR* kLexoraTable = TEXT("Lexora");

// Reads the table, at every call, from the file of the current language, in its order. Entries without a
// value or a name are left out; without the file or the section the table is empty.
std::vector<FunctionEntry> LoadFunctionTable(const WCHAR* section);

}  // namespace veltra
