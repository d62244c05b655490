#include "simulator/console.h"

#include <algorithm>
#include <istream>

#include "simulator/controller_commands.h"

namespace simulator {

Console::Console(World& world, std::ostream& out) : world_(world), out_(out), timeline_(out) {
  timeline_.Follow(world_);
  if (world_.Tolerance() > Duration(0)) timeline_.AllowDisorder(std::chrono::milliseconds(500));
}

Console::~Console() {
  timeline_.StopFollowing(world_);
}

// "only windows COMMAND"
Problem Console::RunOnly(std::string_view line, Words words) {
  if (words.size() < 3 || std::ranges::find(kWorldNames, words[1]) == std::end(kWorldNames))
    return ExpectedArguments("tablet|windows COMMAND");
  if (words[1] != world_.Name()) return {};
  return RunLine(line.substr(line.find(words[1]) + words[1].size()));
}

Problem Console::RunLine(std::string_view line) {
  std::vector<std::string> words;
  if (!SplitWords(line, words)) return "a quote is not closed";
  if (words.empty()) return {};
  if (words[0] == "only") return RunOnly(line, words);
  const ConsoleCommand* command = FindConsoleCommand(words[0]);
  const ControllerCommand* ofController = FindControllerCommand(words[0]);
  const std::span<const WorldCommand> table = world_.Commands();
  const auto ofWorld = std::ranges::find(table, words[0], &WorldCommand::name);
  if (!command && !ofController && ofWorld == table.end()) return std::string(kUnknownCommand);
  if (command && command->arguments.empty() && words.size() > 1) return ExpectedArguments("nothing more");
  const bool acts = !command || command->acts;
  if (acts) {
    lastActionAt_ = world_.Now();
    timeline_.Add({lastActionAt_, ">", std::string(line.substr(line.find_first_not_of(" \t")))});
  }
  const Problem problem = command        ? command->run(*this, words)
                          : ofController ? ofController->run(world_.Pic(), words)
                                         : ofWorld->run(world_, words);
  if (acts) world_.Settle();  // what the tool does at once belongs to the command
  if (const std::string_view why = WhySilent(world_.Pic(), words); !problem && !why.empty())
    out_ << "  " << why << "\n";
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
