// Serial ports in memory, as the program and the device behind them see each other.
#include "tests/pal/machine_program.h"

namespace {

using namespace std::chrono_literals;
using pal::Machine;

// One read of what is there; `error` is what it ended with.
std::vector<uint8_t> ReadPort(HANDLE port, DWORD* error = nullptr) {
  std::vector<uint8_t> bytes(512);
  OVERLAPPED overlapped = {};
  overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD count = 0;
  BOOL done = ReadFile(port, bytes.data(), 512, &count, &overlapped);
  if (!done && GetLastError() == ERROR_IO_PENDING)
    done = GetOverlappedResult(port, &overlapped, &count, TRUE);
  if (error) *error = done ? 0 : GetLastError();
  CloseHandle(overlapped.hEvent);
  bytes.resize(count);
  return bytes;
}

void WritePort(HANDLE port, const std::string& text) {
  OVERLAPPED overlapped = {};
  overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD count = 0;
  WriteFile(port, text.data(), static_cast<DWORD>(text.size()), &count, &overlapped);
  CloseHandle(overlapped.hEvent);
}

class SerialMachineTest : public MachineTest {
 protected:
  // A reader as the tool has one: waits for bytes and takes them until the wait fails or the mask ends it.
  void StartReader() {
    reader = [this] {
      port = OpenPort(2);
      SetCommMask(port, EV_RXCHAR);
      DWORD events = 0;
      while (WaitCommEvent(port, &events, nullptr) && events != 0) {
        for (std::vector<uint8_t> bytes = ReadPort(port); !bytes.empty(); bytes = ReadPort(port))
          received.insert(received.end(), bytes.begin(), bytes.end());
      }
      lastError = GetLastError();
      lastEvents = events;
      ended = true;
      CloseHandle(port);
    };
    machine.StartProgram([this] {
      StartThread(reader);
      MakeWindow();
      return RunLoop();
    });
    machine.Advance(1s);
  }

  pal::SerialPort& line = machine.AddSerialPort(2);
  std::function<void()> reader;
  HANDLE port = INVALID_HANDLE_VALUE;
  std::vector<uint8_t> received;
  bool ended = false;
  DWORD lastError = 0;
  DWORD lastEvents = 99;
};

TEST_F(SerialMachineTest, AMegabyteAtOnceArrivesByteForByte) {
  StartReader();
  EXPECT_TRUE(line.IsOpen());
  std::vector<uint8_t> sent(1 << 20);
  uint32_t state = 1;
  for (uint8_t& byte : sent) byte = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  const pal::Time before = machine.Now();
  line.Deliver(sent);
  machine.Advance(0s);
  EXPECT_EQ(machine.Now(), before);  // all of it before the clock moves on
  EXPECT_EQ(received, sent);
}

TEST_F(SerialMachineTest, ADeviceThatVanishesEndsTheWaitAndComesBack) {
  StartReader();
  line.Vanish();
  machine.Advance(0s);
  EXPECT_TRUE(ended);
  EXPECT_EQ(lastError, static_cast<DWORD>(ERROR_OPERATION_ABORTED));
  EXPECT_FALSE(line.IsOpen());
  line.Deliver(BytesOf("nobody hears"));

  const auto tryToOpen = [&] {
    DWORD error = 0;
    Machine* outside = &machine;
    reader = [&] {
      const HANDLE handle = OpenPort(2);
      error = handle == INVALID_HANDLE_VALUE ? GetLastError() : 0;
      if (handle == INVALID_HANDLE_VALUE) return;
      EXPECT_EQ(OpenPort(2), INVALID_HANDLE_VALUE);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
      outside->AddSerialPort(2).Vanish();  // under the handle's feet
      DWORD errors = 0;
      EXPECT_FALSE(ClearCommError(handle, &errors, nullptr));
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_COMMAND));
      EXPECT_FALSE(SetCommMask(handle, 0));
      CloseHandle(handle);
    };
    WindowHandler() = [&](HWND, UINT, WPARAM, LPARAM) -> LRESULT {
      CloseHandle(StartThread(reader));
      return 0;
    };
    machine.Post(machine.ProgramWindow(u"MachineTest"), WM_APP, 0, 0);
    machine.Advance(1s);
    return error;
  };
  EXPECT_EQ(tryToOpen(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  line.Return();
  EXPECT_EQ(tryToOpen(), 0u);
  EXPECT_EQ(machine.CountOpen("serial"), 0);
  EXPECT_EQ(received, std::vector<uint8_t>{});
}

TEST_F(SerialMachineTest, WhatIsWrittenReachesTheDeviceAndTheStream) {
  std::vector<std::pair<pal::Time, std::string>> heard;
  line.OnWrite([&](std::span<const uint8_t> bytes) {
    heard.emplace_back(machine.Now(), std::string(bytes.begin(), bytes.end()));
    line.Deliver(BytesOf("reply"));
  });
  machine.StartProgram([this] {
    port = OpenPort(2);
    SetCommMask(port, EV_RXCHAR);
    Sleep(1500);
    WritePort(port, "Ready");
    DWORD events = 0;
    EXPECT_TRUE(WaitCommEvent(port, &events, nullptr));
    received = ReadPort(port);
    CloseHandle(port);
    return 0;
  });
  machine.Advance(5s);
  EXPECT_EQ(heard, (std::vector<std::pair<pal::Time, std::string>>{{1500ms, "Ready"}}));
  EXPECT_EQ(std::string(received.begin(), received.end()), "reply");
  EXPECT_EQ(line.Timeouts().ReadIntervalTimeout, MAXDWORD);
  Log stream;
  for (const pal::Effect& effect : machine.Effects())
    if (!std::holds_alternative<pal::ProgramStarted>(effect.detail))
      stream.push_back(std::to_string(effect.at / 1ms) + " " + Describe(effect));
  EXPECT_EQ(stream, (Log{"0 " + pal::Describe({0s, pal::SerialOpened{2}}),
                         "1500 " + pal::Describe({0s, pal::SerialWrite{2, {'R', 'e', 'a', 'd', 'y'}}}),
                         "1500 " + pal::Describe({0s, pal::SerialClosed{2}}),
                         "1500 " + pal::Describe({0s, pal::ProgramEnded{0}})}));
}

TEST_F(SerialMachineTest, ReadsFailInTheCallOrInTheirCompletion) {
  std::vector<DWORD> errors;
  std::vector<DWORD> flags;
  machine.StartProgram([&] {
    port = OpenPort(2);
    for (const bool atOnce : {false, true}) {
      line.FailNextRead(ERROR_OPERATION_ABORTED, 8, atOnce);
      DWORD error = 0;
      ReadPort(port, &error);
      errors.push_back(error);
      DWORD raised = 0;
      ClearCommError(port, &raised, nullptr);
      flags.push_back(raised);
      ClearCommError(port, &raised, nullptr);
      EXPECT_EQ(raised, 0u);
    }
    return 0;
  });
  machine.Advance(1s);
  EXPECT_EQ(errors, (std::vector<DWORD>{ERROR_OPERATION_ABORTED, ERROR_OPERATION_ABORTED}));
  EXPECT_EQ(flags, (std::vector<DWORD>{8, 8}));
}

// A thread for each opening, ended by the mask as the tool does it: nothing stays behind.
TEST_F(SerialMachineTest, AThousandOpeningsLeaveNothing) {
  int opened = 0;
  HANDLE stopped = nullptr;
  reader = [&] {
    DWORD events = 0;
    while (WaitCommEvent(port, &events, nullptr) && events != 0) ReadPort(port);
    SetEvent(stopped);
  };
  machine.StartProgram([&] {
    for (int i = 0; i < 1000; ++i) {
      port = OpenPort(2);
      if (port == INVALID_HANDLE_VALUE) return 1;
      ++opened;
      SetCommMask(port, EV_RXCHAR);
      stopped = CreateEventW(nullptr, TRUE, FALSE, nullptr);
      CloseHandle(StartThread(reader));
      if (i % 3 == 0) Sleep(1);
      SetCommMask(port, 0);
      if (WaitForSingleObject(stopped, 1000) != WAIT_OBJECT_0) return 2;
      CloseHandle(stopped);
      CloseHandle(port);
    }
    Sleep(1000);
    return 0;
  });
  EXPECT_TRUE(machine.AdvanceUntil([&] { return opened == 1000; }, 60s));
  machine.Advance(10ms);
  for (const char* kind : {"thread", "thread handle", "event", "serial"})
    EXPECT_EQ(machine.CountOpen(kind), 0) << kind;
  machine.Advance(10s);
  EXPECT_EQ(machine.ExitCode(), 0);
}

}  // namespace
