#include "simulator/pseudo_terminal.h"

#include <fcntl.h>
#include <pty.h>
#include <termios.h>

#include <cerrno>
#include <system_error>

namespace simulator {
namespace {

void Check(int result, const char* what) {
  if (result != 0) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

void MakeRaw(int terminal) {
  termios settings{};
  Check(tcgetattr(terminal, &settings), "terminal settings");
  cfmakeraw(&settings);
  cfsetspeed(&settings, B57600);
  settings.c_cflag |= CLOCAL | CREAD;
  Check(tcsetattr(terminal, TCSANOW, &settings), "terminal settings");
}

PseudoTerminal::PseudoTerminal(std::filesystem::path link) : link_(std::move(link)) {
  int ours = -1;
  int theirs = -1;
  char path[128];
  Check(openpty(&ours, &theirs, path, nullptr, nullptr), "pseudo terminal");
  path_ = path;
  terminal_ = FileDescriptor(ours);
  const FileDescriptor other(theirs);  // closed again: the other end is for the program alone
  MakeRaw(theirs);
  fcntl(ours, F_SETFD, FD_CLOEXEC);
  fcntl(ours, F_SETFL, O_NONBLOCK);
  if (link_.empty()) return;
  if (std::filesystem::is_symlink(link_)) std::filesystem::remove(link_);
  std::filesystem::create_symlink(path_, link_);
}

PseudoTerminal::~PseudoTerminal() {
  std::error_code ignored;
  if (!link_.empty()) std::filesystem::remove(link_, ignored);
}

}  // namespace simulator
