#include "link/identity_store.h"

#include "link/link_state.h"
#include "system/system_state.h"

namespace veltra {

const DeviceIdentity& Identity() {
  return Link().identity;
}

bool StoreIdentity(const IdentityField& field, std::string_view value) {
  if (value.size() > field.longest) {
    Log().WriteDetail(TEXT("Value refused"),
                      FormatText(TEXT("more than %d characters: %s"), field.longest, Widen(value)));
    return false;
  }
  Link().identity.*field.text = Widen(value);
  if (field.text == kFirmwareVersion.text) Link().identity.firmwareVersionText = value;
  return true;
}

}  // namespace veltra
