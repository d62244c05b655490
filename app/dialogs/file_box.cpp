#include "app/dialogs/file_box.h"

#include <cderr.h>

namespace veltra {

bool AskForFile(OPENFILENAMEW& box) {
  WCHAR directory[MAX_PATH] = {};
  GetCurrentDirectoryW(MAX_PATH, directory);
  bool isChosen = GetOpenFileNameW(&box) != FALSE;
  if (!isChosen && CommDlgExtendedError() == FNERR_INVALIDFILENAME) {
    box.lpstrFile[0] = 0;
    isChosen = GetOpenFileNameW(&box) != FALSE;
  }
  SetCurrentDirectoryW(directory);
  return isChosen;
}

}  // namespace veltra
