// What the person sees of a dialog and does to it.
#include "pal/person.h"

#include <commctrl.h>
#include <commdlg.h>
#include <gtest/gtest.h>

#include "pal/machine.h"
#include "tests/pal/test_dialog.h"

namespace {

using namespace std::chrono_literals;
using namespace pal;

using Preparation = std::function<void(HWND)>;
using Look = std::function<void(HWND, UINT, WPARAM)>;

// A program that is one dialog; it ends with OK, Cancel or its close box.
void Open(Machine& machine, Preparation prepare = {}, Look look = {}) {
  machine.LoadResources(VELTRA_RESOURCES);
  machine.StartProgram([prepare, look] {
    contract::TestDialog dialog([&](HWND window, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
      if (message == WM_INITDIALOG && prepare) prepare(window);
      if (look) look(window, message, wParam);
      if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL))
        EndDialog(window, LOWORD(wParam));
      return message == WM_INITDIALOG;
    });
    return static_cast<int>(dialog.Run());
  });
  machine.Advance(1ms);
}

TEST(Person, SeesTheFrontDialog) {
  Machine machine;
  EXPECT_FALSE(person::FrontDialog());
  Open(machine, [](HWND window) {
    SendDlgItemMessageW(window, TRACKBAR, TBM_SETRANGE, TRUE, MAKELONG(1, 9));
    SendDlgItemMessageW(window, LIST, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(u"pear"));
    SendDlgItemMessageW(window, LIST, CB_SETITEMDATA, 0, 50000);
    ShowWindow(GetDlgItem(window, EDIT), SW_HIDE);
    EnableWindow(GetDlgItem(window, PUSH_BUTTON), FALSE);
  });
  const auto dialog = person::FrontDialog();
  ASSERT_TRUE(dialog);
  EXPECT_EQ(dialog->title, u"contract controls");
  EXPECT_EQ(dialog->controls.size(), 13U);
  EXPECT_EQ(person::Look(CHECK_BOX).text, u"&Check");
  EXPECT_TRUE(person::Look(CHECK_BOX).hasFocus);
  EXPECT_FALSE(person::Look(EDIT).isVisible);
  EXPECT_FALSE(person::Look(PUSH_BUTTON).isEnabled);
  EXPECT_EQ(person::Look(LIST).entries, (std::vector<ListEntry>{{u"pear", 50000}}));
  EXPECT_EQ(person::Look(TRACKBAR).highest, 9);
}

TEST(Person, DoesThingsInTheirOrder) {
  std::vector<UINT> scrolls;
  Machine machine;
  Open(
      machine,
      [](HWND window) {
        for (const WCHAR* text : {u"pear", u"fig"})
          SendDlgItemMessageW(window, LIST, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
      },
      [&](HWND, UINT message, WPARAM wParam) {
        if (message == WM_HSCROLL) scrolls.push_back(LOWORD(wParam));
      });
  person::Press(CHECK_BOX);
  person::Choose(LIST, u"fig");
  person::Drag(TRACKBAR, 500);
  person::Type(EDIT, u"written");
  machine.Advance(0ms);
  EXPECT_TRUE(person::Look(CHECK_BOX).isChecked);
  EXPECT_EQ(person::Look(LIST).text, u"fig");
  EXPECT_EQ(person::Look(TRACKBAR).position, 100);
  EXPECT_EQ(scrolls, (std::vector<UINT>{TB_THUMBTRACK, TB_THUMBPOSITION, TB_ENDTRACK}));
  EXPECT_EQ(person::Look(EDIT).text, u"written");
  person::Press(IDOK);
  machine.Advance(0ms);
  EXPECT_EQ(machine.ExitCode(), IDOK);
}

TEST(Person, LeavesByKeyOrCloseBox) {
  Machine machine;
  Open(machine);
  person::PressKey(VK_ESCAPE);
  machine.Advance(0ms);
  EXPECT_EQ(machine.ExitCode(), IDCANCEL);
  Open(machine);
  person::PressKey(VK_RETURN);
  machine.Advance(0ms);
  EXPECT_EQ(machine.ExitCode(), IDOK);
  Open(machine);
  person::CloseDialog();
  machine.Advance(0ms);
  EXPECT_EQ(machine.ExitCode(), IDCANCEL);
}

TEST(Person, CannotDoWhatNobodyCould) {
  const struct {
    std::function<void()> act;
    const char* words;
  } cases[] = {
      {[] { person::Press(PUSH_BUTTON); }, "1005 is disabled"},
      {[] { person::Type(EDIT, u"x"); }, "1006 is hidden"},
      {[] { person::Press(9999); }, "9999 is not in the dialog"},
      {[] { person::Choose(LIST, u"plum"); }, "1007 has no entry plum"},
  };
  for (const auto& c : cases) {
    const auto run = [&] {
      Machine machine;
      Open(machine, [](HWND window) {
        EnableWindow(GetDlgItem(window, PUSH_BUTTON), FALSE);
        ShowWindow(GetDlgItem(window, EDIT), SW_HIDE);
      });
      c.act();
      machine.Advance(0ms);
    };
    EXPECT_DEATH(run(), c.words);
  }
}

TEST(Person, ChoosesFiles) {
  Machine machine;
  std::u16string chosen;
  machine.StartProgram([&] {
    WCHAR path[20] = u"begin.hex";
    OPENFILENAMEW box = {};
    box.lStructSize = sizeof(box);
    box.lpstrFilter = TEXT("Hex\0*.hex\0All\0*.*\0");
    box.lpstrDefExt = TEXT("hex");
    box.lpstrFile = path;
    box.nMaxFile = 20;
    box.Flags = OFN_EXPLORER;
    int confirmed = 0;
    for (int n = 0; n < 3; ++n) confirmed += GetOpenFileNameW(&box);
    chosen = path;
    return confirmed;
  });
  machine.Advance(1ms);
  ASSERT_EQ(person::OpenFileBoxes().size(), 1U);
  const OpenFileBox box = person::OpenFileBoxes().front();
  EXPECT_EQ(box.filters.size(), 2U);
  EXPECT_EQ(box.filters[1], std::pair(std::u16string(u"All"), std::u16string(u"*.*")));
  EXPECT_EQ(box.defaultExtension, u"hex");
  EXPECT_EQ(box.initialName, u"begin.hex");
  for (const auto& answer : {std::optional<std::u16string>(), std::optional<std::u16string>(u"C:\\a.hex"),
                             std::optional<std::u16string>(u"C:\\too\\long\\for\\the\\buffer.hex")}) {
    person::AnswerFileBox(answer);
    machine.Advance(1ms);
  }
  EXPECT_EQ(machine.ExitCode(), 1);
  EXPECT_EQ(chosen, u"C:\\a.hex");
}

}  // namespace
