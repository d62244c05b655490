// Message boxes that wait for the person.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "pal/machine/machine.h"

namespace pal {

struct WaitingBox {
  HWND window = nullptr;
  OpenMessageBox shown;
  std::optional<int> answer;
};

struct MessageBoxes {
  std::vector<std::shared_ptr<WaitingBox>> open;  // innermost last
  std::optional<int> automaticAnswer;
};

struct State;

// The person presses a button; dies when the box has none of that number.
void AnswerBox(State& state, WaitingBox& box, int button);

// The box's window procedure: a button's WM_COMMAND or WM_CLOSE answers it, as another program may do.
LRESULT CALLBACK MessageBoxProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace pal
