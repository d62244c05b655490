// Edits of one line, written at their end.
#include "pal/desktop.h"

namespace pal {
namespace {

constexpr WCHAR kBackspace = 0x08;

Reactions Type(Window& edit, WCHAR unit) {
  if (unit == kBackspace) {
    if (edit.title.empty()) return Reaction{};
    edit.title.pop_back();
  } else {
    if (unit < u' ' || edit.title.size() >= std::get<EditState>(edit.control).limit) return Reaction{};
    edit.title.push_back(unit);
  }
  return Reaction{0, {Command(edit, EN_CHANGE)}};
}

}  // namespace

Reactions ReactEdit(Window& edit, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case EM_LIMITTEXT:
      std::get<EditState>(edit.control).limit = wParam;
      return Reaction{};
    case WM_SETTEXT:  // not held to the limit
      edit.title = lParam ? reinterpret_cast<const WCHAR*>(lParam) : u"";
      return Reaction{TRUE, {Command(edit, EN_CHANGE)}};
    case WM_CHAR:
      return Type(edit, static_cast<WCHAR>(wParam));
    default:
      return std::nullopt;
  }
}

}  // namespace pal
