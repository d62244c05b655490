// Serial ports. COM2 needs a plug that sends back what it is sent; where there is none the tests are skipped.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <string>

#include "test_window.h"

namespace {

using contract::TestThread;

HANDLE OpenPort(const WCHAR* name) {
  return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                     OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
}

class Serial : public testing::Test {
 protected:
  void SetUp() override {
    port = OpenPort(TEXT("\\\\.\\COM2"));
    if (port == INVALID_HANDLE_VALUE) GTEST_SKIP() << "there is no COM2";
    COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 10, 1000};
    ASSERT_TRUE(SetCommTimeouts(port, &timeouts));
    DCB dcb = {};
    dcb.DCBlength = sizeof(dcb);
    ASSERT_TRUE(GetCommState(port, &dcb));
    dcb.BaudRate = 57600;
    dcb.ByteSize = 8;
    dcb.Parity = NOPARITY;
    dcb.StopBits = ONESTOPBIT;
    dcb.fOutxCtsFlow = FALSE;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
    ASSERT_TRUE(SetCommState(port, &dcb));
    ASSERT_TRUE(PurgeComm(port, PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR));
    reading.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    writing.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (!HasPlug()) GTEST_SKIP() << "COM2 has no loop-back plug";
  }

  void TearDown() override {
    if (port == INVALID_HANDLE_VALUE) return;
    CloseHandle(port);
    CloseHandle(reading.hEvent);
    CloseHandle(writing.hEvent);
  }

  bool Write(const std::string& bytes) {
    DWORD count = 0;
    const auto size = static_cast<DWORD>(bytes.size());
    if (!WriteFile(port, bytes.data(), size, &count, &writing) && GetLastError() != ERROR_IO_PENDING)
      return false;
    return GetOverlappedResult(port, &writing, &count, TRUE) && count == size;
  }

  // One read of what is there, at most `limit` bytes.
  std::string Read(DWORD limit = 512) {
    std::array<char, 512> buffer{};
    DWORD count = 0;
    if (!ReadFile(port, buffer.data(), limit, &count, &reading)) {
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_IO_PENDING));
      EXPECT_TRUE(GetOverlappedResult(port, &reading, &count, TRUE));
    }
    return {buffer.data(), count};
  }

  DWORD Queued() {
    COMSTAT status = {};
    DWORD errors = 0;
    EXPECT_TRUE(ClearCommError(port, &errors, &status));
    return status.cbInQue;
  }

  bool AwaitQueued(DWORD count, int limitMs = 10'000) {
    constexpr int kStepMs = 5;
    int waited = 0;
    for (; Queued() < count && waited < limitMs; waited += kStepMs) Sleep(kStepMs);
    return waited < limitMs;
  }

  bool HasPlug() {
    static const bool hasPlug = TryPlug();
    return hasPlug;
  }

  bool TryPlug() {
    DWORD count = 0;
    const bool written = WriteFile(port, "?", 1, &count, &writing) || GetLastError() == ERROR_IO_PENDING;
    const bool isBack = written && AwaitQueued(1, 1000);
    PurgeComm(port, PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR);
    return isBack;
  }

  HANDLE port = INVALID_HANDLE_VALUE;
  OVERLAPPED reading = {};
  OVERLAPPED writing = {};
};

TEST(SerialNames, APortThatIsNotThere) {
  EXPECT_EQ(OpenPort(TEXT("\\\\.\\COM77")), INVALID_HANDLE_VALUE);
  EXPECT_EQ(OpenPort(TEXT("\\\\.\\COM-7")), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(Serial, IsOpenedOnceAndRemembersItsSettings) {
  if (!contract::WineDeviates("opens a port twice")) {
    EXPECT_EQ(OpenPort(TEXT("\\\\.\\COM2")), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  }
  DCB dcb = {};
  dcb.DCBlength = sizeof(dcb);
  ASSERT_TRUE(GetCommState(port, &dcb));
  EXPECT_EQ(dcb.BaudRate, 57600u);
  EXPECT_EQ(dcb.ByteSize, 8);
  COMMTIMEOUTS timeouts = {};
  ASSERT_TRUE(GetCommTimeouts(port, &timeouts));
  EXPECT_EQ(timeouts.ReadIntervalTimeout, MAXDWORD);
  EXPECT_EQ(timeouts.WriteTotalTimeoutConstant, 1000u);
}

TEST_F(Serial, ReadsReturnAtOnceWithWhatIsThere) {
  const bool canReadNothing = !contract::WineDeviates("waits in a read of nothing");
  if (canReadNothing) {
    EXPECT_EQ(Read(), "");
  }
  ASSERT_TRUE(Write("UU\nSw1Make"));
  ASSERT_TRUE(AwaitQueued(10));
  EXPECT_EQ(Read(4), "UU\nS");
  EXPECT_EQ(Queued(), 6u);
  EXPECT_EQ(Read(), "w1Make");
  if (canReadNothing) {
    EXPECT_EQ(Read(), "");
  }

  ASSERT_TRUE(Write("lost"));
  ASSERT_TRUE(AwaitQueued(4));
  ASSERT_TRUE(PurgeComm(port, PURGE_RXCLEAR));
  EXPECT_EQ(Queued(), 0u);
}

TEST_F(Serial, AWaitEndsWithArrivingBytesOrWithTheMask) {
  ASSERT_TRUE(SetCommMask(port, EV_RXCHAR));
  std::string received;
  DWORD lastEvents = 99;
  BOOL lastResult = FALSE;
  const HANDLE gotAll = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  const TestThread monitor([&] {
    for (;;) {
      lastResult = WaitCommEvent(port, &lastEvents, nullptr);
      if (!lastResult || lastEvents == 0) return;
      received += Read();
      if (received.size() == 10) SetEvent(gotAll);
    }
  });
  Sleep(30);
  ASSERT_TRUE(Write("first"));
  Sleep(30);
  ASSERT_TRUE(Write("later"));
  EXPECT_EQ(WaitForSingleObject(gotAll, 10'000), WAIT_OBJECT_0);
  EXPECT_EQ(received, "firstlater");
  Sleep(100);  // it waits again
  EXPECT_TRUE(SetCommMask(port, 0));
  monitor.Join();
  EXPECT_TRUE(lastResult);
  EXPECT_EQ(lastEvents, 0u);
  CloseHandle(gotAll);
}

TEST_F(Serial, AnEventIsKeptWhileNobodyWaits) {
  ASSERT_TRUE(SetCommMask(port, EV_RXCHAR));
  ASSERT_TRUE(Write("x"));
  ASSERT_TRUE(AwaitQueued(1));
  DWORD events = 0;
  if (!contract::WineDeviates("forgets an event for which nobody waited")) {
    EXPECT_TRUE(WaitCommEvent(port, &events, nullptr));
    EXPECT_EQ(events, static_cast<DWORD>(EV_RXCHAR));
  }
  EXPECT_EQ(Read(), "x");

  // Without a mask there is nothing to wait for.
  if (contract::WineDeviates("waits without a mask for ever")) return;
  ASSERT_TRUE(SetCommMask(port, 0));
  EXPECT_FALSE(WaitCommEvent(port, &events, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

}  // namespace
