// The machine's serial ports, as the devices at their other ends see them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <span>

namespace pal {

class Port;
struct State;

// One serial port of the machine, seen from the line.
class SerialPort {
 public:
  virtual ~SerialPort() = default;
  // The device at the other end: called (as an event, at the time of the write) with every block written.
  virtual void OnWrite(std::function<void(std::span<const uint8_t>)> device) = 0;
  // Bytes arrive from the device. In virtual time the program's reader has taken them, or waits for something
  // else than the port, before the clock moves on.
  virtual void Deliver(std::span<const uint8_t> bytes) = 0;
  // The device vanishes (unplugged, powered down by sleep): open handles fail, opening fails. And comes back.
  virtual void Vanish() = 0;
  virtual void Return() = 0;
  [[nodiscard]] virtual bool IsOpen() const = 0;
  // The next read fails with this error, in the call itself or in its completion, and raises these flags of
  // ClearCommError.
  virtual void FailNextRead(DWORD error, DWORD commErrors, bool atOnce = false) = 0;
  // The driver hangs: no wait for events ends, or none until it is cancelled. When it no longer does, a wait
  // ends with an empty mask.
  enum class Hung { kNot, kUntilCancelled, kForEver };
  virtual void Hang(Hung hung) = 0;
  // The settings that the program made last, for tests.
  [[nodiscard]] virtual DCB Settings() const = 0;
  [[nodiscard]] virtual COMMTIMEOUTS Timeouts() const = 0;
  virtual void SetDriverDefaults(
      const DCB& dcb) = 0;  // what GetCommState reports before the program set anything
};

class SerialPorts {
 public:
  explicit SerialPorts(State& state);
  ~SerialPorts();
  SerialPorts(const SerialPorts&) = delete;
  SerialPorts& operator=(const SerialPorts&) = delete;

  SerialPort& Add(int number);                                   // in memory, present from now on
  void AttachTty(int number, const std::filesystem::path& tty);  // a tty or pty of the host, wall time only

  // ---- for the calls of Windows ----
  [[nodiscard]] Port* Find(int number) const;  // null when there is none

 private:
  Port& PortOf(int number);  // the one that is there, or a new one

  State& state_;
  std::map<int, std::unique_ptr<Port>> ports_;
};

}  // namespace pal
