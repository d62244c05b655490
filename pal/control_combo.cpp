// Drop-down lists. The list itself is never seen: a choice is made with the arrow keys, or at once.
#include <algorithm>

#include "pal/desktop.h"
#include "pal/die.h"
#include "pal/unicode.h"

namespace pal {
namespace {

ComboState& StateOf(Window& combo) {
  if ((combo.style & CBS_DROPDOWNLIST) != CBS_DROPDOWNLIST) Die("a combo box that is no drop-down list");
  return std::get<ComboState>(combo.control);
}

ComboItem* ItemAt(ComboState& state, WPARAM index) {
  return index < state.items.size() ? &state.items[index] : nullptr;
}

LRESULT Add(const Window& combo, ComboState& state, const WCHAR* text) {
  auto place = state.items.end();
  if (combo.style & CBS_SORT)
    place = std::ranges::find_if(state.items,
                                 [&](const ComboItem& item) { return FoldCase(item.text) > FoldCase(text); });
  const auto index = static_cast<int>(place - state.items.begin());
  if (state.selection >= index) ++state.selection;
  state.items.insert(place, {text, 0});
  return index;
}

LRESULT Select(ComboState& state, WPARAM index) {
  state.selection = ItemAt(state, index) ? static_cast<int>(index) : CB_ERR;
  return state.selection;
}

LRESULT SetData(ComboState& state, WPARAM index, LPARAM data) {
  ComboItem* item = ItemAt(state, index);
  if (!item) return CB_ERR;
  item->data = data;
  return 0;
}

// The text and its length; only the length without a buffer.
LRESULT Text(ComboState& state, WPARAM index, WCHAR* buffer) {
  const ComboItem* item = ItemAt(state, index);
  if (!item) return CB_ERR;
  if (buffer) *std::ranges::copy(item->text, buffer).out = 0;
  return static_cast<LRESULT>(item->text.size());
}

Reactions PressKey(const Window& combo, ComboState& state, WPARAM key) {
  const int last = static_cast<int>(state.items.size()) - 1;
  int wanted = state.selection;
  if (key == VK_DOWN) wanted = std::min(wanted + 1, last);
  if (key == VK_UP) wanted = std::max(wanted - 1, 0);
  if (key == VK_HOME) wanted = 0;
  if (key == VK_END) wanted = last;
  if (wanted == state.selection || last < 0) return Reaction{};
  state.selection = wanted;
  return Reaction{0, {Command(combo, CBN_SELCHANGE)}};
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
      return Reaction{Add(combo, state, text)};
    case CB_GETCOUNT:
      return Reaction{static_cast<LRESULT>(state.items.size())};
    case CB_GETCURSEL:
      return Reaction{state.selection};
    case CB_SETCURSEL:
      return Reaction{Select(state, wParam)};
    case CB_GETLBTEXT:
      return Reaction{Text(state, wParam, reinterpret_cast<WCHAR*>(lParam))};
    case CB_GETLBTEXTLEN:
      return Reaction{Text(state, wParam, nullptr)};
    case CB_RESETCONTENT:
      state = {};
      return Reaction{};
    case CB_GETITEMDATA:
      return Reaction{ItemAt(state, wParam) ? ItemAt(state, wParam)->data : CB_ERR};
    case CB_SETITEMDATA:
      return Reaction{SetData(state, wParam, lParam)};
    case WM_KEYDOWN:
      return PressKey(combo, state, wParam);
    case WM_SETTEXT:  // the text is that of the selection
      return Reaction{CB_ERR};
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
      combo.title = SelectedText(state);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace pal
