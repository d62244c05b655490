// The tablet in one object: a machine with the tool on it, the controller on COM2, the board and the desk.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "pal/machine/machine.h"
#include "simulator/controller.h"
#include "simulator/desk.h"
#include "system/numbers.h"

namespace simulator {

class SimulatedTablet {
 public:
  static constexpr int kControllerPort = 2;
  static constexpr std::u16string_view kMainWindowClass = u"VeltraInternal";
  static constexpr std::u16string_view kUserKey = u"SOFTWARE\\Veltra\\Sarvik5";
  static constexpr std::u16string_view kLogFile = u"C:\\Users\\Public\\Documents\\Sarvik5\\DevLog.txt";
  static constexpr std::u16string_view kProfileFile =
      u"C:\\Users\\Public\\Documents\\Sarvik5\\curprofile.bpf";
  // Messages that the maker's applications know.
  static constexpr UINT kQueryFirmware = veltra::WM_QUERY_PIC_FIRMWARE;
  static constexpr UINT kDeviceToolRequest = veltra::kDeviceToolRequest;
  static constexpr UINT kDeviceReportRequest = veltra::kDeviceReportRequest;
  static constexpr UINT kStatusLedRequest = veltra::kStatusLedRequest;

  explicit SimulatedTablet(pal::Clock clock = pal::Clock::kVirtual);
  SimulatedTablet(const SimulatedTablet&) = delete;
  SimulatedTablet& operator=(const SimulatedTablet&) = delete;

  pal::Machine& Machine() { return machine_; }
  Controller& Pic() { return controller_; }
  Desk& TheDesk() { return desk_; }

  // Starts the tool; it begins to run with the next Advance. With "-s" it opens no dialog.
  void Start(std::u16string_view arguments = u"-s");
  // Starts it and lets it run until it has asked the controller everything and waits. False when it does not
  // get there within 30 seconds.
  bool StartAndSettle(std::u16string_view arguments = u"-s");
  void Advance(pal::Time span) { machine_.clock.Advance(span); }
  // The person closes the tool from its menu and answers its question. False when the tool does not ask, or
  // has not ended 30 seconds after a yes.
  bool Quit(bool answer = true);

  void Press(Button button) { controller_.Press(button); }
  void Release(Button button) { controller_.Release(button); }

  // Null when the tool has none.
  [[nodiscard]] HWND MainWindow() const { return machine_.desktop.ProgramWindow(kMainWindowClass); }
  // What the tool's main window answers; empty without a window or when it does not answer within 30 seconds.
  std::optional<LRESULT> Ask(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
  std::optional<LRESULT> SendPowerEvent(WPARAM event) { return Ask(WM_POWERBROADCAST, event); }
  // Copied data, as an application sends it; `sender` may be null.
  std::optional<LRESULT> SendData(HWND sender, uint64_t tag, std::span<const uint8_t> payload);

  // An application asks for a firmware update with a file of the tablet.
  std::optional<LRESULT> SendUpdate(std::u16string_view path);

  // The controller's port goes or comes without a word from Windows.
  void VanishPort();
  void ReturnPort();
  // What Windows tells of a port, whether it is true or not. `name` as the driver spells it: u"COM2".
  std::optional<LRESULT> NotifyPort(bool arrived, std::u16string_view name);

  // What the program holds, shared pictures apart: "event 3, mutex 1, ...".
  [[nodiscard]] std::string Holdings() const;

  // The number of effects so far, and those that came after such a mark.
  [[nodiscard]] size_t Mark() const { return machine_.Effects().size(); }
  [[nodiscard]] std::vector<pal::Effect> Since(size_t mark) const;

 private:
  bool AwaitBatteryWatch(size_t mark);

  // The controller outlives the machine: a program that the machine ends may still write to it.
  Controller controller_;
  pal::Machine machine_;
  pal::SerialPort& port_;
  Desk desk_;
};

}  // namespace simulator
