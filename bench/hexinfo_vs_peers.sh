#!/usr/bin/env bash
# Whole processes that turn one HEX text of 16 MB into its binary, by turns: hexinfo, GNU objcopy and srec_cat.
# Prints the medians of the wall times and how many times as fast hexinfo is; fails when the binaries differ.
#
# usage: bench/hexinfo_vs_peers.sh [HEXINFO]
set -eu
cd "$(dirname "$0")/.."
hexinfo=$(realpath "${1:-build/bench/bin/hexinfo}")
rounds=15

for program in objcopy srec_cat "$hexinfo"; do
  command -v "$program" >/dev/null || { echo "$program is missing" >&2; exit 2; }
done
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

head -c 6100000 /dev/urandom >data.bin
srec_cat data.bin -binary -o x.hex -intel -obs=16

run_hexinfo() { "$hexinfo" --binary hexinfo.bin x.hex >report.txt || [ $? = 1 ]; }  # no firmware, to be sure
run_objcopy() { objcopy -I ihex -O binary x.hex objcopy.bin; }
run_srec_cat() { srec_cat x.hex -intel -o srec_cat.bin -binary; }

peers="hexinfo objcopy srec_cat"
for _ in $(seq $rounds); do
  for peer in $peers; do
    rm -f "$peer.bin"
    begin=${EPOCHREALTIME/[.,]/}
    "run_$peer"
    end=${EPOCHREALTIME/[.,]/}
    echo $((end - begin)) >>"$peer.times"
  done
done

median() { sort -n "$1.times" | sed -n "$((rounds / 2 + 1))p"; }
size=$(stat -c %s x.hex)
own=$(median hexinfo)
for peer in $peers; do
  cmp data.bin "$peer.bin"
  awk -v name="$peer" -v time="$(median "$peer")" -v own="$own" -v size="$size" 'BEGIN {
    printf "%-8s %7.1f ms  %4.0f MB/s  hexinfo is %.1f times as fast\n", name, time / 1e3, size / time, time / own
  }'
done
echo "text of $size bytes, medians of $rounds"
