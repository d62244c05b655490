#include "switches/button_profile.h"

#include <windows.h>

#include <algorithm>

#include "switches/profile_encoding.h"
#include "switches/switch_state.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr const WCHAR* kCommandKey = TEXT("BtCmd");
constexpr const WCHAR* kValueKey = TEXT("BtCmdVal");
constexpr const WCHAR* kTextKey = TEXT("BtCmdText");
constexpr DWORD kTextSize = kLongestStoredText + 1;

WideText SectionOf(size_t index) {
  return FormatText(TEXT("Button%d"), index + 1);
}

bool Exists(const WideText& path) {
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW(path.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return true;
}

void SetCommand(ButtonAction& action, ActionType type, int32_t value) {
  action.BtCmd = static_cast<int32_t>(type);
  action.BtCmdVal = value;
}

void SetDefaults(ButtonActions& actions) {
  constexpr int32_t kVolumeUp = 0;
  constexpr int32_t kVolumeDown = 1;
  SetCommand(actions[kTopShort], ActionType::WindowsFunction, kVolumeUp);
  SetCommand(actions[kBottomShort], ActionType::WindowsFunction, kVolumeDown);
  for (const ButtonIndex index : {kTopLong, kBottomLong})
    actions[index].BtCmd = static_cast<int32_t>(ActionType::None);
}

ButtonAction ReadAction(const WideText& section, const WideText& path) {
  const auto readNumber = [&](const WCHAR* key, INT otherwise) {
    return static_cast<int32_t>(GetPrivateProfileIntW(section.c_str(), key, otherwise, path.c_str()));
  };
  WCHAR text[kTextSize] = {};
  GetPrivateProfileStringW(section.c_str(), kTextKey, TEXT(""), text, kTextSize, path.c_str());
  return {readNumber(kCommandKey, static_cast<INT>(ActionType::None)), readNumber(kValueKey, 0), text};
}

// Three lines, each with a terminator, and one more at the end.
void WriteAction(const ButtonAction& action, const WideText& section, const WideText& path) {
  constexpr WCHAR kEnd = 0;
  const WideText body = FormatText(TEXT("BtCmd=%d%cBtCmdVal=%d%cBtCmdText=%s%c"), action.BtCmd, kEnd,
                                   action.BtCmdVal, kEnd, action.BtCmdText, kEnd);
  WritePrivateProfileSectionW(section.c_str(), body.c_str(), path.c_str());
}

WideText ProfilePath(const WideText& name) {
  if (name.find(':') != name.npos) return name;
  return DataFolder() + name + TEXT(".bpf");
}

}  // namespace

void LoadProfile(const WideText& path) {
  ButtonActions& actions = Switches().buttonActions;
  if (!Exists(path)) return SetDefaults(actions);
  for (size_t index = 0; index < actions.size(); ++index) actions[index] = ReadAction(SectionOf(index), path);
}

void SaveProfile(const WideText& name) {
  const ButtonActions& actions = Switches().buttonActions;
  const WideText path = ProfilePath(name);
  const auto fits = [](const ButtonAction& action) { return FitsCodePage(action.BtCmdText); };
  if (!std::ranges::all_of(actions, fits) && !MakeProfileUtf16(path)) return;
  for (size_t index = 0; index < actions.size(); ++index) WriteAction(actions[index], SectionOf(index), path);
}

WideText CurrentProfilePath() {
  return DataFolder() + TEXT("curprofile.bpf");
}

}  // namespace veltra
