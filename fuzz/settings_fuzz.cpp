// Any settings, command line, profile and function table, before the tool starts and while it runs.
#include "fuzz/tablet_for_fuzzing.h"

namespace {

using fuzz::Input;
using fuzz::Tablet;

constexpr const char16_t* kNames[] = {
    u"BattLow",       u"BattCrit",        u"BattLowPercentage", u"BattCritPercentage", u"SpeakerVol",
    u"MicrophoneVol", u"Sw1Start",        u"SwClicks",          u"DisableUSBBack",     u"DisableUSBBottom",
    u"EnableWLAN",    u"EnableBluetooth", u"EnableMobilePhone", u"EnableFlightMode",   u"Sw1CmdVal",
    u"Sw2CmdVal",     u"TB4RevSw",        u"LexoraRevSw",       u"WakeupDelay",        u"StartupDelay",
    u"AllowEscape",   u"CurrentLangID",   u"PicPortNumber",     u"SwAcceptMs",         u"SwRepeatGuardMs",
};

void SetNumber(Tablet& tablet, Input& input) {
  const char16_t* name = input.Choice(kNames);
  tablet.Machine().registry.SetDword(HKEY_CURRENT_USER, Tablet::kUserKey, name,
                                     static_cast<uint32_t>(input.Number(4)));
}

void SetAnything(Tablet& tablet, Input& input) {
  constexpr DWORD kTypes[] = {REG_DWORD, REG_SZ, REG_NONE};
  const HKEY root = input.Byte() % 2 ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
  const char16_t* name = input.Choice(kNames);
  const DWORD type = input.Choice(kTypes);
  tablet.Machine().registry.Set(root, Tablet::kUserKey, name, type, input.Piece());
}

void WriteFile(Tablet& tablet, Input& input) {
  constexpr std::u16string_view kFiles[] = {
      Tablet::kProfileFile,
      u"C:\\Program Files\\Veltra\\sarvikkey_English.ini",
      u"C:\\Users\\Public\\Documents\\Sarvik5\\logon.txt",
  };
  const std::u16string_view file = input.Choice(kFiles);
  tablet.Machine().disk.Write(file, fuzz::Narrow(input.Piece()));
}

void SetWindows(Tablet& tablet, Input& input) {
  tablet.Machine().system.version = {input.Byte(), input.Byte(), input.Byte()};
}

void StartAgain(Tablet& tablet, Input& input) {
  tablet.Machine().desktop.Post(tablet.MainWindow(), WM_CLOSE, 0, 0);
  tablet.Machine().clock.AdvanceUntil([&] { return tablet.Machine().ExitCode().has_value(); },
                                      std::chrono::seconds(60));
  if (tablet.Machine().ExitCode()) tablet.Start(fuzz::Wide(input.Piece()));
}

constexpr fuzz::Act kActs[] = {SetNumber, SetAnything, WriteFile, SetWindows, StartAgain};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Tablet tablet;
  tablet.Machine().boxes.automaticAnswer = IDOK;
  Input input(data, size);
  for (int settings = input.Byte() % 32; settings > 0; --settings) input.Choice(kActs)(tablet, input);
  tablet.Start(fuzz::Wide(input.Piece()));
  fuzz::Play(tablet, input, kActs);
  return 0;
}
