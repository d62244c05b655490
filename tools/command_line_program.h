// What the programs of the command line do around their work.
#pragma once

#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace veltra {

template <class Options>
struct CommandLineProgram {
  const char* name;
  const char* usage;
  int wrongUsage;  // exit codes
  int failed;
  std::optional<Options> (*parse)(const std::vector<std::string>& arguments);  // empty: wrong
  int (*run)(const Options& options);
};

// Prints the usage where it is asked for or the arguments are wrong, and runs otherwise.
template <class Options>
int RunProgram(const CommandLineProgram<Options>& program, int argc, char** argv) {
  try {
    const std::optional<Options> options = program.parse({argv + 1, argv + argc});
    if (!options) {
      std::fputs(program.usage, stderr);
      return program.wrongUsage;
    }
    if (!options->help) return program.run(*options);
    std::fputs(program.usage, stdout);
    return 0;
  } catch (const std::exception& failure) {  // out of memory
    std::fprintf(stderr, "%s: %s\n", program.name, failure.what());
    return program.failed;
  }
}

}  // namespace veltra
