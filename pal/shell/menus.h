// Menus of the program, and the one that is open.
#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "pal/machine/effects.h"

namespace pal {

struct State;

struct Menu {
  struct Item {
    UINT id = 0;
    std::u16string text;
    UINT flags = 0;  // of MF_GRAYED, MF_DISABLED, MF_CHECKED, MF_SEPARATOR
    bool isDefault = false;
    HMENU popup = nullptr;  // the menu that the item opens
  };
  std::vector<Item> items;
};

// A popup menu that waits for the person.
struct OpenPopup {
  HMENU menu = nullptr;
  std::optional<UINT> choice;  // 0: closed without one
};

class Menus {
 public:
  explicit Menus(State& state) : state_(state) {}

  // The menu that is open, as the person sees it, until they choose or close it. What hangs on its items
  // counts as open, too.
  [[nodiscard]] std::optional<std::vector<MenuItem>> Shown();
  // False when no menu is open or has such an item to choose. A label is the text without its "&".
  bool Choose(std::u16string_view label);
  bool Dismiss();

  // ---- for the calls of Windows ----
  // The menus of a template of version 0.
  HMENU Load(std::span<const uint8_t> menuTemplate);
  // With the menus that hang on it; false when there is none.
  bool Destroy(HMENU menu);
  [[nodiscard]] Menu* Find(HMENU menu);
  [[nodiscard]] int Count() const { return static_cast<int>(menus_.size()); }
  void Clear();

  struct Place {
    Menu* menu = nullptr;
    size_t index = 0;

    explicit operator bool() const { return menu != nullptr; }
    [[nodiscard]] Menu::Item& Item() const { return menu->items[index]; }
  };
  // The item of that command, in the menu or in one that hangs on it, or at that position of the menu.
  Place FindItem(HMENU menu, UINT item, UINT flags);
  // The items as the person sees them.
  [[nodiscard]] std::vector<MenuItem> Show(HMENU menu);

  std::shared_ptr<OpenPopup> open;  // null when none is open
  // The window whose last menu has closed: its next one closes at once, unless WM_NULL is posted to it
  // before.
  HWND stale = nullptr;

 private:
  HMENU Add();
  void Choose(UINT command);

  State& state_;
  std::map<HMENU, Menu> menus_;
  uintptr_t last_ = 0x50000;
};

}  // namespace pal
