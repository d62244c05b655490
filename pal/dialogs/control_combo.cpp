// Drop-down lists. The list itself is never seen: a choice is made at once.
#include <algorithm>

#include "pal/machine/die.h"
#include "pal/text/unicode.h"
#include "pal/windows/desktop.h"

namespace pal {
namespace {

ComboState& StateOf(Window& combo) {
  if ((combo.style & CBS_DROPDOWNLIST) != CBS_DROPDOWNLIST) Die("a combo box that is no drop-down list");
  if (combo.style & CBS_SORT) Die("a sorted drop-down list");
  return std::get<ComboState>(combo.control);
}

ComboItem* ItemAt(ComboState& state, WPARAM index) {
  return index < state.items.size() ? &state.items[index] : nullptr;
}

LRESULT Add(ComboState& state, const WCHAR* text) {
  state.items.push_back({text, 0});
  return static_cast<LRESULT>(state.items.size()) - 1;
}

LRESULT Select(ComboState& state, WPARAM index) {
  state.selection = ItemAt(state, index) ? static_cast<int>(index) : CB_ERR;
  return state.selection;
}

LRESULT SetData(ComboState& state, WPARAM index, LPARAM data) {
  ComboItem* item = ItemAt(state, index);
  if (!item) Die("data for an entry that is not in the list");
  item->data = data;
  return 0;
}

std::u16string SelectedText(const ComboState& state) {
  return state.selection == CB_ERR ? std::u16string()
                                   : state.items[static_cast<size_t>(state.selection)].text;
}

}  // namespace

Reactions ReactCombo(Window& combo, UINT message, WPARAM wParam, LPARAM lParam) {
  ComboState& state = StateOf(combo);
  const WCHAR* text = reinterpret_cast<const WCHAR*>(lParam);
  switch (message) {
    case CB_ADDSTRING:
      return Reaction{Add(state, text)};
    case CB_GETCOUNT:
      return Reaction{static_cast<LRESULT>(state.items.size())};
    case CB_GETCURSEL:
      return Reaction{state.selection};
    case CB_SETCURSEL:
      return Reaction{Select(state, wParam)};
    case CB_RESETCONTENT:
      state = {};
      return Reaction{};
    case CB_GETITEMDATA:
      return Reaction{ItemAt(state, wParam) ? ItemAt(state, wParam)->data : CB_ERR};
    case CB_SETITEMDATA:
      return Reaction{SetData(state, wParam, lParam)};
    case WM_SETTEXT:  // the text is that of the selection
      return Reaction{CB_ERR};
    case WM_GETTEXT:
      combo.title = SelectedText(state);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace pal
