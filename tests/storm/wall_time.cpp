// The storm in wall time, for ThreadSanitizer: wall_time [SECONDS] [SEED]
//
// What comes from the line and from Windows comes while the tool's threads run as the host lets them, and now
// and then the tool is ended and started again. In each calm every press has its click.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "simulator/controller_commands.h"
#include "simulator/tablet.h"
#include "tests/storm/weather.h"

namespace {

using namespace std::chrono_literals;
using simulator::SimulatedTablet;

constexpr int kGusts = 1000;
constexpr int kTaps = 20;

// The controller lives on the machine's own thread.
void Tell(SimulatedTablet& tablet, const std::string& line) {
  std::vector<std::string> words;
  simulator::SplitWords(line, words);
  const auto* command = words.empty() ? nullptr : simulator::FindControllerCommand(words[0]);
  if (!command) return;
  tablet.Machine().clock.After(0us, [&tablet, command, words] { command->run(tablet.Pic(), words); });
}

void Send(SimulatedTablet& tablet, UINT message, WPARAM wParam) {
  tablet.Machine().desktop.Post(tablet.MainWindow(), message, wParam, 0);
}

void PlayAll(SimulatedTablet& tablet, const std::string& lines);

// A line of the weather, in less time; a person's is left out.
void Play(SimulatedTablet& tablet, const std::string& line) {
  pal::Machine& machine = tablet.Machine();
  const std::string_view view = line;
  const auto begins = [view](std::string_view with) { return view.starts_with(with); };
  if (begins("port remove") || begins("port vanish")) machine.clock.After(0us, [&] { tablet.VanishPort(); });
  if (begins("port arrive") || begins("port return")) machine.clock.After(0us, [&] { tablet.ReturnPort(); });
  if (begins("port arrive") || begins("port remove")) tablet.NotifyPort(begins("port arrive"), u"COM2");
  if (begins("tap ")) return PlayAll(tablet, line.substr(4, 3) + " press;" + line.substr(4, 3) + " release");
  if (begins("fail off")) return machine.FailNoMore();
  if (begins("fail ")) machine.Fail(line.substr(5, line.rfind(' ') - 5), 1, ERROR_ACCESS_DENIED);
  if (begins("suspend")) Send(tablet, WM_POWERBROADCAST, PBT_APMSUSPEND);
  if (begins("resume")) Send(tablet, WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC);
  if (begins("led "))
    Send(tablet, SimulatedTablet::kStatusLedRequest, static_cast<WPARAM>(line.back() - '0'));
  if (begins("wait ")) machine.clock.Advance(5ms);
  Tell(tablet, line);
}

void PlayAll(SimulatedTablet& tablet, const std::string& lines) {
  std::istringstream rest(lines);
  for (std::string line; std::getline(rest, line, ';');) Play(tablet, line);
}

bool EndTool(SimulatedTablet& tablet) {
  Send(tablet, WM_CLOSE, 0);
  return tablet.Machine().clock.AdvanceUntil([&] { return tablet.Machine().ExitCode().has_value(); }, 60s);
}

}  // namespace

int main(int count, char** arguments) {
  const std::chrono::seconds length(count > 1 ? std::atoi(arguments[1]) : 60);
  storm::Dice dice(count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1);
  SimulatedTablet tablet(pal::Clock::kWall);
  pal::Machine& machine = tablet.Machine();
  for (const auto& [name, value] : {std::pair(u"StartupDelay", 0), std::pair(u"Sw1CmdVal", -1)})
    machine.registry.SetDword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, name, static_cast<DWORD>(value));
  std::atomic<int> clicks = 0;
  machine.OnEffect([&](const pal::Effect& effect) {
    const auto* mouse = std::get_if<pal::MouseInput>(&effect.detail);
    if (mouse && mouse->flags == MOUSEEVENTF_LEFTUP) ++clicks;
  });
  tablet.Start();
  int calms = 0;
  for (; machine.clock.Now() < length; ++calms) {
    for (int gust = 0; gust < kGusts; ++gust) PlayAll(tablet, storm::Gust(dice));
    PlayAll(tablet, std::string(storm::kCalm));
    if (!EndTool(tablet)) return std::puts("the tool does not end"), 1;
    tablet.Start();
    machine.clock.Advance(3s);
    clicks = 0;
    for (int tap = 0; tap < kTaps; ++tap) Play(tablet, "tap sw1");
    if (machine.clock.AdvanceUntil([&] { return clicks == kTaps; }, 60s)) continue;
    return std::printf("%d clicks of %d presses\n", clicks.load(), kTaps), 1;
  }
  if (!EndTool(tablet)) return 1;
  std::printf("%d times storm and calm, and every press of a calm was heard\n", calms);
  return 0;
}
