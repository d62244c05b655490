#include "tests/windows/pseudo_terminal.h"

#include <fcntl.h>
#include <pty.h>
#include <termios.h>

#include <cerrno>
#include <system_error>

namespace windows_test {
namespace {

void Check(int result, const char* what) {
  if (result != 0) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

PseudoTerminal::PseudoTerminal(std::filesystem::path link) : link_(std::move(link)) {
  int ours = -1;
  int theirs = -1;
  char path[128];
  Check(openpty(&ours, &theirs, path, nullptr, nullptr), "pseudo terminal");
  terminal_ = FileDescriptor(ours);
  const FileDescriptor other(theirs);  // closed again: the other end is for the program alone
  termios settings{};
  Check(tcgetattr(theirs, &settings), "terminal settings");
  cfmakeraw(&settings);
  Check(tcsetattr(theirs, TCSANOW, &settings), "terminal settings");
  fcntl(ours, F_SETFD, FD_CLOEXEC);
  fcntl(ours, F_SETFL, O_NONBLOCK);
  std::filesystem::remove(link_);
  std::filesystem::create_symlink(path, link_);
}

PseudoTerminal::~PseudoTerminal() {
  std::error_code ignored;
  std::filesystem::remove(link_, ignored);
}

}  // namespace windows_test
