// Dialogs: their life, their keys, who has the keyboard, and what goes on meanwhile.
#include <gtest/gtest.h>
#include <windows.h>

#include "test_window.h"
#include "tests/pal/test_dialog.h"

namespace {

using contract::OpenDialogRun;
using contract::TakeAll;
using contract::TestDialog;
using contract::TestWindow;

constexpr auto kNothing = [](HWND, UINT, WPARAM, LPARAM) { return TestWindow::kDefault; };

TEST(Dialogs, LifeOfAModalOne) {
  TestWindow owner(kNothing, TEXT("ContractOwner"));
  bool visibleInInit = true, ownerEnabledInInit = true, visible = false, parameterCame = false;
  HWND first = nullptr, focus = nullptr, parent = nullptr, window = nullptr;
  TestDialog dialog([&](HWND handle, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
    if (message == WM_INITDIALOG) {
      window = handle;
      visibleInInit = IsWindowVisible(handle);
      ownerEnabledInInit = IsWindowEnabled(owner.Get());
      first = reinterpret_cast<HWND>(wParam);
      parameterCame = lParam == reinterpret_cast<LPARAM>(&dialog);
      SetTimer(handle, 1, 50, nullptr);
      return TRUE;
    }
    if (message != WM_TIMER) return FALSE;
    visible = IsWindowVisible(handle);
    focus = GetFocus();
    parent = GetParent(handle);
    EndDialog(handle, 42);
    EXPECT_FALSE(IsWindowVisible(handle));  // at once
    EXPECT_TRUE(IsWindowEnabled(owner.Get()));
    return TRUE;
  });
  EXPECT_EQ(dialog.Run(owner.Get()), 42);
  EXPECT_FALSE(visibleInInit);
  EXPECT_FALSE(ownerEnabledInInit);
  EXPECT_TRUE(parameterCame);
  EXPECT_NE(first, nullptr);
  EXPECT_TRUE(visible);
  EXPECT_EQ(focus, first);  // the first control that can have it
  EXPECT_EQ(parent, owner.Get());
  EXPECT_FALSE(IsWindow(window));
}

TEST(Dialogs, EndedBeforeTheyAreShown) {
  bool shown = false;
  TestDialog dialog([&](HWND window, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
    if (message == WM_INITDIALOG) EndDialog(window, 7);
    if (message == WM_SHOWWINDOW && wParam) shown = true;
    return FALSE;
  });
  EXPECT_EQ(dialog.Run(), 7);
  EXPECT_FALSE(shown);
  EXPECT_EQ(DialogBoxIndirectParamW(nullptr, nullptr, nullptr, nullptr, 0), -1);
}

// Which command a key gives, with the keyboard at a control.
TEST(Dialogs, KeysBecomeCommands) {
  const struct {
    int focus;
    WPARAM key;
    bool defaultEnabled;
    int command;  // 0: none
  } cases[] = {
      {EDIT, VK_ESCAPE, true, IDCANCEL},         {EDIT, VK_RETURN, true, IDOK},
      {CHECK_BOX, VK_RETURN, true, IDOK},        {PUSH_BUTTON, VK_RETURN, true, PUSH_BUTTON},
      {IDCANCEL, VK_RETURN, true, IDCANCEL},     {EDIT, VK_RETURN, false, 0},
      {PUSH_BUTTON, VK_ESCAPE, false, IDCANCEL}, {LIST, VK_ESCAPE, true, IDCANCEL},
      {TRACKBAR, VK_ESCAPE, true, IDCANCEL},
  };
  for (const auto& c : cases) {
    int command = 0;
    TestDialog dialog([&](HWND window, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
      if (message == WM_INITDIALOG) {
        EnableWindow(GetDlgItem(window, IDOK), c.defaultEnabled);
        SendMessageW(window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(window, c.focus)), TRUE);
        PostMessageW(GetDlgItem(window, c.focus), WM_KEYDOWN, c.key, 0);
        PostMessageW(window, WM_APP, 0, 0);
        return FALSE;
      }
      if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && !command) command = LOWORD(wParam);
      if (message == WM_APP) EndDialog(window, 0);
      return FALSE;
    });
    dialog.Run();
    EXPECT_EQ(command, c.command) << c.focus << " key " << c.key;
  }
}

TEST(Dialogs, TabGoesInTheOrderOfTheTemplate) {
  OpenDialogRun run([&](OpenDialogRun& d) {
    EnableWindow(d.Item(PUSH_BUTTON), FALSE);
    ShowWindow(d.Item(EDIT), SW_HIDE);
    std::vector<int> way;
    for (HWND control = nullptr; way.size() < 8;) {
      control = GetNextDlgTabItem(d.dialog, control, FALSE);
      way.push_back(GetDlgCtrlID(control));
    }
    EXPECT_EQ(way,
              (std::vector<int>{CHECK_BOX, LIST, SORTED_LIST, TRACKBAR, IDOK, IDCANCEL, CHECK_BOX, LIST}));
    EXPECT_EQ(GetDlgCtrlID(GetNextDlgTabItem(d.dialog, d.Item(LIST), TRUE)), CHECK_BOX);
    SetFocus(d.Item(CHECK_BOX));
    MSG tab = {d.Item(CHECK_BOX), WM_KEYDOWN, VK_TAB, 0, 0, {0, 0}};
    EXPECT_TRUE(IsDialogMessageW(d.dialog, &tab));
    EXPECT_EQ(GetFocus(), d.Item(LIST));
    MSG other = {nullptr, WM_KEYDOWN, VK_TAB, 0, 0, {0, 0}};
    EXPECT_FALSE(IsDialogMessageW(d.dialog, &other));
  });
}

TEST(Dialogs, CloseBecomesCancelUnlessTheProcedureTakesIt) {
  for (const bool takes : {false, true}) {
    int command = 0;
    TestDialog dialog([&](HWND window, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
      if (message == WM_INITDIALOG) PostMessageW(window, WM_CLOSE, 0, 0);
      if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        command = LOWORD(wParam);
        EndDialog(window, 2);
      }
      if (message != WM_CLOSE || !takes) return FALSE;
      EndDialog(window, 0);
      return TRUE;
    });
    EXPECT_EQ(dialog.Run(), takes ? 0 : 2);
    EXPECT_EQ(command, takes ? 0 : IDCANCEL);
  }
}

TEST(Dialogs, AnswerWithTheirMessageResult) {
  TestDialog dialog([](HWND window, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_APP) SetWindowLongPtrW(window, DWLP_MSGRESULT, 99);
    return message == WM_APP || message == WM_APP + 1;
  });
  const HWND window = dialog.Create();
  EXPECT_EQ(SendMessageW(window, WM_APP, 0, 0), 99);
  EXPECT_EQ(SendMessageW(window, WM_APP + 2, 0, 0), 0);
  DestroyWindow(window);
}

TEST(Dialogs, ModelessOnesWaitToBeShown) {
  TestWindow owner(kNothing, TEXT("ContractOwner"));
  TestDialog dialog([](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; });
  const HWND window = dialog.Create(owner.Get());
  ASSERT_NE(window, nullptr);
  EXPECT_FALSE(IsWindowVisible(window));
  EXPECT_TRUE(IsWindowEnabled(owner.Get()));
  EXPECT_FALSE(ShowWindow(window, SW_SHOW));
  EXPECT_TRUE(IsWindowVisible(window));
  EXPECT_TRUE(SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE));
  EXPECT_TRUE((GetWindowLongPtrW(window, GWL_EXSTYLE) & static_cast<LONG_PTR>(WS_EX_TOPMOST)) != 0);
  EXPECT_TRUE(ShowWindow(window, SW_HIDE));
  EXPECT_FALSE(IsWindowVisible(window));
  DestroyWindow(window);
  EXPECT_FALSE(IsWindow(window));
}

TEST(Dialogs, MessagesAndTimersGoOnMeanwhile) {
  int posted = 0, timed = 0;
  TestWindow owner(
      [&](HWND, UINT message, WPARAM, LPARAM) {
        posted += message == WM_APP ? 1 : 0;
        timed += message == WM_TIMER ? 1 : 0;
        return TestWindow::kDefault;
      },
      TEXT("ContractOwner"));
  TestDialog dialog([&](HWND window, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_INITDIALOG) {
      PostMessageW(owner.Get(), WM_APP, 0, 0);
      SetTimer(owner.Get(), 3, 20, nullptr);
      SetTimer(window, 1, 100, nullptr);
    }
    if (message == WM_TIMER) EndDialog(window, 5);
    return FALSE;
  });
  EXPECT_EQ(dialog.Run(owner.Get()), 5);
  KillTimer(owner.Get(), 3);
  EXPECT_EQ(posted, 1);
  EXPECT_GE(timed, 2);
}

// The end of the program reaches the loops outside.
TEST(Dialogs, QuitEndsThemAndIsSeenOutside) {
  TestWindow owner(kNothing, TEXT("ContractOwner"));
  HWND window = nullptr;
  TestDialog dialog([&](HWND handle, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_INITDIALOG) PostQuitMessage(12);
    window = handle;
    return FALSE;
  });
  dialog.Run(owner.Get());
  EXPECT_FALSE(IsWindow(window));
  const std::vector<MSG> left = TakeAll();
  ASSERT_FALSE(left.empty());
  EXPECT_EQ(left.back().message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(left.back().wParam, 12U);
}

TEST(Dialogs, TheKeyboardLeavesWhatIsDisabledOrHidden) {
  OpenDialogRun run([&](OpenDialogRun& d) {
    SetFocus(d.Item(EDIT));
    EXPECT_FALSE(EnableWindow(d.Item(EDIT), FALSE));
    EXPECT_NE(GetFocus(), d.Item(EDIT));
    EXPECT_TRUE(EnableWindow(d.Item(EDIT), TRUE));
    EXPECT_NE(GetFocus(), d.Item(EDIT));  // and does not come back by itself
    SetFocus(d.Item(PUSH_BUTTON));
    ShowWindow(d.Item(PUSH_BUTTON), SW_HIDE);
    EXPECT_NE(GetFocus(), d.Item(PUSH_BUTTON));
  });
  EXPECT_EQ(run.result, 1);
}

}  // namespace
