// The program's handle of a serial port.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <span>

#include "pal/devices/serial_ports.h"
#include "pal/devices/tty_line.h"
#include "pal/kernel/handles.h"

namespace pal {

// An open handle of a port. Device, queue and settings are the port's; masks and waits end with the handle.
class PortHandle final : public Object, public std::enable_shared_from_this<PortHandle> {
 public:
  PortHandle(SerialPort& port, std::unique_ptr<TtyLine> tty) : port_(port), tty_(std::move(tty)) {}

  [[nodiscard]] std::string_view Kind() const override { return "serial"; }
  void OnClose() override;
  DWORD Read(std::span<uint8_t> buffer, OVERLAPPED* overlapped, DWORD& transferred) override;
  DWORD Write(std::span<const uint8_t> bytes, OVERLAPPED* overlapped, DWORD& transferred) override;

  // Why nothing can be asked of it any more: closed, or the device is gone; else 0.
  [[nodiscard]] DWORD Refusal() const;
  // The comm functions of a handle without refusal; they return 0 or the error.
  DWORD SetMask(DWORD events);
  DWORD WaitEvent(DWORD* events);  // returns when the wait is over
  DWORD Cancel();
  DWORD TakeErrors(DWORD& errors, COMSTAT* status);
  DWORD Purge(DWORD flags);
  DWORD SetSettings(const DCB& dcb);
  [[nodiscard]] DCB& Settings() const;
  [[nodiscard]] COMMTIMEOUTS& Timeouts() const;

  // The line's side.
  void Raise(DWORD events);  // those of the mask end the wait, or are kept for the next one
  void DeviceGone();
  void WakeWithoutEvent() { EndWait({ERROR_SUCCESS, 0}); }
  [[nodiscard]] bool IsAlive() const { return !deviceGone_ && !closed_; }

 private:
  struct Outcome {
    DWORD error = 0;
    DWORD events = 0;
  };

  void EndWait(Outcome outcome);
  DWORD CompleteSoon(OVERLAPPED& overlapped, DWORD error, DWORD transferred);
  void FetchFromTty();

  SerialPort& port_;
  std::unique_ptr<TtyLine> tty_;
  DWORD mask_ = 0;
  DWORD raised_ = 0;                // events of the mask that no wait has reported yet
  bool waits_ = false;              // for events
  std::optional<Outcome> outcome_;  // of the wait, when it is over
  bool deviceGone_ = false;
  bool closed_ = false;
};

// The number in "\\.\COM5" and "COM5", 0 for another device, empty for any other name.
std::optional<int> PortNumberOf(std::u16string_view name);

// Ends a transfer: the result for GetOverlappedResult, and its event.
void CompleteOverlapped(State& state, OVERLAPPED& overlapped, DWORD error, DWORD transferred);
// Marks it as under way.
void BeginOverlapped(State& state, OVERLAPPED& overlapped);
bool IsUnderWay(const OVERLAPPED& overlapped);

}  // namespace pal
