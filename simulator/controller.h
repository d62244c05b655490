// The tablet's microcontroller as the tool meets it on the serial line. It knows neither the platform layer
// nor the tool: bytes come in, bytes go out, and time is whatever the host says it is. The same controller
// lives on the simulated machine, behind a pty in wall time, and in tests.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/battery.h"
#include "simulator/bootloader.h"
#include "simulator/wire.h"

namespace simulator {

using Duration = std::chrono::microseconds;

// What the controller needs from where it lives. All three are called, and may call back, on one thread.
struct ControllerHost {
  std::function<void(std::span<const uint8_t>)> send;                // to the tool
  std::function<void(Duration delay, std::function<void()>)> after;  // run once, later
  std::function<Duration()> now;
};

// The switch sockets and the side buttons.
enum class Button { kSwitch1, kSwitch2, kMiddle, kTop, kBottom };

struct ButtonName {
  Button button;
  std::string_view command;  // what people type: "sw1"
  std::string_view wire;     // what the controller sends before "Make" and "Break": "Sw1"
};
inline constexpr ButtonName kButtonNames[] = {
    {Button::kSwitch1, "sw1", "Sw1"}, {Button::kSwitch2, "sw2", "Sw2"}, {Button::kMiddle, "esc", "Esc"},
    {Button::kTop, "fn1", "Fn1"},     {Button::kBottom, "fn2", "Fn2"},
};

// Faults that can be armed. Each is used up by what it spoils.
enum class Fault {
  kFlip,      // one bit of the next frame sent is wrong
  kDrop,      // one byte of the next frame sent is missing
  kDouble,    // one byte of the next frame sent comes twice
  kGarbage,   // bytes that are no frame go before the next frame sent
  kMute,      // the next request gets no reply, nor the text that belongs to it
  kEmpty,     // the next reply has no content
  kTwice,     // the next reply comes twice
  kAgain,     // the next request counts as not understood: the controller asks for it again
  kAddress,   // the next read-back carries the address of another row
  kStuckBit,  // one bit of the next row written does not take
  kPower,     // the power fails while the next request is carried out
};

struct FaultName {
  Fault fault;
  std::string_view command;
};
inline constexpr FaultName kFaultNames[] = {
    {Fault::kFlip, "flip"},          {Fault::kDrop, "drop"},   {Fault::kDouble, "double"},
    {Fault::kGarbage, "garbage"},    {Fault::kMute, "mute"},   {Fault::kEmpty, "empty"},
    {Fault::kTwice, "twice"},        {Fault::kAgain, "again"}, {Fault::kAddress, "address"},
    {Fault::kStuckBit, "stuck-bit"}, {Fault::kPower, "power"},
};

// What the controller says about the tablet.
struct Identity {
  std::string firmware = "112";
  std::string serial = "SV5-0012345";
  std::string pcbSerial = "B-20310077";
  std::string pcbVersion = "3.1";
  std::string touchSerial = "T-99120034";
  std::string touchVersion = "2.4";
  std::string touchFirmware = "1.07";
};

// One thing that happened on the line.
struct Traffic {
  enum class Direction { kFromTool, kToTool };
  Duration at{0};
  Direction direction = Direction::kFromTool;
  std::vector<uint8_t> message;  // empty for bytes that are no message
  std::vector<uint8_t> wire;     // as transmitted, faults included
  std::string remark;            // what is wrong with it; empty when nothing is
};
// "Sw1Make", "reply OK (one bit flipped)".
std::string Describe(const Traffic& traffic);

struct ReceivedRequest {
  Duration at{0};
  std::vector<uint8_t> message;  // type byte first
};

class Controller {
 public:
  explicit Controller(ControllerHost host) : host_(std::move(host)) {}
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  // Bytes from the tool.
  void Receive(std::span<const uint8_t> bytes);

  void Press(Button button);
  void Release(Button button);
  void SendText(std::string_view text);
  void SendLogLine(std::string_view line);
  // A reply that nobody asked for.
  void SendReply(std::string_view content);
  // Bytes as they are, without a frame.
  void SendRaw(std::span<const uint8_t> bytes);
  // What a controller says on power-up, before anyone asks: a log line and its firmware version.
  void PowerUp();

  // Without power it neither hears nor says anything; what it was doing to the flash is half done. With it,
  // it says what it says on power-up, or waits in its bootloader when it has no firmware.
  void CutPower();
  void RestorePower();

  // The line went: half a frame is forgotten, and what is unanswered may be asked again.
  void LoseLine();

  void Arm(Fault fault, int times = 1) { armed_[fault] += times; }
  // Nothing is spoilt any more.
  void Disarm();
  // Armed when the firmware update gets there: step 1 is "GotoBootloader", step 2 the first erase command,
  // and so on.
  void ArmAtStep(int step, Fault fault) { armedAtSteps_.emplace(step, fault); }
  // Time between a request and its reply. Default 2 ms.
  void SetReplyDelay(Duration delay) { replyDelay_ = delay; }
  // Sends and hears at 57600 baud, 10 bits a byte, instead of at once.
  void SetPaced(bool paced) { paced_ = paced; }

  Bootloader bootloader;
  [[nodiscard]] bool IsInBootloader() const { return inBootloader_; }
  [[nodiscard]] bool HasPower() const { return powered_; }

  Identity identity;
  Battery battery{
      [this](std::string_view text) { SendText(text); },
      [this](Duration delay, std::function<void()> step) { host_.after(delay, std::move(step)); }};
  bool mobilePhoneOn = false;  // as the tool has switched the radios
  bool bluetoothOn = false;
  // The reply to "IRRecord" and to texts that the controller does not know, as it forwards these to its
  // infrared part.
  std::string infraredReply = std::string("\x01\x04\x05\x55\x00\xFF", 6) + "code";

  void OnTraffic(std::function<void(const Traffic&)> listener) { onTraffic_ = std::move(listener); }
  // Everything that asked for a reply, in order; repeats that the controller asked for included.
  [[nodiscard]] const std::vector<ReceivedRequest>& Requests() const { return requests_; }
  void ForgetRequests() { requests_.clear(); }
  // What the tool did wrong: bad frames, and requests sent before the one before was answered.
  [[nodiscard]] const std::vector<std::string>& Violations() const { return violations_; }

 private:
  void Hear(uint8_t byte);
  void OnEvent(const WireEvent& event);
  void OnRequest(const std::vector<uint8_t>& message);
  void Answer(const std::vector<uint8_t>& message);
  // Counts the steps of an update and arms what is planned for them.
  void CountStep(const std::vector<uint8_t>& message);
  void OnBootloaderCommand(const std::vector<uint8_t>& command);
  void AnswerBootloaderCommand(const std::vector<uint8_t>& command);
  // Later, unless the power fails before.
  void AfterPowered(Duration delay, std::function<void()> action);
  // The content of the reply to a text; sends texts that belong to it and keeps what the text changes.
  std::string Act(std::string_view text);
  void SendMessage(std::vector<uint8_t> message);
  void Transmit(const std::vector<uint8_t>& message, std::vector<uint8_t> frame, std::string remark);
  void Spoil(std::vector<uint8_t>& frame, std::string& remark);
  bool UseUp(Fault fault);

  ControllerHost host_;
  FrameReader reader_;
  std::function<void(const Traffic&)> onTraffic_;
  std::map<Fault, int> armed_;
  Duration replyDelay_ = std::chrono::milliseconds(2);
  bool paced_ = false;
  Duration lineFreeAt_{0};     // in the direction to the tool
  Duration hearingFreeAt_{0};  // in the other one
  bool powered_ = true;
  int powerCycle_ = 0;
  bool inBootloader_ = false;
  int step_ = 0;  // of the update
  std::multimap<int, Fault> armedAtSteps_;
  std::vector<uint8_t> command_;      // the bootloader command that came last
  bool commandRuns_ = false;          // and is being carried out
  std::vector<uint8_t> lastMessage_;  // what "Resend" repeats
  std::vector<uint8_t> unanswered_;   // the request whose reply has not been sent
  bool askedAgain_ = false;           // a repeat of that request is on its way
  std::vector<ReceivedRequest> requests_;
  std::vector<std::string> violations_;
};

}  // namespace simulator
