// Edits of one line, written at their end. The limit holds what is typed, not what the program sets.
#include "pal/windows/desktop.h"

namespace pal {
namespace {

constexpr WCHAR kBackspace = 0x08;

void Type(Window& edit, WCHAR unit) {
  if (unit == kBackspace) {
    if (!edit.title.empty()) edit.title.pop_back();
  } else if (unit >= u' ' && edit.title.size() < std::get<EditState>(edit.control).limit) {
    edit.title.push_back(unit);
  }
}

}  // namespace

Reactions ReactEdit(Window& edit, UINT message, WPARAM wParam, LPARAM /*lParam*/) {
  switch (message) {
    case EM_LIMITTEXT:
      std::get<EditState>(edit.control).limit = wParam;
      return Reaction{};
    case WM_CHAR:
      Type(edit, static_cast<WCHAR>(wParam));
      return Reaction{};
    default:
      return std::nullopt;
  }
}

}  // namespace pal
