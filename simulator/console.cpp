#include "simulator/console.h"

#include <istream>

#include "simulator/controller_commands.h"

namespace simulator {

Console::Console(std::ostream& out) : out_(out), timeline_(out) {
  timeline_.Follow(tablet_);
}

Problem Console::RunLine(std::string_view line) {
  std::vector<std::string> words;
  if (!SplitWords(line, words)) return "a quote is not closed";
  if (words.empty()) return {};
  const ConsoleCommand* command = FindConsoleCommand(words[0]);
  const ControllerCommand* controllerCommand = command ? nullptr : FindControllerCommand(words[0]);
  if (!command && !controllerCommand) return "unknown command, \"help\" lists them";
  const bool acts = !command || command->acts;
  if (acts) {
    lastActionAt_ = tablet_.Machine().Now();
    timeline_.Add({lastActionAt_, ">", std::string(line.substr(line.find_first_not_of(" \t")))});
  }
  const Problem problem = command ? command->run(*this, words) : controllerCommand->run(tablet_.Pic(), words);
  if (acts) tablet_.Advance(Duration(0));  // what the tool does at once belongs to the command
  return problem;
}

Problem Console::RunScript(std::istream& script, std::string_view name) {
  std::string line;
  for (int number = 1; !ended_ && std::getline(script, line); ++number)
    if (const Problem problem = RunLine(line))
      return std::string(name) + ":" + std::to_string(number) + ": \"" + line + "\": " + *problem;
  return {};
}

}  // namespace simulator
