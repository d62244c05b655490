// The box for choosing a file: cancelled, and confirmed with the name that it began with.
#include <gtest/gtest.h>
#include <windows.h>

#include <commdlg.h>

#include "test_window.h"

namespace {

using contract::TestThread;
using contract::TestWindow;
using Text = std::basic_string<WCHAR>;

// Again and again: a box that is still being built may not hear it. Gives up when no box comes.
void PressInBox(WORD button) {
  HWND box = nullptr;
  for (int tries = 0; !box && tries < 1000; ++tries) {
    box = FindWindowW(TEXT("#32770"), TEXT("Open"));
    Sleep(20);
  }
  for (; IsWindow(box); Sleep(300)) PostMessageW(box, WM_COMMAND, button, 0);
}

Text TemporaryFile() {
  WCHAR folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  const Text path = Text(folder) + TEXT("contract.hex");
  CloseHandle(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  return path;
}

TEST(FileBox, GivesWhatThePersonConfirms) {
  TestWindow owner([](HWND, UINT, WPARAM, LPARAM) { return TestWindow::kDefault; });
  const Text file = TemporaryFile();
  for (const WORD button : {WORD{IDCANCEL}, WORD{IDOK}}) {
    WCHAR path[MAX_PATH] = {};
    file.copy(path, MAX_PATH - 1);
    OPENFILENAMEW box = {};
    box.lStructSize = sizeof(box);
    box.hwndOwner = owner.Get();
    box.lpstrFilter = TEXT("Firmware update files\0*.hex\0");
    box.lpstrDefExt = TEXT("hex");
    box.lpstrFile = path;
    box.nMaxFile = MAX_PATH;
    box.Flags = OFN_EXPLORER | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
    const TestThread person([&] { PressInBox(button); });
    EXPECT_EQ(GetOpenFileNameW(&box), button == IDOK ? TRUE : FALSE);
    EXPECT_EQ(Text(path), file);
    EXPECT_TRUE(IsWindowEnabled(owner.Get()));
  }
  DeleteFileW(file.c_str());
}

}  // namespace
