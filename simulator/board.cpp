#include "simulator/board.h"

#include <cstdlib>
#include <string>

#include "board/board_library.h"
#include "simulator/report.h"

namespace {

using simulator::Board;
using Data = std::vector<uint8_t>;

constexpr int32_t kNotInitialized = -2;
constexpr int32_t kNoSuchBus = -3;
constexpr int32_t kNoDevice = -4;

std::string HexByte(uint8_t byte) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  return {kDigits[byte >> 4], kDigits[byte & 0xF]};
}

int32_t ReportResult(const char* device, std::string call, int32_t error) {
  if (error != 0) call.append(" error ").append(std::to_string(error));
  simulator::Report(device, call);
  return error;
}

// ---- the devices ------------------------------------------------------------------------------------------

// The codec's memories differ in the width of their words.
size_t CodecWordBytes(uint16_t address) {
  if (address >= 0xE000) return 2;                      // control registers
  if (address >= 0x2000 && address < 0x5F00) return 6;  // program
  return 4;                                             // parameters
}

bool WriteCodec(Board& board, const Data& bytes) {
  constexpr size_t kAddressBytes = 2;
  if (bytes.size() <= kAddressBytes) return false;
  auto address = static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
  const size_t width = CodecWordBytes(address);
  if ((bytes.size() - kAddressBytes) % width != 0) return false;
  for (size_t at = kAddressBytes; at < bytes.size(); at += width) {
    const auto word = bytes.begin() + static_cast<ptrdiff_t>(at);
    board.codec[address++] = Data(word, word + static_cast<ptrdiff_t>(width));
  }
  return true;
}

bool WriteRegister(std::map<uint8_t, uint8_t>& registers, const Data& bytes) {
  if (bytes.size() != 2) return false;
  registers[bytes[0]] = bytes[1];
  return true;
}

bool WriteSpeakerAmp(Board& board, const Data& bytes) {
  constexpr size_t kCommandBytes = 6;
  if (bytes.size() != kCommandBytes) return false;
  board.speakerAmp.push_back(bytes);
  return true;
}

struct Device {
  uint8_t address;
  bool (*write)(Board& board, const Data& bytes);  // false: the device does not understand it
};

constexpr Device kDevices[] = {
    {0x10, [](Board& board, const Data& bytes) { return WriteRegister(board.headphoneAmp, bytes); }},
    {0x20, [](Board& board, const Data& bytes) { return WriteRegister(board.expander, bytes); }},
    {0x30, WriteSpeakerAmp},
    {0x38, WriteCodec},
};

int32_t ArmedError(Board& board, uint8_t address) {
  for (simulator::I2cFailure& failure : board.failures) {
    if (failure.times == 0 || (failure.address && *failure.address != address)) continue;
    if (failure.skip > 0) {
      --failure.skip;
      continue;
    }
    --failure.times;
    return failure.error;
  }
  return 0;
}

int32_t Deliver(Board& board, uint8_t address, const Data& bytes) {
  if (!board.initialized) return kNotInitialized;
  if (const int32_t error = ArmedError(board, address)) return error;
  for (const Device& device : kDevices)
    if (device.address == address && device.write(board, bytes)) return 0;
  return kNoDevice;
}

// What Windows has sent to the program is handled in here; the library must not be gone then.
void ServeMessages() {
  MSG message = {};
  PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
  if (!GetModuleHandleW(TEXT("keapi.dll"))) simulator::Report("board", "unloaded at work");
}

}  // namespace

// Just what the tool calls: in 32 bits a call by another convention may seem to work.
static_assert(sizeof(veltra::BoardLibrary{{},
                                          KEApiLibInitialize,
                                          KEApiLibUnInitialize,
                                          KEApiI2cXfer,
                                          KEApiGetBoardInfo,
                                          KEApiGetCpuInfo,
                                          KEApiGetMemoryInfo}) > 0);

int32_t simulator::FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::atoi(value) : 0;
}

int32_t simulator::Board::Transfer(uint8_t address, Data bytes) {
  if (servesMessages != 0) ServeMessages();
  const int32_t error = Deliver(*this, address, bytes);
  std::string call = HexByte(address).append(":");
  for (const uint8_t byte : bytes) call.append(" ").append(HexByte(byte));
  transfers.push_back({address, std::move(bytes), error});
  return ReportResult("i2c", std::move(call), error);
}

simulator::Board& simulator::TheBoard() {
  static Board board;
  return board;
}

int32_t WINAPI KEApiLibInitialize() {
  Board& board = simulator::TheBoard();
  board.initialized = board.initializeError == 0;
  return ReportResult("board", "initialize", board.initializeError);
}

int32_t WINAPI KEApiLibUnInitialize() {
  Board& board = simulator::TheBoard();
  if (board.uninitializeError == 0) board.initialized = false;
  return ReportResult("board", "uninitialize", board.uninitializeError);
}

int32_t WINAPI KEApiI2cXfer(int32_t bus, uint8_t address, const uint8_t* writeData, uint32_t writeLength,
                            uint8_t*, uint32_t*) {
  if (bus != 0) return ReportResult("i2c", "on another bus", kNoSuchBus);
  return simulator::TheBoard().Transfer(address, Data(writeData, writeData + writeLength));
}
