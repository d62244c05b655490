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

# A font with the widths of that of Windows' dialogs.
dialog_font=/usr/share/wine/fonts/tahoma.ttf
need_dialog_font() { [ -e $dialog_font ] || { install_packages fonts-wine && [ -e $dialog_font ]; }; }

# need_library HEADER PACKAGE: the same for a header.
need_library() {
  echo "#include <$1>" | g++ -std=c++20 -fsyntax-only -x c++ - 2>/dev/null || install_packages "$2"
}

# For the prompt of the simulated tablet, which does without.
need_line_editor() {
  need_library histedit.h libedit-dev || echo "libedit is missing: the prompt has no cursor keys, history or completion"
}

need_native_tools() { need g++ g++ && need cmake cmake && need ninja ninja-build && need_resource_compiler; }

# The one of mingw-w64, a small package, or LLVM's where that is at hand.
need_resource_compiler() {
  need x86_64-w64-mingw32-windres binutils-mingw-w64-x86-64 || compgen -c llvm-rc >/dev/null
}

# can_run COMPILER FLAG...: succeeds when a small program built so really runs here. A machine may bring the headers and
# not the library, or build a program that its kernel does not start.
can_run() {
  local folder status
  folder=$(mktemp -d)
  printf '#include <string>\n#include <thread>\nint main() { std::thread([] {}).join(); return std::string("ok").size() == 2 ? 0 : 1; }\n' \
    >"$folder/try.cpp"
  "$@" -std=c++20 -pthread "$folder/try.cpp" -o "$folder/try" >/dev/null 2>&1 && "$folder/try" >/dev/null 2>&1
  status=$?
  rm -r "$folder"
  return $status
}

# can_run, after the packages have been brought when it fails without them: can_run_with "PACKAGE ..." COMPILER FLAG...
can_run_with() {
  local packages=$1
  shift
  can_run "$@" || { install_packages $packages && can_run "$@"; }
}

need_windows_compilers() {
  need x86_64-w64-mingw32-g++-posix g++-mingw-w64-x86-64-posix || { echo "mingw-w64 is missing"; return 1; }
  need i686-w64-mingw32-g++-posix g++-mingw-w64-i686-posix || { echo "mingw-w64 for 32 bits is missing"; return 1; }
}

need_package_tools() {
  need makensis nsis || { echo "makensis is missing"; return 1; }
  need markdown_py python3-markdown || { echo "markdown_py is missing"; return 1; }
}

# Prints what is missing and fails when the Windows programs cannot be built or run here.
need_windows_tools() {
  need_windows_compilers || return 1
  need wine wine64 wine || { echo "Wine is missing"; return 1; }
  need Xvfb xvfb xauth || { echo "Xvfb is missing"; return 1; }
}

# can_run_windows x86_64|i686: succeeds when Wine starts and runs a program of ours. Its prefix stays in VELTRA_WINE_PREFIX.
can_run_windows() {
  local folder status
  folder=$(mktemp -d)
  echo 'int main() { return 42; }' >"$folder/try.cpp"
  "$1-w64-mingw32-g++-posix" -static "$folder/try.cpp" -o "$folder/try.exe" && tests/windows/run_exe.sh "$folder/try.exe"
  status=$?
  rm -r "$folder"
  [ $status = 42 ]
}
