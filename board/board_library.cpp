#include "board/board_library.h"

#include "base/debug_output.h"
#include "system/folders.h"

namespace veltra {

BoardLibrary LoadBoardLibrary() {
  BoardLibrary library;
  library.module.Reset(LoadOwnLibrary(TEXT("keapi.dll")));
  const HMODULE module = library.module.Get();
  if (!module) Trace(TEXT("keapi.dll is missing: board features are off"));
  library.KEApiLibInitialize = FindExport<decltype(library.KEApiLibInitialize)>(module, "KEApiLibInitialize");
  library.KEApiLibUnInitialize =
      FindExport<decltype(library.KEApiLibUnInitialize)>(module, "KEApiLibUnInitialize");
  library.KEApiI2cXfer = FindExport<decltype(library.KEApiI2cXfer)>(module, "KEApiI2cXfer");
  library.KEApiGetBoardInfo = FindExport<decltype(library.KEApiGetBoardInfo)>(module, "KEApiGetBoardInfo");
  library.KEApiGetCpuInfo = FindExport<decltype(library.KEApiGetCpuInfo)>(module, "KEApiGetCpuInfo");
  library.KEApiGetMemoryInfo = FindExport<decltype(library.KEApiGetMemoryInfo)>(module, "KEApiGetMemoryInfo");
  return library;
}

}  // namespace veltra
