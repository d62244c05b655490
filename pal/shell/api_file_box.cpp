// GetOpenFileNameW: the person chooses a file when it pleases them.
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

constexpr DWORD kKnownFlags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;

thread_local DWORD boxError = 0;

// Pairs of texts up to an empty one.
std::vector<std::pair<std::u16string, std::u16string>> FiltersOf(const WCHAR* list) {
  std::vector<std::pair<std::u16string, std::u16string>> filters;
  while (list && *list) {
    std::u16string name = list;
    list += name.size() + 1;
    std::u16string pattern = list;
    list += pattern.size() + 1;
    filters.emplace_back(std::move(name), std::move(pattern));
  }
  return filters;
}

void Answer(State& state, WaitingFileBox& box, std::optional<std::u16string> path) {
  box.isAnswered = true;
  box.path = std::move(path);
  state.scheduler.Notify();
}

// Empty: cancelled.
std::optional<std::u16string> Ask(const OpenFileBox& shown) {
  const Call call;
  State& state = call.Get();
  Thread& self = CallingThread("GetOpenFileNameW");
  const auto box = std::make_shared<WaitingFileBox>();
  box->shown = shown;
  box->window = AddBoxWindow(state, self, u"Open", WS_SYSMENU | WS_VISIBLE, shown.owner);
  state.dialogs.fileBoxes.push_back(box);
  state.Emit(FileBoxShown{shown.filters.empty() ? std::u16string() : shown.filters.front().first,
                          shown.defaultExtension, shown.initialName, shown.flags});
  const std::optional<int> quit =
      RunNestedLoop(state, self, [&] { return box->isAnswered || !state.desktop.Find(box->window); });
  std::erase(state.dialogs.fileBoxes, box);
  DestroyTree(state, box->window);
  if (quit) self.queue.PostQuit(*quit);
  state.Emit(FileBoxAnswered{box->path.value_or(u"")});
  return box->path;
}

}  // namespace

DWORD WINAPI CommDlgExtendedError() {
  return boxError;
}

BOOL WINAPI GetOpenFileNameW(LPOPENFILENAMEW box) {
  boxError = 0;
  {
    const Call call("GetOpenFileNameW");
    if (call.Fails()) return FALSE;
  }
  if (box->lStructSize != sizeof(OPENFILENAMEW) || !box->lpstrFile) return FALSE;
  if (box->Flags & ~kKnownFlags) Die("GetOpenFileNameW with an unknown flag");
  if (OrEmpty(box->lpstrFile).find_first_of(u"\"<>|") != std::u16string_view::npos) {
    boxError = FNERR_INVALIDFILENAME;
    return FALSE;
  }
  const bool disables = box->hwndOwner && IsWindowEnabled(box->hwndOwner);
  if (disables) EnableWindow(box->hwndOwner, FALSE);
  const std::optional<std::u16string> path =
      Ask({box->hwndOwner, FiltersOf(box->lpstrFilter), std::u16string(OrEmpty(box->lpstrDefExt)),
           std::u16string(OrEmpty(box->lpstrFile)), box->Flags});
  if (disables) EnableWindow(box->hwndOwner, TRUE);
  if (!path || path->size() >= box->nMaxFile) return FALSE;
  *std::ranges::copy(*path, box->lpstrFile).out = 0;
  const Call call;
  call->disk.currentDirectory = path->substr(0, path->rfind(u'\\') + 1);
  return TRUE;
}

namespace pal::person {

std::vector<OpenFileBox> OpenFileBoxes() {
  const Call call;
  std::vector<OpenFileBox> boxes;
  for (const auto& box : call->dialogs.fileBoxes) boxes.push_back(box->shown);
  return boxes;
}

void AnswerFileBox(std::optional<std::u16string> path) {
  const Call call;
  if (call->dialogs.fileBoxes.empty()) Die("no box for choosing a file is open");
  Answer(call.Get(), *call->dialogs.fileBoxes.back(), std::move(path));
}

}  // namespace pal::person
