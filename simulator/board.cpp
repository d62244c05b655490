#include "simulator/board.h"

#include <string>

#include "simulator/report.h"

namespace {

int32_t ReportResult(const char* call, int32_t error) {
  simulator::Report("board", call + (error == 0 ? std::string() : " error " + std::to_string(error)));
  return error;
}

}  // namespace

simulator::Board& simulator::TheBoard() {
  static Board board;
  return board;
}

int32_t WINAPI KEApiLibInitialize() {
  simulator::Board& board = simulator::TheBoard();
  board.initialized = board.initializeError == 0;
  return ReportResult("initialize", board.initializeError);
}

int32_t WINAPI KEApiLibUnInitialize() {
  simulator::Board& board = simulator::TheBoard();
  if (board.uninitializeError == 0) board.initialized = false;
  return ReportResult("uninitialize", board.uninitializeError);
}
