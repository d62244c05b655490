#include "board/board_library.h"

#include "system/library_binding.h"
#include "system/system_state.h"

namespace veltra {

std::shared_ptr<const BoardLibrary> LoadBoardLibrary() {
  BoardLibrary library;
  const WideText missing = Bind(
      library.module, TEXT("keapi.dll"), Export{"KEApiLibInitialize", library.KEApiLibInitialize},
      Export{"KEApiLibUnInitialize", library.KEApiLibUnInitialize},
      Export{"KEApiI2cXfer", library.KEApiI2cXfer}, Export{"KEApiGetBoardInfo", library.KEApiGetBoardInfo},
      Export{"KEApiGetCpuInfo", library.KEApiGetCpuInfo},
      Export{"KEApiGetMemoryInfo", library.KEApiGetMemoryInfo});
  if (!missing.empty()) Log().WriteError(TEXT("Board library"), missing);
  return library.module ? std::make_shared<const BoardLibrary>(std::move(library)) : nullptr;
}

}  // namespace veltra
