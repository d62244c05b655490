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

// To "Talk Builder" and "Lexora": wParam 0, lParam the letter of a switch event.
constexpr UINT kSwitchLetterMessage = WM_APP + 100;

// To "PageVoice" and "Wendle": wParam the number of the command.
constexpr UINT kPageVoiceCommandMessage = WM_APP + 91;
constexpr UINT kWendleCommandMessage = WM_APP + 73;
void SendCommand(const WCHAR* windowClass, UINT message, int32_t command);

// Copied data to "Talk Builder 4 Class": a command's number in 32 bits, or the ID of a cell in UTF-16 without
// terminator.
constexpr ULONG_PTR kTalkBuilderCommandTag = 1703;
constexpr ULONG_PTR kTalkBuilderCellTag = 1704;
void SendToTalkBuilder(ULONG_PTR tag, const void* data, size_t size);

}  // namespace veltra
