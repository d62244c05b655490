#include "link/serial_input.h"

#include <algorithm>
#include <array>

#include "base/ansi_text.h"
#include "system/numbers.h"

namespace VeltraFramework {
namespace {

using veltra::FormatText;
using veltra::UniqueKernelObject;
using veltra::WideText;
using veltra::WM_PIC_BYTE;
using veltra::WM_PIC_LINE_LOST;

constexpr uint32_t kBaudRate = 57600;
constexpr uint8_t kByteSize = 8;
constexpr uint32_t kReadChunk = 512;  // bytes a read asks for
constexpr DWORD kShareMode = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr DWORD kWriteMsPerByte = 10;
constexpr DWORD kWriteMs = 1000;
constexpr DWORD kPostRetryMs = 10;  // between two tries to post into a full message queue
constexpr DWORD kStopRetryMs = 50;  // between two requests to stop waiting for events
constexpr int kStopTries = 100;
constexpr int kTriesBeforeCancel = 20;

bool ApplyTimeouts(HANDLE port) {
  COMMTIMEOUTS timeouts = {};
  GetCommTimeouts(port, &timeouts);
  timeouts.ReadIntervalTimeout = MAXDWORD;  // with both totals 0: a read returns at once with what is there
  timeouts.ReadTotalTimeoutMultiplier = 0;
  timeouts.ReadTotalTimeoutConstant = 0;
  timeouts.WriteTotalTimeoutMultiplier = kWriteMsPerByte;
  timeouts.WriteTotalTimeoutConstant = kWriteMs;
  return SetCommTimeouts(port, &timeouts) != FALSE;
}

bool ApplyLineSettings(HANDLE port) {
  DCB dcb = {};
  dcb.DCBlength = sizeof(dcb);
  if (!GetCommState(port, &dcb)) return false;
  dcb.BaudRate = kBaudRate;
  dcb.ByteSize = kByteSize;
  dcb.Parity = NOPARITY;
  dcb.StopBits = ONESTOPBIT;
  dcb.fOutxCtsFlow = FALSE;
  dcb.fRtsControl = RTS_CONTROL_ENABLE;
  return SetCommState(port, &dcb) != FALSE;
}

// Ends what waits in the driver, for one that does not heed its event mask.
void CancelWaits(HANDLE port) {
  using Cancel = BOOL(WINAPI*)(HANDLE, LPOVERLAPPED);
  const auto cancel = veltra::FindExport<Cancel>(GetModuleHandleW(TEXT("kernel32.dll")), "CancelIoEx");
  if (cancel) cancel(port, nullptr);
}

// Waits for a transfer that the driver has taken over; returns the error it ended with, 0 when it was done.
DWORD AwaitTransfer(HANDLE port, OVERLAPPED& overlapped, DWORD& transferred) {
  for (;;) {
    if (GetOverlappedResult(port, &overlapped, &transferred, TRUE)) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    if (error != ERROR_IO_INCOMPLETE) return error;
  }
}

DWORD TakeErrorFlags(HANDLE port) {
  DWORD flags = 0;
  ClearCommError(port, &flags, nullptr);
  return flags;
}

}  // namespace

// What the owner's thread and the monitor thread share. Reads and writes have an OVERLAPPED each, so that
// they may overlap.
struct CSerialInput::Line {
  std::atomic<HANDLE> port = INVALID_HANDLE_VALUE;
  OVERLAPPED readOverlapped = {};
  OVERLAPPED writeOverlapped = {};
  UniqueKernelObject readDone;  // the events of the two, manual-reset
  UniqueKernelObject writeDone;
  UniqueKernelObject
      monitorStopped;  // manual-reset, so that asking IsMonitoring does not take it from StopMon
  UniqueKernelObject stopRequested;  // manual-reset
  HWND targetWindow = nullptr;
  DataCallback dataCallback = nullptr;
  int32_t portNumber = 0;
  std::atomic<bool> showsBox = false;     // the monitor thread waits for a person, not for the driver
  std::atomic<bool> isAbandoned = false;  // its owner has given it up: nobody takes its bytes

  ~Line() { ClosePort(); }

  void ClosePort() {
    const HANDLE open = port.exchange(INVALID_HANDLE_VALUE);
    if (open != INVALID_HANDLE_VALUE) CloseHandle(open);
  }

  [[nodiscard]] bool IsStopRequested() const {
    return WaitForSingleObject(stopRequested.Get(), 0) == WAIT_OBJECT_0;
  }

  // Windows refuses a message when 10,000 wait for the thread already, as happens when it sleeps while the
  // device is chatty. Waits then and posts again. False when the port is being closed or the window is gone.
  bool Post(UINT message, WPARAM wParam) {
    while (!PostMessageW(targetWindow, message, wParam, portNumber)) {
      if (GetLastError() != ERROR_NOT_ENOUGH_QUOTA) return false;
      if (WaitForSingleObject(stopRequested.Get(), kPostRetryMs) != WAIT_TIMEOUT) return false;
    }
    return true;
  }

  void ShowReadError(const WCHAR* format, DWORD number) {
    const WideText text = FormatText(format, number);
    showsBox = true;
    MessageBoxW(nullptr, text.c_str(), nullptr, MB_OK);
    showsBox = false;
  }

  void Deliver(std::span<const uint8_t> bytes) {
    if (isAbandoned) return;
    if (!targetWindow) {
      if (dataCallback) dataCallback(portNumber, bytes.data(), static_cast<uint32_t>(bytes.size()));
      return;
    }
    for (const uint8_t byte : bytes)
      if (!Post(WM_PIC_BYTE, byte)) return;
  }
};

CSerialInput::CSerialInput(int32_t portNumber, WideText name)
    : portNumber_(portNumber), name_(std::move(name)), line_(std::make_shared<Line>()) {
  line_->portNumber = portNumber;
  CSerialInput::Open();
}

CSerialInput::~CSerialInput() = default;  // the line closes with its last owner

bool CSerialInput::Open() {
  Line& line = *line_;
  const WideText path = FormatText(TEXT("\\\\.\\COM%d"), portNumber_);
  line.port = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, kShareMode, nullptr, OPEN_EXISTING,
                          FILE_FLAG_OVERLAPPED, nullptr);
  if (line.port == INVALID_HANDLE_VALUE) return false;
  line.readDone.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  line.writeDone.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  line.readOverlapped.hEvent = line.readDone.Get();
  line.writeOverlapped.hEvent = line.writeDone.Get();
  isOpen_ = line.readDone && line.writeDone && ApplyTimeouts(line.port) && ApplyLineSettings(line.port);
  if (!isOpen_) Close();
  return isOpen_;
}

void CSerialInput::Close() {
  line_->ClosePort();
  line_->readDone.Reset();
  line_->writeDone.Reset();
  isOpen_ = false;
}

bool CSerialInput::WriteString(const WideText& text) {
  const std::optional<std::string> ansi = veltra::ConvertToAnsi(text);
  if (!ansi || ansi->empty()) return false;
  const veltra::Bytes bytes = veltra::BytesOf(*ansi);
  return Write(bytes.data(), static_cast<uint32_t>(bytes.size()));
}

bool CSerialInput::Write(const uint8_t* bytes, uint32_t count) {
  Line& line = *line_;
  DWORD written = 0;
  if (WriteFile(line.port, bytes, count, &written, &line.writeOverlapped)) return true;
  if (GetLastError() == ERROR_IO_PENDING &&
      AwaitTransfer(line.port, line.writeOverlapped, written) == ERROR_SUCCESS)
    return true;
  TakeErrorFlags(line.port);
  return false;
}

bool CSerialInput::StartMon(HWND targetWindow, DataCallback dataCallback) {
  Line& line = *line_;
  if (line.port == INVALID_HANDLE_VALUE) return false;
  line.targetWindow = targetWindow;
  line.dataCallback = dataCallback;
  PurgeComm(line.port, PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR);
  line.monitorStopped.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  line.stopRequested.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));

  auto argument = std::make_unique<std::shared_ptr<Line>>(line_);
  UniqueKernelObject thread;
  if (line.monitorStopped && line.stopRequested)
    thread.Reset(CreateThread(nullptr, 0, CommThreadProc, argument.get(), 0, nullptr));
  if (!thread) {
    line.monitorStopped.Reset();
    Close();
    return false;
  }
  static_cast<void>(argument.release());  // the thread owns it now
  return true;
}

// An event mask of 0 ends the thread's wait. A driver may overlook a mask that is set just as bytes arrive,
// so it is set again until the thread is through; after 1 s everything that waits is cancelled, too.
void CSerialInput::StopMon() {
  Line& line = *line_;
  if (!line.monitorStopped) return;
  SetEvent(line.stopRequested.Get());
  for (int n = 0; n < kStopTries && !line.showsBox; ++n) {
    if (line.port == INVALID_HANDLE_VALUE) return;
    SetCommMask(line.port, 0);
    if (n >= kTriesBeforeCancel) CancelWaits(line.port);
    if (WaitForSingleObject(line.monitorStopped.Get(), kStopRetryMs) != WAIT_TIMEOUT) return;
  }
  Abandon();
}

// Closing a port whose driver hangs could hang, too, so it stays the thread's. Behind a box the driver is
// free.
void CSerialInput::Abandon() {
  line_->isAbandoned = true;
  if (line_->showsBox) line_->ClosePort();
  line_ = std::make_shared<Line>();
  isOpen_ = false;
}

bool CSerialInput::IsMonitoring() const {
  return line_->monitorStopped && WaitForSingleObject(line_->monitorStopped.Get(), 0) == WAIT_TIMEOUT;
}

uint32_t CSerialInput::GetBaudRate() const {
  return kBaudRate;
}

DWORD WINAPI CSerialInput::CommThreadProc(void* line) {
  const std::unique_ptr<std::shared_ptr<Line>> owned(static_cast<std::shared_ptr<Line>*>(line));
  try {
    Monitor(**owned);
  } catch (...) {
    OutputDebugStringW(TEXT("serial monitor ended by an exception\r\n"));
  }
  Line& ended = **owned;
  SetEvent(ended.monitorStopped.Get());
  if (!ended.IsStopRequested() && ended.targetWindow) ended.Post(WM_PIC_LINE_LOST, 0);
  return 0;
}

// Until the line is being closed or is lost. Who sets another mask ends a wait with an empty one, and so does
// a driver that is going.
void CSerialInput::Monitor(Line& line) {
  if (!SetCommMask(line.port, EV_RXCHAR)) return;
  DWORD events = EV_RXCHAR;  // what came before the mask was set raises no event
  while (line.port != INVALID_HANDLE_VALUE && !line.IsStopRequested()) {
    if ((events & EV_RXCHAR) && !Drain(line)) return;
    if (!WaitCommEvent(line.port, &events, nullptr) || events == 0) return;
  }
}

// Hands on all that the driver holds. False when the driver does not even tell how much that is: some report
// a device that is gone as an event instead of failing the wait.
bool CSerialInput::Drain(Line& line) {
  std::array<uint8_t, kReadChunk> buffer;
  for (;;) {
    COMSTAT status = {};
    DWORD errors = 0;
    if (!ClearCommError(line.port, &errors, &status)) return false;
    const uint32_t wanted = std::min<uint32_t>(kReadChunk, status.cbInQue);
    const uint32_t count = wanted > 0 ? Read(line, buffer.data(), wanted) : 0;
    line.Deliver({buffer.data(), count});
    if (count < kReadChunk) return true;
  }
}

uint32_t CSerialInput::Read(Line& line, uint8_t* buffer, uint32_t wanted) {
  const HANDLE port = line.port;
  DWORD received = 0;
  if (ReadFile(port, buffer, wanted, &received, &line.readOverlapped)) return received;
  if (GetLastError() != ERROR_IO_PENDING) {
    if (const DWORD flags = TakeErrorFlags(port)) line.ShowReadError(TEXT("<CE3-%u>"), flags);
    return 0;
  }
  const DWORD error = AwaitTransfer(port, line.readOverlapped, received);
  if (error == ERROR_SUCCESS) return received;
  if (error == ERROR_OPERATION_ABORTED && line.IsStopRequested()) return 0;  // cancelled
  line.ShowReadError(TEXT("<CE1-%u>"), error);
  if (const DWORD flags = TakeErrorFlags(port)) line.ShowReadError(TEXT("<CE2-%u>"), flags);
  return received;
}

}  // namespace VeltraFramework
