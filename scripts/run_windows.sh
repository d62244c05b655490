#!/usr/bin/env bash
# Builds veltratool.exe and runs it on a Wine desktop, beside Notepad and with the simulated controller on COM2. Switch 1
# is set to type the letter A; it is pressed once, and build/desktop.png shows what became of it.
set -eu
cd "$(dirname "$0")/.."
programs=build/windows-x64/bin
native=build/native/bin
patience=60  # seconds for any step

build_all() {
  mkdir -p build
  echo "building veltratool.exe and the simulated controller (build/run.log)"
  {
    cmake --preset windows-x64 && cmake --build --preset windows-x64 --target veltratool observer audio &&
      cmake --preset native && cmake --build --preset native --target pic_simulator serial_shim
  } >build/run.log 2>&1 || { tail -n 40 build/run.log >&2; exit 1; }
}

if [ -z "${VELTRA_WINE_SESSION:-}" ]; then
  build_all
  echo "starting Wine"
  export VELTRA_WINE_PREFIX=$PWD/build/wine VELTRA_SERIAL_SHIM=$PWD/$native/libserial_shim.so VELTRA_DEVICES=$PWD/$programs/devices
  exec tests/windows/session.sh "$PWD/scripts/run_windows.sh"
fi

in_wine() { LD_PRELOAD=$VELTRA_SERIAL_SHIM wine "$@"; }

set_number() {
  in_wine reg add 'HKCU\SOFTWARE\Veltra\Sarvik5' /v "$1" /t REG_DWORD /d "$2" /f >/dev/null 2>&1
}

give_up() {
  echo "gave up waiting until $1" >&2
  exit 1
}

# ask COMMAND [WORD...]: sets answer to what the observer answers and adds the events before it to events.
events=
ask() {
  local IFS=$'\t' line
  echo "$*" >&"${observer[1]}"
  while read -r -t "$patience" line <&"${observer[0]}"; do
    case "$line" in
      =*) answer=${line#=$'\t'}; return 0 ;;
      !*) echo "observer: $line" >&2; return 1 ;;
      ready) ;;
      *) events+="  ${line//$'\t'/ }"$'\n' ;;
    esac
  done
  give_up "the observer answers"
}

# await WHAT COMMAND...: until the command succeeds.
await() {
  local what=$1 limit=$((SECONDS + patience))
  shift
  until "$@"; do
    [ $SECONDS -lt $limit ] || give_up "$what"
    sleep 0.1
  done
}
has_window() { ask find "$1" && [ "$answer" = yes ]; }
has_typed() { ask texts "Untitled - Notepad" && [[ $answer == *$'\t'a* ]]; }
controller_saw() { grep -q "tool ->.*$1" build/controller.log; }

commands=$(mktemp -u build/controller.XXXXXX)
mkfifo "$commands"
exec 4<>"$commands"
rm "$commands"
"$native/pic_simulator" --link "$WINEPREFIX/com2" <&4 >build/controller.log 2>&1 &
controller=$!
trap 'kill "$controller" 2>/dev/null || true' EXIT

set_number Sw1CmdVal 65
set_number StartupDelay 0
coproc observer { in_wine "$programs/observer.exe" 2>/dev/null; }

echo "starting veltratool.exe"
in_wine "$programs/veltratool.exe" >/dev/null 2>&1 &
tool=$!
await "the tool has asked the controller for everything" controller_saw GetTouchFirmware
in_wine notepad >/dev/null 2>&1 &
await "Notepad is there" has_window Notepad

echo "switch 1 is pressed and released"
echo "sw1 press" >&4
echo "sw1 release" >&4
await "the letter stands in Notepad" has_typed
printf 'another program of the desktop saw:\n%s' "$events"
sleep 0.5  # until it is painted
import -window root build/desktop.png

echo "closing the tool"
ask post VeltraInternal 16 0 0
wait "$tool"
echo "on the line (build/controller.log):"
sed 's/^/  /' build/controller.log
echo "the desktop: build/desktop.png"
