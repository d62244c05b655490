// The machine's serial ports, as the devices at their other ends see them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>

namespace pal {

class PortHandle;
struct State;

// One serial port of the machine, seen from the line.
class SerialPort {
 public:
  SerialPort(State& state, int number);

  // The device at the other end: called (as an event, at the time of the write) with every block written.
  void OnWrite(std::function<void(std::span<const uint8_t>)> device);
  // Bytes arrive from the device. In virtual time the program's reader has taken them, or waits for something
  // else than the port, before the clock moves on.
  void Deliver(std::span<const uint8_t> bytes);
  // The device vanishes (unplugged, powered down by sleep): open handles fail, opening fails. And comes back.
  void Vanish();
  void Return();
  [[nodiscard]] bool IsOpen() const;
  // The next read fails with this error, in the call itself or in its completion, and raises these flags of
  // ClearCommError.
  void FailNextRead(DWORD error, DWORD commErrors, bool atOnce = false);
  // The driver hangs: no wait for events ends, or none until it is cancelled. When it no longer does, a wait
  // ends with an empty mask.
  enum class Hung { kNot, kUntilCancelled, kForEver };
  void Hang(Hung hung);
  // The settings that the program made last, for tests.
  [[nodiscard]] DCB Settings() const;
  [[nodiscard]] COMMTIMEOUTS Timeouts() const;
  void SetDriverDefaults(const DCB& dcb);  // what GetCommState reports before the program set anything

  // ---- for the calls of Windows ----
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

class SerialPorts {
 public:
  explicit SerialPorts(State& state) : state_(state) {}

  SerialPort& Add(int number);                                   // in memory, present from now on
  void AttachTty(int number, const std::filesystem::path& tty);  // a tty or pty of the host, wall time only

  // ---- for the calls of Windows ----
  SerialPort* Find(int number);  // null when there is none

 private:
  SerialPort& PortOf(int number);  // the one that is there, or a new one

  State& state_;
  std::map<int, SerialPort> ports_;
};

}  // namespace pal
