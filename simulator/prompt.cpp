#include "simulator/prompt.h"

#include <poll.h>
#include <unistd.h>

#include <iostream>

namespace simulator {
namespace {

// A world in wall time goes on while the person thinks.
void AwaitInput(World& world) {
  constexpr int kLookMs = 10;
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (poll(&input, 1, kLookMs) == 0) world.GoOn();
}

}  // namespace

void RunPrompt(Console& console) {
  std::string line;
  for (;;) {
    std::cout << "> " << std::flush;
    AwaitInput(console.TheWorld());
    if (!std::getline(std::cin, line)) return;
    if (const Problem problem = console.RunLine(line)) std::cout << "  " << *problem << "\n";
    if (console.HasEnded()) return;
  }
}

}  // namespace simulator
