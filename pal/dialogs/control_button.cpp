// Push buttons, check boxes that check themselves, and group boxes.
#include "pal/machine/die.h"
#include "pal/windows/desktop.h"

namespace pal {
namespace {

enum class Kind { kPush, kCheck, kGroup };

Kind KindOf(const Window& button) {
  const DWORD type = button.style & BS_TYPEMASK;
  if (type == BS_PUSHBUTTON || type == BS_DEFPUSHBUTTON) return Kind::kPush;
  if (type == BS_AUTOCHECKBOX) return Kind::kCheck;
  if (type == BS_GROUPBOX) return Kind::kGroup;
  Die("a button of an unknown kind");
}

Reactions Push(Window& button) {
  std::get<ButtonState>(button.control).isPushed = KindOf(button) != Kind::kGroup;
  return Reaction{};
}

Reactions LetGo(Window& button) {
  auto& state = std::get<ButtonState>(button.control);
  if (!state.isPushed) return Reaction{};
  state.isPushed = false;
  if (KindOf(button) == Kind::kCheck) state.check = state.check == BST_CHECKED ? BST_UNCHECKED : BST_CHECKED;
  return Reaction{0, {Command(button, BN_CLICKED)}};
}

}  // namespace

Reactions ReactButton(Window& button, UINT message, WPARAM wParam, LPARAM /*lParam*/) {
  auto& state = std::get<ButtonState>(button.control);
  switch (message) {
    case BM_GETCHECK:
      return Reaction{state.check};
    case BM_SETCHECK:
      if (wParam > BST_CHECKED) Die("BM_SETCHECK with an unknown state");
      if (KindOf(button) == Kind::kCheck) state.check = static_cast<int>(wParam);
      return Reaction{};
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      return Push(button);
    case WM_LBUTTONUP:
      return LetGo(button);
    default:
      return std::nullopt;
  }
}

}  // namespace pal
