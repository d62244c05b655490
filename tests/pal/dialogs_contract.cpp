// Dialogs: their life, their keys, and what goes on meanwhile.
#include <gtest/gtest.h>
#include <windows.h>

#include "test_window.h"
#include "tests/pal/test_dialog.h"

namespace {

using contract::TakeAll;
using contract::TestDialog;
using contract::TestWindow;

class Dialogs : public testing::Test {
 protected:
  int posted = 0, timed = 0;
  TestWindow owner{[this](HWND, UINT message, WPARAM, LPARAM) {
                     posted += message == WM_APP ? 1 : 0;
                     timed += message == WM_TIMER ? 1 : 0;
                     return TestWindow::kDefault;
                   },
                   TEXT("ContractOwner")};
};

TEST_F(Dialogs, LifeOfAModalOne) {
  bool ownerEnabledInInit = true, parameterCame = false;
  HWND first = nullptr;
  TestDialog dialog([&](HWND handle, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
    if (message == WM_INITDIALOG) {
      ownerEnabledInInit = IsWindowEnabled(owner.Get());
      first = reinterpret_cast<HWND>(wParam);
      parameterCame = lParam == reinterpret_cast<LPARAM>(&dialog);
      PostMessageW(owner.Get(), WM_APP, 0, 0);  // messages and timers of other windows go on
      SetTimer(owner.Get(), 3, 20, nullptr);
      SetTimer(handle, 1, 100, nullptr);
      return TRUE;
    }
    if (message != WM_TIMER) return FALSE;
    EndDialog(handle, 42);
    EXPECT_TRUE(IsWindowEnabled(owner.Get()));  // at once
    return TRUE;
  });
  EXPECT_EQ(dialog.Run(owner.Get()), 42);
  KillTimer(owner.Get(), 3);
  EXPECT_FALSE(ownerEnabledInInit);
  EXPECT_TRUE(parameterCame);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(posted, 1);
  EXPECT_GE(timed, 2);
}

TEST_F(Dialogs, EndedBeforeTheyAreShown) {
  TestDialog dialog([&](HWND window, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_INITDIALOG) EndDialog(window, 7);
    return FALSE;
  });
  EXPECT_EQ(dialog.Run(), 7);
}

// Which command a key gives, with the keyboard at a control.
TEST_F(Dialogs, KeysBecomeCommands) {
  const struct {
    int focus;
    WPARAM key;
    bool defaultEnabled;
    int command;  // 0: none
  } cases[] = {
      {EDIT, VK_ESCAPE, true, IDCANCEL},         {EDIT, VK_RETURN, true, IDOK},
      {CHECK_BOX, VK_RETURN, true, IDOK},        {EDIT, VK_RETURN, false, 0},
      {PUSH_BUTTON, VK_ESCAPE, false, IDCANCEL}, {LIST, VK_ESCAPE, true, IDCANCEL},
      {TRACKBAR, VK_ESCAPE, true, IDCANCEL},     {OTHER_LIST, VK_TAB, true, IDCANCEL},
  };
  for (const auto& c : cases) {
    int command = 0;
    TestDialog dialog([&](HWND window, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
      if (message == WM_INITDIALOG) {
        EnableWindow(GetDlgItem(window, IDOK), c.defaultEnabled);
        if (c.key == VK_TAB)  // of what can be reached only "Cancel" follows
          for (const int id : {TRACKBAR, IDOK}) EnableWindow(GetDlgItem(window, id), FALSE);
        SetFocus(GetDlgItem(window, c.focus));
        PostMessageW(GetDlgItem(window, c.focus), WM_KEYDOWN, c.key, 0);
        if (c.key == VK_TAB) PostMessageW(GetDlgItem(window, c.focus), WM_KEYDOWN, VK_RETURN, 0);
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

TEST_F(Dialogs, CloseBecomesCancelUnlessTheProcedureTakesIt) {
  for (const bool takes : {false, true}) {
    TestDialog dialog([&](HWND window, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
      if (message == WM_INITDIALOG) PostMessageW(window, WM_CLOSE, 0, 0);
      if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) EndDialog(window, 2);
      if (message != WM_CLOSE || !takes) return FALSE;
      EndDialog(window, 0);
      return TRUE;
    });
    EXPECT_EQ(dialog.Run(), takes ? 0 : 2);
  }
}

TEST_F(Dialogs, AProcedureLeavesItsResultInTheDialog) {
  TestDialog dialog([](HWND window, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_APP) SetWindowLongPtrW(window, DWLP_MSGRESULT, 99);
    return message == WM_APP;
  });
  const HWND window = dialog.Create(owner.Get());
  EXPECT_TRUE(IsWindowEnabled(owner.Get()));
  EXPECT_EQ(SendMessageW(window, WM_APP, 0, 0), 99);
  EXPECT_EQ(SendMessageW(window, WM_APP + 2, 0, 0), 0);
  DestroyWindow(window);
}

TEST_F(Dialogs, LabelsTellClicksWhenTheyAreAskedTo) {
  std::vector<int> told;
  TestDialog dialog([&](HWND, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
    if (message == WM_COMMAND && HIWORD(wParam) == STN_DBLCLK) told.push_back(LOWORD(wParam));
    return FALSE;
  });
  const HWND window = dialog.Create();
  for (const int label : {TALKING_LABEL, MUTE_LABEL})
    SendDlgItemMessageW(window, label, WM_LBUTTONDBLCLK, 0, 0);
  EXPECT_EQ(told, std::vector<int>{TALKING_LABEL});
  DestroyWindow(window);
}

// The end of the program reaches the loops outside.
TEST_F(Dialogs, QuitEndsThemAndIsSeenOutside) {
  HWND window = nullptr;
  TestDialog dialog([&](HWND handle, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message == WM_INITDIALOG) PostQuitMessage(12);
    window = handle;
    return FALSE;
  });
  dialog.Run(owner.Get());
  EXPECT_FALSE(IsWindow(window));
  EXPECT_EQ(TakeAll(nullptr, WM_QUIT, WM_QUIT).back().wParam, 12U);
}

}  // namespace
