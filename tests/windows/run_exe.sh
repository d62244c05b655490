#!/usr/bin/env bash
# Runs a Windows console program in a fresh Wine prefix and leaves with its exit code: run_exe.sh PROGRAM.exe [ARGUMENT...]
# With VELTRA_NATIVE_BIN, the directory of the native programs, COM2 has a loop-back plug.
here=$(dirname "$0")/../../simulator/wine
[ -n "${VELTRA_NATIVE_BIN:-}" ] || exec "$here/session.sh" wine "$@"
VELTRA_NATIVE_BIN=$(realpath "$VELTRA_NATIVE_BIN")
export VELTRA_SERIAL_SHIM=$VELTRA_NATIVE_BIN/libserial_shim.so
exec "$here/session.sh" "$VELTRA_NATIVE_BIN/serial_plug" env LD_PRELOAD="$VELTRA_SERIAL_SHIM" wine "$@"
