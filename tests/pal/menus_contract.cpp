// Menus are built from a resource that the program found itself, then changed.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/pal/contract_ids.h"
#include "tests/pal/contract_menu.h"

namespace {

using contract::ContractMenu;
using Text = std::basic_string<WCHAR>;

constexpr auto kNone = static_cast<UINT>(-1);

Text TextOf(HMENU menu, UINT item, UINT flags = MF_BYPOSITION) {
  WCHAR buffer[32] = {};
  GetMenuStringW(menu, item, buffer, 32, flags);
  return buffer;
}

std::vector<UINT> Commands(HMENU menu) {
  std::vector<UINT> commands;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) commands.push_back(GetMenuItemID(menu, i));
  return commands;
}

TEST(Menus, AreBuiltFromATemplate) {
  const ContractMenu menu;
  EXPECT_EQ(GetMenuItemCount(menu.Get()), 1);
  const HMENU popup = GetSubMenu(menu.Get(), 0);
  ASSERT_NE(popup, nullptr);
  EXPECT_EQ(Commands(popup), (std::vector<UINT>{127, 0, kNone, 128}));
  EXPECT_EQ(TextOf(popup, 0), TEXT("&First\tF1"));
  EXPECT_EQ(TextOf(popup, 128, MF_BYCOMMAND), TEXT("&Last"));
  EXPECT_EQ(GetMenuState(popup, 0, MF_BYPOSITION), 0U);
  EXPECT_NE(GetMenuState(popup, 1, MF_BYPOSITION) & MF_SEPARATOR, 0U);
  EXPECT_EQ(GetMenuState(popup, 2, MF_BYPOSITION), UINT{MF_POPUP} | 1U << 8);
  EXPECT_EQ(GetMenuState(popup, 40233, MF_BYCOMMAND), UINT{MF_CHECKED | MF_GRAYED});
  EXPECT_EQ(GetSubMenu(popup, 0), nullptr);
  EXPECT_EQ(GetSubMenu(popup, 4), nullptr);
  EXPECT_EQ(GetSubMenu(popup, -1), nullptr);
}

TEST(Menus, ItemsAreFoundInInnerMenusToo) {
  const ContractMenu menu;
  const HMENU popup = GetSubMenu(menu.Get(), 0);
  const HMENU inner = GetSubMenu(popup, 2);
  EXPECT_TRUE(InsertMenuW(popup, 40233, MF_BYCOMMAND | MF_STRING | MF_UNCHECKED, 40212, TEXT("English")));
  EXPECT_TRUE(InsertMenuW(popup, 40233, MF_BYCOMMAND | MF_STRING | MF_CHECKED, 40213, TEXT("Nederlands")));
  EXPECT_EQ(Commands(inner), (std::vector<UINT>{40212, 40213, 40233}));
  EXPECT_TRUE(DeleteMenu(popup, 40233, MF_BYCOMMAND));
  EXPECT_EQ(Commands(inner), (std::vector<UINT>{40212, 40213}));
  EXPECT_EQ(TextOf(inner, 1), TEXT("Nederlands"));
  EXPECT_EQ(GetMenuState(inner, 0, MF_BYPOSITION), 0U);
  EXPECT_EQ(GetMenuState(inner, 1, MF_BYPOSITION), UINT{MF_CHECKED});
  EXPECT_FALSE(DeleteMenu(popup, 40233, MF_BYCOMMAND));
  EXPECT_EQ(GetMenuItemCount(popup), 4);
}

TEST(Menus, OneItemIsTheDefault) {
  const ContractMenu menu;
  const HMENU popup = GetSubMenu(menu.Get(), 0);
  EXPECT_EQ(GetMenuDefaultItem(popup, TRUE, 0), kNone);
  EXPECT_TRUE(SetMenuDefaultItem(popup, 3, TRUE));
  EXPECT_TRUE(SetMenuDefaultItem(popup, 0, TRUE));
  EXPECT_EQ(GetMenuDefaultItem(popup, TRUE, 0), 0U);
  EXPECT_EQ(GetMenuDefaultItem(popup, FALSE, 0), 127U);
  EXPECT_FALSE(SetMenuDefaultItem(popup, 4, TRUE));
}

TEST(Menus, GoWithWhatHangsOnThem) {
  HMENU popup = nullptr;
  {
    const ContractMenu menu;
    popup = GetSubMenu(menu.Get(), 0);
    EXPECT_EQ(GetMenuItemCount(popup), 4);
  }
  EXPECT_EQ(GetMenuItemCount(popup), -1);
  EXPECT_FALSE(DestroyMenu(popup));
}

}  // namespace
