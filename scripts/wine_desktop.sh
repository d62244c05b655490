# Sourced by scripts that show the tool on a Wine desktop.

build_programs() {
  mkdir -p build
  echo "building veltratool.exe and what is around it (build/run.log)"
  {
    cmake --preset windows-x64 && cmake --build --preset windows-x64 --target veltratool observer keapi audio &&
      cmake --preset native && cmake --build --preset native --target wine_tablet
  } >build/run.log 2>&1 || { tail -n 40 build/run.log >&2; exit 1; }
}

# play STORY: on a desktop of its own, whose Windows is kept for the next time.
play() {
  echo "starting Wine"
  VELTRA_WINE_PREFIX=$PWD/build/wine${VELTRA_SCREEN:+-$VELTRA_SCREEN} \
    build/native/bin/wine_tablet --exe-dir build/windows-x64/bin "$1"
}
