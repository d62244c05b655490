// A full firmware update in real time: every row that can be programmed, against the simulated controller at
// 57600 baud in both directions. The flash itself takes no time here, so what is measured is the line and the
// tool.
//
// Prints how long the update took beside what the line alone needs for the same bytes and the pause of 5 ms
// in every frame of the tool. Ends with 1 when the tool adds more than 2 % of the line's time, or the update
// fails.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>

#include "simulator/firmware_file.h"
#include "simulator/tablet.h"

namespace {

using namespace std::chrono_literals;
using Seconds = std::chrono::duration<double>;
using simulator::AddFirmwareRow;
using simulator::FlashAfterUpdate;
using simulator::HexText;
using simulator::SimulatedTablet;
using simulator::Traffic;

constexpr std::u16string_view kFile = u"C:\\Users\\Public\\Documents\\full.hex";
constexpr double kAllowed = 1.02;

struct Line {
  size_t bytes = 0;
  size_t toolFrames = 0;

  void Count(const Traffic& traffic) {
    bytes += traffic.wire.size();
    if (traffic.direction == Traffic::Direction::kFromTool) ++toolFrames;
  }
  [[nodiscard]] Seconds Time() const { return Seconds(static_cast<double>(bytes) * 10 / 57600); }
  [[nodiscard]] Seconds Pauses() const { return Seconds(5ms) * toolFrames; }
};

}  // namespace

int main() {
  SimulatedTablet tablet(pal::Clock::kWall);
  pal::Machine& machine = tablet.Machine();
  machine.registry.SetDword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"StartupDelay", 0);
  tablet.Pic().bootloader.eraseTime = 0us;
  tablet.Pic().bootloader.writeTime = 0us;
  tablet.Pic().SetReplyDelay(0us);
  if (!tablet.StartAndSettle()) return 2;

  simulator::FirmwareBytes bytes;
  for (const uint32_t row : simulator::ProgrammableRows()) AddFirmwareRow(bytes, row);
  machine.disk.Write(kFile, HexText(bytes));
  const std::span<const uint8_t> flash = tablet.Pic().bootloader.Memory().Bytes();
  const std::vector<uint8_t> expected = FlashAfterUpdate(flash, bytes);

  Line line;
  std::atomic<pal::Time::rep> begin = 0;
  std::atomic<pal::Time::rep> end = 0;
  tablet.Pic().OnTraffic([&](const Traffic& traffic) {
    if (begin != 0) line.Count(traffic);
  });
  machine.OnEffect([&](const pal::Effect& effect) {  // the session is held while an update runs
    if (const auto* held = std::get_if<pal::SessionHeld>(&effect.detail))
      (held->reason.empty() ? end : begin) = effect.at.count();
  });
  machine.clock.Advance(10s);  // until the codec is up as well
  tablet.Pic().SetPaced(true);
  tablet.SendUpdate(kFile);
  const bool ended = machine.clock.AdvanceUntil([&] { return end != 0; }, 120s);
  tablet.VanishPort();
  const bool written = std::ranges::equal(flash, expected);
  machine.desktop.Post(tablet.MainWindow(), WM_CLOSE, 0, 0);
  machine.clock.AdvanceUntil([&] { return machine.ExitCode().has_value(); }, 10s);
  if (!ended || !written) {
    std::fprintf(stderr, "the update failed\n");
    return 1;
  }

  const Seconds took = pal::Time(end - begin);
  const double ratio = (took - line.Pauses()) / line.Time();
  std::printf("update of %zu rows: %.2f s\n", simulator::ProgrammableRows().size(), took.count());
  std::printf("the line alone:     %.2f s for %zu bytes, and %.2f s for %zu pauses of 5 ms\n",
              line.Time().count(), line.bytes, line.Pauses().count(), line.toolFrames);
  std::printf("without the pauses: %.3f times the line's time (allowed: %.2f)\n", ratio, kAllowed);
  return ratio <= kAllowed ? 0 : 1;
}
