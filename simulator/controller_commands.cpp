#include "simulator/controller_commands.h"

#include <algorithm>
#include <fstream>

#include "simulator/firmware_file.h"

namespace simulator {
namespace {

Problem RunButton(Controller& controller, Words words) {
  const auto* name = std::ranges::find(kButtonNames, words[0], &ButtonName::command);
  const std::string_view action = words.size() == 2 ? std::string_view(words[1]) : std::string_view();
  if (action != "press" && action != "release") return ExpectedArguments("press|release");
  if (action == "press")
    controller.Press(name->button);
  else
    controller.Release(name->button);
  return {};
}

Problem RunLog(Controller& controller, Words words) {
  controller.SendLogLine(JoinWords(words.subspan(1)));
  return {};
}

Problem RunText(Controller& controller, Words words) {
  if (words.size() < 2) return ExpectedArguments("TEXT");
  controller.SendText(JoinWords(words.subspan(1)));
  return {};
}

Problem RunFirmware(Controller& controller, Words words) {
  if (words.size() != 2) return ExpectedArguments("VERSION");
  controller.identity.firmware = words[1];
  controller.SendText("Firmware=" + words[1]);
  return {};
}

Problem SendFlag(Controller& controller, std::string_view name, std::string_view word) {
  const std::optional<bool> on = ParseOnOff(word);
  if (!on) return ExpectedArguments("on|off");
  controller.SendText(std::string(name) + (*on ? "1" : "0"));
  return {};
}

Problem RunBattery(Controller& controller, Words words) {
  constexpr std::string_view kArguments = "PERCENT|present on|off|pace TIME";
  if (words.size() == 3 && words[1] == "present") {
    const std::optional<bool> present = ParseOnOff(words[2]);
    if (!present) return ExpectedArguments(kArguments);
    controller.battery.Insert(*present);
    return {};
  }
  if (words.size() == 3 && words[1] == "pace") {
    const auto perPercent = ParseTime(words[2]);
    if (!perPercent) return ExpectedArguments(kArguments);
    controller.battery.SetPace(*perPercent);
    return {};
  }
  const std::optional<int64_t> percent = words.size() == 2 ? ParseNumber(words[1]) : std::nullopt;
  if (!percent || *percent < 0 || *percent > 255) return ExpectedArguments(kArguments);
  controller.battery.SetCapacity(static_cast<int>(*percent));
  return {};
}

Problem RunAdapter(Controller& controller, Words words) {
  const std::optional<bool> on = words.size() == 2 ? ParseOnOff(words[1]) : std::nullopt;
  if (!on) return ExpectedArguments("on|off");
  controller.battery.Plug(*on);
  return {};
}

Problem RunCharging(Controller& controller, Words words) {
  return SendFlag(controller, "BatteryCharging=", words.size() == 2 ? std::string_view(words[1]) : "");
}

Problem RunReply(Controller& controller, Words words) {
  controller.SendReply(JoinWords(words.subspan(1)));
  return {};
}

Problem RunRaw(Controller& controller, Words words) {
  std::vector<uint8_t> bytes;
  for (const std::string& word : words.subspan(1)) {
    const std::optional<int64_t> byte = ParseNumber("0x" + word);
    if (!byte || *byte > 0xFF) return "not a byte in hexadecimal: " + word;
    bytes.push_back(static_cast<uint8_t>(*byte));
  }
  if (bytes.empty()) return ExpectedArguments("BYTES");
  controller.SendRaw(bytes);
  return {};
}

Problem RunInfrared(Controller& controller, Words words) {
  if (words.size() < 2) return ExpectedArguments("TEXT");
  controller.infraredReply = JoinWords(words.subspan(1));
  return {};
}

Problem RunFault(Controller& controller, Words words) {
  constexpr std::string_view kArguments =
      "flip|drop|double|garbage|mute|empty|twice|again|address|stuck-bit|power [TIMES|at STEP]|off";
  if (words.size() == 2 && words[1] == "off") {
    controller.Disarm();
    return {};
  }
  const bool atStep = words.size() == 4 && words[2] == "at";
  const auto* name = words.size() < 2 || (words.size() > 3 && !atStep)
                         ? std::end(kFaultNames)
                         : std::ranges::find(kFaultNames, words[1], &FaultName::command);
  if (name == std::end(kFaultNames)) return ExpectedArguments(kArguments);
  const std::optional<int64_t> number = words.size() > 2 ? ParseNumber(words.back()) : 1;
  if (!number || *number < 1 || *number > 1'000'000) return ExpectedArguments(kArguments);
  if (atStep)
    controller.ArmAtStep(static_cast<int>(*number), name->fault);
  else
    controller.Arm(name->fault, static_cast<int>(*number));
  return {};
}

Problem RunPower(Controller& controller, Words words) {
  const std::optional<bool> on = words.size() == 2 ? ParseOnOff(words[1]) : std::nullopt;
  if (!on) return ExpectedArguments("on|off");
  if (*on)
    controller.RestorePower();
  else
    controller.CutPower();
  return {};
}

Problem RunSaveFlash(Controller& controller, Words words) {
  if (words.size() != 2) return ExpectedArguments("FILE");
  FirmwareBytes bytes;
  for (const uint8_t byte : controller.bootloader.Memory().Bytes())
    bytes.emplace_hint(bytes.end(), static_cast<uint32_t>(bytes.size()), byte);
  std::ofstream file(words[1], std::ios::binary);
  file << HexText(bytes);
  if (!file.flush()) return "cannot write " + words[1];
  return {};
}

Problem RunPace(Controller& controller, Words words) {
  const std::optional<bool> on = words.size() == 2 ? ParseOnOff(words[1]) : std::nullopt;
  if (!on) return ExpectedArguments("on|off");
  controller.SetPaced(*on);
  return {};
}

Problem RunReplyDelay(Controller& controller, Words words) {
  const auto delay = words.size() == 2 ? ParseTime(words[1]) : std::nullopt;
  if (!delay) return ExpectedArguments("TIME");
  controller.SetReplyDelay(*delay);
  return {};
}

constexpr ControllerCommand kCommands[] = {
    {"sw1", "press|release", "the external switch in socket 1", RunButton},
    {"sw2", "press|release", "the external switch in socket 2", RunButton},
    {"esc", "press|release", "the middle side button", RunButton},
    {"fn1", "press|release", "the top side button", RunButton},
    {"fn2", "press|release", "the bottom side button", RunButton},
    {"battery", "PERCENT|present on|off|...",
     "the battery's capacity, or whether there is one; pace TIME: it changes by one percent in that time",
     RunBattery},
    {"adapter", "on|off", "the mains adapter", RunAdapter},
    {"charging", "on|off", "the battery charges", RunCharging},
    {"firmware", "VERSION", "the controller reports this firmware version", RunFirmware},
    {"log", "TEXT", "a line of the controller's own log", RunLog},
    {"text", "TEXT", "any text message from the controller", RunText},
    {"reply", "[TEXT]", "a reply that nobody asked for", RunReply},
    {"raw", "BYTES", "bytes in hexadecimal, without a frame: raw 55 55 0A", RunRaw},
    {"infrared", "TEXT", "what infrared commands are answered with from now on", RunInfrared},
    {"fault", "NAME [TIMES|at STEP]",
     "spoil what comes next, or a step of an update: flip, drop, double, garbage, mute, empty, twice, again, "
     "address, stuck-bit, power",
     RunFault},
    {"controller-power", "on|off", "the controller's own supply", RunPower},
    {"save-flash", "FILE", "write the controller's program memory to a HEX file", RunSaveFlash},
    {"pace", "on|off", "bytes take as long as at 57600 baud, both ways", RunPace},
    {"reply-delay", "TIME", "time between a request and its reply (2ms)", RunReplyDelay},
};

}  // namespace

std::span<const ControllerCommand> ControllerCommands() {
  return kCommands;
}

const ControllerCommand* FindControllerCommand(std::string_view name) {
  const auto* row = std::ranges::find(kCommands, name, &ControllerCommand::name);
  return row == std::end(kCommands) ? nullptr : row;
}

std::string_view WhySilent(const Controller& controller, Words words) {
  const bool presses = words[0] == "tap" || (words.size() == 2 && words[1] == "press");
  if (!presses) return {};
  if (!controller.HasPower()) return "the controller has no power: \"controller-power on\"";
  if (!controller.IsInBootloader()) return {};
  if (!controller.bootloader.HasFirmware())
    return "the controller has no firmware: it waits in its bootloader for an update";
  return "the controller sits in its bootloader until its reset: \"controller-power off\", "
         "\"controller-power on\"";
}

std::string ExpectedArguments(std::string_view arguments) {
  return "expects: " + std::string(arguments);
}

}  // namespace simulator
