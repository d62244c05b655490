// Labels, frames and pictures.
#include <utility>

#include "pal/machine/die.h"
#include "pal/windows/desktop.h"

namespace pal {
namespace {

LRESULT SetPicture(Window& label, HICON icon) {
  if ((label.style & SS_TYPEMASK) != SS_ICON) Die("STM_SETICON on a label that shows no icon");
  return reinterpret_cast<LRESULT>(std::exchange(std::get<StaticState>(label.control).icon, icon));
}

Reactions Notify(const Window& label, WORD code) {
  if (!(label.style & SS_NOTIFY)) return std::nullopt;
  return Reaction{0, {Command(label, code)}};
}

}  // namespace

Reactions ReactStatic(Window& label, UINT message, WPARAM wParam, LPARAM /*lParam*/) {
  if (message == STM_SETICON) return Reaction{SetPicture(label, reinterpret_cast<HICON>(wParam))};
  if (message == WM_LBUTTONDOWN) return Notify(label, STN_CLICKED);
  if (message == WM_LBUTTONDBLCLK) return Notify(label, STN_DBLCLK);
  return std::nullopt;
}

}  // namespace pal
