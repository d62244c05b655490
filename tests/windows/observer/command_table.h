// How a command of the observer is written: a name, the number of its arguments, and what it does.
#pragma once

#include <windows.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace observer {

using Words = std::vector<std::string>;  // the command's name first

struct Command {
  const char* name;
  size_t arguments;
  std::string (*run)(const Words& words);  // the answer; throws std::exception when it cannot
};

// Decimal, hexadecimal behind 0x, or negative.
unsigned long long Number(const std::string& word);

// Sends to another program's window; nothing when there is no answer in time.
std::optional<LRESULT> TrySend(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Throws when there is no answer in time.
LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// The commands for dialogs.
std::span<const Command> DialogCommands();

}  // namespace observer
