// Posted and sent messages.
#include <gtest/gtest.h>
#include <windows.h>

#include "test_window.h"

namespace {

using contract::TakeAll;
using contract::TestThread;
using contract::TestWindow;

constexpr UINT kFirst = WM_APP + 1;
constexpr UINT kSecond = WM_APP + 2;

std::vector<UINT> NumbersOf(const std::vector<MSG>& messages) {
  std::vector<UINT> numbers;
  for (const MSG& message : messages)
    if (message.message >= WM_APP || message.message == WM_QUIT) numbers.push_back(message.message);
  return numbers;
}

// Windows itself posts and sends more than the tests do.
class Messages : public testing::Test {
 protected:
  void SetUp() override { TakeAll(); }

  TestWindow::Answer Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message < WM_APP && message != WM_COPYDATA) return TestWindow::kDefault;
    handled.push_back(message);
    return onMessage ? TestWindow::Answer(onMessage(message, wParam, lParam)) : TestWindow::Answer(0);
  }

  std::vector<UINT> handled;
  std::function<LRESULT(UINT, WPARAM, LPARAM)> onMessage;
  TestWindow window{
      [this](HWND, UINT message, WPARAM wParam, LPARAM lParam) { return Handle(message, wParam, lParam); }};
};

TEST_F(Messages, FiltersChooseByWindowAndNumberAndQuitComesLast) {
  const TestWindow other({}, TEXT("ContractOther"));
  TakeAll();
  for (const HWND to : {window.Get(), other.Get()})
    for (const UINT number : {kSecond, kFirst}) ASSERT_TRUE(PostMessageW(to, number, 0, 0));
  EXPECT_EQ(NumbersOf(TakeAll(other.Get(), kFirst, kFirst)), std::vector<UINT>{kFirst});
  PostQuitMessage(5);
  MSG message;
  for (const UINT number : {kSecond, kFirst, kSecond}) {
    ASSERT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.message, number);
  }
  EXPECT_EQ(GetMessageW(&message, window.Get(), kFirst, kFirst), 0);  // it passes every filter
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 5u);
  EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));  // and came once
}

TEST_F(Messages, AMessageKnowsWhenItWasPosted) {
  const DWORD before = GetTickCount();
  PostMessageW(window.Get(), kFirst, 0, 0);
  Sleep(200);
  MSG message;
  ASSERT_GT(GetMessageW(&message, nullptr, kFirst, kFirst), 0);
  EXPECT_LT(message.time - before, 150u);
  EXPECT_EQ(static_cast<DWORD>(GetMessageTime()), message.time);
}

TEST_F(Messages, DestroyedWindowsTakeNoneAndLoseTheirs) {
  ASSERT_TRUE(PostMessageW(window.Get(), kFirst, 0, 0));
  DestroyWindow(window.Get());
  EXPECT_EQ(NumbersOf(TakeAll()), std::vector<UINT>{});
  EXPECT_FALSE(PostMessageW(window.Get(), kFirst, 0, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
  EXPECT_EQ(SendMessageW(window.Get(), kFirst, 0, 0), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
  MSG message;
  EXPECT_EQ(GetMessageW(&message, window.Get(), 0, 0), -1);
  const MSG late = {window.Get(), kFirst, 0, 0, 0, {0, 0}};
  EXPECT_EQ(DispatchMessageW(&late), 0);
  EXPECT_TRUE(handled.empty());
}

TEST_F(Messages, SendingFromAnotherThreadWaitsForTheLoop) {
  onMessage = [](UINT message, WPARAM wParam, LPARAM) {
    return message == kFirst ? static_cast<LRESULT>(wParam + 1) : 0;
  };
  LRESULT answer = 0;
  PostMessageW(window.Get(), kSecond, 0, 0);
  const TestThread sender([&] {
    answer = SendMessageW(window.Get(), kFirst, 41, 0);
    PostMessageW(window.Get(), kSecond, 1, 0);
  });
  Sleep(50);  // the sender has long sent, and nothing is handled in a sleep
  EXPECT_TRUE(handled.empty());
  MSG message;
  while (handled.size() < 3 && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  sender.Join();
  EXPECT_EQ(answer, 42);
  EXPECT_EQ(handled, (std::vector<UINT>{kFirst, kSecond, kSecond}));  // what is sent overtakes what is posted
}

TEST_F(Messages, NotificationsAreCalledOnTheirOwnThread) {
  EXPECT_TRUE(SendNotifyMessageW(window.Get(), kFirst, 0, 0));
  EXPECT_EQ(handled, std::vector<UINT>{kFirst});
  bool sent = false;
  const TestThread notifier([&] { sent = SendNotifyMessageW(window.Get(), kSecond, 0, 0) != FALSE; });
  notifier.Join();  // does not wait for the window
  EXPECT_TRUE(sent);
  EXPECT_EQ(handled, std::vector<UINT>{kFirst});
  TakeAll();
  EXPECT_EQ(handled, (std::vector<UINT>{kFirst, kSecond}));
}

TEST_F(Messages, RegisteredNamesHaveOneNumberEach) {
  const UINT number = RegisterWindowMessageW(TEXT("Contract_Message"));
  EXPECT_GE(number, 0xC000u);
  EXPECT_LE(number, 0xFFFFu);
  EXPECT_EQ(RegisterWindowMessageW(TEXT("CONTRACT_MESSAGE")), number);
  EXPECT_NE(RegisterWindowMessageW(TEXT("Contract_Other")), number);

  EXPECT_TRUE(SendNotifyMessageW(HWND_BROADCAST, number, 0, 0));
  EXPECT_EQ(handled, std::vector<UINT>{number});  // the sender's own windows hear it, too
}

}  // namespace
