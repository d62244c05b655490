# Sourced by test: runs what it is told, counts it, and prints the closing line. Output of what passes goes to
# build/logs; of what fails, its end is shown. The counts are lines of a file, so that what runs in the background counts too.

logs=build/logs
mkdir -p "$logs"
counts=$logs/counts
: >"$counts"

step() { echo "== $1"; }

# count passed|failed|skipped [HOW MANY]
count() { echo "$1 ${2:-1}" >>"$counts"; }
total() { awk -v kind="$1" '$1 == kind { sum += $2 } END { print sum + 0 }' "$counts"; }

skip() {
  echo "skipped: $1: $2"
  count skipped
}

fail() {
  echo "FAILED: $1"
  count failed
}

log_of() { echo "$logs/$(echo "$1" | tr -c 'a-zA-Z0-9\n' '-').log"; }

# run_check NAME COMMAND...: one test that passes when the command succeeds.
run_check() {
  local name=$1 log
  shift
  log=$(log_of "$name")
  if "$@" >"$log" 2>&1; then
    count passed
  else
    tail -n 40 "$log"
    fail "$name"
  fi
}

# build PRESET [TARGET...]: configures and builds; a failure counts as one failed test.
build() {
  local preset=$1 log
  shift
  step "build $preset"
  log=$(log_of "build $preset")
  cmake --preset "$preset" >"$log" 2>&1 && nice cmake --build --preset "$preset" --target "${@:-all}" >>"$log" 2>&1 && return 0
  grep -E "error|Error|FAILED" "$log" | head -n 40
  fail "build of $preset"
  return 1
}

# run_ctest PRESET [CTEST ARGUMENTS]: counts ctest's own tests.
run_ctest() {
  local preset=$1 log total broken left_out
  shift
  step "test $preset"
  log=$(log_of "test $preset")
  ctest --test-dir "build/$preset" --output-on-failure --timeout 300 -j 2 "$@" >"$log" 2>&1
  total=$(sed -nE 's/.*tests failed out of ([0-9]+).*/\1/p' "$log")
  broken=$(sed -nE 's/.* ([0-9]+) tests? failed out of.*/\1/p' "$log")
  if [ -z "$total" ] || [ -z "$broken" ]; then
    tail -n 20 "$log"
    fail "$preset ran no tests"
    return
  fi
  left_out=$(grep -c '\*\*\*Skipped' "$log")
  count passed $((total - broken - left_out))
  count failed "$broken"
  count skipped "$left_out"
  [ "$broken" = 0 ] || grep -vE "Passed +[0-9.]+ sec|^ +Start" "$log" | tail -n 120
}

# count_gtest NAME LOG STATUS: counts a GoogleTest program's own summary.
count_gtest() {
  local name=$1 log=$2 status=$3 good bad left_out
  good=$(grep -c "^\[       OK \]" "$log")
  bad=$(grep -c "^\[  FAILED  \].*ms)" "$log")
  left_out=$(grep -c "^\[  SKIPPED \].*ms)" "$log")
  count passed "$good"
  count failed "$bad"
  count skipped "$left_out"
  if [ "$bad" != 0 ]; then
    grep -vE "^\[( RUN|       OK|-)|^ERROR: ld.so" "$log" | tail -n 80
  elif [ "$status" != 0 ] || [ "$good" = 0 ]; then
    tail -n 40 "$log"
    fail "$name ended with $status after $good tests"
  fi
}

# run_windows_tests NATIVE: the programs of Windows under Wine, with the native programs in build/NATIVE/bin.
run_windows_tests() {
  local native=build/$1/bin log
  for program in build/windows-x64/bin/{pal,profile}_contract_test.exe; do
    log=$(log_of "$(basename "$program")")
    VELTRA_NATIVE_BIN=$native VELTRA_DEVICES=build/windows-x64/bin/devices \
      tests/windows/run_exe.sh "$program" >"$log" 2>&1
    count_gtest "$(basename "$program")" "$log" $?
  done
  log=$(log_of windows_test)
  "$native/windows_test" --exe-dir build/windows-x64/bin >"$log" 2>&1
  count_gtest windows_test "$log" $?
}

# run_windows_tests_32 NATIVE: where the tool and libraries call each other, and each other's records.
run_windows_tests_32() {
  local native=build/$1/bin log shim=$PWD/build/serial_shim_32.so
  log=$(log_of "windows_test 32")
  g++ -m32 -shared -fPIC simulator/wine/serial_shim.cpp -o "$shim" >"$log" 2>&1 &&
    VELTRA_SERIAL_SHIM=$PWD/$native/libserial_shim.so:$shim "$native/windows_test" --exe-dir build/windows-x86/bin \
      "$PWD/tests/scenarios" --gtest_filter="$windows_tests_32" >>"$log" 2>&1
  count_gtest "windows_test of 32 bits" "$log" $?
}
windows_tests_32=BoardTest.*:*AMacro*:*TheProbe*:*.what_a_switch*:*.side_buttons:*.volume:*.ports_by_name:*.suspend_and*

finish() {
  local broken
  broken=$(total failed)
  echo "$(total passed) passed, $broken failed, $(total skipped) skipped"
  [ "$broken" = 0 ]
  exit
}
