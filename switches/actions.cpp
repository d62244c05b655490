#include "switches/actions.h"

#include <windows.h>

#include <mmsystem.h>

#include <algorithm>
#include <iterator>

#include "board/volume.h"
#include "switches/macro_plugin.h"
#include "switches/switch_state.h"
#include "system/folders.h"
#include "system/injected_input.h"
#include "system/maker_applications.h"
#include "system/numbers.h"
#include "system/start_program.h"

namespace veltra {
namespace {

void SendMacro(const ButtonAction& action) {
  RunMacro(action.BtCmdText);
}

void SendKey(const ButtonAction& action) {
  constexpr int32_t kNoneChosen = -1;
  if (action.BtCmdVal == kNoneChosen) return;
  const int32_t virtualKey = action.BtCmdVal & 0xFF;
  InjectKey(virtualKey, true);
  InjectKey(virtualKey, false);
}

// "\\server\..." or "C:\...". A single leading backslash makes no full path here.
bool IsFullPath(WideView path) {
  if (path.starts_with(TEXT("\\\\"))) return true;
  return path.size() >= 3 && path[1] == ':' && path[2] == '\\';
}

void PlayWaveFile(const ButtonAction& action) {
  const WideText& path = action.BtCmdText;
  if (path.empty()) return;
  const WideText whole = IsFullPath(path) ? path : ModuleDirectory() + path;
  PlaySoundW(whole.c_str(), nullptr, SND_FILENAME | SND_ASYNC);
}

void StartUserProgram(const ButtonAction& action) {
  if (!action.BtCmdText.empty()) StartProgram(action.BtCmdText);
}

void PerformWindowsFunction(const ButtonAction& action) {
  StepSpeakerVolume(action.BtCmdVal);
}

void SendTalkBuilderCommand(const ButtonAction& action) {
  const int32_t command = action.BtCmdVal;
  SendToTalkBuilder(kTalkBuilderCommandTag, &command, sizeof(command));
}

void SendTalkBuilderCell(const ButtonAction& action) {
  const WideText& id = action.BtCmdText;
  SendToTalkBuilder(kTalkBuilderCellTag, id.data(), id.size() * sizeof(WCHAR));
}

void SendPageVoiceCommand(const ButtonAction& action) {
  SendCommand(kPageVoiceClass, kPageVoiceCommandMessage, action.BtCmdVal);
}

void SendWendleCommand(const ButtonAction& action) {
  SendCommand(kWendleClass, kWendleCommandMessage, action.BtCmdVal);
}

struct ActionRow {
  ActionType type;
  void (*perform)(const ButtonAction& action);
};

// What is not here does nothing: LexoraCommand, None, and any number that is no action.
constexpr ActionRow kActionRows[] = {
    {ActionType::SendMacro, SendMacro},
    {ActionType::SendKey, SendKey},
    {ActionType::PlayWaveFile, PlayWaveFile},
    {ActionType::StartProgram, StartUserProgram},
    {ActionType::WindowsFunction, PerformWindowsFunction},
    {ActionType::TalkBuilderCommand, SendTalkBuilderCommand},
    {ActionType::PageVoiceCommand, SendPageVoiceCommand},
    {ActionType::WendleCommand, SendWendleCommand},
    {ActionType::TalkBuilderCell, SendTalkBuilderCell},
};

}  // namespace

void ExecuteButtonAction(size_t index) {
  // A copy: while an application handles its message, the options dialog may load the profile again.
  const ButtonAction action = Switches().buttonActions.at(index);
  PlaySoundW(nullptr, nullptr, 0);
  const auto* row = std::ranges::find(kActionRows, static_cast<ActionType>(action.BtCmd), &ActionRow::type);
  if (row != std::end(kActionRows)) row->perform(action);
}

}  // namespace veltra
