#include "power/battery_details.h"

#include "app/app_state.h"
#include "link/send_queue.h"

namespace veltra {

void QueryBatteryDetails() {
  for (const BatteryDetail& detail : kBatteryDetails) SendText(detail.query);
}

WideText BatteryDetailsText() {
  const BatteryStatus& battery = GetAppState().battery;
  WideText text;
  for (const BatteryDetail& detail : kBatteryDetails) text += detail.label + battery.GetDetail(detail.index);
  return text;
}

}  // namespace veltra
