// Serial ports: what the line and the program's handle of a port have in common.
#pragma once

#include <windows.h>

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "pal/devices/serial_ports.h"
#include "pal/devices/tty_line.h"
#include "pal/kernel/handles.h"

namespace pal {

// An open handle of a port. Device, queue and settings are the port's; masks and waits end with the handle.
class PortHandle final : public Object, public std::enable_shared_from_this<PortHandle> {
 public:
  PortHandle(Port& port, std::unique_ptr<TtyLine> tty) : port_(port), tty_(std::move(tty)) {}

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
  struct CommWait {
    std::optional<Outcome> outcome;
  };

  void EndWait(Outcome outcome);
  DWORD CompleteSoon(OVERLAPPED& overlapped, DWORD error, DWORD transferred);
  void FetchFromTty();

  Port& port_;
  std::unique_ptr<TtyLine> tty_;
  DWORD mask_ = 0;
  DWORD raised_ = 0;  // events of the mask that no wait has reported yet
  std::optional<CommWait> wait_;
  bool deviceGone_ = false;
  bool closed_ = false;
};

class Port final : public SerialPort {
 public:
  Port(State& state, int number);

  // SerialPort, called by the outside.
  void OnWrite(std::function<void(std::span<const uint8_t>)> device) override;
  void Deliver(std::span<const uint8_t> bytes) override;
  void Vanish() override;
  void Return() override;
  [[nodiscard]] bool IsOpen() const override;
  void FailNextRead(DWORD error, DWORD commErrors, bool atOnce) override;
  void Hang(Hung hung) override;
  [[nodiscard]] DCB Settings() const override;
  [[nodiscard]] COMMTIMEOUTS Timeouts() const override;
  void SetDriverDefaults(const DCB& dcb) override;

  // CreateFileW: 0 and a handle in the machine's table, or the error.
  DWORD Open(HANDLE& handle, DWORD access, DWORD share);
  void UseTty(std::filesystem::path tty) { ttyPath_ = std::move(tty); }

 private:
  friend class PortHandle;
  struct ReadFailure {
    DWORD error;
    DWORD commErrors;
    bool atOnce;
  };

  void Receive(std::span<const uint8_t> bytes);
  void Transmit(std::span<const uint8_t> bytes);

  State& state_;
  const int number_;
  std::filesystem::path ttyPath_;  // empty: in memory
  bool present_ = true;
  Hung hung_ = Hung::kNot;
  std::function<void(std::span<const uint8_t>)> device_;
  std::weak_ptr<PortHandle> handle_;
  std::deque<uint8_t> input_;
  DWORD commErrors_ = 0;
  std::optional<ReadFailure> readFailure_;
  DCB dcb_{};
  COMMTIMEOUTS timeouts_{};
};

// The number in "\\.\COM5" and "COM5", 0 for another device, empty for any other name.
std::optional<int> PortNumberOf(std::u16string_view name);

// Ends a transfer: the result for GetOverlappedResult, and its event.
void CompleteOverlapped(State& state, OVERLAPPED& overlapped, DWORD error, DWORD transferred);
// Marks it as under way.
void BeginOverlapped(State& state, OVERLAPPED& overlapped);
bool IsUnderWay(const OVERLAPPED& overlapped);

}  // namespace pal
