// Dialogs and message boxes of other programs as a person sees and uses them. What is done is done to the
// front one: the first that is shown and enabled.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "simulator/wine/observer/commands.h"

namespace observer {
namespace {

// Asked of the window itself, which alone knows what was typed into it; empty when it has just gone.
std::string TextOf(HWND window) {
  wchar_t text[1200] = {};
  const LRESULT length =
      TrySend(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text)).value_or(0);
  std::string shown = Utf8({text, static_cast<size_t>(length)});
  std::erase(shown, '&');
  std::erase(shown, '\r');
  std::ranges::replace(shown, '\n', ' ');
  return shown;
}

std::vector<HWND> ControlsOf(HWND dialog) {
  std::vector<HWND> controls;
  for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
    controls.push_back(control);
  return controls;
}

BOOL CALLBACK AddDialog(HWND window, LPARAM list) {
  if (IsWindowVisible(window) && IsWindowEnabled(window) && ClassOf(window) == L"#32770")
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

std::vector<HWND> Dialogs() {
  std::vector<HWND> dialogs;
  EnumWindows(AddDialog, reinterpret_cast<LPARAM>(&dialogs));
  return dialogs;
}

HWND FrontDialog() {
  const std::vector<HWND> dialogs = Dialogs();
  if (dialogs.empty()) throw std::runtime_error("no dialog is shown");
  return dialogs.front();
}

std::string Field(std::string_view text) {
  std::string field = std::string("\t").append(text);
  std::replace(field.begin() + 1, field.end(), '\t', ' ');
  return field;
}

// "control ID KIND TEXT STATE POSITION COUNT ENTRY...", each after a tab; the state is s(hown), e(nabled),
// c(hecked).
std::string Look(HWND control) {
  const std::string kind = Utf8(ClassOf(control));
  std::string state = IsWindowVisible(control) ? "s" : "";
  if (IsWindowEnabled(control)) state += "e";
  if (kind == "Button" && TrySend(control, BM_GETCHECK, 0, 0) == BST_CHECKED) state += "c";
  const UINT position = kind == TRACKBAR_CLASSA ? UINT{TBM_GETPOS} : UINT{PBM_GETPOS};
  const LRESULT at = kind.starts_with("msctls") ? TrySend(control, position, 0, 0).value_or(0) : 0;
  return Field("control") + Field(std::to_string(GetDlgCtrlID(control))) + Field(kind) +
         Field(TextOf(control)) + Field(state) + Field(std::to_string(at));
}

// "dialog TITLE" with its controls after it, for each of them.
std::string RunDialogs(const Words&) {
  std::string all;
  for (const HWND dialog : Dialogs()) {
    all += Field("dialog") + Field(TextOf(dialog));
    for (const HWND control : ControlsOf(dialog)) all += Look(control);
  }
  return all;
}

HWND FindControl(const Words& words) {
  const HWND control = GetDlgItem(FrontDialog(), static_cast<int>(Number(words[1])));
  if (!control) throw std::runtime_error("no such control");
  return control;
}

// "NAME=VALUE" of each entry of a drop-down list.
std::string RunEntries(const Words& words) {
  const HWND list = FindControl(words);
  const auto count = static_cast<WPARAM>(Send(list, CB_GETCOUNT, 0, 0));
  std::string entries;
  for (WPARAM n = 0; n < count; ++n) {
    wchar_t name[256] = {};
    Send(list, CB_GETLBTEXT, n, reinterpret_cast<LPARAM>(name));
    const auto value = static_cast<int>(Send(list, CB_GETITEMDATA, n, 0));
    entries.append(n ? "\t" : "").append(Utf8(name)).append("=").append(std::to_string(value));
  }
  return entries;
}

std::string RunPress(const Words& words) {
  PostMessageW(FindControl(words), BM_CLICK, 0, 0);
  return {};
}

std::string RunDoubleClick(const Words& words) {
  PostMessageW(FindControl(words), WM_LBUTTONDBLCLK, MK_LBUTTON, 0);
  return {};
}

std::string RunType(const Words& words) {
  Send(FindControl(words), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Wide(words[2]).c_str()));
  return {};
}

std::string RunChoose(const Words& words) {
  const HWND list = FindControl(words);
  const LRESULT entry = Send(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                             reinterpret_cast<LPARAM>(Wide(words[2]).c_str()));
  if (entry == CB_ERR) throw std::runtime_error("no such entry");
  Send(list, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
  Send(GetParent(list), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), CBN_SELCHANGE),
       reinterpret_cast<LPARAM>(list));
  return {};
}

// As a mouse that takes the thumb there and lets it go.
std::string RunSlide(const Words& words) {
  const HWND slider = FindControl(words);
  const auto position = static_cast<LPARAM>(Number(words[2]));
  Send(slider, TBM_SETPOS, TRUE, position);
  for (const WPARAM code : {MAKEWPARAM(TB_THUMBTRACK, position), MAKEWPARAM(TB_ENDTRACK, 0)})
    Send(GetParent(slider), WM_HSCROLL, code, reinterpret_cast<LPARAM>(slider));
  return {};
}

// As the system posts it to the window that has the keyboard.
void PressKey(HWND window, WPARAM key) {
  PostMessageW(window, WM_KEYDOWN, key, 1);
  PostMessageW(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

std::string RunKey(const Words& words) {
  PressKey(FrontDialog(), static_cast<WPARAM>(Number(words[1])));
  return {};
}

std::string RunCloseDialog(const Words&) {
  PostMessageW(FrontDialog(), WM_CLOSE, 0, 0);
  return {};
}

// The menu that is open takes the keys of its window; it passes over those that it has no item for.
std::string RunMenu(const Words& words) {
  if (!IsWindowVisible(FindWindowW(L"#32768", nullptr))) throw std::runtime_error("no menu is open");
  for (const char key : words[2])
    if (key == VK_ESCAPE)
      PressKey(Find(words[1]), VK_ESCAPE);
    else
      PostMessageW(Find(words[1]), WM_CHAR, static_cast<WPARAM>(key), 1);
  return {};
}

// ---- for scripts that show the tool: by caption
// ------------------------------------------------------------------

HWND FindCaption(const std::string& caption) {
  return FindWindowW(nullptr, Wide(caption).c_str());
}

std::string RunTexts(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  if (!dialog) return "no";
  std::string texts = "yes";
  for (const HWND control : ControlsOf(dialog)) texts += Field(TextOf(control));
  return texts;
}

std::string RunVisible(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  return dialog && IsWindowVisible(dialog) ? "yes" : "no";
}

std::string RunRect(const Words& words) {
  RECT rect = {};
  if (!GetWindowRect(FindCaption(words[1]), &rect)) throw std::runtime_error("no such dialog");
  char text[64];
  std::snprintf(text, sizeof text, "%ldx%ld+%ld+%ld", rect.right - rect.left, rect.bottom - rect.top,
                rect.left, rect.top);
  return text;
}

constexpr Command kCommands[] = {
    {"dialogs", 0, RunDialogs},
    {"entries", 1, RunEntries},           // ID
    {"press", 1, RunPress},               // ID
    {"double-click", 1, RunDoubleClick},  // ID
    {"type", 2, RunType},                 // ID TEXT
    {"choose", 2, RunChoose},             // ID ENTRY
    {"slide", 2, RunSlide},               // ID POSITION
    {"key", 1, RunKey},                   // KEY
    {"close-dialog", 0, RunCloseDialog},
    {"menu", 2, RunMenu},        // OWNER-CLASS KEYS
    {"texts", 1, RunTexts},      // CAPTION: yes and the texts of its controls, or no
    {"visible", 1, RunVisible},  // CAPTION: yes or no
    {"rect", 1, RunRect},        // CAPTION: its place on the desktop, as WIDTHxHEIGHT+LEFT+TOP
};

}  // namespace

std::span<const Command> DialogCommands() {
  return kCommands;
}

}  // namespace observer
