#!/usr/bin/env python3
"""Holds the adaptation layer to what is called: no function and no constant that nobody needs.

A function that pal/include declares is called by what is compiled natively, the layer itself or others, tests/pal/ apart;
a constant or type stands there or in a resource script. Prints every name that does not; the exit code is 1 when there is
one.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FUNCTION = re.compile(r"\b(?:WINAPI|STDMETHODCALLTYPE)\s+(\w+)\s*\(")
CONSTANT = re.compile(r"^#define (\w+)|^using (\w+) =", re.MULTILINE)
COMMENT = re.compile(r"//.*")
CALL = re.compile(r"(?<!WINAPI )\b(\w+)\(")
FOR_WINDOWS_ALONE = ("tests/windows/", "simulator/wine/", "plugins/macro/macro_ansi.cpp",
                     "plugins/macro/macro_editor.cpp", "plugins/macro/macro_player.cpp", "plugins/macro/macro_plugin.cpp")


def words_of(paths):
    words = set()
    for path in paths:
        words.update(re.findall(r"\w+", COMMENT.sub("", (ROOT / path).read_text(encoding="utf-8"))))
    return words


def main():
    files = sorted(file.relative_to(ROOT).as_posix() for kind in ("cpp", "h", "rc") for file in ROOT.glob(f"*/**/*.{kind}")
                   if file.relative_to(ROOT).parts[0] != "build")
    headers = [path for path in files if path.startswith("pal/include/")]
    callers = words_of(path for path in files
                       if path.endswith(".rc") or not path.startswith(("pal/", "tests/pal/") + FOR_WINDOWS_ALONE))
    layer_files = [path for path in files if path.startswith("pal/") and path not in headers]
    layer = words_of(layer_files)
    callers.update(*(CALL.findall((ROOT / path).read_text(encoding="utf-8")) for path in layer_files))
    offences = []
    count = 0
    text = {path: COMMENT.sub("", (ROOT / path).read_text(encoding="utf-8")) for path in headers}
    whole = re.findall(r"\w+", "\n".join(text.values()))
    for path in headers:
        functions = FUNCTION.findall(text[path])
        constants = [a or b for a, b in CONSTANT.findall(text[path])]
        count += len(functions) + len(constants)
        offences += [f"{path}: nobody calls {name}" for name in functions if name not in callers]
        offences += [f"{path}: nobody needs {name}" for name in constants
                     if name not in callers | layer and whole.count(name) == 1]
    print("\n".join(offences) if offences else f"layer: {count} functions and constants, no offence")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
