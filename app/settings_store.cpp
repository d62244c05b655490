#include "app/settings_store.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <variant>

#include "app/app_state.h"
#include "system/language.h"
#include "system/registry.h"

namespace veltra {
namespace {

constexpr const WCHAR* kKeyPath = TEXT("SOFTWARE\\Veltra\\Sarvik5");

using Field = std::variant<bool*, int32_t*, LANGID*>;

struct Setting {
  const WCHAR* name;
  bool saved;
  Field (*field)();
  void (*afterRead)() = nullptr;  // runs whether the value exists or not
};

// Stored Sw1CmdVal and Sw2CmdVal are read later and override these.
void ApplySwitchClicks() {
  if (!Switches().SwClicks) return;
  Switches().Sw1CmdVal = kSwitchLeftClick;
  Switches().Sw2CmdVal = kSwitchRightClick;
}

// Who cannot press at all for longer than that would take the switch for a broken one.
void LimitPressRules() {
  constexpr int32_t kLongestMs = 2000;
  for (int32_t* time : {&Switches().SwAcceptMs, &Switches().SwRepeatGuardMs})
    *time = std::clamp(*time, 0, kLongestMs);
}

// In the order of reading and of writing.
constexpr Setting kUserSettings[] = {
    {TEXT("BattLow"), true, []() -> Field { return &Power().battery.BattLow; }},
    {TEXT("BattCrit"), true, []() -> Field { return &Power().battery.BattCrit; }},
    {TEXT("BattLowPercentage"), true, []() -> Field { return &Power().battery.BattLowPercentage; }},
    {TEXT("BattCritPercentage"), true, []() -> Field { return &Power().battery.BattCritPercentage; }},
    {TEXT("SpeakerVol"), true, []() -> Field { return &Board().audio.SpeakerVol; }},
    {TEXT("MicrophoneVol"), true, []() -> Field { return &Board().audio.MicrophoneVol; }},
    {TEXT("Sw1Start"), true, []() -> Field { return &Switches().Sw1Start; }},
    {TEXT("SwClicks"), false, []() -> Field { return &Switches().SwClicks; }, ApplySwitchClicks},
    {TEXT("DisableUSBBack"), true, []() -> Field { return &Power().DisableUSBBack; }},
    {TEXT("DisableUSBBottom"), true, []() -> Field { return &Power().DisableUSBBottom; }},
    {TEXT("EnableFlightMode"), true, []() -> Field { return &Power().EnableFlightMode; }},
    {TEXT("EnableWLAN"), true, []() -> Field { return &Power().EnableWLAN; }},
    {TEXT("EnableBluetooth"), true, []() -> Field { return &Power().EnableBluetooth; }},
    {TEXT("EnableMobilePhone"), true, []() -> Field { return &Power().EnableMobilePhone; }},
    {TEXT("Sw1CmdVal"), true, []() -> Field { return &Switches().Sw1CmdVal; }},
    {TEXT("Sw2CmdVal"), true, []() -> Field { return &Switches().Sw2CmdVal; }},
    {TEXT("TB4RevSw"), false, []() -> Field { return &Switches().TB4RevSw; }},
    {TEXT("LexoraRevSw"), false, []() -> Field { return &Switches().LexoraRevSw; }},
    {TEXT("SwAcceptMs"), false, []() -> Field { return &Switches().SwAcceptMs; }, LimitPressRules},
    {TEXT("SwRepeatGuardMs"), false, []() -> Field { return &Switches().SwRepeatGuardMs; }, LimitPressRules},
    {TEXT("WakeupDelay"), true, []() -> Field { return &App().WakeupDelay; }},
    {TEXT("StartupDelay"), true, []() -> Field { return &App().StartupDelay; }},
    {TEXT("AllowEscape"), true, []() -> Field { return &Switches().AllowEscape; }},
    {TEXT("CurrentLangID"), true, []() -> Field { return &System().CurrentLangID; }},
};

constexpr Setting kMachineSettings[] = {
    {TEXT("PicPortNumber"), false, []() -> Field { return &Link().PicPortNumber; }},
};

void Store(Field field, DWORD number) {
  if (auto** flag = std::get_if<bool*>(&field)) **flag = number == 1;
  if (auto** value = std::get_if<int32_t*>(&field)) **value = static_cast<int32_t>(number);
  if (auto** language = std::get_if<LANGID*>(&field)) **language = static_cast<LANGID>(number);
}

DWORD NumberOf(Field field) {
  return std::visit([](const auto* value) { return static_cast<DWORD>(*value); }, field);
}

void ReadSettings(HKEY root, std::span<const Setting> settings) {
  const UniqueRegistryKey key = OpenRegistryKey(root, kKeyPath);
  if (!key) return;
  for (const Setting& setting : settings) {
    if (const std::optional<RegistryNumber> number = ReadRegistryNumber(key, setting.name))
      Store(setting.field(), number->value);
    if (setting.afterRead) setting.afterRead();
  }
}

}  // namespace

void LoadSettings() {
  ReadSettings(HKEY_CURRENT_USER, kUserSettings);
  ReadSettings(HKEY_LOCAL_MACHINE, kMachineSettings);
  ApplyUiLanguage(System().CurrentLangID);
  SaveSettings();
}

LONG SaveSettings() {
  HKEY key = nullptr;
  const LONG error = RegCreateKeyExW(HKEY_CURRENT_USER, kKeyPath, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_ALL_ACCESS, nullptr, &key, nullptr);
  if (error != ERROR_SUCCESS) return error;
  for (const Setting& setting : kUserSettings) {
    if (!setting.saved) continue;
    const DWORD number = NumberOf(setting.field());
    RegSetValueExW(key, setting.name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
  }
  return RegCloseKey(key);
}

void SetLanguage(LANGID language) {
  System().CurrentLangID = language;
  ApplyUiLanguage(language);
  SaveSettings();
}

}  // namespace veltra
