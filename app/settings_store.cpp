#include "app/settings_store.h"

#include <cstring>
#include <optional>
#include <variant>

#include "app/app_state.h"
#include "app/language.h"
#include "base/handles.h"

namespace veltra {
namespace {

constexpr const WCHAR* kKeyPath = TEXT("SOFTWARE\\Veltra\\Sarvik5");

using Field = std::variant<bool*, int32_t*, LANGID*>;

struct Setting {
  const WCHAR* name;
  bool saved;
  Field (*field)(AppState&);
  void (*afterRead)(AppState&) = nullptr;  // runs whether the value exists or not
};

// Stored Sw1CmdVal and Sw2CmdVal are read later and override these.
void ApplySwitchClicks(AppState& state) {
  if (!state.SwClicks) return;
  state.Sw1CmdVal = kSwitchLeftClick;
  state.Sw2CmdVal = kSwitchRightClick;
}

// In the order of reading and of writing.
constexpr Setting kUserSettings[] = {
    {TEXT("BattLow"), true, [](AppState& s) -> Field { return &s.battery.BattLow; }},
    {TEXT("BattCrit"), true, [](AppState& s) -> Field { return &s.battery.BattCrit; }},
    {TEXT("BattLowPercentage"), true, [](AppState& s) -> Field { return &s.battery.BattLowPercentage; }},
    {TEXT("BattCritPercentage"), true, [](AppState& s) -> Field { return &s.battery.BattCritPercentage; }},
    {TEXT("SpeakerVol"), true, [](AppState& s) -> Field { return &s.audio.SpeakerVol; }},
    {TEXT("MicrophoneVol"), true, [](AppState& s) -> Field { return &s.audio.MicrophoneVol; }},
    {TEXT("Sw1Start"), true, [](AppState& s) -> Field { return &s.Sw1Start; }},
    {TEXT("SwClicks"), false, [](AppState& s) -> Field { return &s.SwClicks; }, ApplySwitchClicks},
    {TEXT("DisableUSBBack"), true, [](AppState& s) -> Field { return &s.DisableUSBBack; }},
    {TEXT("DisableUSBBottom"), true, [](AppState& s) -> Field { return &s.DisableUSBBottom; }},
    {TEXT("EnableFlightMode"), true, [](AppState& s) -> Field { return &s.EnableFlightMode; }},
    {TEXT("EnableWLAN"), true, [](AppState& s) -> Field { return &s.EnableWLAN; }},
    {TEXT("EnableBluetooth"), true, [](AppState& s) -> Field { return &s.EnableBluetooth; }},
    {TEXT("EnableMobilePhone"), true, [](AppState& s) -> Field { return &s.EnableMobilePhone; }},
    {TEXT("Sw1CmdVal"), true, [](AppState& s) -> Field { return &s.Sw1CmdVal; }},
    {TEXT("Sw2CmdVal"), true, [](AppState& s) -> Field { return &s.Sw2CmdVal; }},
    {TEXT("TB4RevSw"), false, [](AppState& s) -> Field { return &s.TB4RevSw; }},
    {TEXT("LexoraRevSw"), false, [](AppState& s) -> Field { return &s.LexoraRevSw; }},
    {TEXT("WakeupDelay"), true, [](AppState& s) -> Field { return &s.WakeupDelay; }},
    {TEXT("StartupDelay"), true, [](AppState& s) -> Field { return &s.StartupDelay; }},
    {TEXT("AllowEscape"), true, [](AppState& s) -> Field { return &s.AllowEscape; }},
    {TEXT("CurrentLangID"), true, [](AppState& s) -> Field { return &s.CurrentLangID; }},
};

constexpr Setting kMachineSettings[] = {
    {TEXT("PicPortNumber"), false, [](AppState& s) -> Field { return &s.PicPortNumber; }},
};

std::optional<DWORD> ReadNumber(HKEY key, const WCHAR* name) {
  DWORD number = 0;
  DWORD size = sizeof(number);
  const LONG error = RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size);
  if (error != ERROR_SUCCESS || size != sizeof(number)) return std::nullopt;
  return number;
}

void Store(Field field, DWORD number) {
  if (auto** flag = std::get_if<bool*>(&field)) **flag = number == 1;
  if (auto** value = std::get_if<int32_t*>(&field)) **value = static_cast<int32_t>(number);
  if (auto** language = std::get_if<LANGID*>(&field)) **language = static_cast<LANGID>(number);
}

DWORD NumberOf(Field field) {
  return std::visit([](const auto* value) { return static_cast<DWORD>(*value); }, field);
}

void ReadSettings(HKEY root, std::span<const Setting> settings) {
  UniqueRegistryKey key;
  if (HKEY opened = nullptr; RegOpenKeyExW(root, kKeyPath, 0, KEY_READ, &opened) == ERROR_SUCCESS)
    key.Reset(opened);
  if (!key) return;
  AppState& state = GetAppState();
  for (const Setting& setting : settings) {
    if (const std::optional<DWORD> number = ReadNumber(key.Get(), setting.name))
      Store(setting.field(state), *number);
    if (setting.afterRead) setting.afterRead(state);
  }
}

}  // namespace

void LoadSettings() {
  ReadSettings(HKEY_CURRENT_USER, kUserSettings);
  ReadSettings(HKEY_LOCAL_MACHINE, kMachineSettings);
  ApplyUiLanguage(GetAppState().CurrentLangID);
  SaveSettings();
}

LONG SaveSettings() {
  HKEY key = nullptr;
  const LONG error = RegCreateKeyExW(HKEY_CURRENT_USER, kKeyPath, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_ALL_ACCESS, nullptr, &key, nullptr);
  if (error != ERROR_SUCCESS) return error;
  AppState& state = GetAppState();
  for (const Setting& setting : kUserSettings) {
    if (!setting.saved) continue;
    const DWORD number = NumberOf(setting.field(state));
    RegSetValueExW(key, setting.name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
  }
  return RegCloseKey(key);
}

}  // namespace veltra
