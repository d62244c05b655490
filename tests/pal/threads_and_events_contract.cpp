// Events, threads, waiting and time.
#include <gtest/gtest.h>
#include <windows.h>

#include "test_window.h"

namespace {

using contract::ClockMs;
using contract::kClockTick;
using contract::MsSince;
using contract::TestThread;

constexpr DWORD kSignaled = WAIT_OBJECT_0;
constexpr DWORD kNot = WAIT_TIMEOUT;

class OwnedHandle {
 public:
  explicit OwnedHandle(HANDLE handle) : handle_(handle) {}
  ~OwnedHandle() { CloseHandle(handle_); }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  [[nodiscard]] HANDLE Get() const { return handle_; }

 private:
  HANDLE handle_;
};

HANDLE NewEvent(bool signaled = false) {
  return CreateEventW(nullptr, TRUE, signaled ? TRUE : FALSE, nullptr);
}

TEST(Events, StaySetUntilTheyAreGone) {
  for (const bool signaled : {true, false}) {
    const OwnedHandle event(NewEvent(signaled));
    EXPECT_EQ(WaitForSingleObject(event.Get(), 0), signaled ? kSignaled : kNot);
    EXPECT_TRUE(SetEvent(event.Get()));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(WaitForSingleObject(event.Get(), 0), kSignaled);
  }
}

TEST(Waiting, TakesItsTimeAndFailsForWhatIsClosed) {
  const OwnedHandle never(NewEvent());
  const int start = ClockMs();
  EXPECT_EQ(WaitForSingleObject(never.Get(), 60), kNot);
  Sleep(40);
  EXPECT_GE(MsSince(start) + kClockTick, 100);

  const HANDLE closed = NewEvent();
  EXPECT_TRUE(CloseHandle(closed));
  EXPECT_EQ(WaitForSingleObject(closed, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  EXPECT_FALSE(SetEvent(closed));
  EXPECT_FALSE(CloseHandle(closed));
}

TEST(Threads, HaveALastErrorEach) {
  DWORD inside = 0;
  const TestThread thread([&inside] {
    CloseHandle(nullptr);
    inside = GetLastError();
  });
  thread.Join();
  EXPECT_EQ(inside, static_cast<DWORD>(ERROR_INVALID_HANDLE));
  EXPECT_NE(GetLastError(), inside);
}

}  // namespace
