// Trackbars.
#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "pal/desktop.h"

namespace pal {
namespace {

void MoveTo(TrackbarState& state, int position) {
  state.position = std::clamp(position, state.lowest, std::max(state.lowest, state.highest));
}

Notice Scroll(const Window& trackbar, WORD code) {
  return {static_cast<UINT>(trackbar.style & TBS_VERT ? WM_VSCROLL : WM_HSCROLL), MAKEWPARAM(code, 0)};
}

struct KeyRow {
  WPARAM key;
  WORD code;
};
constexpr KeyRow kKeys[] = {{VK_LEFT, TB_LINEUP},   {VK_UP, TB_LINEUP},    {VK_RIGHT, TB_LINEDOWN},
                            {VK_DOWN, TB_LINEDOWN}, {VK_PRIOR, TB_PAGEUP}, {VK_NEXT, TB_PAGEDOWN},
                            {VK_HOME, TB_TOP},      {VK_END, TB_BOTTOM}};

const KeyRow* FindKey(WPARAM key) {
  const auto* row = std::ranges::find(kKeys, key, &KeyRow::key);
  return row == std::end(kKeys) ? nullptr : row;
}

int Target(const TrackbarState& state, WORD code) {
  switch (code) {
    case TB_LINEUP:
      return state.position - state.lineSize;
    case TB_LINEDOWN:
      return state.position + state.lineSize;
    case TB_PAGEUP:
      return state.position - state.pageSize;
    case TB_PAGEDOWN:
      return state.position + state.pageSize;
    case TB_TOP:
      return state.lowest;
    default:
      return state.highest;
  }
}

Reactions PressKey(const Window& trackbar, TrackbarState& state, WPARAM key) {
  const KeyRow* row = FindKey(key);
  if (!row) return std::nullopt;
  const int before = state.position;
  MoveTo(state, Target(state, row->code));
  if (state.position == before) return Reaction{};
  return Reaction{0, {Scroll(trackbar, row->code)}};
}

Reactions LetGoKey(const Window& trackbar, WPARAM key) {
  if (!FindKey(key)) return std::nullopt;
  return Reaction{0, {Scroll(trackbar, TB_ENDTRACK)}};
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
    case TBM_GETRANGEMIN:
      return Reaction{state.lowest};
    case TBM_GETRANGEMAX:
      return Reaction{state.highest};
    case TBM_SETRANGE:
      state.lowest = static_cast<SHORT>(LOWORD(lParam));
      state.highest = static_cast<SHORT>(HIWORD(lParam));
      MoveTo(state, state.position);
      return Reaction{};
    case TBM_SETTIC:
      if (number <= state.lowest || number >= state.highest) return Reaction{FALSE};
      state.ticks.push_back(number);
      return Reaction{TRUE};
    case TBM_SETPAGESIZE:
      return Reaction{std::exchange(state.pageSize, number)};
    case TBM_SETLINESIZE:
      return Reaction{std::exchange(state.lineSize, number)};
    case WM_KEYDOWN:
      return PressKey(trackbar, state, wParam);
    case WM_KEYUP:
      return LetGoKey(trackbar, wParam);
    default:
      return std::nullopt;
  }
}

}  // namespace pal
