#!/usr/bin/env python3
"""Checks the built programs themselves: binaries.py FOLDER. What they need of Windows, how they are protected, their size.

Every function that they import stands in windows_7.txt, so that they start on every Windows from 7 on. Prints every offence;
the exit code is 1 when there is one.
"""
import re
import subprocess
import sys
from pathlib import Path

LARGEST_TOOL = 1_500_000  # bytes
PLUG_INS = ["macm_English.dll", "macm_Nederlands.dll"]
PROGRAMS = ["veltratool.exe", "toolprobe.exe", "hexinfo.exe"]


def brought_by_windows():
    brought = {}
    for line in (Path(__file__).parent / "windows_7.txt").read_text().splitlines():
        if not line.startswith("#"):
            library, functions = line.split(": ")
            brought.setdefault(library, set()).update(functions.split())
    return brought


def imports(headers):
    """(library, function) of the import table."""
    library = None
    for line in headers.splitlines():
        words = line.split()
        if line.startswith("\tDLL Name: "):
            library = words[2].upper().removesuffix(".DLL")
        elif not words:
            library = None
        elif library and len(words) == 3 and words[1].isdigit():
            yield library, words[2]


def offences(path, brought):
    headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-hp", path], capture_output=True, text=True, check=True).stdout
    imported = set(imports(headers))
    if not imported:
        yield "imports nothing"
    for library, function in sorted(imported):
        if function not in brought.get(library, ()):
            yield f"{library}: {function} is not in windows_7.txt"

    wanted = ["DYNAMIC_BASE", "NX_COMPAT", ".reloc", "symbols stripped", "MajorSubsystemVersion\t6", "MajorOSystemVersion\t6"]
    is_wide = "pei-x86-64" in headers
    if is_wide:
        wanted.append("HIGH_ENTROPY_VA")
    if path.suffix == ".exe":
        wanted += ["large address aware", "TERMINAL_SERVICE_AWARE"]
    for word in wanted:
        if word not in headers:
            yield f"its header lacks {word}"

    # A library with data for threads hangs when it is loaded late, as on a change of the language.
    if path.name in PLUG_INS:
        if "RunMacro" not in headers:
            yield "does not export RunMacro"
        if " .tls " in headers or not re.search(r" 0{8,16} 0{8} Thread Storage", headers):
            yield "has data for threads"
    if path.name == "veltratool.exe" and path.stat().st_size > LARGEST_TOOL:
        yield f"has {path.stat().st_size} bytes, more than {LARGEST_TOOL}"


def main():
    folder, brought = Path(sys.argv[1]), brought_by_windows()
    found = [f"{name}: {offence}" for name in PROGRAMS + PLUG_INS for offence in offences(folder / name, brought)]
    print("\n".join(found) or f"{folder}: no offence, veltratool.exe {(folder / 'veltratool.exe').stat().st_size} bytes")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
