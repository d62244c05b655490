#include "simulator/bootloader.h"

#include <cstdio>

#include "simulator/wire.h"

namespace simulator {
namespace {

constexpr size_t kHeadSize = 5;  // type, count and address
constexpr uint8_t kInstructionsOfRow = Flash::kRowSize / 4;

struct CommandRow {
  MessageType type;
  const char* name;
  uint8_t count;  // how many pages, rows or instructions
  uint32_t unit;  // what the address is a multiple of; 0: no address
  size_t size;    // of the message
};
constexpr CommandRow kBootCommands[] = {
    {MessageType::kErasePage, "erase", 1, Flash::kPageSize, kHeadSize},
    {MessageType::kWriteRow, "write", 1, Flash::kRowSize, kHeadSize + Flash::kRowSize},
    {MessageType::kReadMemory, "read", kInstructionsOfRow, Flash::kRowSize, kHeadSize},
    {MessageType::kFinished, "finish", 0, 0, 1},
};

MessageType TypeOf(std::span<const uint8_t> message) {
  return static_cast<MessageType>(message.front());
}

const CommandRow* FindCommand(std::span<const uint8_t> message) {
  for (const CommandRow& row : kBootCommands)
    if (row.type == TypeOf(message)) return &row;
  return nullptr;
}

}  // namespace

uint32_t AddressIn(std::span<const uint8_t> message) {
  const uint32_t word = message[2] + (uint32_t{message[3]} << 8) + (uint32_t{message[4]} << 16);
  return 2 * word;
}

bool Bootloader::IsCommand(std::span<const uint8_t> message) {
  return FindCommand(message) != nullptr;
}

std::string Bootloader::Objection(std::span<const uint8_t> command) {
  const CommandRow& row = *FindCommand(command);
  if (command.size() != row.size)
    return std::string(row.name).append(" with ").append(std::to_string(command.size())).append(" bytes");
  if (row.unit == 0) return {};
  if (command[1] != row.count) return std::string(row.name).append(" of another count");
  const uint32_t address = AddressIn(command);
  if (address % row.unit == 0 && address < Flash::kSize) return {};
  char text[64];
  std::snprintf(text, sizeof text, "%s at 0x%05X", row.name, static_cast<unsigned>(address));
  return text;
}

Bootloader::Duration Bootloader::TimeFor(std::span<const uint8_t> command) const {
  if (TypeOf(command) == MessageType::kErasePage) return eraseTime;
  if (TypeOf(command) == MessageType::kWriteRow) return writeTime;
  return Duration(0);
}

std::vector<uint8_t> Bootloader::CarryOut(std::span<const uint8_t> command) {
  std::vector<uint8_t> answer(1, command.front());
  switch (TypeOf(command)) {
    case MessageType::kErasePage:
      hasFirmware_ = false;
      flash_.ErasePage(AddressIn(command));
      break;
    case MessageType::kWriteRow:
      flash_.WriteRow(AddressIn(command), command.subspan(kHeadSize));
      break;
    case MessageType::kReadMemory:
      answer.assign(command.begin(), command.end());
      for (const uint8_t byte : flash_.Row(AddressIn(command))) answer.push_back(byte);
      break;
    default:
      hasFirmware_ = true;
  }
  return answer;
}

void Bootloader::CarryOutHalf(std::span<const uint8_t> command) {
  if (TypeOf(command) == MessageType::kErasePage) {
    hasFirmware_ = false;
    flash_.ErasePage(AddressIn(command), Flash::kPageSize / 2);
  }
  if (TypeOf(command) == MessageType::kWriteRow)
    flash_.WriteRow(AddressIn(command), command.subspan(kHeadSize, Flash::kRowSize / 2));
}

}  // namespace simulator
