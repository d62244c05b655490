// Modal dialogs, and what the person does to dialogs.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "pal/machine/person.h"

namespace pal {

struct ModalDialog {
  HWND window = nullptr;
  HWND disabledOwner = nullptr;
  bool hasEnded = false;
  INT_PTR result = 0;
};

struct WaitingFileBox {
  HWND window = nullptr;
  OpenFileBox shown;
  bool isAnswered = false;
  std::optional<std::u16string> path;  // empty: cancelled
};

// A message that runs what the person does, on the program's thread and in its turn. wParam is its number.
constexpr UINT kPersonActs = 0xFFFF;

struct Dialogs {
  std::vector<std::shared_ptr<ModalDialog>> modal;         // innermost last
  std::vector<std::shared_ptr<WaitingFileBox>> fileBoxes;  // innermost last
  std::map<WPARAM, std::function<void()>> acts;            // that the person began
  WPARAM lastAct = 0;
};

}  // namespace pal
