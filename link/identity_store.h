// Storing identification values, whoever reports them.
#pragma once

#include <string_view>

#include "link/device_identity.h"

namespace veltra {

// What is known so far.
const DeviceIdentity& Identity();

// Stores the value, or refuses it whole, with a detail line in the log, when it is longer than the field: the
// earlier value stays then. Returns whether it was stored.
bool StoreIdentity(const IdentityField& field, std::string_view value);

}  // namespace veltra
