// The tool on the simulated tablet: a demonstration, a script, or a prompt.
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/console.h"
#include "simulator/demonstration.h"
#include "simulator/prompt.h"
#include "simulator/tablet_world.h"
#include "tools/command_line_program.h"

namespace {

constexpr char kUsage[] =
    "usage: tablet [--script FILE] [--trace FILE]\n"
    "\n"
    "Runs the tool on a simulated tablet in virtual time and prints what happens. Without a script it\n"
    "plays a demonstration; then, on a terminal, it takes commands.\n"
    "\n"
    "  --script FILE   plays the commands in FILE instead and ends, with exit code 1 when one of them fails\n"
    "  --trace FILE    writes everything that the tool does as one JSON object a line\n"
    "  --help          prints this\n";

struct Options {
  bool help = false;
  std::string script;
  std::string trace;
};

std::optional<Options> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (size_t n = 0; n < arguments.size(); ++n) {
    const std::string& name = arguments[n];
    if (name == "--help") {
      options.help = true;
      return options;
    }
    std::string* value = name == "--script" ? &options.script : name == "--trace" ? &options.trace : nullptr;
    if (!value || n + 1 == arguments.size()) return std::nullopt;
    *value = arguments[++n];
  }
  return options;
}

int Fail(const std::string& what) {
  std::cout.flush();
  std::cerr << "tablet: " << what << "\n";
  return 1;
}

void Prompt(simulator::Console& console) {
  std::cout
      << "\nThe tablet is yours. Time stands still until you say \"wait 1s\"; \"help\" lists the commands, "
         "\"exit\" leaves.\n";
  simulator::RunPrompt(console);
}

int Play(const Options& options, std::istream& script, const std::string& scriptName, std::ostream& trace) {
  simulator::TabletWorld world;
  simulator::Console console(world, std::cout);
  console.TheTimeline().UseColours(simulator::TerminalHasColours());
  const auto writeTrace = [&world, &trace] {
    for (const pal::Effect& effect : world.Tablet().Machine().Effects()) trace << pal::ToJson(effect) << "\n";
  };
  if (const simulator::Problem problem = console.RunScript(script, scriptName)) {
    writeTrace();
    return Fail(*problem);
  }
  if (options.script.empty() && isatty(STDIN_FILENO)) Prompt(console);
  writeTrace();
  return 0;
}

int Run(const Options& options) {
  std::ofstream trace;
  if (!options.trace.empty()) {
    trace.open(options.trace);
    if (!trace) return Fail("cannot write " + options.trace);
  }
  if (options.script.empty()) {
    std::istringstream demonstration(simulator::kDemonstration);
    return Play(options, demonstration, "demonstration", trace);
  }
  std::ifstream script(options.script);
  if (!script) return Fail("cannot read " + options.script);
  return Play(options, script, options.script, trace);
}

}  // namespace

int main(int count, char** arguments) {
  return veltra::RunProgram<Options>(
      {.name = "tablet", .usage = kUsage, .wrongUsage = 2, .failed = 1, .parse = ParseOptions, .run = Run},
      count, arguments);
}
