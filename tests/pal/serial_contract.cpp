// Serial ports. COM2 needs a plug that sends back what it is sent; where there is none the tests are skipped.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "test_window.h"

namespace {

using contract::TestThread;

HANDLE OpenPort(const WCHAR* name) {
  return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                     OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
}

constexpr DWORD kEmpty = PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR;

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
    for (OVERLAPPED* transfer : {&reading, &writing})
      transfer->hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    static const bool hasPlug = [this] { return Write("?"), AwaitQueued(1, 1000); }();
    ASSERT_TRUE(PurgeComm(port, kEmpty));
    if (!hasPlug) GTEST_SKIP() << "COM2 has no loop-back plug";
  }
  void TearDown() override {
    if (port == INVALID_HANDLE_VALUE) return;
    for (const HANDLE handle : {port, reading.hEvent, writing.hEvent}) CloseHandle(handle);
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
    std::string bytes(limit, 0);
    DWORD count = 0;
    if (!ReadFile(port, bytes.data(), limit, &count, &reading)) {
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_IO_PENDING));
      EXPECT_TRUE(GetOverlappedResult(port, &reading, &count, TRUE));
    }
    return bytes.substr(0, count);
  }
  DWORD Queued() {
    COMSTAT status = {};
    DWORD errors = 0;
    EXPECT_TRUE(ClearCommError(port, &errors, &status));
    return status.cbInQue;
  }
  bool AwaitQueued(DWORD count, int tries = 10'000) {
    for (; tries > 0 && Queued() < count; tries -= 5) Sleep(5);
    return tries > 0;
  }

  HANDLE port = INVALID_HANDLE_VALUE;
  OVERLAPPED reading = {};
  OVERLAPPED writing = {};
};

TEST_F(Serial, IsOpenedOnce) {
  EXPECT_EQ(OpenPort(TEXT("\\\\.\\COM77")), INVALID_HANDLE_VALUE);
  EXPECT_EQ(OpenPort(TEXT("\\\\.\\COM-7")), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  if (contract::WineDeviates("opens a port twice")) return;
  EXPECT_EQ(OpenPort(TEXT("\\\\.\\COM2")), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST_F(Serial, ReadsReturnAtOnceWithWhatIsThere) {
  if (!contract::WineDeviates("waits in a read of nothing")) {
    EXPECT_EQ(Read(), "");
  }
  ASSERT_TRUE(Write("UU\nSw1Make"));
  ASSERT_TRUE(AwaitQueued(10));
  EXPECT_EQ(Read(4), "UU\nS");
  EXPECT_EQ(Queued(), 6u);
  EXPECT_EQ(Read(), "w1Make");

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
  const TestThread monitor([&] {
    while ((lastResult = WaitCommEvent(port, &lastEvents, nullptr)) && lastEvents != 0) received += Read();
  });
  for (const char* bytes : {"first", "later"}) {
    Sleep(30);
    ASSERT_TRUE(Write(bytes));
  }
  Sleep(300);  // it waits again
  EXPECT_EQ(received, "firstlater");
  EXPECT_TRUE(SetCommMask(port, 0));
  monitor.Join();
  EXPECT_TRUE(lastResult);
  EXPECT_EQ(lastEvents, 0u);
  if (contract::WineDeviates("waits without a mask, forgets events without a wait, waits at a closed port"))
    return;
  EXPECT_FALSE(WaitCommEvent(port, &lastEvents, nullptr));  // without a mask there is nothing to wait for
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  ASSERT_TRUE(SetCommMask(port, EV_RXCHAR));
  ASSERT_TRUE(Write("x") && AwaitQueued(1));
  for (const BOOL comes : {TRUE, FALSE}) {  // the event that was kept, then the end of the handle
    const TestThread waiter([&] { lastResult = WaitCommEvent(port, &lastEvents, nullptr); });
    Sleep(30);
    if (!comes) CloseHandle(port);
    waiter.Join();
    EXPECT_EQ(lastResult, comes);
    EXPECT_EQ(lastEvents, comes ? EV_RXCHAR : 0u);
  }
}

}  // namespace
