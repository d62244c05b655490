// Trackbars.
#include <commctrl.h>

#include <algorithm>

#include "pal/machine/die.h"
#include "pal/windows/desktop.h"

namespace pal {
namespace {

void MoveTo(TrackbarState& state, int position) {
  state.position = std::clamp(position, state.lowest, std::max(state.lowest, state.highest));
}

Notice Scroll(WORD code) {
  return {WM_HSCROLL, MAKEWPARAM(code, 0)};
}

struct KeyRow {
  WPARAM key;
  WORD code;
};
constexpr KeyRow kKeys[] = {
    {VK_LEFT, TB_LINEUP}, {VK_UP, TB_LINEUP}, {VK_RIGHT, TB_LINEDOWN}, {VK_DOWN, TB_LINEDOWN}};

const KeyRow* FindKey(WPARAM key) {
  const auto* row = std::ranges::find(kKeys, key, &KeyRow::key);
  return row == std::end(kKeys) ? nullptr : row;
}

Reactions PressKey(TrackbarState& state, WPARAM key) {
  const KeyRow* row = FindKey(key);
  if (!row) return std::nullopt;
  const int before = state.position;
  MoveTo(state, before + (row->code == TB_LINEUP ? -1 : 1));
  if (state.position == before) return Reaction{};
  return Reaction{0, {Scroll(row->code)}};
}

Reactions LetGoKey(WPARAM key) {
  if (!FindKey(key)) return std::nullopt;
  return Reaction{0, {Scroll(TB_ENDTRACK)}};
}

}  // namespace

Reactions ReactTrackbar(Window& trackbar, UINT message, WPARAM wParam, LPARAM lParam) {
  auto& state = std::get<TrackbarState>(trackbar.control);
  const int number = static_cast<int>(lParam);
  switch (message) {
    case TBM_GETPOS:
      return Reaction{state.position};
    case TBM_SETPOS:
      MoveTo(state, number);
      return Reaction{};
    case TBM_SETRANGE:
      state.lowest = static_cast<SHORT>(LOWORD(lParam));
      state.highest = static_cast<SHORT>(HIWORD(lParam));
      MoveTo(state, state.position);
      return Reaction{};
    case TBM_SETTIC:
      if (number <= state.lowest || number >= state.highest) Die("a tick outside the trackbar");
      state.ticks.push_back(number);
      return Reaction{TRUE};
    case WM_KEYDOWN:
      return PressKey(state, wParam);
    case WM_KEYUP:
      return LetGoKey(wParam);
    default:
      return std::nullopt;
  }
}

}  // namespace pal
