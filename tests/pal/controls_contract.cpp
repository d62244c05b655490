// The controls of dialogs: what they hold and what they tell.
#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

#include "test_window.h"
#include "tests/pal/test_dialog.h"

namespace {

using contract::DialogMessage;
using contract::OpenDialogRun;
using Codes = std::vector<int>;

TEST(Controls, ButtonsTellClicks) {
  OpenDialogRun([](OpenDialogRun& d) {
    for (const int button : {PUSH_BUTTON, CHECK_BOX}) {
      d.Click(button);
      EXPECT_EQ(d.TakeCodes(button, {BN_CLICKED}), Codes{BN_CLICKED});
      const UINT checked = button == CHECK_BOX ? BST_CHECKED : BST_UNCHECKED;
      EXPECT_EQ(IsDlgButtonChecked(d.dialog, button), checked);
      d.Click(button);
      EXPECT_EQ(IsDlgButtonChecked(d.dialog, button), static_cast<UINT>(BST_UNCHECKED));
      d.TakeTold();
      CheckDlgButton(d.dialog, button, BST_CHECKED);  // by the program: nothing is told
      EXPECT_EQ(d.TakeCodes(button, {BN_CLICKED}), Codes{});
      EXPECT_EQ(IsDlgButtonChecked(d.dialog, button), checked);
    }
  });
}

TEST(Controls, LabelsTellClicksWhenTheyAreAskedTo) {
  OpenDialogRun([](OpenDialogRun& d) {
    for (const int label : {TALKING_LABEL, MUTE_LABEL}) {
      d.Click(label);
      d.Send(label, WM_LBUTTONDBLCLK);
      const Codes expected = label == TALKING_LABEL ? Codes{STN_CLICKED, STN_DBLCLK} : Codes{};
      EXPECT_EQ(d.TakeCodes(label, {STN_CLICKED, STN_DBLCLK}), expected) << label;
    }
  });
}

TEST(Controls, EditsLimitWhatIsTyped) {
  OpenDialogRun([](OpenDialogRun& d) {
    d.Send(EDIT, EM_LIMITTEXT, 3);
    for (const WCHAR unit : {TEXT('a'), TEXT('b'), TEXT('c'), TEXT('d')}) d.Send(EDIT, WM_CHAR, unit);
    EXPECT_EQ(d.Text(EDIT), TEXT("abc"));
    SetDlgItemTextW(d.dialog, EDIT, TEXT("by the program"));
    EXPECT_EQ(d.Text(EDIT), TEXT("by the program"));
  });
}

TEST(Controls, ListsKeepEntriesWithTheirData) {
  OpenDialogRun([](OpenDialogRun& d) {
    EXPECT_EQ(d.Send(LIST, CB_GETCURSEL), CB_ERR);
    for (const WCHAR* entry : {TEXT("pear"), TEXT("apple")})
      EXPECT_EQ(d.Send(LIST, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry)), entry[0] == 'a');
    EXPECT_NE(d.Send(LIST, CB_SETITEMDATA, 0, -5), CB_ERR);
    EXPECT_EQ(static_cast<int>(d.Send(LIST, CB_GETITEMDATA, 0)), -5);
    EXPECT_EQ(d.Send(LIST, CB_SETCURSEL, 1), 1);
    EXPECT_EQ(d.Text(LIST), TEXT("apple"));
    EXPECT_EQ(d.TakeCodes(LIST, {CBN_SELCHANGE}), Codes{});  // by the program: nothing is told
    EXPECT_EQ(d.Send(LIST, CB_SETCURSEL, static_cast<WPARAM>(-1)), CB_ERR);
    EXPECT_EQ(d.Text(LIST), TEXT(""));
    d.Send(LIST, CB_RESETCONTENT);
    EXPECT_EQ(d.Send(LIST, CB_GETCOUNT), 0);
    EXPECT_EQ(d.Send(LIST, CB_GETCURSEL), CB_ERR);
  });
}

// The scroll codes that a key gives, and where the thumb is then.
TEST(Controls, TrackbarsClampAndTellKeys) {
  OpenDialogRun([](OpenDialogRun& d) {
    d.Send(TRACKBAR, TBM_SETRANGE, TRUE, MAKELONG(3, 60));
    EXPECT_EQ(d.Send(TRACKBAR, TBM_GETPOS), 3);
    d.Send(TRACKBAR, TBM_SETPOS, TRUE, 80);
    EXPECT_EQ(d.Send(TRACKBAR, TBM_GETPOS), 60);
    EXPECT_TRUE(d.TakeTold().empty());
    const struct {
      WPARAM key;
      int code;
      int position;
    } keys[] = {{VK_LEFT, TB_LINEUP, 59}, {VK_UP, TB_LINEUP, 58}, {VK_DOWN, TB_LINEDOWN, 59}};
    for (const auto& [key, code, position] : keys) {
      d.Key(TRACKBAR, key);
      EXPECT_EQ(d.Send(TRACKBAR, TBM_GETPOS), position) << key;
      const std::vector<DialogMessage> told = d.TakeTold();
      ASSERT_EQ(told.size(), 2U) << key;
      EXPECT_EQ(told[0].message, static_cast<UINT>(WM_HSCROLL));
      EXPECT_EQ(LOWORD(told[0].wParam), code) << key;
      EXPECT_EQ(LOWORD(told[1].wParam), TB_ENDTRACK) << key;
      EXPECT_EQ(reinterpret_cast<HWND>(told[1].lParam), d.Item(TRACKBAR));
    }
  });
}

TEST(Controls, ProgressBarsStepAndBeginAgain) {
  OpenDialogRun([](OpenDialogRun& d) {
    EXPECT_EQ(d.Send(PROGRESS, PBM_SETRANGE, 0, MAKELONG(0, 3)), MAKELONG(0, 100));
    EXPECT_EQ(d.Send(PROGRESS, PBM_SETSTEP, 1), 10);
    for (const int before : {0, 1, 2, 3}) EXPECT_EQ(d.Send(PROGRESS, PBM_STEPIT), before);
    EXPECT_LT(d.Send(PROGRESS, PBM_STEPIT), 3);  // beyond the end it began again
  });
}

}  // namespace
