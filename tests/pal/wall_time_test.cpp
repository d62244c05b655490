// The machine with the host's time: threads that really run at once, and a pty as the serial line.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <numeric>

#include "pal/machine/machine.h"

namespace {

using namespace std::chrono_literals;
using pal::Machine;

constexpr UINT kByteArrived = WM_APP + 1;

// The device's side of a pty.
class Pty {
 public:
  Pty() : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) return;
    termios raw{};
    tcgetattr(master_, &raw);
    cfmakeraw(&raw);
    tcsetattr(master_, TCSANOW, &raw);
    path_ = ptsname(master_);
  }
  ~Pty() { Close(); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  void Write(std::span<const uint8_t> bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = write(master_, bytes.data(), bytes.size());
      ASSERT_GT(count, 0);
      bytes = bytes.subspan(static_cast<size_t>(count));
    }
  }
  [[nodiscard]] std::string Read(size_t size) const {
    std::string text;
    pollfd ready{master_, POLLIN, 0};
    while (text.size() < size && poll(&ready, 1, 10'000) > 0) {
      char buffer[256];
      const ssize_t count = read(master_, buffer, sizeof(buffer));
      if (count <= 0) break;
      text.append(buffer, static_cast<size_t>(count));
    }
    return text;
  }
  void Close() {
    if (master_ >= 0) close(master_);
    master_ = -1;
  }

 private:
  int master_;
  std::string path_;
};

struct Reader {
  HANDLE port = INVALID_HANDLE_VALUE;
  HWND window = nullptr;
  HANDLE stop = nullptr;
  HANDLE stopped = nullptr;
  DWORD lastError = 0;
};

// Reads the port and posts every byte; when the queue is full it waits and posts again, as the tool does.
DWORD WINAPI Monitor(void* parameter) {
  Reader& reader = *static_cast<Reader*>(parameter);
  OVERLAPPED overlapped = {};
  overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  SetCommMask(reader.port, EV_RXCHAR);
  DWORD events = 0;
  while (WaitCommEvent(reader.port, &events, nullptr) && events != 0) {
    uint8_t buffer[512];
    DWORD count = 0;
    do {
      if (!ReadFile(reader.port, buffer, sizeof(buffer), &count, &overlapped)) break;
      for (DWORD i = 0; i < count; ++i)
        while (!PostMessageW(reader.window, kByteArrived, buffer[i], 0))
          if (WaitForSingleObject(reader.stop, 1) != WAIT_TIMEOUT) return 1;
    } while (count == sizeof(buffer));
  }
  reader.lastError = GetLastError();
  CloseHandle(overlapped.hEvent);
  SetEvent(reader.stopped);
  return 0;
}

// The program: a window that collects bytes, a monitor thread, and WM_CLOSE to stop them.
class WallTime : public testing::Test {
 protected:
  void StartReader() {
    machine.StartProgram([this] {
      current = this;
      WNDCLASSEXW windowClass = {};
      windowClass.cbSize = sizeof(windowClass);
      windowClass.lpfnWndProc = Procedure;
      windowClass.lpszClassName = TEXT("WallTime");
      RegisterClassExW(&windowClass);
      reader.window =
          CreateWindowExW(0, TEXT("WallTime"), TEXT(""), 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
      reader.stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
      reader.stopped = CreateEventW(nullptr, TRUE, FALSE, nullptr);
      reader.port = CreateFileW(TEXT("\\\\.\\COM2"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                FILE_FLAG_OVERLAPPED, nullptr);
      if (reader.port == INVALID_HANDLE_VALUE) return 1;
      COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 10, 1000};
      SetCommTimeouts(reader.port, &timeouts);
      DCB dcb = {};
      GetCommState(reader.port, &dcb);
      dcb.BaudRate = 57600;
      if (!SetCommState(reader.port, &dcb)) return 2;
      CloseHandle(CreateThread(nullptr, 0, Monitor, &reader, 0, nullptr));
      ready = true;
      MSG message;
      while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
      SetEvent(reader.stop);
      SetCommMask(reader.port, 0);
      const DWORD ended = WaitForSingleObject(reader.stopped, 10'000);
      CloseHandle(reader.port);
      return ended == WAIT_OBJECT_0 ? static_cast<int>(message.wParam) : 3;
    });
    ASSERT_TRUE(machine.clock.AdvanceUntil([this] { return ready.load(); }, 10s));
  }

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) PostQuitMessage(5);
    if (message == WM_USER) return static_cast<LRESULT>(wParam + 1);
    if (message == kByteArrived) {
      current->received.push_back(static_cast<uint8_t>(wParam));
      if (current->received.size() != current->expected) return 0;
      OVERLAPPED overlapped = {};
      DWORD count = 0;
      WriteFile(current->reader.port, "UU\nReady", 8, &count, &overlapped);
      mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
      return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
  }

  static inline WallTime* current = nullptr;
  Reader reader;
  std::atomic<bool> ready = false;
  std::vector<uint8_t> received;  // of the program's main thread; looked at when that is through
  size_t expected = 0;
  Machine machine{pal::Clock::kWall};  // the last: the program ends while all that it uses is still there
};

std::vector<uint8_t> SomeBytes(size_t size) {
  std::vector<uint8_t> bytes(size);
  uint32_t state = 7;
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  return bytes;
}

TEST_F(WallTime, BytesOfAPtyArriveInOrderAndWritesReachIt) {
  const Pty pty;
  machine.serial.AttachTty(2, pty.Path());
  const std::vector<uint8_t> sent = SomeBytes(200'000);
  expected = sent.size();
  StartReader();
  pty.Write(sent);
  ASSERT_TRUE(machine.clock.AdvanceUntil(
      [this] { return !pal::Select<pal::MouseInput>(machine.Effects()).empty(); }, 60s));
  EXPECT_EQ(pty.Read(8), "UU\nReady");
  bool ran = false;
  machine.clock.Do([&] { ran = true; });
  EXPECT_TRUE(ran);
  EXPECT_EQ(machine.desktop.Send(reader.window, WM_USER, 41, 0), 42);
  ASSERT_TRUE(machine.desktop.Post(reader.window, WM_CLOSE, 0, 0));
  ASSERT_TRUE(machine.clock.AdvanceUntil([this] { return machine.ExitCode().has_value(); }, 10s));
  EXPECT_EQ(machine.ExitCode(), 5);
  EXPECT_EQ(received, sent);
  EXPECT_EQ(machine.CountOpen("thread"), 0);
}

// The far end hangs up while the thread waits.
TEST_F(WallTime, APtyThatHangsUpEndsTheWait) {
  Pty pty;
  machine.serial.AttachTty(2, pty.Path());
  StartReader();
  machine.clock.Advance(20ms);
  pty.Close();
  ASSERT_TRUE(machine.clock.AdvanceUntil([this] { return machine.CountOpen("thread") == 0; }, 10s));
  EXPECT_EQ(reader.lastError, static_cast<DWORD>(ERROR_OPERATION_ABORTED));
}

// Ended in the midst of it: the monitor thread polls the pty, the main thread waits for messages.
TEST_F(WallTime, TheMachineEndsARunningProgram) {
  const Pty pty;
  machine.serial.AttachTty(2, pty.Path());
  StartReader();
  pty.Write(SomeBytes(100));
}

TEST_F(WallTime, TimersAndSleepsFollowTheHost) {
  const pal::Time start = machine.clock.Now();
  machine.StartProgram([] {
    SetTimer(nullptr, 0, 20, nullptr);
    MSG message;
    for (int i = 0; i < 3; ++i) GetMessageW(&message, nullptr, 0, 0);
    Sleep(30);
    return 0;
  });
  ASSERT_TRUE(machine.clock.AdvanceUntil([this] { return machine.ExitCode().has_value(); }, 10s));
  EXPECT_GE(machine.clock.Now() - start, 90ms);
  machine.clock.Advance(5ms);
  EXPECT_GE(machine.clock.Now() - start, 95ms);
}

}  // namespace
