#!/usr/bin/env bash
# Takes pictures of the tool's dialogs on a Wine desktop, in both languages: picture_dialogs.sh [PERCENT...]
# They come into build/pictures as DIALOG_LANGUAGE_PERCENT.png; PERCENT is the scaling of Windows, 100 by default.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
. scripts/wine_desktop.sh
need_dialog_font || echo "fonts-wine is missing: the pictures show another font than Windows"
export VELTRA_SCREEN=1680x1050  # room for 200 %
pictures=build/pictures

# The story of one language at one scaling: in_language NAME ID SCALING OPTIONS-CAPTION METER-CAPTION
in_language() {
  local dpi=$((96 * $3 / 100))
  cat <<END
program reg add "HKCU\\Control Panel\\Desktop" /v LogPixels /t REG_DWORD /d $dpi /f
program reg add "HKCU\\Software\\Wine\\Fonts" /v LogPixels /t REG_DWORD /d $dpi /f
wait 100ms
set CurrentLangID $2
set StartupDelay 0
set Sw1Start 3000
set Sw2CmdVal 32
action fn1-short 3 "C:\\Program Files\\Talk\\talk.exe"
action fn1-long 4 1
action fn2-short 9 A120
action fn2-long 10 -1
start -s
expect tool -> GetBatteryDesignVoltage
sw1 press
command 40211
window "$4"
picture $pictures/options_$1_$3.png "$4"
close-dialog
sw1 release
command 127
window "$5"
picture $pictures/power_meter_$1_$3.png "$5"
close-dialog
command 40205
window Sarvik5
picture $pictures/battery_info_$1_$3.png Sarvik5
answer ok
firmware-file new.hex 0x1800
fault mute at 3
update new.hex
check dialog time-out
picture $pictures/firmware_$1_$3.png Firmware
close
check exit 0
END
}

# take LANGUAGE...: each on a new tablet, for the update leaves the controller without firmware.
take() {
  in_language "$@" >"$pictures/story"
  play "$pictures/story"
}

build_programs
mkdir -p "$pictures"
for scaling in "${@:-100}"; do
  take english 2057 "$scaling" Options "Power meter"
  take dutch 1043 "$scaling" Opties Batterijstatus
done
rm "$pictures/story"
ls "$pictures"
