#!/usr/bin/env bash
# Runs a command beside a Windows of its own: session.sh COMMAND [ARGUMENT...]
#
# The command finds a fresh Wine prefix in WINEPREFIX and an empty X display in DISPLAY, where Wine
# has a desktop of its own; both are gone when it ends,
# and the exit code is the command's. Environment:
#   VELTRA_WINE_PREFIX   a directory that keeps the prefix, for faster starts
#   VELTRA_WINE_ARCH     win32 for a Windows of 32 bits
#   VELTRA_SERIAL_SHIM   the library to preload into Wine, so that COM2 can be a pseudo terminal; several after colons
#   VELTRA_SCREEN        the size of the desktop, 1024x768 by default
#   VELTRA_DEVICES       a directory with audio.dll, the playback device of this Windows
# COM2 is what the symbolic link $WINEPREFIX/com2 points to; the command makes that link.
set -u

scratch=$(mktemp -d "${TMPDIR:-/tmp}/veltra-wine.XXXXXX")
export WINEPREFIX=${VELTRA_WINE_PREFIX:-$scratch/prefix}
export XDG_STATE_HOME=${XDG_STATE_HOME:-${HOME:+$HOME/.local/state}}  # the prompt keeps its history where it always does
export HOME=$WINEPREFIX-home                          # Wine makes links into it and writes below it
export WINEARCH=${VELTRA_WINE_ARCH:-win64}
export LC_ALL=C.UTF-8                                 # Windows in English
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe="  # no questions about add-ons, no menu entries
export VELTRA_WINE_SESSION=1
export VELTRA_DEVICE_LOG=${VELTRA_DEVICE_LOG:-'C:\devices\calls.log'}  # what the simulated devices were told
screen=${VELTRA_SCREEN:-1024x768}
display=
command=
mkdir -p "$HOME"

clean_up() {
  wineserver -k 2>/dev/null && wineserver -w
  [ -n "$display" ] && kill "$display" 2>/dev/null && wait "$display" 2>/dev/null
  rm -rf "$scratch"
}
stop() {
  [ -n "$command" ] && kill "$command" 2>/dev/null
  exit 143
}
trap clean_up EXIT
trap stop INT TERM HUP

# The X server picks a free display and writes its number when it is ready.
start_display() {
  local number
  mkfifo "$scratch/display"
  Xvfb -displayfd 3 -screen 0 "${screen}x24" -nolisten tcp 3>"$scratch/display" 2>"$scratch/xvfb.log" &
  display=$!
  read -r -t 60 number <>"$scratch/display" || { cat "$scratch/xvfb.log" >&2; return 1; }
  export DISPLAY=:$number
}

in_wine() { LD_PRELOAD=${VELTRA_SERIAL_SHIM:-} "$@"; }

# Started by itself, so that what it says at its end does not mix with what the command says.
start_wine() { in_wine wineserver -p >"$scratch/wineserver.log" 2>&1; }

settings() {
  cat <<END
REGEDIT4

[HKEY_LOCAL_MACHINE\\Software\\Wine\\Ports]
"COM2"="$WINEPREFIX/com2"

[HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\{BCDE0395-E52F-467C-8E3D-C4579291692E}\\InprocServer32]
@="C:\\\\devices\\\\audio.dll"
"ThreadingModel"="Both"

[HKEY_CURRENT_USER\\Software\\Wine\\Explorer]
"Desktop"="veltra"

[HKEY_CURRENT_USER\\Software\\Wine\\Explorer\\Desktops]
"veltra"="$screen"
END
}

# Wine links its COM ports again when it starts, from the registry: hence the end of the first start.
make_prefix() {
  settings >"$scratch/settings.reg"
  cmp -s "$scratch/settings.reg" "$WINEPREFIX/veltra-settings.reg" && return 0
  [ ! -e "$WINEPREFIX/veltra-settings.reg" ] || rm -rf "$WINEPREFIX"
  {
    in_wine wineboot -i && in_wine wine regedit /S "$scratch/settings.reg" &&
      wineserver -k && wineserver -w && cp "$scratch/settings.reg" "$WINEPREFIX/veltra-settings.reg"
  } >"$scratch/wineboot.log" 2>&1 || { cat "$scratch/wineboot.log" >&2; return 1; }
}

# Those of Windows' look: text has its widths, the close box its cross. Debian's Wine does not look for them by itself.
install_fonts() {
  cp -n /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null
  return 0
}

install_devices() {
  [ -n "${VELTRA_DEVICES:-}" ] || return 0
  mkdir -p "$WINEPREFIX/drive_c/devices" && cp "$VELTRA_DEVICES/audio.dll" "$WINEPREFIX/drive_c/devices/"
}

[ $# -gt 0 ] || { echo "usage: session.sh COMMAND [ARGUMENT...]" >&2; exit 2; }
start_display && make_prefix && install_fonts && install_devices && start_wine || { echo "session.sh: no Windows to be had" >&2; exit 125; }
"$@" <&0 &
command=$!
wait "$command"
