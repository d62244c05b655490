#include "link/identity_store.h"

#include "app/app_state.h"

namespace veltra {

bool StoreIdentity(const IdentityField& field, std::string_view value) {
  AppState& state = GetAppState();
  if (value.size() > field.longest) {
    state.log.WriteDetail(TEXT("Value refused"),
                          FormatText(TEXT("more than %d characters: %s"), field.longest, Widen(value)));
    return false;
  }
  state.identity.*field.text = Widen(value);
  if (field.text == kFirmwareVersion.text) state.identity.firmwareVersionText = value;
  return true;
}

}  // namespace veltra
