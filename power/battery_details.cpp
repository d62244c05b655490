#include "power/battery_details.h"

#include "link/send_queue.h"
#include "power/power_state.h"

namespace veltra {

void QueryBatteryDetails() {
  for (const BatteryDetail& detail : kBatteryDetails) SendText(detail.query);
}

WideText BatteryDetailText(int index) {
  return Power().battery.GetDetail(index);
}

WideText BatteryDetailsText() {
  WideText text;
  for (const BatteryDetail& detail : kBatteryDetails) text += detail.label + BatteryDetailText(detail.index);
  return text;
}

}  // namespace veltra
