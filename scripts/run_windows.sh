#!/usr/bin/env bash
# Builds veltratool.exe and runs it on a Wine desktop, beside Notepad and with the simulated controller on COM2. Switch 1
# is set to type the letter A; it is pressed once, and build/desktop.png shows what became of it.
set -eu
cd "$(dirname "$0")/.."
. scripts/wine_desktop.sh
enter_windows

has_typed() { ask texts "Untitled - Notepad" && [[ $answer == *$'\t'a* ]]; }
start_controller
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
