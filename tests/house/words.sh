#!/usr/bin/env bash
# No absolute path of a developer's machine and no unfinished note stands in the repository.
cd "$(dirname "$0")/../.." || exit 2
words='/home/[a-z]|/root/|/w[o]rk/|\bTODO\b|\bFIXME\b|\bP[a]rts? [0-9]|\b[Ii]s[s]ue #?[0-9]|[Ss]p[e]cification\b'
if git grep -nIE "$words" -- . ':!tests/house/words.sh'; then
  exit 1
fi
echo "words: clean"
