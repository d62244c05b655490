#include "simulator/tablet.h"

#include <dbt.h>

#include <cstddef>
#include <cstring>

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE previous, PWSTR commandLine, int show);

namespace simulator {
namespace {

constexpr pal::Time kLongestWait = std::chrono::seconds(30);

}  // namespace

SimulatedTablet::SimulatedTablet(pal::Clock clock)
    : controller_({
          [this](std::span<const uint8_t> bytes) { port_.Deliver(bytes); },
          [this](Duration delay, std::function<void()> action) {
            machine_.clock.After(delay, std::move(action));
          },
          [this] { return machine_.clock.Now(); },
      }),
      machine_(clock),
      port_(machine_.serial.Add(kControllerPort)),
      desk_(machine_) {
  port_.OnWrite([this](std::span<const uint8_t> bytes) { controller_.Receive(bytes); });
  machine_.resources.Load(VELTRA_RESOURCES);
  // What is hardest to hear in: the tool has higher rights than who talks to it.
  machine_.system.version = {10, 0, 0};
  machine_.desktop.isElevated = true;
}

void SimulatedTablet::Start(std::u16string_view arguments) {
  const std::u16string program = u"\"" + std::u16string(pal::Disk::kProgramFile) + u"\"";
  machine_.StartProgram(wWinMain, arguments.empty() ? program : program + u" " + std::u16string(arguments));
}

bool SimulatedTablet::StartAndSettle(std::u16string_view arguments) {
  const size_t mark = Mark();
  Start(arguments);
  constexpr pal::Time kQuiet = std::chrono::milliseconds(200);
  if (!AwaitBatteryWatch(mark)) return false;
  const pal::Time end = machine_.clock.Now() + kLongestWait;
  while (machine_.clock.Now() < end) {
    const size_t before = controller_.Requests().size();
    machine_.clock.Advance(kQuiet);
    if (controller_.Requests().size() == before) return true;
  }
  return false;
}

// The last step of the start-up sequence.
bool SimulatedTablet::AwaitBatteryWatch(size_t mark) {
  constexpr uint64_t kBatteryTimer = 1;
  const auto watches = [&, looked = mark]() mutable {
    const std::vector<pal::Effect>& effects = machine_.Effects();
    while (looked < effects.size()) {
      const auto* timer = std::get_if<pal::TimerSet>(&effects[looked++].detail);
      if (timer && timer->id == kBatteryTimer) return true;
    }
    return false;
  };
  return machine_.clock.AdvanceUntil(watches, kLongestWait);
}

bool SimulatedTablet::Quit(bool answer) {
  constexpr WPARAM kExitCommand = 128;
  if (!machine_.desktop.Post(MainWindow(), WM_COMMAND, kExitCommand, 0)) return false;
  const auto asks = [this] { return !machine_.boxes.Shown().empty(); };
  if (!machine_.clock.AdvanceUntil(asks, kLongestWait)) return false;
  machine_.boxes.Answer(answer ? IDYES : IDNO);
  if (!answer) return true;
  return machine_.clock.AdvanceUntil([this] { return machine_.ExitCode().has_value(); }, kLongestWait);
}

std::optional<LRESULT> SimulatedTablet::Ask(UINT message, WPARAM wParam, LPARAM lParam) {
  const HWND window = MainWindow();
  if (!window) return std::nullopt;
  return machine_.desktop.Send(window, message, wParam, lParam, kLongestWait);
}

std::optional<LRESULT> SimulatedTablet::SendData(HWND sender, uint64_t tag,
                                                 std::span<const uint8_t> payload) {
  const HWND window = MainWindow();
  if (!window) return std::nullopt;
  return machine_.desktop.SendCopyData(window, sender, tag, payload, kLongestWait);
}

std::optional<LRESULT> SimulatedTablet::SendUpdate(std::u16string_view path) {
  constexpr uint64_t kFirmwareUpdate = 2;
  const std::u16string terminated(path);
  return SendData(
      nullptr, kFirmwareUpdate,
      {reinterpret_cast<const uint8_t*>(terminated.c_str()), (terminated.size() + 1) * sizeof(WCHAR)});
}

void SimulatedTablet::VanishPort() {
  port_.Vanish();
  controller_.LoseLine();
}
void SimulatedTablet::ReturnPort() {
  port_.Return();
}

std::optional<LRESULT> SimulatedTablet::NotifyPort(bool arrived, std::u16string_view name) {
  // The record ends in the port's name, of any length.
  constexpr size_t kNameOffset = offsetof(DEV_BROADCAST_PORT_W, dbcp_name);
  const size_t size = kNameOffset + (name.size() + 1) * sizeof(WCHAR);
  std::vector<DEV_BROADCAST_PORT_W> record(size / sizeof(DEV_BROADCAST_PORT_W) + 1);
  record[0].dbcp_size = static_cast<DWORD>(size);
  record[0].dbcp_devicetype = DBT_DEVTYP_PORT;
  std::memcpy(reinterpret_cast<uint8_t*>(record.data()) + kNameOffset, name.data(),
              name.size() * sizeof(WCHAR));
  return Ask(WM_DEVICECHANGE, arrived ? DBT_DEVICEARRIVAL : DBT_DEVICEREMOVECOMPLETE,
             reinterpret_cast<LPARAM>(record.data()));
}

std::string SimulatedTablet::Holdings() const {
  constexpr const char* kKinds[] = {"event",  "mutex",  "file",  "serial", "key",   "thread handle",
                                    "thread", "window", "timer", "menu",   "brush", "com object"};
  std::string holdings;
  for (const char* kind : kKinds)
    holdings += (holdings.empty() ? "" : ", ") + (kind + (" " + std::to_string(machine_.CountOpen(kind))));
  return holdings;
}

std::vector<pal::Effect> SimulatedTablet::Since(size_t mark) const {
  const std::vector<pal::Effect>& effects = machine_.Effects();
  return {effects.begin() + static_cast<std::ptrdiff_t>(mark), effects.end()};
}

}  // namespace simulator
