#!/usr/bin/env bash
# Builds veltratool.exe and plays scripts/desktop.scenario with it: beside Notepad on a Wine desktop, with the simulated
# controller on COM2. build/desktop.png shows what became of it.
set -eu
cd "$(dirname "$0")/.."
. scripts/wine_desktop.sh

build_programs
play scripts/desktop.scenario
echo "the desktop: build/desktop.png"
