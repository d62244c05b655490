// The observer's commands, as they arrive on standard input: words separated by tabs.
#pragma once

#include <optional>
#include <span>

#include "simulator/wine/observer/report.h"

namespace observer {

struct Command {
  const char* name;
  size_t arguments;
  std::string (*run)(const Words& words);  // the answer; throws std::exception when it cannot
};

// Dialogs, their controls, and menus; the notification area and windows of other programs; the registry; what
// a process holds.
std::span<const Command> DialogCommands();
std::span<const Command> DeskCommands();
std::span<const Command> RegistryCommands();
std::span<const Command> HoldingCommands();

// Carries the command out and reports "=" with its result, or "!" with what went wrong.
void RunCommand(const std::string& line);

// ---- for the commands
// Decimal, hexadecimal after 0x, or negative.
unsigned long long Number(const std::string& word);
// Sends to another program's window; nothing when there is no answer in time.
std::optional<LRESULT> TrySend(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Throws when there is no answer in time.
LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// The window of that class; throws when there is none.
HWND Find(const std::string& className);

}  // namespace observer
