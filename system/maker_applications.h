// The maker's own applications, found by window class at the moment of use, and the messages that they
// understand. They are not started, and no answer is expected of them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace veltra {

constexpr const WCHAR* kTalkBuilderClass = TEXT("Talk Builder");
constexpr const WCHAR* kTalkBuilder4Class = TEXT("Talk Builder 4 Class");
constexpr const WCHAR* kLexoraClass = TEXT("Lexora");
constexpr const WCHAR* kPageVoiceClass = TEXT("PageVoice");
constexpr const WCHAR* kWendleClass = TEXT("Wendle");

// The messages and tags are those of system/numbers.h. An application that hangs is waited for 5 s at most.
void SendCommand(const WCHAR* windowClass, UINT message, int32_t command);
void SendToTalkBuilder(ULONG_PTR tag, const void* data, size_t size);

}  // namespace veltra
