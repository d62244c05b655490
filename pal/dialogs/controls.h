// The controls of Windows: what each of them remembers, and what it does about a message.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace pal {

struct Window;
struct WindowClass;

struct ButtonState {
  int check = BST_UNCHECKED;
  bool isPushed = false;
};
struct StaticState {
  HICON icon = nullptr;
};
struct EditState {
  size_t limit = 32767;  // of what is typed, in characters
};
struct ComboItem {
  std::u16string text;
  LPARAM data = 0;
};
struct ComboState {
  std::vector<ComboItem> items;
  int selection = CB_ERR;
};
struct TrackbarState {
  int lowest = 0;
  int highest = 100;
  int position = 0;
  std::vector<int> ticks;  // beside those at the ends
};
struct ProgressState {
  int lowest = 0;
  int highest = 100;
  int position = 0;
  int step = 10;
};
using ControlState = std::variant<std::monostate, ButtonState, StaticState, EditState, ComboState,
                                  TrackbarState, ProgressState>;

// What a control tells its parent; lParam is the control.
struct Notice {
  UINT message = 0;
  WPARAM wParam = 0;
};
struct Reaction {
  LRESULT result = 0;
  std::vector<Notice> notices = {};  // sent when the control has its new state
};
// Empty: the default procedure handles the message.
using Reactions = std::optional<Reaction>;

Reactions ReactButton(Window& button, UINT message, WPARAM wParam, LPARAM lParam);
Reactions ReactStatic(Window& label, UINT message, WPARAM wParam, LPARAM lParam);
Reactions ReactEdit(Window& edit, UINT message, WPARAM wParam, LPARAM lParam);
Reactions ReactCombo(Window& combo, UINT message, WPARAM wParam, LPARAM lParam);
Reactions ReactTrackbar(Window& trackbar, UINT message, WPARAM wParam, LPARAM lParam);
Reactions ReactProgress(Window& progress, UINT message, WPARAM wParam, LPARAM lParam);

// WM_COMMAND with a notification code.
Notice Command(const Window& control, WORD code);

// The classes that Windows brings: controls and dialogs. Null when there is none of that name.
std::shared_ptr<const WindowClass> FindSystemClass(std::u16string_view name);

}  // namespace pal
