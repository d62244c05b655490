// Runs a command in a Wine session with a loop-back plug in COM2, which sends back what it is sent:
// serial_plug COMMAND [ARGUMENT...]. The exit code is the command's.
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "simulator/pseudo_terminal.h"

namespace {

constexpr int kPauseMs = 5;  // between two looks at the command

// What came back and was not taken yet. A command that never reads must not stop us from looking after it.
class Plug {
 public:
  explicit Plug(int terminal) : terminal_(terminal) {}
  void Turn() {
    const short wanted = waiting_.empty() ? POLLIN : POLLIN | POLLOUT;
    pollfd state{terminal_, wanted, 0};
    poll(&state, 1, kPauseMs);
    if (state.revents & POLLHUP) {
      waiting_.clear();
      usleep(kPauseMs * 1000);
    }
    char buffer[4096];
    const ssize_t count = read(terminal_, buffer, sizeof buffer);
    if (count > 0) waiting_.insert(waiting_.end(), buffer, buffer + count);
    const ssize_t sent = waiting_.empty() ? 0 : write(terminal_, waiting_.data(), waiting_.size());
    if (sent > 0) waiting_.erase(waiting_.begin(), waiting_.begin() + sent);
  }

 private:
  int terminal_;
  std::vector<char> waiting_;
};

}  // namespace

int main(int count, char** arguments) {
  const char* prefix = std::getenv("WINEPREFIX");
  if (count < 2 || !prefix) {
    std::fprintf(stderr, "usage: session.sh serial_plug COMMAND [ARGUMENT...]\n");
    return 2;
  }
  const simulator::PseudoTerminal terminal(std::filesystem::path(prefix) / "com2");
  Plug plug(terminal.Get());
  const pid_t command = fork();
  if (command == 0) {
    execvp(arguments[1], arguments + 1);
    std::perror(arguments[1]);
    _exit(127);
  }
  int status = 0;
  while (command > 0 && waitpid(command, &status, WNOHANG) == 0) plug.Turn();
  return command > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
