#include "board/board_library.h"

#include "base/debug_output.h"
#include "system/library_binding.h"

namespace veltra {

std::shared_ptr<const BoardLibrary> LoadBoardLibrary() {
  BoardLibrary library;
  Bind(library.module, TEXT("keapi.dll"), Export{"KEApiLibInitialize", library.KEApiLibInitialize},
       Export{"KEApiLibUnInitialize", library.KEApiLibUnInitialize},
       Export{"KEApiI2cXfer", library.KEApiI2cXfer}, Export{"KEApiGetBoardInfo", library.KEApiGetBoardInfo},
       Export{"KEApiGetCpuInfo", library.KEApiGetCpuInfo},
       Export{"KEApiGetMemoryInfo", library.KEApiGetMemoryInfo});
  if (library.module) return std::make_shared<const BoardLibrary>(std::move(library));
  Trace(TEXT("keapi.dll is missing: board features are off"));
  return nullptr;
}

}  // namespace veltra
