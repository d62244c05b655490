// Message boxes that wait for the person.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pal {

struct State;

// A message box that waits for the person.
struct OpenMessageBox {
  HWND owner = nullptr;
  std::u16string text;
  std::u16string caption;
  UINT type = 0;
};

struct WaitingBox {
  HWND window = nullptr;
  OpenMessageBox shown;
  std::optional<int> answer;
};

class MessageBoxes {
 public:
  explicit MessageBoxes(State& state) : state_(state) {}

  [[nodiscard]] std::vector<OpenMessageBox> Shown() const;  // innermost last
  // The person presses a button of the innermost box; dies when it has none of that number.
  void Answer(int button);
  // What answers every box at once. Empty: a box stays open until it is answered.
  std::optional<int> automaticAnswer;

  // ---- for the calls of Windows ----
  void Answer(WaitingBox& box, int button);
  std::vector<std::shared_ptr<WaitingBox>> open;  // innermost last

 private:
  State& state_;
};

}  // namespace pal
