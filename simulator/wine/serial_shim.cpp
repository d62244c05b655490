// Makes a pseudo terminal pass for a serial port: preloaded into Wine and its server, it answers what the
// kernel refuses there because a pseudo terminal has no modem lines. Without that a wait for comm events
// fails at once.
#include <asm/termbits.h>
#include <dlfcn.h>
#include <linux/serial.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstdarg>

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept {
  using Ioctl = int (*)(int, unsigned long, ...);
  static const auto kernel = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);

  const int result = kernel(fd, request, argument);
  if (result >= 0 || errno != ENOTTY) return result;
  termios settings;
  if (kernel(fd, TCGETS, &settings) != 0) {  // no terminal at all: leave the refusal as it was
    errno = ENOTTY;
    return -1;
  }
  switch (request) {
    case TIOCMGET:
      *static_cast<int*>(argument) = TIOCM_CTS | TIOCM_DSR | TIOCM_CAR | TIOCM_DTR | TIOCM_RTS;
      return 0;
    case TIOCGICOUNT:
      *static_cast<serial_icounter_struct*>(argument) = {};
      return 0;
    case TIOCMSET:
    case TIOCMBIS:
    case TIOCMBIC:
      return 0;
    default:
      errno = ENOTTY;
      return -1;
  }
}

// So Wine of 32 bits calls it, where times have 64.
extern "C" int __ioctl_time64(int fd, unsigned long request, ...) noexcept __attribute__((alias("ioctl")));
