// The power meter: power source, remaining capacity, and the levels of the two battery alarms.
#pragma once

namespace veltra {

// Shows the dialog until the user closes it. Does nothing while it is open already.
void OpenPowerMeter();

}  // namespace veltra
