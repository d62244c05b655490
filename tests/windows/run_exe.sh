#!/usr/bin/env bash
# Runs a Windows console program in a fresh Wine prefix and leaves with its exit code: run_exe.sh PROGRAM.exe [ARGUMENT...]
exec "$(dirname "$0")/session.sh" wine "$@"
