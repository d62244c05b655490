# Sourced by run and test: brings the Debian packages that a step needs, where this user may install them.

# need PROGRAM PACKAGE...: succeeds when the program is there, or could be installed.
need() {
  local program=$1
  shift
  command -v "$program" >/dev/null 2>&1 && return 0
  install_packages "$@" && command -v "$program" >/dev/null 2>&1
}

install_packages() {
  command -v apt-get >/dev/null 2>&1 && [ "$(id -u)" = 0 ] || return 1
  echo "installing $*"
  export DEBIAN_FRONTEND=noninteractive
  if [ -z "${VELTRA_APT_UPDATED:-}" ]; then
    apt-get update -qq >/dev/null 2>&1
    VELTRA_APT_UPDATED=1
  fi
  apt-get install -y -qq --no-install-recommends "$@" >/dev/null 2>&1
}

need_native_tools() { need g++ g++ && need cmake cmake && need ninja ninja-build && need_resource_compiler; }

# The one of mingw-w64, a small package, or LLVM's where that is at hand.
need_resource_compiler() {
  need x86_64-w64-mingw32-windres binutils-mingw-w64-x86-64 || compgen -c llvm-rc >/dev/null
}

# Succeeds when the compiler has its headers and libraries for 32 bits, sanitizers included.
need_32_bits() {
  local try='echo "#include <string>" | g++ -m32 -fsanitize=address,undefined -std=c++20 -fsyntax-only -x c++ -'
  eval "$try" 2>/dev/null || { install_packages g++-multilib && eval "$try" 2>/dev/null; }
}

# Prints what is missing and fails when the Windows programs cannot be built or run here.
need_windows_tools() {
  need x86_64-w64-mingw32-g++-posix g++-mingw-w64-x86-64-posix || { echo "mingw-w64 is missing"; return 1; }
  need i686-w64-mingw32-g++-posix g++-mingw-w64-i686-posix || { echo "mingw-w64 for 32 bits is missing"; return 1; }
  need wine wine64 wine || { echo "Wine is missing"; return 1; }
  need Xvfb xvfb xauth || { echo "Xvfb is missing"; return 1; }
}
