// What the board's library says about the board, its processor and its memory.
#include <algorithm>
#include <cstring>

#include "simulator/board.h"
#include "simulator/report.h"

namespace {

template <size_t Size>
void Fill(char (&field)[Size], const std::string& text) {
  std::fill(std::begin(field), std::end(field), '\0');
  std::copy_n(text.begin(), std::min(Size, text.size()), field);
}

// The call's result, when the fields are filled.
template <class Record>
int32_t Answer(std::string call, Record* record, int32_t error) {
  constexpr int kSomething = 0xA5;
  if (error == 0) std::memset(record + 1, kSomething, simulator::TheBoard().longerBy);
  if (error != 0) call.append(" error ").append(std::to_string(error));
  simulator::Report("board", call);
  return error;
}

}  // namespace

int32_t WINAPI KEApiGetBoardInfo(void* boardRecord) {
  auto* record = static_cast<simulator::BoardRecord*>(boardRecord);
  const simulator::Board& board = simulator::TheBoard();
  if (board.boardInfoError == 0) {
    Fill(record->texts[0], board.platform.boardName);
    Fill(record->texts[1], board.platform.manufacturer);
    Fill(record->texts[2], board.platform.serialNumber);
    Fill(record->texts[3], board.platform.hardwareVersion);
    Fill(record->texts[4], board.platform.carrierInfo);
    Fill(record->texts[5], board.platform.firmwareVersion);
  }
  return Answer("board info", record, board.boardInfoError);
}

int32_t WINAPI KEApiGetCpuInfo(void* cpuRecord) {
  auto* record = static_cast<simulator::CpuRecord*>(cpuRecord);
  const simulator::Board& board = simulator::TheBoard();
  if (board.cpuInfoError == 0) {
    Fill(record->name, board.platform.cpuName);
    record->counts[0] = board.platform.cpuCount;
    record->counts[1] = board.platform.coreCount;
    record->counts[2] = board.platform.threadCount;
  }
  return Answer("cpu info", record, board.cpuInfoError);
}

int32_t WINAPI KEApiGetMemoryInfo(void* memoryRecord) {
  auto* record = static_cast<simulator::MemoryRecord*>(memoryRecord);
  const simulator::Board& board = simulator::TheBoard();
  if (board.memoryInfoError == 0) {
    record->numbers[0] = board.platform.memoryTotal;
    record->numbers[1] = board.platform.memoryFree;
    record->numbers[2] = board.platform.memorySpeed;
    Fill(record->type, board.platform.memoryType);
  }
  return Answer("memory info", record, board.memoryInfoError);
}
