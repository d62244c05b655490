// Message boxes keep their thread's messages and timers going.
#include <gtest/gtest.h>
#include <windows.h>

#include "test_window.h"

namespace {

using contract::TakeAll;
using contract::TestThread;
using contract::TestWindow;

constexpr WCHAR kCaption[] = TEXT("contract box");

// Another program presses a button of the box once that is there.
void AnswerBox(UINT message, WPARAM wParam) {
  HWND box = nullptr;
  while (!(box = FindWindowW(TEXT("#32770"), kCaption))) Sleep(10);
  Sleep(100);
  PostMessageW(box, message, wParam, 0);
}

TEST(MessageBoxes, ReturnTheButton) {
  struct Case {
    UINT type;
    UINT message;
    WPARAM wParam;
    int result;
  };
  const Case cases[] = {{MB_OK, WM_COMMAND, IDOK, IDOK},
                        {MB_YESNO, WM_COMMAND, IDYES, IDYES},
                        {MB_YESNO, WM_COMMAND, IDNO, IDNO},
                        {MB_OK, WM_CLOSE, 0, IDOK}};
  for (const Case& c : cases) {
    if (c.message == WM_CLOSE && contract::WineDeviates("closing a box with one button cancels")) continue;
    const TestThread person([&] { AnswerBox(c.message, c.wParam); });
    EXPECT_EQ(MessageBoxW(nullptr, TEXT("text"), kCaption, c.type | MB_ICONINFORMATION), c.result) << c.type;
    EXPECT_EQ(FindWindowW(TEXT("#32770"), kCaption), nullptr);
  }
}

TEST(MessageBoxes, LetMessagesAndTimersThrough) {
  int posted = 0;
  int timed = 0;
  LRESULT sent = 0;
  TestWindow window([&](HWND, UINT message, WPARAM, LPARAM) {
    posted += message == WM_APP ? 1 : 0;
    timed += message == WM_TIMER ? 1 : 0;
    return message == WM_APP + 1 ? TestWindow::Answer(33) : TestWindow::kDefault;
  });
  PostMessageW(window.Get(), WM_APP, 0, 0);
  SetTimer(window.Get(), 5, 20, nullptr);
  const TestThread person([&] {
    sent = SendMessageW(window.Get(), WM_APP + 1, 0, 0);
    AnswerBox(WM_COMMAND, IDOK);
  });
  EXPECT_EQ(MessageBoxW(window.Get(), TEXT("text"), kCaption, MB_OK), IDOK);
  KillTimer(window.Get(), 5);
  EXPECT_EQ(posted, 1);
  EXPECT_GE(timed, 2);
  EXPECT_EQ(sent, 33);
}

TEST(MessageBoxes, CanBeShownByAnyThread) {
  int answer = 0;
  const TestThread asking([&] { answer = MessageBoxW(nullptr, TEXT("text"), kCaption, MB_YESNO); });
  AnswerBox(WM_COMMAND, IDNO);
  asking.Join();
  EXPECT_EQ(answer, IDNO);
}

}  // namespace
