#include "board/platform_info.h"

#include "board/board_state.h"

namespace veltra {
namespace {

template <class Record>
bool Ask(int32_t(WINAPI* function)(Record*), Record& record) {
  return function && function(&record) == 0;
}

}  // namespace

std::optional<PlatformInfo> ReadPlatformInfo() {
  const BoardLibrary& library = Board().library;
  PlatformInfo info = {};
  const bool hasBoard = Ask(library.KEApiGetBoardInfo, info.board);
  const bool hasCpu = Ask(library.KEApiGetCpuInfo, info.cpu);
  const bool hasMemory = Ask(library.KEApiGetMemoryInfo, info.memory);
  if (!hasBoard || !hasCpu || !hasMemory) return std::nullopt;
  return info;
}

}  // namespace veltra
