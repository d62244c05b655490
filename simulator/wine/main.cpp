// The real veltratool.exe on a Wine desktop, with the controller on its line: a script, or a prompt.
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <string>

#include "simulator/console.h"
#include "simulator/prompt.h"
#include "simulator/wine/session.h"
#include "simulator/wine/wine_world.h"

namespace {

constexpr char kUsage[] =
    "usage: wine_tablet --exe-dir FOLDER [SCRIPT]\n"
    "\n"
    "Plays the story in SCRIPT (\"-\": from standard input) with the programs in FOLDER, in wall time and\n"
    "in a Windows of its own; exit code 1 when a line of it fails. Without a script it takes commands;\n"
    "\"help\" lists them.\n";

int Run(const std::string& script) {
  simulator::WineWorld world;
  simulator::Console console(world, std::cout);
  console.TheTimeline().UseColours(simulator::TerminalHasColours());
  if (script.empty()) {
    simulator::RunPrompt(console);
    return 0;
  }
  std::ifstream file;
  if (script != "-") file.open(script);
  if (!file) throw std::runtime_error("cannot read " + script);
  const simulator::Problem problem = console.RunScript(script == "-" ? std::cin : file, script);
  if (!problem) return 0;
  std::cerr << *problem << "\n";
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count == 2 && std::string(arguments[1]) == "--help") {
    std::cout << kUsage;
    return 0;
  }
  if (count < 3 || count > 4 || std::string(arguments[1]) != "--exe-dir") {
    std::cerr << kUsage;
    return 2;
  }
  try {
    simulator::EnterWindows(arguments, arguments[2]);
    return Run(count == 4 ? arguments[3] : "");
  } catch (const std::exception& error) {
    std::cerr << "wine_tablet: " << error.what() << "\n";
    return 1;
  }
}
