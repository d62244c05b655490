#include "pal/machine/person.h"

#include <commctrl.h>

#include <algorithm>

#include "pal/dialogs/spoken_names.h"
#include "pal/text/unicode.h"
#include "pal/windows/window_calls.h"

namespace pal {
namespace {

Window* FindFrontDialog(State& state) {
  for (const HWND handle : state.desktop.TopLevel()) {
    Window* window = state.desktop.Find(handle);
    const bool isUsable = (window->style & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE;
    if (window->procedure == DialogProcedure && isUsable) return window;
  }
  return nullptr;
}

struct FillView {
  const State& machine;
  ControlView& view;

  void operator()(const std::monostate&) const {}
  void operator()(const ButtonState& state) const { view.isChecked = state.check == BST_CHECKED; }
  void operator()(const StaticState& state) const { view.icon = machine.pictures.ResourceOf(state.icon); }
  void operator()(const EditState&) const {}
  void operator()(const ComboState& state) const {
    for (const ComboItem& item : state.items) view.entries.push_back({item.text, item.data});
    view.selection = state.selection;
    view.text = state.selection == CB_ERR ? u"" : state.items[static_cast<size_t>(state.selection)].text;
  }
  void operator()(const TrackbarState& state) const {
    Range(state);
    view.ticks = state.ticks;
  }
  void operator()(const ProgressState& state) const { Range(state); }

  template <class Bar>
  void Range(const Bar& state) const {
    view.position = state.position;
    view.lowest = state.lowest;
    view.highest = state.highest;
  }
};

ControlView ViewOf(State& state, const Window& control) {
  ControlView view;
  view.id = static_cast<int>(control.id);
  view.windowClass = control.windowClass->name;
  view.text = control.title;
  view.spokenName = SpokenName(state, control);
  view.isVisible = (control.style & WS_VISIBLE) != 0;
  view.isEnabled = !(control.style & WS_DISABLED);
  view.isTabStop = (control.style & WS_TABSTOP) != 0;
  view.hasFocus = state.desktop.Focus() == control.handle;
  view.rect = control.rect;
  std::visit(FillView{state, view}, control.control);
  return view;
}

std::string Name(int id) {
  return std::string("control ").append(std::to_string(id));
}

bool IsInFront(HWND dialog) {
  const Call call;
  const Window* front = FindFrontDialog(call.Get());
  return front && front->handle == dialog;
}

// Why the person cannot reach it, or null.
const char* ObstacleAt(const ControlView& control) {
  if (!control.isVisible) return " is hidden";
  return control.isEnabled ? nullptr : " is disabled";
}

// Runs `act` when the program takes its message; nothing when the dialog is not in front any more, or the
// control out of reach meanwhile. What was out of reach before, and still is, is misuse.
void Do(int id, std::function<void(HWND)> act) {
  const bool isInReach = !ObstacleAt(person::Look(id));
  const Call call;
  const HWND dialog = FindFrontDialog(call.Get())->handle;
  const WPARAM number = ++call->dialogs.lastAct;
  call->dialogs.acts[number] = [act = std::move(act), dialog, id, isInReach] {
    if (!IsInFront(dialog)) return;
    const char* obstacle = ObstacleAt(person::Look(id));
    if (obstacle && !isInReach) Die(Name(id).append(obstacle));
    if (!obstacle) act(GetDlgItem(dialog, id));
  };
  PostTo(call.Get(), dialog, kPersonActs, number, 0);
}

void Click(HWND control) {
  SendMessageW(control, WM_LBUTTONDOWN, 0, 0);
  SendMessageW(control, WM_LBUTTONUP, 0, 0);
}

// A click takes the keyboard, except on what cannot have it.
void Focus(HWND control) {
  const Call call;
  if (call->desktop.Find(control)->style & WS_TABSTOP) call->desktop.SetFocus(control);
}

HWND ParentOf(HWND control) {
  const Call call;
  return call->desktop.Find(control)->parent;
}

void Tell(HWND control, UINT message, WORD low, WORD high) {
  SendMessageW(ParentOf(control), message, MAKEWPARAM(low, high), reinterpret_cast<LPARAM>(control));
}

void ChooseIn(HWND list, int id, std::u16string_view text) {
  {
    const Call call;
    auto& state = std::get<ComboState>(call->desktop.Find(list)->control);
    const auto entry = std::ranges::find(state.items, text, &ComboItem::text);
    if (entry == state.items.end()) Die(Name(id).append(" has no entry ").append(ToUtf8(text)));
    state.selection = static_cast<int>(entry - state.items.begin());
  }
  Tell(list, WM_COMMAND, static_cast<WORD>(id), CBN_SELCHANGE);
}

void DragTo(HWND trackbar, int position) {
  SendMessageW(trackbar, TBM_SETPOS, TRUE, position);
  const auto reached = static_cast<WORD>(SendMessageW(trackbar, TBM_GETPOS, 0, 0));
  Tell(trackbar, WM_HSCROLL, TB_THUMBTRACK, reached);
  Tell(trackbar, WM_HSCROLL, TB_THUMBPOSITION, reached);
  Tell(trackbar, WM_HSCROLL, TB_ENDTRACK, 0);
}

void Write(HWND edit, std::u16string_view text) {
  SetWindowTextW(edit, u"");
  for (const char16_t unit : text) SendMessageW(edit, WM_CHAR, unit, 0);
}

}  // namespace
}  // namespace pal

namespace pal::person {

std::optional<DialogView> FrontDialog() {
  const Call call;
  const Window* dialog = FindFrontDialog(call.Get());
  if (!dialog) return std::nullopt;
  DialogView view{
      dialog->handle, dialog->owner, dialog->title, dialog->rect, (dialog->exStyle & WS_EX_TOPMOST) != 0, {}};
  for (const HWND control : call->desktop.Children(dialog->handle))
    view.controls.push_back(ViewOf(call.Get(), *call->desktop.Find(control)));
  return view;
}

ControlView Look(int id) {
  const std::optional<DialogView> dialog = FrontDialog();
  if (!dialog) Die(Name(id).append(" is looked for, but no dialog is open"));
  const auto found = std::ranges::find(dialog->controls, id, &ControlView::id);
  if (found == dialog->controls.end()) Die(Name(id).append(" is not in the dialog"));
  return *found;
}

void Press(int id) {
  Do(id, [](HWND control) {
    Focus(control);
    Click(control);
  });
}

void DoubleClick(int id) {
  Do(id, [](HWND control) {
    Click(control);
    SendMessageW(control, WM_LBUTTONDBLCLK, 0, 0);
    SendMessageW(control, WM_LBUTTONUP, 0, 0);
  });
}

void Choose(int id, std::u16string_view text) {
  Do(id, [id, text = std::u16string(text)](HWND list) {
    Focus(list);
    ChooseIn(list, id, text);
  });
}

void Drag(int id, int position) {
  Do(id, [position](HWND trackbar) {
    Focus(trackbar);
    DragTo(trackbar, position);
  });
}

void Type(int id, std::u16string_view text) {
  Do(id, [text = std::u16string(text)](HWND edit) {
    Focus(edit);
    Write(edit, text);
  });
}

void PressKey(int virtualKey) {
  const Call call;
  const Window* dialog = FindFrontDialog(call.Get());
  if (!dialog) Die("no dialog is open for the person");
  const HWND focus = call->desktop.Focus();
  const HWND target = focus ? focus : dialog->handle;
  for (const UINT message : {UINT{WM_KEYDOWN}, UINT{WM_KEYUP}})
    PostTo(call.Get(), target, message, static_cast<WPARAM>(virtualKey), 0);
}

void Hold(int virtualKey, bool held) {
  const Call call;
  if (held)
    call->desktop.heldKeys.insert(virtualKey);
  else
    call->desktop.heldKeys.erase(virtualKey);
}

void CloseDialog() {
  const Call call;
  const Window* dialog = FindFrontDialog(call.Get());
  if (!dialog) Die("no dialog is open for the person");
  if (!(dialog->style & WS_SYSMENU)) Die("the dialog has no close box");
  PostTo(call.Get(), dialog->handle, WM_CLOSE, 0, 0);
}

}  // namespace pal::person
