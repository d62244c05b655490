// One serial port with a monitor thread that hands every received byte to a window.
//
// Two threads touch a port: the monitor thread waits, reads and posts; the owner's thread does everything
// else. What both need is in `Line`, which lives until the last of them lets go: a program may end while the
// monitor thread hangs in a driver.
#pragma once

#include <windows.h>

#include <atomic>
#include <memory>

#include "base/handles.h"
#include "base/text.h"
#include "system/numbers.h"

namespace VeltraFramework {

class CSerialInput {
 public:
  // Receiver of the bytes when there is no target window; called on the monitor thread.
  using DataCallback = void (*)(int32_t portNumber, const uint8_t* bytes, uint32_t count);

  // Opens \\.\COM<portNumber>; usable when IsOpen() is true afterwards. `name` is for the owner only.
  CSerialInput(int32_t portNumber, veltra::WideText name);
  virtual ~CSerialInput();
  CSerialInput(const CSerialInput&) = delete;
  CSerialInput& operator=(const CSerialInput&) = delete;

  // 57600 baud, 8 data bits, no parity, one stop bit, no flow control; reads return at once with what the
  // driver holds, writes have 1000 ms and 10 ms a byte. False, and closed again, when the port cannot be
  // opened or set up.
  virtual bool Open();
  virtual void Close();
  // Writes the text in the thread's ANSI code page; false for an empty text and for one that cannot be
  // converted.
  virtual bool WriteString(const veltra::WideText& text);
  // Waits until the driver has taken all bytes; false when it did not.
  virtual bool Write(const uint8_t* bytes, uint32_t count);
  // Empties the driver's queues and starts the monitor thread. False when the port is closed or no thread
  // could be had; the port is closed then.
  virtual bool StartMon(HWND targetWindow, DataCallback dataCallback);
  // Returns when the monitor thread has seen its end. Bytes that it could not post until then are dropped.
  // Gives up after 5 s, and at once while the thread shows a box: the line is the thread's then and the port
  // counts as closed here.
  virtual void StopMon();
  [[nodiscard]] virtual bool IsMonitoring() const;
  [[nodiscard]] virtual int32_t GetPort() const { return portNumber_; }
  [[nodiscard]] virtual bool IsOpen() const { return isOpen_; }
  [[nodiscard]] virtual uint32_t GetBaudRate() const;
  [[nodiscard]] virtual veltra::WideText GetName() const { return name_; }

 private:
  struct Line;

  void Abandon();
  static DWORD WINAPI CommThreadProc(void* line);
  static void Monitor(Line& line);
  static bool Drain(Line& line);
  static uint32_t Read(Line& line, uint8_t* buffer, uint32_t wanted);

  int32_t portNumber_;
  veltra::WideText name_;
  bool isOpen_ = false;
  std::shared_ptr<Line> line_;
};

}  // namespace VeltraFramework
