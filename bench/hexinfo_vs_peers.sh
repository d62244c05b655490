#!/usr/bin/env bash
# Whole processes that turn one HEX text into its binary, by turns: hexinfo, GNU objcopy and srec_cat. The records of
# 6 MB are ascending, descending and shuffled. Prints the medians of the wall times and how many times as fast hexinfo is;
# fails when the binaries differ.
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
srec_cat data.bin -binary -o ascending.hex -intel -obs=16
# Each record after the upper half of its address, on one line, so that they can change places.
awk '/^:......04/ { upper = $0; next } /^:......00/ { print upper "|" $0 }' ascending.hex >pairs
in_lines() { tr '|' '\n'; tail -n 1 ascending.hex; }
tac pairs | in_lines >descending.hex
shuf --random-source=data.bin pairs | in_lines >shuffled.hex

run_hexinfo() { "$hexinfo" --binary hexinfo.bin "$1" >report.txt || [ $? = 1 ]; }  # no firmware, to be sure
run_objcopy() { objcopy -I ihex -O binary "$1" objcopy.bin; }
run_srec_cat() { srec_cat "$1" -intel -o srec_cat.bin -binary 2>warnings.txt; }

peers="hexinfo objcopy srec_cat"
median() { sort -n "$1.times" | sed -n "$((rounds / 2 + 1))p"; }

# compare TEXT
compare() {
  local size own peer begin end
  rm -f ./*.times
  for _ in $(seq $rounds); do
    for peer in $peers; do
      rm -f "$peer.bin"
      begin=${EPOCHREALTIME/[.,]/}
      "run_$peer" "$1"
      end=${EPOCHREALTIME/[.,]/}
      echo $((end - begin)) >>"$peer.times"
    done
  done
  size=$(stat -c %s "$1")
  own=$(median hexinfo)
  for peer in $peers; do
    cmp data.bin "$peer.bin"
    awk -v text="$1" -v name="$peer" -v time="$(median "$peer")" -v own="$own" -v size="$size" 'BEGIN {
      printf "%-14s  %-8s %7.1f ms  %4.0f MB/s  hexinfo is %.1f times as fast\n",
        text, name, time / 1e3, size / time, time / own
    }'
  done
}

for order in ascending descending shuffled; do compare $order.hex; done
echo "medians of $rounds"
