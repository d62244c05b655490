// The person at the machine, and the dialogs that they see. All functions act on the machine's front dialog:
// the newest that is visible and enabled. What the person does happens when the program next takes messages,
// in the order in which it was asked for; what a person could not do (press a disabled button, choose what is
// not in the list) ends the test with a message.
//
// Like everything of the outside, with virtual time they are called between two calls of
// MachineClock::Advance, or in an event.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pal {

struct ListEntry {
  std::u16string text;
  int64_t data = 0;
  bool operator==(const ListEntry&) const = default;
};

// A control as the person sees it.
struct ControlView {
  int id = 0;
  std::u16string windowClass;
  std::u16string text;  // of a drop-down list: what is selected
  std::u16string spokenName;
  bool isVisible = false;
  bool isEnabled = false;
  bool hasFocus = false;
  bool isTabStop = false;
  RECT rect{};  // in the dialog, in pixels
  bool isChecked = false;
  int position = 0;  // of a trackbar or progress bar, and its ends
  int lowest = 0;
  int highest = 0;
  std::vector<int> ticks;
  std::vector<ListEntry> entries;  // of a drop-down list
  int selection = CB_ERR;
  int icon = 0;  // of a label that shows a picture: the number of the resource
};

struct DialogView {
  HWND window = nullptr;
  HWND owner = nullptr;
  std::u16string title;
  RECT rect{};
  bool isTopmost = false;
  std::vector<ControlView> controls;  // in the order of the template
};

// A box for choosing a file that waits for the person.
struct OpenFileBox {
  HWND owner = nullptr;
  std::vector<std::pair<std::u16string, std::u16string>> filters;  // name and pattern
  std::u16string defaultExtension;
  std::u16string initialName;
  DWORD flags = 0;
};

}  // namespace pal

namespace pal::person {

// ---- what there is to see ----
[[nodiscard]] std::optional<DialogView> FrontDialog();
[[nodiscard]] ControlView Look(int id);
[[nodiscard]] std::vector<OpenFileBox> OpenFileBoxes();  // innermost last

// ---- what the person does ----
void Press(int id);  // a button or check box, with the mouse
void DoubleClick(int id);
void Choose(int id, std::u16string_view text);  // in a drop-down list
void Drag(int id, int position);                // the thumb of a trackbar, in one go
void Type(int id, std::u16string_view text);    // in the place of what an edit holds
void PressKey(int virtualKey);                  // goes to the control that has the keyboard
void Hold(int virtualKey, bool held);           // as GetAsyncKeyState sees it
void CloseDialog();                             // its close box
// Chooses a file in the innermost file box, or cancels it.
void AnswerFileBox(std::optional<std::u16string> path);

}  // namespace pal::person
