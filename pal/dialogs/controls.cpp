#include "pal/dialogs/controls.h"

#include <commctrl.h>

#include "pal/windows/window_calls.h"

namespace pal {
namespace {

template <Reactions (*React)(Window&, UINT, WPARAM, LPARAM)>
LRESULT CALLBACK ControlProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
  Reactions reaction;
  HWND parent = nullptr;
  {
    const Call call;
    Window* found = call->desktop.Find(control);
    if (!found) return 0;
    parent = found->parent;
    reaction = React(*found, message, wParam, lParam);
  }
  if (!reaction) return DefWindowProcW(control, message, wParam, lParam);
  for (const Notice& notice : reaction->notices)
    SendMessageW(parent, notice.message, notice.wParam, reinterpret_cast<LPARAM>(control));
  return reaction->result;
}

using ClassPointer = std::shared_ptr<const WindowClass>;

template <Reactions (*React)(Window&, UINT, WPARAM, LPARAM)>
ClassPointer ControlClass(std::u16string name, ControlState state) {
  return std::make_shared<const WindowClass>(
      WindowClass{std::move(name), ControlProcedure<React>, 0, std::move(state)});
}

const std::vector<ClassPointer>& SystemClasses() {
  static const std::vector<ClassPointer> classes = {
      std::make_shared<const WindowClass>(WindowClass{u"#32770", DialogProcedure, DLGWINDOWEXTRA, {}}),
      ControlClass<ReactButton>(u"Button", ButtonState{}),
      ControlClass<ReactStatic>(u"Static", StaticState{}),
      ControlClass<ReactEdit>(u"Edit", EditState{}),
      ControlClass<ReactCombo>(u"ComboBox", ComboState{}),
      ControlClass<ReactTrackbar>(TRACKBAR_CLASSW, TrackbarState{}),
      ControlClass<ReactProgress>(PROGRESS_CLASSW, ProgressState{}),
  };
  return classes;
}

}  // namespace

Notice Command(const Window& control, WORD code) {
  return {WM_COMMAND, MAKEWPARAM(static_cast<WORD>(control.id), code)};
}

ClassPointer FindSystemClass(std::u16string_view name) {
  for (const ClassPointer& one : SystemClasses())
    if (SameName(one->name, name)) return one;
  return nullptr;
}

}  // namespace pal
