// Timers of windows and threads.
#include <gtest/gtest.h>
#include <windows.h>

#include "test_window.h"

namespace {

using contract::ClockMs;
using contract::kClockTick;
using contract::MsSince;
using contract::TakeAll;
using contract::TestWindow;

size_t CountTimers(const std::vector<MSG>& messages, UINT_PTR id) {
  size_t count = 0;
  for (const MSG& message : messages) count += message.message == WM_TIMER && message.wParam == id ? 1 : 0;
  return count;
}

class Timers : public testing::Test {
 protected:
  void SetUp() override { TakeAll(); }

  TestWindow window;
};

TEST_F(Timers, ComeAgainAndAgain) {
  for (const UINT period : {60U, 0U}) {  // never faster than ten milliseconds
    const int start = ClockMs();
    ASSERT_EQ(SetTimer(window.Get(), 5, period, nullptr), 5u);
    MSG message;
    for (int i = 0; i < 9; ++i) {
      ASSERT_GT(GetMessageW(&message, window.Get(), WM_TIMER, WM_TIMER), 0);
      EXPECT_EQ(message.wParam, 5u);
    }
    EXPECT_GE(MsSince(start) + kClockTick, period > 0 ? 540 : 80);
    EXPECT_TRUE(KillTimer(window.Get(), 5));
  }
  EXPECT_FALSE(KillTimer(window.Get(), 5));
}

TEST_F(Timers, WaitBehindPostedMessagesAndOnlyOnce) {
  SetTimer(window.Get(), 5, 20, nullptr);
  Sleep(130);  // several periods
  PostMessageW(window.Get(), WM_APP, 0, 0);
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, window.Get(), 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_APP));
  ASSERT_TRUE(PeekMessageW(&message, window.Get(), 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_TIMER));
  EXPECT_LE(CountTimers(TakeAll(window.Get()), 5), 1u);  // a slow host may be at the next period already
  KillTimer(window.Get(), 5);
}

TEST_F(Timers, AreReplacedByTheirNumberAndGoneWhenKilledEvenIfDue) {
  SetTimer(window.Get(), 5, 20, nullptr);
  SetTimer(window.Get(), 5, 60'000, nullptr);
  SetTimer(window.Get(), 6, 60, nullptr);
  MSG message;
  ASSERT_GT(GetMessageW(&message, window.Get(), WM_TIMER, WM_TIMER), 0);
  EXPECT_EQ(message.wParam, 6u);
  EXPECT_TRUE(KillTimer(window.Get(), 5));
  EXPECT_FALSE(KillTimer(window.Get(), 5));
  Sleep(130);
  EXPECT_TRUE(KillTimer(window.Get(), 6));
  EXPECT_EQ(CountTimers(TakeAll(window.Get()), 6), 0u);
}

UINT_PTR calledTimer = 0;
void CALLBACK OnTimer(HWND /*window*/, UINT /*message*/, UINT_PTR id, DWORD /*time*/) {
  calledTimer = id;
}

TEST_F(Timers, CanCallAFunction) {
  calledTimer = 0;
  const UINT_PTR id = SetTimer(nullptr, 0, 20, OnTimer);
  ASSERT_NE(id, 0u);
  EXPECT_NE(SetTimer(nullptr, 0, 60'000, OnTimer), id);  // without a window each is a new one
  MSG message;
  ASSERT_GT(GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER), 0);
  EXPECT_EQ(message.hwnd, nullptr);
  DispatchMessageW(&message);
  EXPECT_EQ(calledTimer, id);
  EXPECT_TRUE(KillTimer(nullptr, id));
}

TEST_F(Timers, GoWithTheirWindow) {
  SetTimer(window.Get(), 5, 20, nullptr);
  DestroyWindow(window.Get());
  Sleep(50);
  EXPECT_EQ(CountTimers(TakeAll(), 5), 0u);
  EXPECT_EQ(SetTimer(window.Get(), 5, 20, nullptr), 0u);
  if (!contract::WineDeviates("reports 6 for a timer of a window that is gone")) {
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
  }
}

}  // namespace
