// Dialogs and message boxes of other programs, by their captions, and their controls, by their texts or
// numbers.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "tests/windows/observer/command_table.h"
#include "tests/windows/observer/report.h"

namespace observer {
namespace {

HWND FindCaption(const std::string& caption) {
  return FindWindowW(nullptr, Wide(caption).c_str());
}

HWND FindDialog(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  if (!dialog) throw std::runtime_error("no such dialog");
  return dialog;
}

// Asked of the window itself, which alone knows what was typed into it; empty when it has just gone.
std::string TextOf(HWND window) {
  wchar_t text[1200] = {};
  const LRESULT length =
      TrySend(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text)).value_or(0);
  return Utf8({text, static_cast<size_t>(length)});
}

std::vector<HWND> ControlsOf(HWND dialog) {
  std::vector<HWND> controls;
  for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
    controls.push_back(control);
  return controls;
}

std::string RunTexts(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  if (!dialog) return "no";
  std::string texts = "yes";
  for (const HWND control : ControlsOf(dialog))
    if (const std::string text = TextOf(control); !text.empty()) texts += '\t' + text;
  return texts;
}

std::string RunPress(const Words& words) {
  const std::vector<HWND> controls = ControlsOf(FindDialog(words));
  const auto button = std::ranges::find_if(controls, [&](HWND control) {
    std::string text = TextOf(control);
    std::erase(text, '&');
    return text == words[2];
  });
  if (button == controls.end()) throw std::runtime_error("no such button");
  PostMessageW(*button, BM_CLICK, 0, 0);
  return {};
}

std::string RunVisible(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  return dialog && IsWindowVisible(dialog) ? "yes" : "no";
}

std::string RunRect(const Words& words) {
  RECT rect = {};
  GetWindowRect(FindDialog(words), &rect);
  char text[64];
  std::snprintf(text, sizeof text, "%ldx%ld+%ld+%ld", rect.right - rect.left, rect.bottom - rect.top,
                rect.left, rect.top);
  return text;
}

// As the system posts it to the window that has the keyboard.
std::string RunKey(const Words& words) {
  const HWND dialog = FindDialog(words);
  PostMessageW(dialog, WM_KEYDOWN, Number(words[2]), 1);
  PostMessageW(dialog, WM_KEYUP, Number(words[2]), static_cast<LPARAM>(0xC0000001));
  return {};
}

// Balloons of the notification area: the system shows them in tooltip windows of its own.
std::string RunBalloons(const Words&) {
  std::string texts;
  for (HWND tip = nullptr; (tip = FindWindowExW(nullptr, tip, L"tooltips_class32", nullptr));)
    if (IsWindowVisible(tip)) texts.append(texts.empty() ? "" : "\t").append(TextOf(tip));
  return texts;
}

// ---- controls by number -----------------------------------------------------------------------------------

HWND FindControl(const Words& words) {
  const HWND control = GetDlgItem(FindDialog(words), static_cast<int>(Number(words[2])));
  if (!control) throw std::runtime_error("no such control");
  return control;
}

// The dialog hears of what was done to its control, as from the control itself.
void Notify(HWND control, WORD code) {
  Send(GetParent(control), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), code),
       reinterpret_cast<LPARAM>(control));
}

std::string RunControl(const Words& words) {
  const HWND control = FindControl(words);
  const std::string seen = IsWindowVisible(control) ? "shown" : "hidden";
  const std::string usable = IsWindowEnabled(control) ? "enabled" : "disabled";
  return seen + '\t' + usable + '\t' + TextOf(control);
}

std::string RunEntries(const Words& words) {
  const HWND list = FindControl(words);
  const LRESULT count = Send(list, CB_GETCOUNT, 0, 0);
  std::string entries;
  for (WPARAM n = 0; n < static_cast<WPARAM>(count); ++n) {
    wchar_t name[256] = {};
    Send(list, CB_GETLBTEXT, n, reinterpret_cast<LPARAM>(name));
    const auto value = static_cast<int>(Send(list, CB_GETITEMDATA, n, 0));
    entries.append(n ? "\t" : "").append(Utf8(name)).append("=").append(std::to_string(value));
  }
  return entries;
}

std::string RunAsk(const Words& words) {
  return std::to_string(Send(FindControl(words), static_cast<UINT>(Number(words[3])), Number(words[4]),
                             static_cast<LPARAM>(Number(words[5]))));
}

std::string RunClick(const Words& words) {
  PostMessageW(FindControl(words), BM_CLICK, 0, 0);
  return {};
}

std::string RunDoubleClick(const Words& words) {
  PostMessageW(FindControl(words), WM_LBUTTONDBLCLK, MK_LBUTTON, 0);
  return {};
}

std::string RunEnter(const Words& words) {
  Send(FindControl(words), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Wide(words[3]).c_str()));
  return {};
}

std::string RunChoose(const Words& words) {
  const HWND list = FindControl(words);
  const LRESULT entry = Send(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                             reinterpret_cast<LPARAM>(Wide(words[3]).c_str()));
  if (entry == CB_ERR) throw std::runtime_error("no such entry");
  Send(list, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
  Notify(list, CBN_SELCHANGE);
  return {};
}

// As a mouse that takes the thumb there and lets it go.
std::string RunDrag(const Words& words) {
  const HWND slider = FindControl(words);
  const auto position = static_cast<LPARAM>(Number(words[3]));
  Send(slider, TBM_SETPOS, TRUE, position);
  for (const WPARAM code : {MAKEWPARAM(TB_THUMBTRACK, position), MAKEWPARAM(TB_ENDTRACK, 0)})
    Send(GetParent(slider), WM_HSCROLL, code, reinterpret_cast<LPARAM>(slider));
  return {};
}

constexpr Command kCommands[] = {
    {"texts", 1, RunTexts},               // CAPTION: yes and the texts of its controls, or no
    {"press", 2, RunPress},               // CAPTION BUTTON, by its text
    {"visible", 1, RunVisible},           // CAPTION: yes or no
    {"rect", 1, RunRect},                 // CAPTION: its place on the desktop, as WIDTHxHEIGHT+LEFT+TOP
    {"key", 2, RunKey},                   // CAPTION KEY: pressed and released
    {"balloons", 0, RunBalloons},         // the texts of the balloons and tooltips that are to be seen
    {"control", 2, RunControl},           // CAPTION ID: shown or hidden, enabled or disabled, its text
    {"entries", 2, RunEntries},           // CAPTION ID: NAME=VALUE of each entry of a drop-down list
    {"ask", 5, RunAsk},                   // CAPTION ID MESSAGE WPARAM LPARAM: the control's result
    {"click", 2, RunClick},               // CAPTION ID
    {"double-click", 2, RunDoubleClick},  // CAPTION ID
    {"enter", 3, RunEnter},               // CAPTION ID TEXT
    {"choose", 3, RunChoose},             // CAPTION ID ENTRY of a drop-down list
    {"drag", 3, RunDrag},                 // CAPTION ID POSITION of a slider
};

}  // namespace

std::span<const Command> DialogCommands() {
  return kCommands;
}

}  // namespace observer
