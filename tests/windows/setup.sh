#!/usr/bin/env bash
# Installs, upgrades and removes the tool under Wine, silently, and looks at what is on the disk, in the registry and running:
# setup.sh SETUP.exe. One for 32 bits needs a Wine of that width. Prints what is not as it must be; the exit code is 1 then.
set -u
cd "$(dirname "$0")/../.."
if [ -z "${VELTRA_WINE_SESSION:-}" ]; then
  bits=$(basename "$1" | cut -d- -f3)
  export VELTRA_WINE_PREFIX=$PWD/build/wine-setup-$bits VELTRA_DEVICES=$PWD/build/windows-$bits/bin/devices
  [ "$bits" = x64 ] || export VELTRA_WINE_ARCH=win32
  rm -rf "$VELTRA_WINE_PREFIX"
  exec simulator/wine/session.sh "$0" "$@"
fi

setup=$1
version=$(basename "$setup" | cut -d- -f2)
folder="$WINEPREFIX/drive_c/Program Files/Veltra"
data=$WINEPREFIX/drive_c/users/Public/Documents/Sarvik5
program='C:\Program Files\Veltra\veltratool.exe'
windows='HKLM\Software\Microsoft\Windows\CurrentVersion'
power='HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\Power'
user='HKCU\SOFTWARE\Veltra\Sarvik5'
failures=0

# expect WHAT COMMAND...: the command must succeed, within 10 s.
expect() {
  local what=$1
  shift
  for _ in $(seq 40); do
    "$@" >/dev/null 2>&1 && return
    sleep 0.25
  done
  echo "not so: $what"
  failures=1
}
not() { ! "$@"; }
value() { wine reg query "$1" /v "$2" | grep -qF -- "$3"; }
ends_with() { # ends_with CODE COMMAND...
  local code=$1 status
  shift
  "$@"
  status=$?
  [ $status = "$code" ] || { echo "ended with $status: $*"; failures=1; }
}
tool() { # the pattern does not find the process that looks
  grep -lsa "WINEPREFIX=$WINEPREFIX" $(grep -lsa 'Veltra.veltratool[.]exe' /proc/[0-9]*/cmdline | sed 's/cmdline$/environ/') /dev/null |
    cut -d/ -f3 | grep .
}
another_tool_than() { [ -n "$(tool)" ] && [ "$(tool)" != "$1" ]; }
answers() { wine 'C:\Program Files\Veltra\toolprobe.exe' codec; }
start() {
  wine "$program" -s &
  expect "the tool answers" answers
}

wine reg add "$power" /v HiberbootEnabled /t REG_DWORD /d 1 /f >/dev/null
wine reg add "$user" /v StartupDelay /t REG_DWORD /d 0 /f >/dev/null

ends_with 0 wine "$setup" /S
expect "the plug-in is there" test -s "$folder/macm_Nederlands.dll"
expect "the documents are there" test -s "$folder/docs/deployment.html"
expect "it starts at log-on" value "$windows\\Run" VeltraDeviceTool "\"$program\" -s"
expect "Windows lists its version" value "$windows\\Uninstall\\VeltraDeviceTool" DisplayVersion "$version"
expect "fast start-up is off" value "$power" HiberbootEnabled 0x0
expect "a first silent install starts nothing" not tool

start
echo "a profile" >"$data/curprofile.bpf"
wine reg add "$user" /v Sw1CmdVal /t REG_DWORD /d 77 /f >/dev/null
old=$(tool)
echo "old" >"$folder/hexinfo.exe"
ends_with 0 wine "$setup" /S
expect "the upgrade has replaced a file" not grep -q old "$folder/hexinfo.exe"
expect "the tool runs again" another_tool_than "$old"
expect "it answers" answers

# A tool that does not end, as in a firmware update, is left alone and nothing is written.
rm "$folder/hexinfo.exe"
kill -STOP "$(tool)"
ends_with 3 wine "$setup" /S
expect "nothing was installed beside it" not test -e "$folder/hexinfo.exe"
kill -CONT "$(tool)"
expect "it ends when it can" not tool

start
echo "of another maker" >"$folder/nircmd.exe"
wine "$folder/uninstall.exe" /S
expect "the uninstaller has ended" not test -e "$folder/uninstall.exe"
expect "only the foreign file is left" eval '[ "$(ls "$folder")" = nircmd.exe ]'
expect "the tool has ended" not tool
expect "no start at log-on is left" not value "$windows\\Run" VeltraDeviceTool veltratool
expect "Windows lists it no more" not wine reg query "$windows\\Uninstall\\VeltraDeviceTool"
expect "the Start menu is empty of it" eval '[ -z "$(find "$WINEPREFIX/drive_c/ProgramData" -name "Veltra*")" ]'
expect "fast start-up is as it was" value "$power" HiberbootEnabled 0x1
expect "the setting has stayed" value "$user" Sw1CmdVal 0x4d
expect "the profile has stayed" grep -q "a profile" "$data/curprofile.bpf"
expect "the log has stayed" test -s "$data/DevLog.txt"

ends_with 0 wine "$setup" /S '/D=C:\Another'
expect "it is where it was told" test -s "$WINEPREFIX/drive_c/Another/veltratool.exe"
rm "$WINEPREFIX/drive_c/Another/hexinfo.exe" && mkdir "$WINEPREFIX/drive_c/Another/hexinfo.exe"
ends_with 2 wine "$setup" /S
exit $failures
