// The notification area, and sounds that are not there.
#include <gtest/gtest.h>
#include <windows.h>

#include <mmsystem.h>
#include <shellapi.h>

#include "tests/pal/test_window.h"

namespace {

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
  const contract::TestWindow window;
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

TEST(Sounds, WhatCannotBePlayedIsRefused) {
  EXPECT_FALSE(PlaySoundW(MAKEINTRESOURCEW(999), GetModuleHandleW(nullptr), SND_RESOURCE | SND_NODEFAULT));
  EXPECT_FALSE(PlaySoundW(TEXT("C:\\no such sound.wav"), nullptr, SND_FILENAME | SND_NODEFAULT));
}

}  // namespace
