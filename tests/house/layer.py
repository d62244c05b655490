#!/usr/bin/env python3
"""Holds the adaptation layer to what is called: no function and no constant that nobody needs.

A function that pal/include declares is called outside pal/ and tests/pal/; a constant or type stands there, in a
resource script or in the layer's own sources. Prints every name that does not; the exit code is 1 when there is one.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FUNCTION = re.compile(r"\b(?:WINAPI|STDMETHODCALLTYPE)\s+(\w+)\s*\(")
CONSTANT = re.compile(r"^#define (\w+)|^using (\w+) =", re.MULTILINE)
COMMENT = re.compile(r"//.*")


def words_of(paths):
    words = set()
    for path in paths:
        words.update(re.findall(r"\w+", COMMENT.sub("", (ROOT / path).read_text(encoding="utf-8"))))
    return words


def main():
    files = sorted(file.relative_to(ROOT).as_posix() for kind in ("cpp", "h", "rc") for file in ROOT.glob(f"*/**/*.{kind}")
                   if file.relative_to(ROOT).parts[0] != "build")
    headers = [path for path in files if path.startswith("pal/include/")]
    callers = words_of(path for path in files if path.endswith(".rc") or not path.startswith(("pal/", "tests/pal/")))
    layer = words_of(path for path in files if path.startswith("pal/") and path not in headers)
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
