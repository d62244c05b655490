// MessageBoxW: shown to the person, who answers when it pleases them, while the calling thread's messages go
// on.
#include <algorithm>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

constexpr std::u16string_view kDefaultCaption = u"Error";

// The boxes that the program shows.
struct Buttons {
  UINT type;
  std::vector<int> ids;
};
const std::vector<Buttons> kButtons = {
    {MB_OK, {IDOK}},
    {MB_YESNO, {IDYES, IDNO}},
};

const Buttons& ButtonsOf(UINT type) {
  const auto wanted = std::ranges::find(kButtons, type & MB_TYPEMASK, &Buttons::type);
  if (wanted == kButtons.end()) Die("MessageBoxW of an unknown type");
  return *wanted;
}

bool HasButton(const OpenMessageBox& box, int button) {
  const std::vector<int>& ids = ButtonsOf(box.type).ids;
  return std::find(ids.begin(), ids.end(), button) != ids.end();
}

const std::shared_ptr<const WindowClass>& BoxClass() {
  static const auto boxClass =
      std::make_shared<const WindowClass>(WindowClass{u"#32770", DefWindowProcW, 0, {}});
  return boxClass;
}

HWND AddBoxWindow(State& state, Thread& self, const OpenMessageBox& shown) {
  Window window;
  window.windowClass = BoxClass();
  window.thread = &self;
  window.procedure = DefWindowProcW;
  window.title = shown.caption;
  window.style = WS_POPUP | WS_CAPTION;
  window.owner = shown.owner;
  return state.desktop.Add(std::move(window)).handle;
}

}  // namespace

namespace pal {

std::vector<OpenMessageBox> MessageBoxes::Shown() const {
  const MachineLock lock(state_.mutex);
  std::vector<OpenMessageBox> boxes;
  for (const auto& box : open) boxes.push_back(box->shown);
  return boxes;
}

void MessageBoxes::Answer(int button) {
  const MachineLock lock(state_.mutex);
  if (open.empty()) Die("no message box is open");
  Answer(*open.back(), button);
}

void MessageBoxes::Answer(WaitingBox& box, int button) {
  if (!HasButton(box.shown, button)) Die("an answer for which the message box has no button");
  box.answer = button;
  state_.scheduler.Notify();
}

}  // namespace pal

int WINAPI MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type) {
  const Call call("MessageBoxW");
  if (call.Fails()) return 0;
  State& state = call.Get();
  Thread& self = CallingThread("MessageBoxW");
  if (owner && !state.desktop.Find(owner)) return Refuse(ERROR_INVALID_WINDOW_HANDLE, 0);
  if (state.scheduler.IsEnding()) return IDCANCEL;
  const OpenMessageBox shown{owner, text ? text : u"", std::u16string(caption ? caption : kDefaultCaption),
                             type};
  ButtonsOf(type);
  state.Emit(BoxShown{shown.text, shown.caption, type, state.desktop.ClassOf(shown.owner)});

  auto box = std::make_shared<WaitingBox>(WaitingBox{nullptr, shown, state.boxes.automaticAnswer});
  std::optional<int> quit;
  if (!box->answer) {
    box->window = AddBoxWindow(state, self, shown);
    state.boxes.open.push_back(box);
    quit = RunNestedLoop(state, self, [&] { return box->answer || !state.desktop.Find(box->window); });
    std::erase(state.boxes.open, box);
    DestroyTree(state, box->window);
  }
  if (quit) self.queue.PostQuit(*quit);  // the loop outside gets to see it
  if (!box->answer) return IDCANCEL;
  state.Emit(BoxAnswered{*box->answer});
  return *box->answer;
}

BOOL WINAPI MessageBeep(UINT type) {
  const Call call("MessageBeep");
  if (call.Fails()) return FALSE;
  call->Emit(Beep{type});
  return TRUE;
}
