#include "board/platform_info.h"

#include "board/board_state.h"

namespace veltra {
namespace {

// Holds the library until it has come back: the session may end in there.
template <class Record>
bool Ask(int32_t (WINAPI* BoardLibrary::*function)(Record*), Record& record) {
  const std::shared_ptr<const BoardLibrary> library = Board().library;
  return library && (*library).*function && ((*library).*function)(&record) == 0;
}

}  // namespace

std::optional<PlatformInfo> ReadPlatformInfo() {
  PlatformInfo info = {};
  const bool hasBoard = Ask(&BoardLibrary::KEApiGetBoardInfo, info.board);
  const bool hasCpu = Ask(&BoardLibrary::KEApiGetCpuInfo, info.cpu);
  const bool hasMemory = Ask(&BoardLibrary::KEApiGetMemoryInfo, info.memory);
  if (!hasBoard || !hasCpu || !hasMemory) return std::nullopt;
  return info;
}

}  // namespace veltra
