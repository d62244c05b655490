#include "link/identity_updates.h"

#include <string>

#include "link/identity_store.h"
#include "link/send_queue.h"
#include "system/numbers.h"
#include "system/system_state.h"

namespace veltra {
namespace {

struct IdentityUpdate {
  std::string_view prefix;
  const IdentityField* field;  // null: sent only
};

// By data tag, from kFirstIdentityUpdate on.
constexpr IdentityUpdate kUpdates[] = {
    {"SetTouchVersion=", &kTouchVersion}, {"SetPCBSerial=", &kPcbSerial},
    {"SetSerial=", &kSerialNumber},       {"SetPCBVersion=", &kPcbVersion},
    {"SetTouchSerial=", &kTouchSerial},   {"SetTouchFirmware=", &kTouchFirmware},
    {"CalibrateTouch", nullptr},
};
static_assert(std::size(kUpdates) == kLastIdentityUpdate - kFirstIdentityUpdate + 1);

}  // namespace

void UpdateIdentity(uint32_t tag, Bytes value) {
  const IdentityUpdate& update = kUpdates[tag - kFirstIdentityUpdate];
  if (value.size() > kLongestIdentityUpdate) {
    Log().WriteError(TEXT("copydata"),
                     FormatText(TEXT("%s refused: %d bytes, at most %d"), Widen(update.prefix), value.size(),
                                kLongestIdentityUpdate));
    return;
  }
  const std::string_view all = TextOf(value);
  const std::string_view text = all.substr(0, all.find('\0'));  // some programs count their terminator
  if (update.field && !StoreIdentity(*update.field, text)) return;
  SendText(std::string(update.prefix) + std::string(text));
}

}  // namespace veltra
