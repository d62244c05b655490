// Menus are built from a resource that the program found itself, then changed.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/pal/contract_menu.h"
#include "tests/pal/test_window.h"

namespace {

using contract::ContractMenu;
using contract::TestWindow;

TEST(Menus, ItemsAreFoundInInnerMenusToo) {
  const ContractMenu menu;
  const HMENU popup = GetSubMenu(menu.Get(), 0);
  ASSERT_NE(popup, nullptr);
  for (const int without : {0, 4, -1}) EXPECT_EQ(GetSubMenu(popup, without), nullptr) << without;
  const HMENU inner = GetSubMenu(popup, 2);
  ASSERT_NE(inner, nullptr);
  EXPECT_TRUE(InsertMenuW(popup, 40233, MF_BYCOMMAND | MF_STRING | MF_CHECKED, 40213, TEXT("Nederlands")));
  EXPECT_TRUE(DeleteMenu(popup, 40233, MF_BYCOMMAND));
  EXPECT_FALSE(DeleteMenu(popup, 40233, MF_BYCOMMAND));
  EXPECT_TRUE(DeleteMenu(inner, 40213, MF_BYCOMMAND));
  EXPECT_TRUE(SetMenuDefaultItem(popup, 3, TRUE));
  EXPECT_FALSE(SetMenuDefaultItem(popup, 4, TRUE));
}

TEST(Menus, GoWithWhatHangsOnThem) {
  HMENU popup = nullptr;
  {
    const ContractMenu menu;
    popup = GetSubMenu(menu.Get(), 0);
  }
  EXPECT_FALSE(DestroyMenu(popup));
}

TEST(Menus, AreShownForAWindow) {
  const ContractMenu menu;
  EXPECT_FALSE(TrackPopupMenu(GetSubMenu(menu.Get(), 0), 0, 0, 0, 0, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
  const TestWindow window([](HWND, UINT, WPARAM, LPARAM) { return TestWindow::kDefault; });
  EXPECT_FALSE(TrackPopupMenu(nullptr, 0, 0, 0, 0, window.Get(), nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_MENU_HANDLE});
}

}  // namespace
