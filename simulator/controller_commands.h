// What a person can make the controller do, as one table of commands for every program that has one.
#pragma once

#include <span>
#include <string_view>

#include "simulator/controller.h"
#include "simulator/words.h"

namespace simulator {

struct ControllerCommand {
  std::string_view name;
  std::string_view arguments;  // as help shows them
  std::string_view help;
  // `words` holds the command's name and its arguments. Does nothing when it returns a problem.
  Problem (*run)(Controller& controller, Words words);
};

std::span<const ControllerCommand> ControllerCommands();
// The row of that name, null when there is none.
const ControllerCommand* FindControllerCommand(std::string_view name);

// Why the controller says nothing of the button that the line presses; empty when it does, or for another
// line.
std::string_view WhySilent(const Controller& controller, Words words);

// "expects: press|release"
std::string ExpectedArguments(std::string_view arguments);

}  // namespace simulator
