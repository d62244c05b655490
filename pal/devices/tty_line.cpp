#include "pal/devices/tty_line.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace pal {
namespace {

struct Speed {
  DWORD baud;
  speed_t host;
};
constexpr Speed kSpeeds[] = {{1200, B1200},   {2400, B2400},   {4800, B4800},   {9600, B9600},
                             {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200}};

}  // namespace

std::unique_ptr<TtyLine> TtyLine::Open(const std::filesystem::path& path) {
  const int descriptor = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  std::unique_ptr<TtyLine> line(new TtyLine(descriptor));
  termios settings{};
  if (tcgetattr(descriptor, &settings) != 0) return nullptr;
  cfmakeraw(&settings);
  settings.c_cflag |= CLOCAL | CREAD;
  if (tcsetattr(descriptor, TCSANOW, &settings) != 0) return nullptr;
  return line;
}

TtyLine::~TtyLine() {
  close(descriptor_);
}

bool TtyLine::Read(std::vector<uint8_t>& bytes) const {
  std::array<uint8_t, 4096> block;
  for (;;) {
    const ssize_t count = read(descriptor_, block.data(), block.size());
    if (count > 0) bytes.insert(bytes.end(), block.begin(), block.begin() + count);
    if (count == static_cast<ssize_t>(block.size())) continue;
    if (count > 0) return true;
    if (count < 0 && errno == EINTR) continue;
    return count < 0 && errno == EAGAIN;  // nothing more, or hung up
  }
}

std::optional<size_t> TtyLine::Write(std::span<const uint8_t> bytes, int milliseconds) const {
  size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t count = write(descriptor_, bytes.data() + written, bytes.size() - written);
    if (count > 0) {
      written += static_cast<size_t>(count);
      continue;
    }
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno != EAGAIN) return std::nullopt;
    pollfd room{descriptor_, POLLOUT, 0};
    if (poll(&room, 1, milliseconds) == 0) break;
  }
  return written;
}

bool TtyLine::Configure(const DCB& dcb) const {
  if (dcb.ByteSize != 8 || dcb.Parity != NOPARITY || dcb.StopBits != ONESTOPBIT) return false;
  termios settings{};
  if (tcgetattr(descriptor_, &settings) != 0) return false;
  for (const Speed& speed : kSpeeds)
    if (speed.baud == dcb.BaudRate)
      return cfsetspeed(&settings, speed.host) == 0 && tcsetattr(descriptor_, TCSANOW, &settings) == 0;
  return false;
}

void TtyLine::DiscardInput() const {
  tcflush(descriptor_, TCIFLUSH);
}

}  // namespace pal
