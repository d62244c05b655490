#include "app/dialogs/options_rows.h"

#include <windows.h>

#include <algorithm>

#include "app/app_state.h"
#include "app/dialogs/control_names.h"
#include "app/dialogs/dialog_items.h"
#include "app/dialogs/file_box.h"
#include "base/profile_section.h"
#include "resources/resource_ids.h"
#include "switches/button_action.h"
#include "switches/button_profile.h"
#include "switches/function_tables.h"
#include "switches/macro_plugin.h"
#include "system/language.h"

namespace veltra {
namespace {

// ---- what each action needs -------------------------------------------------------------------------------

enum class Parameter { kNone, kText, kCell, kValue };

struct ActionKind {
  ActionType type;
  UINT name;  // 0: not offered
  Parameter parameter;
  const WCHAR* table;  // of the values
};

// In the order of the list.
constexpr ActionKind kActionKinds[] = {
    {ActionType::None, IDS_ACTION_NONE, Parameter::kNone, nullptr},
    {ActionType::SendMacro, IDS_ACTION_SEND_MACRO, Parameter::kText, nullptr},
    {ActionType::SendKey, IDS_ACTION_SEND_KEY, Parameter::kValue, kVirtualKeysTable},
    {ActionType::PlayWaveFile, IDS_ACTION_PLAY_WAVE_FILE, Parameter::kText, nullptr},
    {ActionType::StartProgram, IDS_ACTION_START_PROGRAM, Parameter::kText, nullptr},
    {ActionType::WindowsFunction, IDS_ACTION_WINDOWS_FUNCTION, Parameter::kValue, kWindowsFunctionsTable},
    {ActionType::TalkBuilderCommand, IDS_ACTION_TALK_BUILDER, Parameter::kValue, kTalkBuilderTable},
    {ActionType::TalkBuilderCell, IDS_ACTION_TALK_BUILDER_CELL, Parameter::kCell, nullptr},
    {ActionType::PageVoiceCommand, IDS_ACTION_PAGE_VOICE, Parameter::kValue, kPageVoiceTable},
    {ActionType::WendleCommand, IDS_ACTION_WENDLE, Parameter::kValue, kWendleTable},
    {ActionType::LexoraCommand, 0, Parameter::kValue, kLexoraTable},
};
constexpr ActionKind kUnknownKind = {ActionType::None, 0, Parameter::kValue, nullptr};

const ActionKind& KindOf(int32_t type) {
  const auto* kind = std::ranges::find(kActionKinds, static_cast<ActionType>(type), &ActionKind::type);
  return kind == std::end(kActionKinds) ? kUnknownKind : *kind;
}

// ---- the controls of a row --------------------------------------------------------------------------------

struct RowControl {
  int first;  // of row 0
  Parameter shownFor;
};
constexpr RowControl kParameterControls[] = {
    {IDO_ROW_TEXT_0, Parameter::kText},       {IDO_ROW_BROWSE_0, Parameter::kText},
    {IDO_ROW_VALUE_0, Parameter::kValue},     {IDO_ROW_CELL_0, Parameter::kCell},
    {IDO_ROW_CELL_LABEL_0, Parameter::kCell},
};

int TypeList(int row) {
  return IDO_ROW_TYPE_0 + row;
}
int ValueList(int row) {
  return IDO_ROW_VALUE_0 + row;
}
// The edit that holds the text of such an action.
int TextEdit(Parameter parameter, int row) {
  return (parameter == Parameter::kCell ? IDO_ROW_CELL_0 : IDO_ROW_TEXT_0) + row;
}

bool HasText(const ActionKind& kind) {
  return kind.parameter == Parameter::kText || kind.parameter == Parameter::kCell;
}

void ShowParamControls(HWND dialog, int row, const ActionKind& kind) {
  for (const RowControl& control : kParameterControls)
    ShowItem(dialog, control.first + row, control.shownFor == kind.parameter);
  if (kind.parameter != Parameter::kValue) return;
  SendDlgItemMessageW(dialog, ValueList(row), CB_RESETCONTENT, 0, 0);
  if (!kind.table) return;
  for (const FunctionEntry& entry : LoadFunctionTable(kind.table))
    AddListEntry(dialog, ValueList(row), entry.name, entry.value);
}

void InitRow(HWND dialog, int row, const ButtonAction& action) {
  for (const ActionKind& kind : kActionKinds)
    if (kind.name)
      AddListEntry(dialog, TypeList(row), LoadResString(kind.name), static_cast<int32_t>(kind.type));
  for (const int edit : {IDO_ROW_TEXT_0, IDO_ROW_CELL_0})
    SendDlgItemMessageW(dialog, edit + row, EM_LIMITTEXT, kLongestButtonText, 0);

  SelectListValue(dialog, TypeList(row), action.BtCmd);
  const ActionKind& kind = KindOf(action.BtCmd);
  ShowParamControls(dialog, row, kind);
  if (HasText(kind))
    SetItemText(dialog, TextEdit(kind.parameter, row), action.BtCmdText);
  else
    SelectListValue(dialog, ValueList(row), action.BtCmdVal);
}

// What the row says now. Where it says nothing the action stays as it was; but a value belongs to its type.
ButtonAction ActionOf(HWND dialog, int row, const ButtonAction& before) {
  constexpr int32_t kNoValue = -1;
  ButtonAction action;
  action.BtCmd = SelectedListValue(dialog, TypeList(row)).value_or(before.BtCmd);
  action.BtCmdVal = kNoValue;
  const ActionKind& kind = KindOf(action.BtCmd);
  if (HasText(kind)) {
    action.BtCmdText = AsStored(GetItemText(dialog, TextEdit(kind.parameter, row), kLongestStoredText));
    return action;
  }
  if (kind.parameter == Parameter::kNone) return action;
  const int32_t old = action.BtCmd == before.BtCmd ? before.BtCmdVal : kNoValue;
  action.BtCmdVal = SelectedListValue(dialog, ValueList(row)).value_or(old);
  return action;
}

// ---- choosing a file --------------------------------------------------------------------------------------

struct FileFilter {
  UINT name;  // 0: none
  const WCHAR* pattern;
};
struct BrowsedKind {
  ActionType type;
  FileFilter filters[2];
  const WCHAR* extension;
};
constexpr BrowsedKind kBrowsedKinds[] = {
    {ActionType::PlayWaveFile, {{IDS_FILTER_WAVE_FILES, TEXT("*.wav")}, {}}, TEXT("wav")},
    {ActionType::StartProgram,
     {{IDS_FILTER_PROGRAMS, TEXT("*.exe")}, {IDS_FILTER_ALL_FILES, TEXT("*.*")}},
     TEXT("exe")},
};

// Names and patterns, each after a zero; the last one's own ends the list.
WideText FilterList(const BrowsedKind& kind) {
  WideText list;
  for (const FileFilter& filter : kind.filters) {
    if (!filter.name) continue;
    list += LoadResString(filter.name);
    list += WideChar{0};
    list += filter.pattern;
    list += WideChar{0};
  }
  return list;
}

// Empty when the user gave up.
std::optional<WideText> ChooseFile(HWND dialog, const BrowsedKind& kind, const WideText& begin) {
  WCHAR path[MAX_PATH] = {};
  if (begin.size() < std::size(path)) std::ranges::copy(begin, path);
  const WideText filters = FilterList(kind);
  OPENFILENAMEW box = {};
  box.lStructSize = sizeof(box);
  box.hwndOwner = dialog;
  box.lpstrFilter = filters.c_str();
  box.lpstrDefExt = kind.extension;
  box.lpstrFile = path;
  box.nMaxFile = static_cast<DWORD>(std::size(path));
  box.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;
  if (!AskForFile(box)) return std::nullopt;
  return WideText(path);
}

}  // namespace

void InitButtonRows(HWND dialog) {
  LoadProfile(CurrentProfilePath());
  for (int row = 0; row < kOptionsRows; ++row)
    InitRow(dialog, row, Switches().buttonActions[static_cast<size_t>(row)]);
}

void OnActionTypeChange(HWND dialog, int row) {
  constexpr int32_t kNoType = -1;
  const ActionKind& kind = KindOf(SelectedListValue(dialog, TypeList(row)).value_or(kNoType));
  ShowParamControls(dialog, row, kind);
  if (HasText(kind)) SetItemText(dialog, TextEdit(kind.parameter, row), {});
  NameControls(dialog);
}

void OnRowBrowse(HWND dialog, int row) {
  const int edit = TextEdit(Parameter::kText, row);
  const WideText text = GetItemText(dialog, edit, kLongestStoredText);
  const std::optional<int32_t> type = SelectedListValue(dialog, TypeList(row));
  const auto* file =
      std::ranges::find(kBrowsedKinds, static_cast<ActionType>(type.value_or(0)), &BrowsedKind::type);
  const std::optional<WideText> chosen =
      file != std::end(kBrowsedKinds) ? ChooseFile(dialog, *file, text) : ComposeMacro(dialog, text);
  if (chosen) SetItemText(dialog, edit, *chosen);
}

void CollectButtonRows(HWND dialog) {
  ButtonActions& actions = Switches().buttonActions;
  for (int row = 0; row < kOptionsRows; ++row) {
    ButtonAction& action = actions[static_cast<size_t>(row)];
    action = ActionOf(dialog, row, action);
  }
  SaveProfile(CurrentProfilePath());
}

}  // namespace veltra
