// A storm in wall time, for ThreadSanitizer: wall_time [SECONDS] [SEED]
//
// The line, Windows and other programs act while the tool's threads run as the host lets them, and now and then
// the tool is ended and started again. In a calm every press has its click.
#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "simulator/tablet.h"
#include "tests/storm/weather.h"

namespace {

using namespace std::chrono_literals;
using simulator::Controller;
using simulator::SimulatedTablet;
using storm::Dice;

constexpr const char* kRefusable[] = {"CreateFileW", "CreateThread",   "CreateEventW", "SetCommState",
                                      "SetCommMask", "ClearCommError", "ReadFile",     "WriteFile",
                                      "SetTimer",    "RegSetValueExW"};
constexpr simulator::Fault kFaults[] = {simulator::Fault::kFlip,   simulator::Fault::kDrop,
                                        simulator::Fault::kDouble, simulator::Fault::kGarbage,
                                        simulator::Fault::kMute,   simulator::Fault::kTwice};

// On the machine's own thread, where the controller lives.
void Outside(SimulatedTablet& tablet, std::function<void(SimulatedTablet&)> act) {
  tablet.Machine().clock.After(0us, [&tablet, act = std::move(act)] { act(tablet); });
}

void UseButton(SimulatedTablet& tablet, Dice& dice) {
  const auto button = simulator::kButtonNames[dice.Below(std::size(simulator::kButtonNames))].button;
  if (dice.Below(2))
    Outside(tablet, [button](SimulatedTablet& t) { t.Press(button); });
  else
    Outside(tablet, [button](SimulatedTablet& t) { t.Release(button); });
}

void SpoilLine(SimulatedTablet& tablet, Dice& dice) {
  const simulator::Fault fault = kFaults[dice.Below(std::size(kFaults))];
  Outside(tablet, [fault](SimulatedTablet& t) { t.Pic().Arm(fault); });
}

void SwitchController(SimulatedTablet& tablet, Dice&) {
  Outside(tablet, [](SimulatedTablet& t) { t.Pic().CutPower(); });
  tablet.Machine().clock.After(50ms, [&tablet] { tablet.Pic().RestorePower(); });
}

void TakePort(SimulatedTablet& tablet, Dice& dice) {
  Outside(tablet, &SimulatedTablet::VanishPort);
  if (dice.Below(2)) tablet.NotifyPort(false, u"COM2");
  tablet.Machine().clock.Advance(std::chrono::milliseconds(dice.Below(50)));
  Outside(tablet, &SimulatedTablet::ReturnPort);
  if (dice.Below(2)) tablet.NotifyPort(true, u"COM2");
}

void RefuseCall(SimulatedTablet& tablet, Dice& dice) {
  tablet.Machine().Fail(kRefusable[dice.Below(std::size(kRefusable))], 1, ERROR_ACCESS_DENIED);
}

void AskTool(SimulatedTablet& tablet, Dice& dice) {
  if (dice.Below(2)) tablet.SendPowerEvent(dice.Below(2) ? PBT_APMSUSPEND : PBT_APMRESUMEAUTOMATIC);
  tablet.Ask(SimulatedTablet::kStatusLedRequest, dice.Below(4));
}

void EndTool(SimulatedTablet& tablet) {
  pal::Machine& machine = tablet.Machine();
  machine.desktop.Post(tablet.MainWindow(), WM_CLOSE, 0, 0);
  if (machine.clock.AdvanceUntil([&] { return machine.ExitCode().has_value(); }, 60s)) return;
  std::puts("the tool does not end");
  std::exit(1);
}

struct Act {
  size_t chances;
  void (*play)(SimulatedTablet&, Dice&);
};
constexpr Act kActs[] = {{40, UseButton}, {8, SpoilLine},  {2, SwitchController},
                         {4, TakePort},   {4, RefuseCall}, {6, AskTool}};

void Blow(SimulatedTablet& tablet, Dice& dice) {
  size_t at = dice.Below(64);
  const Act* act = kActs;
  for (; at >= act->chances; ++act) at -= act->chances;
  act->play(tablet, dice);
  tablet.Machine().clock.Advance(std::chrono::milliseconds(dice.Below(8)));
}

// As soon as nothing is in the way any more.
void Calm(SimulatedTablet& tablet) {
  for (const char* function : kRefusable) tablet.Machine().Fail(function, 0, 0);
  Outside(tablet, [](SimulatedTablet& t) {
    t.Pic().Disarm();
    t.Pic().RestorePower();
    t.ReturnPort();
    for (const simulator::ButtonName& name : simulator::kButtonNames) t.Release(name.button);
  });
  EndTool(tablet);
  tablet.Start();
  tablet.Machine().clock.Advance(3s);
}

}  // namespace

int main(int count, char** arguments) {
  constexpr int kGusts = 500;
  constexpr int kTaps = 20;
  const std::chrono::seconds length(count > 1 ? std::atoi(arguments[1]) : 60);
  Dice dice(count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1);
  SimulatedTablet tablet(pal::Clock::kWall);
  pal::Machine& machine = tablet.Machine();
  machine.registry.SetDword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"StartupDelay", 0);
  machine.registry.SetDword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"Sw1CmdVal", static_cast<DWORD>(-1));
  std::atomic<int> clicks = 0;
  machine.OnEffect([&](const pal::Effect& effect) {
    const auto* mouse = std::get_if<pal::MouseInput>(&effect.detail);
    if (mouse && mouse->flags == MOUSEEVENTF_LEFTUP) ++clicks;
  });
  tablet.Start();
  int calms = 0;
  for (; machine.clock.Now() < length; ++calms) {
    for (int gust = 0; gust < kGusts; ++gust) Blow(tablet, dice);
    Calm(tablet);
    clicks = 0;
    for (int tap = 0; tap < kTaps; ++tap) {
      Outside(tablet, [](SimulatedTablet& t) { t.Press(simulator::Button::kSwitch1); });
      Outside(tablet, [](SimulatedTablet& t) { t.Release(simulator::Button::kSwitch1); });
    }
    if (machine.clock.AdvanceUntil([&] { return clicks == kTaps; }, 60s)) continue;
    std::printf("%d clicks of %d presses\n", clicks.load(), kTaps);
    return 1;
  }
  EndTool(tablet);
  std::printf("%d times wind and calm in %d s, every press heard in each calm\n", calms, static_cast<int>(length.count()));
  return 0;
}
