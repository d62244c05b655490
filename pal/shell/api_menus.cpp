// Menus: built from a template, changed, and asked what they have become.
#include "pal/machine/state.h"

using namespace pal;

namespace {

Menu* FindMenuOrRefuse(State& state, HMENU handle) {
  Menu* menu = state.menus.Find(handle);
  if (!menu) SetLastError(ERROR_INVALID_MENU_HANDLE);
  return menu;
}

// The item, or none and the last error set.
Menus::Place FindItem(const Call& call, HMENU menu, UINT item, UINT flags) {
  if (!FindMenuOrRefuse(call.Get(), menu)) return {};
  const Menus::Place place = call->menus.FindItem(menu, item, flags);
  if (!place) SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
  return place;
}

}  // namespace

HMENU WINAPI LoadMenuIndirectW(LPCVOID menuTemplate) {
  const Call call("LoadMenuIndirectW");
  if (call.Fails()) return nullptr;
  return call->menus.Load(call->resources.At(menuTemplate));
}

BOOL WINAPI DestroyMenu(HMENU menu) {
  const Call call("DestroyMenu");
  if (call.Fails()) return FALSE;
  return call->menus.Destroy(menu) ? TRUE : Refuse(ERROR_INVALID_MENU_HANDLE, FALSE);
}

HMENU WINAPI GetSubMenu(HMENU menu, int position) {
  const Call call("GetSubMenu");
  if (call.Fails()) return nullptr;
  const Menu* found = FindMenuOrRefuse(call.Get(), menu);
  if (!found || position < 0 || static_cast<size_t>(position) >= found->items.size()) return nullptr;
  return found->items[static_cast<size_t>(position)].popup;
}

BOOL WINAPI InsertMenuW(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCWSTR text) {
  const Call call("InsertMenuW");
  if (call.Fails()) return FALSE;
  if (flags & ~(MF_CHECKED | MF_GRAYED)) Die("InsertMenuW of anything but a text before a command");
  Menus::Place place = FindItem(call, menu, position, MF_BYCOMMAND);
  if (!place) return FALSE;
  Menu::Item item;
  item.id = static_cast<UINT>(id);
  item.text = text;
  item.flags = flags;
  auto& items = place.menu->items;
  items.insert(items.begin() + static_cast<ptrdiff_t>(place.index), std::move(item));
  return TRUE;
}

BOOL WINAPI DeleteMenu(HMENU menu, UINT position, UINT flags) {
  const Call call("DeleteMenu");
  if (call.Fails()) return FALSE;
  const Menus::Place place = FindItem(call, menu, position, flags);
  if (!place) return FALSE;
  place.menu->items.erase(place.menu->items.begin() + static_cast<ptrdiff_t>(place.index));
  return TRUE;
}

BOOL WINAPI SetMenuDefaultItem(HMENU menu, UINT item, UINT byPosition) {
  const Call call("SetMenuDefaultItem");
  if (call.Fails()) return FALSE;
  if (!byPosition) Die("SetMenuDefaultItem by command");
  const Menus::Place place = FindItem(call, menu, item, MF_BYPOSITION);
  if (!place) return FALSE;
  for (Menu::Item& other : place.menu->items) other.isDefault = false;
  place.Item().isDefault = true;
  return TRUE;
}
