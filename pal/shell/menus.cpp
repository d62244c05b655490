#include "pal/shell/menus.h"

#include "pal/machine/effect_words.h"
#include "pal/machine/state.h"
#include "pal/resources/byte_reader.h"

namespace pal {
namespace {

struct ReadItem {
  Menu::Item item;
  bool isPopup = false;
  bool isLast = false;  // of its menu
};

ReadItem TakeItem(ByteReader& reader) {
  constexpr UINT kStates = MF_GRAYED | MF_DISABLED | MF_CHECKED;
  const uint16_t flags = reader.Word();
  ReadItem read;
  read.isPopup = (flags & MF_POPUP) != 0;
  read.isLast = (flags & MF_END) != 0;
  read.item.id = read.isPopup ? 0 : reader.Word();
  read.item.text = reader.Text();
  read.item.flags = flags & kStates;
  if (!read.isPopup && read.item.id == 0 && read.item.text.empty()) read.item.flags |= MF_SEPARATOR;
  return read;
}

// Null when there is no such item to choose.
const MenuItem* FindChoice(const std::vector<MenuItem>& items, std::u16string_view label) {
  for (const MenuItem& item : items) {
    if (!item.popup.empty()) {
      if (const MenuItem* inside = FindChoice(item.popup, label)) return inside;
    } else if (!item.isSeparator && !item.isGrayed && SameName(MenuLabel(item.text), label)) {
      return &item;
    }
  }
  return nullptr;
}

}  // namespace

std::optional<std::vector<MenuItem>> Menus::Shown() {
  const MachineLock lock(state_.mutex);
  return open ? std::optional(Show(open->menu)) : std::nullopt;
}

bool Menus::Choose(std::u16string_view label) {
  const MachineLock lock(state_.mutex);
  const std::vector<MenuItem> items = Shown().value_or(std::vector<MenuItem>());
  const MenuItem* item = FindChoice(items, label);
  if (item) Choose(item->command);
  return item != nullptr;
}

bool Menus::Dismiss() {
  const MachineLock lock(state_.mutex);
  if (!open) return false;
  Choose(0);
  return true;
}

void Menus::Choose(UINT command) {
  open->choice = command;
  state_.scheduler.Notify();
}

HMENU Menus::Add() {
  const auto handle = reinterpret_cast<HMENU>(++last_);
  menus_[handle];
  return handle;
}

HMENU Menus::Load(std::span<const uint8_t> menuTemplate) {
  ByteReader reader(menuTemplate);
  if (reader.Word() != 0) Die("a menu template of another version than 0");
  reader.Bytes(reader.Word());
  const HMENU menu = Add();
  std::vector<HMENU> path = {menu};  // the menus whose items still come
  while (!path.empty()) {
    const HMENU current = path.back();
    ReadItem read = TakeItem(reader);
    if (read.isLast) path.pop_back();
    if (read.isPopup) path.push_back(read.item.popup = Add());
    menus_[current].items.push_back(std::move(read.item));
  }
  return menu;
}

bool Menus::Destroy(HMENU menu) {
  const auto gone = menus_.extract(menu);
  if (gone.empty()) return false;
  for (const Menu::Item& item : gone.mapped().items)
    if (item.popup) Destroy(item.popup);
  return true;
}

Menu* Menus::Find(HMENU menu) {
  const auto found = menus_.find(menu);
  return found == menus_.end() ? nullptr : &found->second;
}

void Menus::Clear() {
  menus_.clear();
  open = nullptr;
  stale = nullptr;
}

Menus::Place Menus::FindItem(HMENU handle, UINT item, UINT flags) {
  Menu* menu = Find(handle);
  if (!menu) return {};
  if (flags & MF_BYPOSITION) return item < menu->items.size() ? Place{menu, item} : Place{};
  for (size_t n = 0; n < menu->items.size(); ++n) {
    const Menu::Item& candidate = menu->items[n];
    if (candidate.popup) {
      if (const Place inside = FindItem(candidate.popup, item, flags)) return inside;
    } else if (candidate.id == item) {
      return {menu, n};
    }
  }
  return {};
}

std::vector<MenuItem> Menus::Show(HMENU handle) {
  std::vector<MenuItem> shown;
  const Menu* menu = Find(handle);
  if (!menu) return shown;
  for (const Menu::Item& item : menu->items) {
    MenuItem& one = shown.emplace_back();
    one.text = item.text;
    one.command = item.id;
    one.isSeparator = (item.flags & MF_SEPARATOR) != 0;
    one.isChecked = (item.flags & MF_CHECKED) != 0;
    one.isGrayed = (item.flags & (MF_GRAYED | MF_DISABLED)) != 0;
    one.isDefault = item.isDefault;
    if (item.popup) one.popup = Show(item.popup);
  }
  return shown;
}

}  // namespace pal
