// The tablet's battery and its mains adapter. The battery drains by itself and charges at the adapter; what
// changes is reported, as the controller does.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>

namespace simulator {

class Battery {
 public:
  using Duration = std::chrono::microseconds;
  using Report = std::function<void(std::string_view text)>;
  using After = std::function<void(Duration delay, std::function<void()>)>;

  Battery(Report report, After after) : report_(std::move(report)), after_(std::move(after)) {}

  void SetCapacity(int percent);  // 0 to 255: a controller may report nonsense
  void Plug(bool adapter);
  void Insert(bool present);
  // Time for one percent, up or down; zero stands still, as at the beginning.
  void SetPace(Duration perPercent);

  [[nodiscard]] int Capacity() const { return percent_; }

 private:
  static constexpr int kFull = 100;

  void ReportCapacity();
  void ReportCharging();
  void Step();
  void AwaitStep();

  Report report_;
  After after_;
  int percent_ = 50;
  bool adapter_ = false;
  bool present_ = true;
  bool charging_ = false;
  Duration pace_{0};
  uint64_t paceChanges_ = 0;  // steps of an earlier pace do nothing any more
};

}  // namespace simulator
