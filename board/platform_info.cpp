#include "board/platform_info.h"

#include "board/board_state.h"

namespace veltra {
namespace {

// The library's own record may be longer than the one that is known here.
template <class Record>
struct WithRoom {
  Record record = {};
  uint8_t room[1024] = {};
};

// Holds the library until it has come back: the session may end in there.
template <class Record>
bool Ask(int32_t (WINAPI* BoardLibrary::*function)(void*), Record& record) {
  const std::shared_ptr<const BoardLibrary> library = Board().library;
  WithRoom<Record> answer;
  if (!library || !((*library).*function) || ((*library).*function)(&answer.record) != 0) return false;
  record = answer.record;
  return true;
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
