// MessageBoxW: shown to the person, who answers when it pleases them, while the calling thread's messages go
// on.
#include <algorithm>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

constexpr std::u16string_view kDefaultCaption = u"Error";

// Of the boxes that the program shows.
std::vector<int> ButtonsOf(UINT type) {
  if ((type & MB_TYPEMASK) == MB_OK) return {IDOK};
  if ((type & MB_TYPEMASK) == MB_YESNO) return {IDYES, IDNO};
  Die("MessageBoxW of an unknown type");
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
  if (std::ranges::count(ButtonsOf(box.shown.type), button) == 0)
    Die("an answer for which the message box has no button");
  box.answer = button;
  // It leaves the screen now; its call may have to wait for what was opened from inside its loop.
  std::erase_if(open, [&box](const auto& waiting) { return waiting.get() == &box; });
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
    box->window = AddBoxWindow(state, self, shown.caption, 0, shown.owner);
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
