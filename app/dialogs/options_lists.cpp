#include "app/dialogs/options_lists.h"

#include "app/app_state.h"
#include "app/device_operations.h"
#include "app/dialogs/dialog_items.h"
#include "resources/resource_ids.h"
#include "switches/function_tables.h"
#include "switches/switch_outputs.h"
#include "system/language.h"

namespace veltra {
namespace {

constexpr int32_t kStartNever = 0;
constexpr int32_t kStartAtOnce = 10;  // ms
constexpr int32_t kMostStartSeconds = 9;
constexpr int32_t kMsPerSecond = 1000;

constexpr int32_t kMiddleDisabled = 0;
constexpr int32_t kMiddleClicksAndEscapes = 1;

struct SwitchList {
  int id;
  int32_t SwitchesState::*command;
};
constexpr SwitchList kSwitchLists[] = {{IDO_SWITCH_1, &SwitchesState::Sw1CmdVal},
                                       {IDO_SWITCH_2, &SwitchesState::Sw2CmdVal}};

void AddText(HWND dialog, int id, UINT text, int32_t value) {
  AddListEntry(dialog, id, LoadResString(text), value);
}

void FillStartList(HWND dialog) {
  const int id = IDO_SWITCH_1_STARTS;
  AddText(dialog, id, IDS_START_NEVER, kStartNever);
  AddText(dialog, id, IDS_START_IMMEDIATELY, kStartAtOnce);
  const WideText after = LoadResString(IDS_START_AFTER_SECONDS);
  for (int32_t seconds = 1; seconds <= kMostStartSeconds; ++seconds)
    AddListEntry(dialog, id, FormatText(after, seconds), seconds * kMsPerSecond);
}

void FillSwitchList(HWND dialog, int id, const std::vector<FunctionEntry>& keys) {
  AddText(dialog, id, IDS_SWITCH_NORMAL, kSwitchNormal);
  AddText(dialog, id, IDS_SWITCH_LEFT_CLICK, kSwitchLeftClick);
  AddText(dialog, id, IDS_SWITCH_RIGHT_CLICK, kSwitchRightClick);
  if (Switches().VJoyAcquired) {
    const WideText button = LoadResString(IDS_JOYSTICK_BUTTON);
    for (int32_t value = kSwitchFirstJoystickButton; value <= kSwitchLastJoystickButton; ++value)
      AddListEntry(dialog, id, FormatText(button, value - kSwitchFirstJoystickButton + 1), value);
  }
  for (const FunctionEntry& key : keys) AddListEntry(dialog, id, key.name, key.value);
}

void StoreSwitchCommands(HWND dialog) {
  for (const SwitchList& list : kSwitchLists) {
    const std::optional<int32_t> command = SelectedListValue(dialog, list.id);
    if (!command || *command == Switches().*list.command) continue;
    ReleaseHeldOutputs();
    Switches().*list.command = *command;
  }
}

}  // namespace

void InitSwitchLists(HWND dialog) {
  FillStartList(dialog);
  if (!SelectListValue(dialog, IDO_SWITCH_1_STARTS, Switches().Sw1Start))
    SelectListValue(dialog, IDO_SWITCH_1_STARTS, kStartNever);

  const std::vector<FunctionEntry> keys = LoadFunctionTable(kVirtualKeysTable);
  for (const SwitchList& list : kSwitchLists) {
    FillSwitchList(dialog, list.id, keys);
    SelectListValue(dialog, list.id, Switches().*list.command);
  }

  AddText(dialog, IDO_MIDDLE, IDS_MIDDLE_DISABLED, kMiddleDisabled);
  AddText(dialog, IDO_MIDDLE, IDS_MIDDLE_CLICK_AND_ESCAPE, kMiddleClicksAndEscapes);
  SelectListValue(dialog, IDO_MIDDLE, Switches().AllowEscape ? kMiddleClicksAndEscapes : kMiddleDisabled);
}

void StoreSwitchLists(HWND dialog) {
  if (const std::optional<int32_t> start = SelectedListValue(dialog, IDO_SWITCH_1_STARTS)) {
    DeviceOperation(*start, kStartWithSwitch);
    Switches().Sw1Start = *start;
  }
  Switches().AllowEscape = SelectedListValue(dialog, IDO_MIDDLE) == kMiddleClicksAndEscapes;
  StoreSwitchCommands(dialog);
}

}  // namespace veltra
