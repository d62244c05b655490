// A year of a tablet that is never switched off: year [DAYS]. What the tool holds at its end is what it held
// after the second day. Prints memory and handles; fails when they have grown.
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "pal/machine/person.h"
#include "simulator/board.h"
#include "simulator/tablet.h"

namespace {

using namespace std::chrono_literals;

void Tap(simulator::SimulatedTablet& tablet, simulator::Button button, pal::Time held) {
  tablet.Press(button);
  tablet.Advance(held);
  tablet.Release(button);
  tablet.Advance(1s);
}

void OpenOptions(simulator::SimulatedTablet& tablet) {
  tablet.Machine().tray.DoubleClick(1978);
  tablet.Advance(1s);
  pal::person::PressKey(VK_ESCAPE);
  tablet.Advance(1s);
}

// Sixteen hours awake with presses, questions, a dialog and a port that goes; eight asleep.
void LiveADay(simulator::SimulatedTablet& tablet) {
  const HWND asker = tablet.TheDesk().Open("Talk Builder 4 Class");
  for (int hour = 0; hour < 16; ++hour) {
    for (int press = 0; press < 60; ++press)
      for (const simulator::ButtonName& name : simulator::kButtonNames)
        Tap(tablet, name.button, press % 10 == 0 ? 1700ms : 200ms);
    tablet.Pic().battery.SetCapacity(100 - 5 * hour);
    tablet.SendData(asker, veltra::kFirstInfraredRequest, {});
    OpenOptions(tablet);
    tablet.Advance(45min);
  }
  tablet.TheDesk().Close("Talk Builder 4 Class");
  tablet.VanishPort();
  tablet.Advance(10s);
  tablet.ReturnPort();
  tablet.Advance(1min);
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  tablet.Advance(8h);
  tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
  tablet.Advance(1min);
}

struct Holdings {
  size_t heap = 0;  // bytes in use, of this whole program
  std::string handles;
};

Holdings Count(simulator::SimulatedTablet& tablet) {
  tablet.Machine().ForgetEffects();
  tablet.Pic().ForgetRequests();
  simulator::TheBoard().transfers = {};
  simulator::TheBoard().speakerAmp = {};
  return {mallinfo2().uordblks,
          tablet.Holdings() + ", icon " + std::to_string(tablet.Machine().CountOpen("icon"))};
}

}  // namespace

int main(int count, char** arguments) {
  constexpr int kFirstDay = 2;
  constexpr size_t kNoise = 64 << 10;
  const int days = count > 1 ? std::atoi(arguments[1]) : 365;
  simulator::SimulatedTablet tablet;
  if (!tablet.StartAndSettle()) return 1;
  Holdings first;
  Holdings last;
  for (int day = 1; day <= days; ++day) {
    LiveADay(tablet);
    last = Count(tablet);
    if (day == kFirstDay) first = last;
  }
  std::printf("after day %d: %zu bytes, %s\nafter day %d: %zu bytes, %s\n", kFirstDay, first.heap,
              first.handles.c_str(), days, last.heap, last.handles.c_str());
  if (tablet.Machine().ExitCode()) std::puts("the tool has ended");
  const bool isSame = last.handles == first.handles && last.heap < first.heap + kNoise;
  return isSame && !tablet.Machine().ExitCode() ? 0 : 1;
}
