#include "app/pic_messages.h"

#include <windows.h>

#include <charconv>
#include <optional>

#include "app/app_state.h"
#include "app/power_events.h"
#include "board/expander.h"
#include "link/identity_store.h"
#include "link/infrared.h"
#include "link/send_queue.h"
#include "power/battery_details.h"
#include "switches/switch_events.h"
#include "system/copied_data.h"
#include "system/numbers.h"

namespace veltra {
namespace {

// ---- text messages (type 0x0A) ----------------------------------------------------------------------------

bool IsOne(std::string_view value) {
  return value.starts_with('1');
}

void OnBatteryState(std::string_view value) {
  constexpr size_t kDigits = 2;
  const std::string_view digits = value.substr(0, kDigits);
  int32_t capacity = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), capacity, 16);
  if (error != std::errc() || end != digits.data() + digits.size() || digits.front() == '-') return;
  Power().battery.SetCapacity(std::min(capacity, 100));
}

void OnBatteryPresent(std::string_view value) {
  Power().battery.batteryPresent = IsOne(value);
}
void OnAdapterPresent(std::string_view value) {
  Power().battery.adapterPresent = IsOne(value);
}
void OnBatteryCharging(std::string_view value) {
  Power().battery.batteryCharging = IsOne(value);
}

void StoreAndLog(const IdentityField& field, const WCHAR* tag, std::string_view value) {
  if (StoreIdentity(field, value)) Log().WriteDetail(tag, Widen(value));
}

bool IsAnswerTo(std::string_view request) {
  const PicRequest* head = HeadRequest();
  return head && head->transmitted && head->Text() == request;
}

// Said unasked, it means that the controller has started again.
void OnFirmware(std::string_view value) {
  if (!IsAnswerTo("Ready")) {
    ForgetHeldSwitches();
    Firmware().bootloader.OnFirmwareSpeaks();
  }
  StoreAndLog(kFirmwareVersion, TEXT("Pic version recv"), value);
}
void OnSerial(std::string_view value) {
  StoreAndLog(kSerialNumber, TEXT("Serial recv"), value);
}
void OnPcbSerial(std::string_view value) {
  StoreAndLog(kPcbSerial, TEXT("PCB serial recv"), value);
}
void OnPcbVersion(std::string_view value) {
  StoreIdentity(kPcbVersion, value);
}
void OnTouchVersion(std::string_view value) {
  StoreIdentity(kTouchVersion, value);
}
void OnTouchFirmware(std::string_view value) {
  StoreIdentity(kTouchFirmware, value);
}
void OnTouchSerial(std::string_view value) {
  StoreIdentity(kTouchSerial, value);
}

struct PrefixRow {
  std::string_view prefix;
  size_t shortest;  // of the whole text
  void (*handle)(std::string_view value);
};

// Tried in this order, before the whole texts.
constexpr PrefixRow kPrefixRows[] = {
    {"BatteryState=0x", 17, OnBatteryState},
    {"BatteryPresent=", 16, OnBatteryPresent},
    {"AdapterPresent=", 16, OnAdapterPresent},
    {"BatteryCharging=", 17, OnBatteryCharging},
    {"Firmware=", 10, OnFirmware},
    {"Serial=", 9, OnSerial},
    {"PCBSerial=", 11, OnPcbSerial},
    {"PCBVersion=", 12, OnPcbVersion},
    {"TouchVersion=", 14, OnTouchVersion},
    {"TouchFirmware=", 14, OnTouchFirmware},  // the value may be empty
    {"TouchSerial=", 13, OnTouchSerial},
};

// An update leaves no release to come: no side button is pressed from its start on.
void OnSwitchEvent(const SwitchEvent& event) {
  if (event.pressed && IsSideButton(event.button) && Firmware().bootloader.IsRunning()) return;
  if (event.pressed) OnPressWhileSuspended();
  HandleSwitchEvent(event);
}

void OnText(std::string_view text) {
  for (const PrefixRow& row : kPrefixRows)
    if (text.size() >= row.shortest && StartsWithIgnoringAsciiCase(text, row.prefix))
      return row.handle(text.substr(row.prefix.size()));
  if (EqualIgnoringAsciiCase(text, "Resend")) return TransmitHead();
  for (const SwitchEvent& event : kSwitchEvents)
    if (EqualIgnoringAsciiCase(text, event.text)) return OnSwitchEvent(event);
}

// ---- replies (type 0x0B) ----------------------------------------------------------------------------------

// What was pressed since the update began is not released any more.
void OnBootloaderEntered(Bytes) {
  ForgetHeldSwitches();
  Firmware().bootloader.OnEnterBootloader();
}

struct ReplyRow {
  std::string_view request;
  void (*handle)(Bytes reply);
};

constexpr ReplyRow kReplyRows[] = {
    {"IRRecord", StoreInfraredRecording},
    {"GotoBootloader", OnBootloaderEntered},
    {"EnableGsm=1", [](Bytes) { SetPortB(kExpanderMobilePhone); }},
};

// A request matches a row that begins with the whole request.
void OnOwnReply(std::string_view request, Bytes reply) {
  for (const ReplyRow& row : kReplyRows)
    if (row.request.starts_with(request)) return row.handle(reply);
  for (const BatteryDetail& detail : kBatteryDetails)
    if (detail.query.starts_with(request)) return Power().battery.SetDetail(detail.index, reply);
  if (request.starts_with("Suspend=") || request.starts_with("LcdOff="))
    Log().Write(TEXT("Reply detected"), TEXT("Suspend= detected"));
}

void OnReply(Bytes reply) {
  const std::optional<PicRequest> request = TakeAnsweredRequest(static_cast<DWORD>(GetMessageTime()));
  if (!request) {
    if (!reply.empty() && Firmware().bootloader.IsEntryLate()) OnBootloaderEntered(reply);
    return;
  }
  Firmware().bootloader.OnFirmwareSpeaks();
  if (!reply.empty() && request->replyTarget) SendCopiedData(request->replyTarget, kReplyTag, reply);
  if (!reply.empty() && !request->replyTarget) OnOwnReply(request->Text(), reply);
  TransmitNewHead();
}

// ---- the other types --------------------------------------------------------------------------------------

void OnLogLine(Bytes line) {
  Log().Write(TEXT("Pic Log"), Widen(TextOf(line)));
}

// Answers of the bootloader take their request out of the queue and transmit nothing: the update sends its
// next command itself.
void OnBootloaderData(Bytes data) {
  if (data.size() < kAddressedLength) return;
  Firmware().bootloader.OnResponse(AddressIn(data), data.subspan(kAddressedLength));
}

void OnBootloaderAcknowledge(Bytes) {
  Firmware().bootloader.OnResponse(0, {});
}

void OnTextMessage(Bytes content) {
  const std::string_view text = TextOf(content);
  OnText(text.substr(0, text.find('\0')));
}

struct TypeRow {
  MessageType type;
  void (*handle)(Bytes content);
};

constexpr TypeRow kTypeRows[] = {
    {MessageType::kReply, OnReply},
    {MessageType::kText, OnTextMessage},
    {MessageType::kLogLine, OnLogLine},
    {MessageType::kReadMemory, OnBootloaderData},
    {MessageType::kWriteRow, OnBootloaderAcknowledge},
    {MessageType::kErasePage, OnBootloaderAcknowledge},
    {MessageType::kFinished, OnBootloaderAcknowledge},
};

}  // namespace

void HandlePicMessage(Bytes message) {
  if (message.empty()) return;
  for (const TypeRow& row : kTypeRows)
    if (message.front() == static_cast<uint8_t>(row.type)) return row.handle(message.subspan(1));
}

}  // namespace veltra
