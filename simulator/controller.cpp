#include "simulator/controller.h"

#include <algorithm>
#include <cstdio>

namespace simulator {
namespace {

constexpr std::string_view kAskAgain = "Resend";
constexpr std::string_view kAcknowledge = "OK";
constexpr std::string_view kEnterBootloader = "GotoBootloader";
constexpr uint8_t kNextRow = 0x80;  // in the lowest byte of a word address

bool IsErase(std::span<const uint8_t> message) {
  return message.front() == static_cast<uint8_t>(MessageType::kErasePage);
}

// 57600 baud, 10 bits a byte.
Duration TimeOnLine(size_t bytes) {
  constexpr int64_t kBaud = 57600;
  constexpr int64_t kBitsPerByte = 10;
  constexpr int64_t kMicroseconds = 1'000'000;
  return Duration(static_cast<int64_t>(bytes) * kBitsPerByte * kMicroseconds / kBaud);
}

// Identification: the query, the text that answers it and the command that changes the value. The value that
// goes with a query is a text message of its own; the reply only says that the query was served.
struct IdentityRow {
  std::string_view query;
  std::string_view report;
  std::string_view update;
  std::string Identity::*value;
};
constexpr IdentityRow kIdentityRows[] = {
    {"Ready", "Firmware=", {}, &Identity::firmware},
    {"GetSerial", "Serial=", "SetSerial=", &Identity::serial},
    {"GetPCBSerial", "PCBSerial=", "SetPCBSerial=", &Identity::pcbSerial},
    {"GetPCBVersion", "PCBVersion=", "SetPCBVersion=", &Identity::pcbVersion},
    {"GetTouchSerial", "TouchSerial=", "SetTouchSerial=", &Identity::touchSerial},
    {"GetTouchVersion", "TouchVersion=", "SetTouchVersion=", &Identity::touchVersion},
    {"GetTouchFirmware", "TouchFirmware=", "SetTouchFirmware=", &Identity::touchFirmware},
};

// The battery pack's own data, as its fuel gauge counts: 0.1 K, mV, mA, mAh.
struct BatteryRow {
  std::string_view query;
  std::string_view reply;
};
constexpr BatteryRow kBatteryRows[] = {
    {"GetBatteryManufacturer", "Nordcell"},
    {"GetBatteryManufactureDate", "2023-05-17"},
    {"GetBatterySerial", "4711"},
    {"GetBatteryDeviceName", "NC-7S2P"},
    {"GetBatteryChemistry", "LION"},
    {"GetBatteryTemperature", "2981"},
    {"GetBatteryVoltage", "11782"},
    {"GetBatteryCurrent", "-1240"},
    {"GetBatteryRemainingCapacity", "5160"},
    {"GetBatteryStatus", "00C0"},
    {"GetBatteryCycles", "37"},
    {"GetBatteryDesignCapacity", "6800"},
    {"GetBatteryDesignVoltage", "11100"},
};

struct RadioRow {
  std::string_view command;
  bool Controller::*on;
};
constexpr RadioRow kRadioRows[] = {{"EnableGsm=", &Controller::mobilePhoneOn},
                                   {"EnableBT=", &Controller::bluetoothOn}};

// Commands that the controller carries out without telling more than that it did.
constexpr std::string_view kSilentCommands[] = {
    "SetStatusLed=", "SetBatteryCritical=", "StartWithSwitch=", "CalibrateTouch", "Suspend=", "LcdOff="};

std::string_view ContentOf(std::span<const uint8_t> message) {
  return {reinterpret_cast<const char*>(message.data()) + 1, message.size() - 1};
}

std::string_view WireName(Button button) {
  const auto* row = std::find_if(std::begin(kButtonNames), std::end(kButtonNames),
                                 [button](const ButtonName& name) { return name.button == button; });
  return row->wire;
}

constexpr uint8_t kTopBit = 0x80;

// A byte whose loss, repetition or change of the top bit the checksum shows and the framing does not: not
// zero, not part of an escape, no special byte with or without that bit. The type byte after the header is
// always one.
size_t PlainByte(std::span<const uint8_t> frame) {
  constexpr size_t kTypeOffset = 2;
  const auto plain = [&frame](size_t i) {
    constexpr int kNotPlain[] = {0x00, 0x04, 0x05, 0x55};
    return std::ranges::find(kNotPlain, frame[i] & ~kTopBit) == std::end(kNotPlain) && frame[i - 1] != 0x05;
  };
  for (size_t i = frame.size() / 2; i > kTypeOffset; --i)
    if (plain(i)) return i;
  return kTypeOffset;
}

}  // namespace

std::string Describe(const Traffic& traffic) {
  const std::string text =
      traffic.message.empty() ? "bytes " + DescribeBytes(traffic.wire) : DescribeMessage(traffic.message);
  return traffic.remark.empty() ? text : text + " (" + traffic.remark + ")";
}

void Controller::Receive(std::span<const uint8_t> bytes) {
  if (!paced_) {
    for (const uint8_t byte : bytes) Hear(byte);
    return;
  }
  const Duration now = host_.now();
  const Duration begin = std::max(now, hearingFreeAt_);
  for (size_t i = 0; i < bytes.size(); ++i) {
    hearingFreeAt_ = begin + TimeOnLine(i + 1);
    host_.after(hearingFreeAt_ - now, [this, byte = bytes[i]] { Hear(byte); });
  }
}

void Controller::Hear(uint8_t byte) {
  if (!powered_) return;
  if (const std::optional<WireEvent> event = reader_.Take(byte)) OnEvent(*event);
}

void Controller::LoseLine() {
  reader_ = {};
  unanswered_.clear();
  askedAgain_ = false;
}

void Controller::OnEvent(const WireEvent& event) {
  if (onTraffic_)
    onTraffic_({host_.now(), Traffic::Direction::kFromTool, event.message, event.wire, event.fault});
  if (event.fault.empty()) return OnRequest(event.message);
  violations_.push_back("bad frame: " + event.fault);
  const bool isStrayByte = event.wire.size() == 1;
  if (isStrayByte) return;
  askedAgain_ = true;
  SendText(kAskAgain);
}

void Controller::OnRequest(const std::vector<uint8_t>& message) {
  if (message == MakeMessage(MessageType::kText, kAskAgain)) {
    // Repeated as it should have been, not as it went out.
    if (!lastMessage_.empty()) SendMessage(lastMessage_);
    return;
  }
  if (IsErase(message) && message == command_ && !askedAgain_) return;  // the same erase command, heard twice
  const bool isEntry = message == MakeMessage(MessageType::kText, kEnterBootloader);
  if (isEntry) unanswered_.clear();  // the tool has given up what was before
  if (!unanswered_.empty() && !(askedAgain_ && message == unanswered_))
    violations_.push_back(DescribeMessage(message) + " before the reply to " + DescribeMessage(unanswered_));
  requests_.push_back({host_.now(), message});
  if (inBootloader_ && !isEntry && !Bootloader::IsCommand(message)) return;  // it does not know anything else
  if (!askedAgain_) CountStep(message);
  unanswered_ = message;
  askedAgain_ = false;
  if (UseUp(Fault::kAgain)) {
    askedAgain_ = true;
    return SendText(kAskAgain);
  }
  if (Bootloader::IsCommand(message)) return OnBootloaderCommand(message);
  if (UseUp(Fault::kPower)) return CutPower();
  AfterPowered(replyDelay_, [this, message] { Answer(message); });
}

void Controller::Answer(const std::vector<uint8_t>& message) {
  if (UseUp(Fault::kMute)) return;
  if (message == unanswered_) unanswered_.clear();
  const bool isText = message.front() == static_cast<uint8_t>(MessageType::kText);
  std::string content = isText ? Act(ContentOf(message)) : std::string(kAcknowledge);
  if (UseUp(Fault::kEmpty)) content.clear();
  const bool twice = UseUp(Fault::kTwice);
  SendReply(content);
  if (twice) SendReply(content);
}

// ---- the firmware update

void Controller::CountStep(const std::vector<uint8_t>& message) {
  if (message == MakeMessage(MessageType::kText, kEnterBootloader))
    step_ = 1;
  else if (inBootloader_)
    ++step_;
  else
    return;
  const auto [first, last] = armedAtSteps_.equal_range(step_);
  for (auto planned = first; planned != last; ++planned) Arm(planned->second);
  armedAtSteps_.erase(first, last);
}

void Controller::OnBootloaderCommand(const std::vector<uint8_t>& command) {
  std::string objection = Bootloader::Objection(command);
  if (!inBootloader_) objection = DescribeMessage(command) + " while the firmware runs";
  if (!objection.empty()) {
    violations_.push_back(std::move(objection));
    unanswered_.clear();
    return;
  }
  command_ = command;
  commandRuns_ = true;
  const Duration time = bootloader.TimeFor(command);
  if (UseUp(Fault::kPower)) AfterPowered(time / 2, [this] { CutPower(); });
  AfterPowered(time, [this, command] { AnswerBootloaderCommand(command); });
}

void Controller::AnswerBootloaderCommand(const std::vector<uint8_t>& command) {
  commandRuns_ = false;
  std::vector<uint8_t> answer = bootloader.CarryOut(command);
  const auto type = static_cast<MessageType>(command.front());
  if (type == MessageType::kWriteRow && UseUp(Fault::kStuckBit)) bootloader.SpoilRow(AddressIn(command));
  if (UseUp(Fault::kMute)) return;
  unanswered_.clear();
  if (type == MessageType::kReadMemory && UseUp(Fault::kAddress)) answer[2] ^= kNextRow;
  if (UseUp(Fault::kEmpty)) answer.resize(1);
  const bool twice = UseUp(Fault::kTwice);
  SendMessage(answer);
  if (twice) SendMessage(answer);
}

void Controller::CutPower() {
  if (!powered_) return;
  if (commandRuns_) bootloader.CarryOutHalf(command_);
  powered_ = false;
  ++powerCycle_;
  reader_ = {};
  lastMessage_.clear();
  unanswered_.clear();
  command_.clear();
  commandRuns_ = false;
  askedAgain_ = false;
}

void Controller::RestorePower() {
  if (powered_) return;
  powered_ = true;
  inBootloader_ = !bootloader.HasFirmware();
  if (!inBootloader_) PowerUp();
}

void Controller::AfterPowered(Duration delay, std::function<void()> action) {
  host_.after(delay, [this, cycle = powerCycle_, action = std::move(action)] {
    if (powered_ && cycle == powerCycle_) action();
  });
}

std::string Controller::Act(std::string_view text) {
  if (text == kEnterBootloader) {
    inBootloader_ = true;
    command_.clear();
    return std::string(kAcknowledge);
  }
  for (const IdentityRow& row : kIdentityRows) {
    if (text == row.query) {
      SendText(std::string(row.report) + identity.*row.value);
      return std::string(kAcknowledge);
    }
    if (!row.update.empty() && text.starts_with(row.update)) {
      identity.*row.value = text.substr(row.update.size());
      return std::string(kAcknowledge);
    }
  }
  for (const BatteryRow& row : kBatteryRows)
    if (text == row.query) return std::string(row.reply);
  for (const RadioRow& row : kRadioRows) {
    if (!text.starts_with(row.command)) continue;
    this->*row.on = text.substr(row.command.size()) == "1";
    return std::string(kAcknowledge);
  }
  for (const std::string_view command : kSilentCommands)
    if (text.starts_with(command)) return std::string(kAcknowledge);
  return infraredReply;
}

// The bootloader does not look at the buttons.
void Controller::Press(Button button) {
  if (inBootloader_) return;
  SendText(std::string(WireName(button)) + "Make");
}
void Controller::Release(Button button) {
  if (inBootloader_) return;
  SendText(std::string(WireName(button)) + "Break");
}
void Controller::SendText(std::string_view text) {
  SendMessage(MakeMessage(MessageType::kText, text));
}
void Controller::SendLogLine(std::string_view line) {
  SendMessage(MakeMessage(MessageType::kLogLine, line));
}
void Controller::SendReply(std::string_view content) {
  SendMessage(MakeMessage(MessageType::kReply, content));
}

void Controller::PowerUp() {
  SendLogLine("power up");
  SendText("Firmware=" + identity.firmware);
}

void Controller::SendMessage(std::vector<uint8_t> message) {
  if (!powered_) return;
  // A controller that asks for a repeat must itself be asked about what it said before, not about the
  // question.
  if (message != MakeMessage(MessageType::kText, kAskAgain)) lastMessage_ = message;
  if (UseUp(Fault::kGarbage)) {
    constexpr uint8_t kNoise[] = {0x00, 0xFF, 0x13, 0x7E};
    SendRaw(kNoise);
  }
  std::vector<uint8_t> frame = EncodeFrame(message);
  std::string remark;
  Spoil(frame, remark);
  Transmit(message, std::move(frame), std::move(remark));
}

void Controller::SendRaw(std::span<const uint8_t> bytes) {
  Transmit({}, {bytes.begin(), bytes.end()}, {});
}

void Controller::Spoil(std::vector<uint8_t>& frame, std::string& remark) {
  const size_t position = PlainByte(frame);
  const auto byte = frame.begin() + static_cast<std::ptrdiff_t>(position);
  if (UseUp(Fault::kFlip)) {
    *byte ^= kTopBit;
    remark = "one bit flipped";
  } else if (UseUp(Fault::kDrop)) {
    frame.erase(byte);
    remark = "one byte lost";
  } else if (UseUp(Fault::kDouble)) {
    frame.insert(byte, *byte);
    remark = "one byte doubled";
  }
}

void Controller::Transmit(const std::vector<uint8_t>& message, std::vector<uint8_t> frame,
                          std::string remark) {
  if (onTraffic_) onTraffic_({host_.now(), Traffic::Direction::kToTool, message, frame, std::move(remark)});
  if (!paced_) return host_.send(frame);
  const Duration now = host_.now();
  const Duration begin = std::max(now, lineFreeAt_);
  for (size_t i = 0; i < frame.size(); ++i) {
    lineFreeAt_ = begin + TimeOnLine(i + 1);
    host_.after(lineFreeAt_ - now, [this, byte = frame[i]] { host_.send({&byte, 1}); });
  }
}

void Controller::Disarm() {
  armed_.clear();
  armedAtSteps_.clear();
}

bool Controller::UseUp(Fault fault) {
  const auto entry = armed_.find(fault);
  if (entry == armed_.end() || entry->second <= 0) return false;
  --entry->second;
  return true;
}

}  // namespace simulator
