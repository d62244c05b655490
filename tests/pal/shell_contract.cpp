// The notification area, pictures for it, sounds, the pointer.
#include <gtest/gtest.h>
#include <windows.h>

#include <mmsystem.h>
#include <shellapi.h>

#include "tests/pal/contract_ids.h"
#include "tests/pal/test_window.h"

namespace {

using contract::TestWindow;

constexpr WORD kNoSuchResource = 999;

HICON LoadPicture(WORD id) {
  return static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), IMAGE_ICON,
                                       GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON),
                                       LR_DEFAULTCOLOR));
}

BOOL Notify(DWORD message, HWND window, UINT id, UINT fields = 0) {
  NOTIFYICONDATAW data = {};
  data.cbSize = sizeof(data);
  data.hWnd = window;
  data.uID = id;
  data.uFlags = fields;
  data.uCallbackMessage = WM_USER;
  return Shell_NotifyIconW(message, &data);
}

// A shell that has just been started may not be there yet.
BOOL AddWhenTheShellIsThere(HWND window, UINT id) {
  for (int tries = 0; tries < 100; ++tries) {
    if (Notify(NIM_ADD, window, id, NIF_MESSAGE)) return TRUE;
    Sleep(100);
  }
  return FALSE;
}

TEST(NotificationArea, AnIconStandsOnceUntilItIsRemoved) {
  const TestWindow window([](HWND, UINT, WPARAM, LPARAM) { return TestWindow::kDefault; });
  ASSERT_TRUE(AddWhenTheShellIsThere(window.Get(), 1977));
  EXPECT_FALSE(Notify(NIM_ADD, window.Get(), 1977, NIF_MESSAGE));
  EXPECT_TRUE(Notify(NIM_ADD, window.Get(), 1978, NIF_MESSAGE));
  EXPECT_TRUE(Notify(NIM_MODIFY, window.Get(), 1977, NIF_TIP));
  EXPECT_FALSE(Notify(NIM_MODIFY, window.Get(), 1979, NIF_TIP));
  for (const UINT id : {1977U, 1978U}) {
    EXPECT_TRUE(Notify(NIM_DELETE, window.Get(), id));
    EXPECT_FALSE(Notify(NIM_DELETE, window.Get(), id));
  }
}

TEST(Pictures, AreLoadedAndDestroyed) {
  const HICON picture = LoadPicture(CONTRACT_ICON);
  ASSERT_NE(picture, nullptr);
  EXPECT_NE(LoadPicture(CONTRACT_ICON), picture);
  EXPECT_TRUE(DestroyIcon(picture));
  EXPECT_FALSE(DestroyIcon(picture));
  EXPECT_EQ(LoadPicture(kNoSuchResource), nullptr);
}

TEST(Pictures, ThoseThatAreKeptAreTheSameEveryTime) {
  const HINSTANCE program = GetModuleHandleW(nullptr);
  const HICON picture = LoadIconW(program, MAKEINTRESOURCEW(CONTRACT_ICON));
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(LoadIconW(program, MAKEINTRESOURCEW(CONTRACT_ICON)), picture);
  EXPECT_EQ(LoadIconW(program, MAKEINTRESOURCEW(kNoSuchResource)), nullptr);
}

TEST(Sounds, WhatCannotBePlayedIsRefused) {
  EXPECT_TRUE(PlaySoundW(nullptr, nullptr, 0));
  EXPECT_FALSE(
      PlaySoundW(MAKEINTRESOURCEW(kNoSuchResource), GetModuleHandleW(nullptr), SND_RESOURCE | SND_NODEFAULT));
  EXPECT_FALSE(PlaySoundW(TEXT("C:\\no such sound.wav"), nullptr, SND_FILENAME | SND_NODEFAULT));
}

TEST(Pointer, HasAPlace) {
  POINT place = {-1, -1};
  EXPECT_TRUE(GetCursorPos(&place));
  EXPECT_GE(place.x, 0);
  EXPECT_GE(place.y, 0);
}

TEST(Foreground, OnlyAWindowComesThere) {
  EXPECT_FALSE(SetForegroundWindow(nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
}

}  // namespace
