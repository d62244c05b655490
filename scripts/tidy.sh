#!/usr/bin/env bash
# clang-tidy over the tool, its plug-ins and programs, as .clang-tidy says. Takes the big units of the native preset, which
# is configured and need not be built: a header is read once for many files.
cd "$(dirname "$0")/.." || exit 2
sed -nE 's/^ *"file": "(.*)",?$/\1/p' build/native/compile_commands.json |
  grep -vE '/(tests|simulator|pal)/' | xargs -P2 -n1 clang-tidy -p build/native --quiet 2>/dev/null
