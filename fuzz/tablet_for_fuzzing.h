// A tablet of its own for every input, which is a row of acts: a byte chooses one, what it needs follows.
// Beside what a fuzzer is about it may choose what happens around the tool, so that requests are outstanding,
// updates under way and dialogs open. What ends the tool is survived: it is started again.
#pragma once

#include <cstdio>
#include <string>

#include "fuzz/input.h"
#include "pal/machine/person.h"
#include "resources/resource_ids.h"
#include "simulator/board.h"
#include "simulator/firmware_file.h"
#include "simulator/joystick.h"
#include "simulator/macro_plugin.h"
#include "simulator/tablet.h"
#include "simulator/world.h"

namespace fuzz {

using namespace std::chrono_literals;
using Tablet = simulator::SimulatedTablet;
using Act = void (*)(Tablet& tablet, Input& input);

// Says what the tool did last.
[[noreturn]] inline void Fail(Tablet& tablet, const char* what) {
  constexpr size_t kShown = 100;
  std::vector<std::string> lines;
  for (const pal::Effect& effect : tablet.Machine().Effects())
    if (!std::holds_alternative<pal::TimerSet>(effect.detail) &&
        !std::holds_alternative<pal::TimerKilled>(effect.detail))
      lines.push_back(std::to_string(effect.at.count()) + " us  " + pal::Describe(effect));
  for (const std::string& line : std::span(lines).last(std::min(kShown, lines.size())))
    std::fprintf(stderr, "%s\n", line.c_str());
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

inline std::u16string Wide(std::span<const uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

inline std::string Narrow(std::span<const uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

inline HWND Application(Tablet& tablet, Input& input) {
  return tablet.TheDesk().Open(input.Choice(simulator::kApplications));
}

// ---- what happens around the tool -----------------------------------------------------------------------------

inline void Wait(Tablet& tablet, Input& input) {
  constexpr std::chrono::milliseconds kSpans[] = {0ms, 1ms, 20ms, 100ms, 600ms, 2s, 6s, 31s};
  tablet.Advance(input.Choice(kSpans));
}

inline void SpoilLine(Tablet& tablet, Input& input) {
  const simulator::Fault fault = input.Choice(simulator::kFaultNames).fault;
  tablet.Pic().Arm(fault, input.Byte() + 1);
}

inline void SwitchController(Tablet& tablet, Input& input) {
  constexpr void (simulator::Controller::*kActs[])() = {&simulator::Controller::CutPower,
                                                        &simulator::Controller::RestorePower};
  (tablet.Pic().*input.Choice(kActs))();
}

// A request whose answer goes to that application.
inline void AskController(Tablet& tablet, Input& input) {
  const HWND sender = Application(tablet, input);
  tablet.SendData(sender, veltra::kFirstInfraredRequest, input.Piece());
}

inline void Update(Tablet& tablet, Input&) {
  simulator::FirmwareBytes bytes;
  simulator::AddFirmwareRow(bytes, simulator::ProgrammableRows().front(), 1);
  tablet.Machine().disk.Write(u"C:\\new.hex", simulator::HexText(bytes));
  tablet.SendUpdate(u"C:\\new.hex");
}

inline void ChangePower(Tablet& tablet, Input& input) {
  constexpr WPARAM kEvents[] = {PBT_APMSUSPEND, PBT_APMRESUMEAUTOMATIC};
  tablet.SendPowerEvent(input.Choice(kEvents));
}

inline void ChangePort(Tablet& tablet, Input& input) {
  constexpr Act kActs[] = {
      [](Tablet& t, Input&) { t.VanishPort(); },
      [](Tablet& t, Input&) { t.ReturnPort(); },
      [](Tablet& t, Input&) { t.NotifyPort(false, u"COM2"); },
      [](Tablet& t, Input&) { t.NotifyPort(true, u"COM2"); },
  };
  input.Choice(kActs)(tablet, input);
}

inline void ChangeDesk(Tablet& tablet, Input& input) {
  constexpr Act kActs[] = {
      [](Tablet& t, Input& i) { Application(t, i); },
      [](Tablet& t, Input& i) { t.TheDesk().Close(i.Choice(simulator::kApplications)); },
      [](Tablet& t, Input& i) { t.TheDesk().Remove(static_cast<simulator::Library>(i.Byte() % 5)); },
      [](Tablet& t, Input&) { t.Machine().tray.RestartShell(); },
      [](Tablet&, Input& i) {
        simulator::TheBoard().failures.push_back({{}, i.Byte(), i.Byte(), 5});
      },
      [](Tablet&, Input& i) { simulator::TheMacroEditor().answer = Narrow(i.Piece()); },
  };
  input.Choice(kActs)(tablet, input);
}

// What the menus send.
inline void Command(Tablet& tablet, Input& input) {
  constexpr WPARAM kCommands[] = {IDC_CLOSE,   IDC_OPEN_POWER_METER, IDC_BATTERY_INFO,
                                  IDC_OPTIONS, IDC_FIRST_LANGUAGE,   IDC_FIRST_LANGUAGE + 1};
  tablet.Machine().desktop.Post(tablet.MainWindow(), WM_COMMAND, input.Choice(kCommands), 0);
  tablet.Advance(0ms);
}

inline void AnswerBoxes(Tablet& tablet, Input& input) {
  constexpr int kAnswers[] = {IDOK, IDYES, IDNO};
  tablet.Machine().boxes.automaticAnswer = input.Choice(kAnswers);
}

inline void UseMenu(Tablet& tablet, Input& input) {
  tablet.Machine().tray.RightClick(input.Byte() % 2 ? 1977 : 1978);
  tablet.Advance(0ms);
  const auto menu = tablet.Machine().menus.Shown();
  if (!menu || menu->empty()) return;
  std::u16string label = input.Choice(*menu).text;
  std::erase(label, u'&');
  if (!tablet.Machine().menus.Choose(label)) tablet.Machine().menus.Dismiss();
}

inline void UseControl(const pal::ControlView& control, uint8_t how, Input& input) {
  constexpr int kKeys[] = {VK_RETURN, VK_ESCAPE, VK_TAB, VK_SPACE, VK_UP, VK_DOWN};
  if (!control.isVisible || !control.isEnabled) return pal::person::PressKey(kKeys[how % std::size(kKeys)]);
  if (control.windowClass == u"Button") pal::person::Press(control.id);
  if (control.windowClass == u"Static") pal::person::DoubleClick(control.id);
  if (control.windowClass == u"Edit") pal::person::Type(control.id, Wide(input.Piece()));
  if (!control.entries.empty())
    pal::person::Choose(control.id, control.entries[how % control.entries.size()].text);
  if (control.windowClass == u"msctls_trackbar32")
    pal::person::Drag(control.id, control.lowest + how % (control.highest - control.lowest + 1));
}

// A control of the dialog in front, or a key; while the tool is busy nothing, for the control may be gone
// then.
inline void UseDialog(Tablet& tablet, Input& input) {
  const auto dialog = pal::person::FrontDialog();
  if (!dialog || dialog->controls.empty() || tablet.Machine().QueuedMessages() != 0) return;
  const pal::ControlView& control = input.Choice(dialog->controls);
  UseControl(control, input.Byte(), input);
  tablet.Advance(0ms);
}

inline void ChooseFile(Tablet& tablet, Input& input) {
  if (pal::person::OpenFileBoxes().empty()) return;
  const std::u16string path = u"C:\\" + Wide(input.Piece());
  pal::person::AnswerFileBox(input.Byte() % 2 ? std::optional(path) : std::nullopt);
  tablet.Advance(0ms);
}

inline void PressSwitch(Tablet& tablet, Input& input) {
  const simulator::Button button = input.Choice(simulator::kButtonNames).button;
  if (input.Byte() % 2)
    tablet.Press(button);
  else
    tablet.Release(button);
}

constexpr const char* kRefusable[] = {
    "ClearCommError", "CoCreateInstance", "CreateEventW",      "CreateFileW",         "CreateMutexW",
    "CreateThread",   "DeleteFileW",      "ExitWindowsEx",     "FindResourceExW",     "GetOverlappedResult",
    "LoadLibraryExW", "MessageBoxW",      "MoveFileExW",       "PostMessageW",        "ReadFile",
    "RegOpenKeyExW",  "RegCreateKeyExW",  "RegSetValueExW",    "SendMessageTimeoutW", "SetCommMask",
    "SetCommState",   "SetTimer",         "Shell_NotifyIconW", "TrackPopupMenu",      "WriteFile",
};
inline void Refuse(Tablet& tablet, Input& input) {
  const char* function = input.Choice(kRefusable);
  constexpr DWORD kAccessDenied = 0x80070005;  // an error as an HRESULT, too
  tablet.Machine().Fail(function, input.Byte() % 4 + 1, kAccessDenied, input.Byte() % 8);
}

constexpr Act kAround[] = {Wait,        SpoilLine,  SwitchController, AskController, Update,
                           ChangePower, ChangePort, ChangeDesk,       Command,       AnswerBoxes,
                           UseMenu,     UseDialog,  ChooseFile,       PressSwitch,   Refuse};

// ---- what must hold whatever came ------------------------------------------------------------------------------

inline bool Pressed(Tablet& tablet, size_t mark) {
  const std::vector<pal::Effect> effects = tablet.Since(mark);
  return !pal::Select<pal::ExecutionState>(effects).empty();
}

// Of the controller; it stays closed when another number is set for it.
inline bool MayBeClosed(Tablet& tablet) {
  bool isOpen = false;
  for (const pal::Effect& effect : tablet.Machine().Effects()) {
    if (std::holds_alternative<pal::SerialOpened>(effect.detail)) isOpen = true;
    if (std::holds_alternative<pal::SerialClosed>(effect.detail)) isOpen = false;
  }
  return !isOpen && !tablet.Machine().registry.ValueNames(HKEY_LOCAL_MACHINE, Tablet::kUserKey).empty();
}

// What went down last came up: mouse buttons, keys and joystick buttons.
inline void ExpectNothingHeld(Tablet& tablet) {
  bool held[2 + 256] = {};
  for (const pal::Effect& effect : tablet.Machine().Effects()) {
    if (const auto* mouse = std::get_if<pal::MouseInput>(&effect.detail)) {
      if (mouse->flags & MOUSEEVENTF_LEFTDOWN) held[0] = true;
      if (mouse->flags & MOUSEEVENTF_LEFTUP) held[0] = false;
      if (mouse->flags & MOUSEEVENTF_RIGHTDOWN) held[1] = true;
      if (mouse->flags & MOUSEEVENTF_RIGHTUP) held[1] = false;
    }
    if (const auto* key = std::get_if<pal::KeyInput>(&effect.detail))
      held[2 + key->virtualKey] = !(key->flags & KEYEVENTF_KEYUP);
  }
  if (std::ranges::find(held, true) != std::end(held))
    Fail(tablet, "a key or a mouse button is held at the end");
  if (simulator::TheJoystick().pressed != 0) Fail(tablet, "a joystick button is held at the end");
}

constexpr auto kLongestStart = 25h * 24;  // as long as its setting can say

// Until it waits for messages; what ended is started again.
inline void AwaitTool(Tablet& tablet) {
  pal::Machine& machine = tablet.Machine();
  const auto waits = [&] { return machine.CountOpen("timer") > 0 && machine.QueuedMessages() == 0; };
  machine.clock.AdvanceUntil([&] { return machine.ExitCode() || waits(); }, kLongestStart);
  if (!machine.ExitCode()) return;
  tablet.Start();
  AwaitTool(tablet);
}

constexpr auto kPatience = 60s;
constexpr int kMostQuestions = 20;  // a codec that answers nothing is tried for minutes, an update takes one

// Whether it did: the session or the tool may have been ended before, which comes to light late.
inline bool HearsAPress(Tablet& tablet) {
  pal::Machine& machine = tablet.Machine();
  AwaitTool(tablet);
  std::optional<LRESULT> codec;
  for (int asked = 0; !codec && asked < kMostQuestions; ++asked)
    codec = tablet.Ask(veltra::kCodecStatusQuery);
  const bool isHeard = codec && tablet.NotifyPort(true, u"COM2");
  const size_t mark = tablet.Mark();
  tablet.Pic().SendRaw(simulator::EncodeFrame(MakeMessage(simulator::MessageType::kText, "Sw1Make")));
  const auto isOver = [&] { return Pressed(tablet, mark) || machine.ExitCode().has_value(); };
  const bool isDone = MayBeClosed(tablet) || machine.clock.AdvanceUntil(isOver, kMostQuestions * kPatience);
  if (machine.ExitCode()) return false;
  if (!isHeard || (codec != 1 && codec != 2)) Fail(tablet, "the main window does not answer");
  if (!isDone) Fail(tablet, "a press is lost");
  return true;
}

// With everything around it in order again the tool answers, hears a press and ends when it is told to.
inline void ExpectAlive(Tablet& tablet) {
  constexpr int kMostEnds = 5;
  pal::Machine& machine = tablet.Machine();
  machine.FailNoMore();
  machine.boxes.automaticAnswer = IDOK;
  machine.menus.Dismiss();
  machine.system.version = {};  // older ones tell nothing of ports
  tablet.Pic().RestorePower();
  tablet.ReturnPort();
  int ends = 0;
  while (!HearsAPress(tablet))
    if (++ends == kMostEnds) Fail(tablet, "the tool ends again and again");

  const auto hasEnded = [&] { return machine.ExitCode().has_value(); };
  for (int asked = 0; !hasEnded() && asked < kMostQuestions; ++asked) {  // in mid-update it does not end
    machine.desktop.Post(tablet.MainWindow(), WM_CLOSE, 0, 0);
    machine.clock.AdvanceUntil(hasEnded, kPatience);
  }
  if (!hasEnded()) Fail(tablet, "the tool does not end");
  ExpectNothingHeld(tablet);
}

// Plays the input's acts on that tablet, where the tool runs.
inline void Play(Tablet& tablet, Input& input, std::span<const Act> own) {
  while (!input.AtEnd()) {
    const uint8_t which = input.Byte();
    const std::span<const Act> acts = which % 2 ? std::span(kAround) : own;
    acts[which / 2 % acts.size()](tablet, input);
    if (tablet.Machine().ExitCode()) tablet.StartAndSettle();
  }
  ExpectAlive(tablet);
}

inline void PlayOnNewTablet(const uint8_t* data, size_t size, std::span<const Act> own) {
  Tablet tablet;
  tablet.Machine().boxes.automaticAnswer = IDOK;
  if (!tablet.StartAndSettle()) Fail(tablet, "the tool does not start");
  Input input(data, size);
  Play(tablet, input, own);
}

}  // namespace fuzz
