// A dialog or message box of the tool as another program of the desktop sees and uses it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/windows/observer.h"

namespace windows_test {

class Dialog {
 public:
  // Found anew each time, by its caption.
  Dialog(Observer& observer, std::string caption) : observer_(observer), caption_(std::move(caption)) {}

  bool IsOpen(const Where& where = Where::current());
  bool IsVisible(const Where& where = Where::current());
  void AwaitOpen(const Where& where = Where::current());
  void AwaitClosed(const Where& where = Where::current());
  // One of its texts is this; line ends read as blanks.
  bool Shows(const std::string& text, const Where& where = Where::current());
  void AwaitText(const std::string& text, const Where& where = Where::current());

  // A button by its text, without the mark of its access key.
  void PressButton(const std::string& text, const Where& where = Where::current());
  // A key by its virtual key code.
  void PressKey(int key, const Where& where = Where::current());

  // ---- controls by number
  struct Control {
    bool isShown;
    bool isEnabled;
    std::string text;  // of a drop-down list: what is selected
  };
  Control Look(int id, const Where& where = Where::current());
  std::string Text(int id, const Where& where = Where::current()) { return Look(id, where).text; }
  // Of a drop-down list: "NAME=VALUE".
  std::vector<std::string> Entries(int id, const Where& where = Where::current());
  bool IsChecked(int id, const Where& where = Where::current());
  // Of a slider.
  int64_t Position(int id, const Where& where = Where::current());
  // "3 of 9", of a progress bar.
  std::string Progress(int id, const Where& where = Where::current());

  void Click(int id, const Where& where = Where::current());
  void DoubleClick(int id, const Where& where = Where::current());
  void Choose(int id, const std::string& entry, const Where& where = Where::current());
  void Enter(int id, const std::string& text, const Where& where = Where::current());
  // Drags a slider there.
  void Drag(int id, int position, const Where& where = Where::current());

 private:
  int64_t Ask(int id, uint32_t message, int64_t wParam, int64_t lParam, const Where& where);
  Observer::Words Run(Observer::Words command, const Where& where);

  Observer& observer_;
  std::string caption_;
};

}  // namespace windows_test
