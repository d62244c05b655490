# Sourced by scripts that show the tool on a Wine desktop; runs inside tests/windows/session.sh.
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

# Builds, and starts the calling script again beside a Windows of its own.
enter_windows() {
  [ -z "${VELTRA_WINE_SESSION:-}" ] || return 0
  build_all
  echo "starting Wine"
  export VELTRA_WINE_PREFIX=$PWD/build/wine${VELTRA_SCREEN:+-$VELTRA_SCREEN} VELTRA_SERIAL_SHIM=$PWD/$native/libserial_shim.so VELTRA_DEVICES=$PWD/$programs/devices
  exec tests/windows/session.sh "$PWD/scripts/$(basename "$0")" "$@"
}

in_wine() { LD_PRELOAD=$VELTRA_SERIAL_SHIM wine "$@"; }

# set_number NAME NUMBER: a user setting of the tool.
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
      ready*) ;;
      *) events+="  ${line#*$'\t'}"$'\n' ;;
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
controller_saw() { grep -q "tool ->.*$1" build/controller.log; }

# Plays the controller on COM2; its commands go to file descriptor 4.
start_controller() {
  local commands
  commands=$(mktemp -u build/controller.XXXXXX)
  mkfifo "$commands"
  exec 4<>"$commands"
  rm "$commands"
  "$native/pic_simulator" --link "$WINEPREFIX/com2" <&4 >build/controller.log 2>&1 &
  controller=$!
  trap stop_controller EXIT
}

stop_controller() {
  kill "$controller" 2>/dev/null && wait "$controller" || true
  exec 4>&-
}
