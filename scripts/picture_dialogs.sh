#!/usr/bin/env bash
# Takes pictures of the tool's dialogs on a Wine desktop, in both languages: picture_dialogs.sh [PERCENT...]
# They come into build/pictures as DIALOG_LANGUAGE_PERCENT.png; PERCENT is the scaling of Windows, 100 by default.
set -eu
cd "$(dirname "$0")/.."
. scripts/wine_desktop.sh
export VELTRA_SCREEN=1680x1050  # room for 200 %
enter_windows "$@"

pictures=build/pictures
data=$WINEPREFIX/drive_c/users/Public/Documents/Sarvik5
hex_file='C:\users\Public\Documents\Sarvik5\new.hex'

options_command=40211
meter_command=127
info_command=40205
firmware_tag=2

write_files() {
  mkdir -p "$data" "$pictures"
  printf '[Button%d]\r\nBtCmd=%d\r\nBtCmdVal=%d\r\nBtCmdText=%s\r\n' 1 3 -1 'C:\Program Files\Talk\talk.exe' \
    2 4 1 '' 3 9 -1 120 4 10 -1 '' >"$data/curprofile.bpf"
  printf ':10180000%032dD8\r\n' 0 >"$data/new.hex"
  printf ':00000001FF\r\n' >>"$data/new.hex"
}

set_scaling() {
  local dpi=$((96 * $1 / 100)) key
  for key in 'HKCU\Control Panel\Desktop' 'HKCU\Software\Wine\Fonts'; do
    in_wine reg add "$key" /v LogPixels /t REG_DWORD /d "$dpi" /f >/dev/null 2>&1
  done
}

is_visible() { ask visible "$1" && [ "$answer" = yes ]; }
has_failed() { ask texts Firmware && [[ $answer == *time-out* ]]; }
is_gone() { ! is_visible "$1"; }

# picture NAME CAPTION: the window's part of the desktop.
picture() {
  await "$2 is open" is_visible "$2"
  sleep 0.7  # until it is painted
  ask rect "$2"
  import -window root -crop "$answer" +repage "$pictures/$1.png"
}

# show NAME CAPTION COMMAND: opens a dialog of the tool's menus, and closes it again.
show() {
  ask post VeltraInternal 273 "$3" 0
  picture "$1" "$2"
  ask key 27
  await "$2 is closed" is_gone "$2"
}

utf16_hex() { printf '%s\0' "$1" | iconv -t UTF-16LE | od -An -v -tx1 | tr -s ' \n' ' '; }

# in_language NAME ID SCALING OPTIONS-CAPTION METER-CAPTION
in_language() {
  local tool
  set_number CurrentLangID "$2"
  start_controller
  in_wine "$programs/veltratool.exe" -s >/dev/null 2>&1 &
  tool=$!
  await "the tool has asked the controller for everything" controller_saw GetBatteryDesignVoltage
  sleep 1  # until the board is up
  echo "sw1 press" >&4
  show "options_$1_$3" "$4" $options_command
  echo "sw1 release" >&4
  show "power_meter_$1_$3" "$5" $meter_command
  show "battery_info_$1_$3" Sarvik5 $info_command
  echo "fault mute at 3" >&4
  ask copy VeltraInternal "" $firmware_tag "$(utf16_hex "$hex_file")"
  picture "firmware_$1_$3" Firmware
  await "the update has failed" has_failed
  ask post VeltraInternal 16 0 0
  wait $tool
  stop_controller  # it waits in its bootloader
}

write_files
coproc observer { in_wine "$programs/observer.exe" 2>/dev/null; }
set_number StartupDelay 0
set_number Sw1Start 3000
set_number Sw2CmdVal 32
for scaling in "${@:-100}"; do
  set_scaling "$scaling"
  in_language english 2057 "$scaling" Options "Power meter"
  in_language dutch 1043 "$scaling" Opties Batterijstatus
done
set_scaling 100
echo "$pictures:"
ls "$pictures"
