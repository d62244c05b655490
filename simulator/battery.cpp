#include "simulator/battery.h"

#include <cstdio>
#include <string>

namespace simulator {
namespace {

std::string Flag(std::string_view name, bool on) {
  return std::string(name).append(on ? "1" : "0");
}

}  // namespace

void Battery::SetCapacity(int percent) {
  percent_ = percent;
  ReportCapacity();
  ReportCharging();
}

void Battery::Plug(bool adapter) {
  adapter_ = adapter;
  report_(Flag("AdapterPresent=", adapter));
  ReportCharging();
}

void Battery::Insert(bool present) {
  present_ = present;
  report_(Flag("BatteryPresent=", present));
  ReportCharging();
}

void Battery::SetPace(Duration perPercent) {
  pace_ = perPercent;
  ++paceChanges_;
  AwaitStep();
}

void Battery::ReportCapacity() {
  char text[32];
  std::snprintf(text, sizeof text, "BatteryState=0x%02X", static_cast<unsigned>(percent_));
  report_(text);
}

void Battery::ReportCharging() {
  const bool charging = adapter_ && present_ && percent_ < kFull;
  if (charging == charging_) return;
  charging_ = charging;
  report_(Flag("BatteryCharging=", charging));
}

void Battery::Step() {
  const int next = percent_ + (adapter_ ? 1 : -1);
  if (present_ && next >= 0 && next <= kFull) SetCapacity(next);
  AwaitStep();
}

void Battery::AwaitStep() {
  if (pace_ == Duration(0)) return;
  after_(pace_, [this, changes = paceChanges_] {
    if (changes == paceChanges_) Step();
  });
}

}  // namespace simulator
