// What must hold whatever comes, told from the outside alone: by what the controller got onto the line, and
// by what the tool did to the tablet.
//
//   - A press or release in a good frame has its effect once, and in order; a side button its action.
//   - Nothing is held that no finger holds.
//   - The controller is asked one thing at a time, and the next after the answer.
//   - What another program asks goes out once, in order, unless there is a reason that it does not.
//   - A line of the controller's log stands in the tool's log once.
//
// What may come to nothing is excused: a press on a line that goes, a click on a locked screen.
#pragma once

#include <array>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/world.h"

namespace storm {

using simulator::Duration;
using simulator::Problem;
using simulator::TimelineEntry;

constexpr size_t kButtons = std::size(simulator::kButtonNames);  // in their order; the first two are switches
constexpr size_t kSwitches = 2;

class Model {
 public:
  Model();

  void Take(const TimelineEntry& entry);
  // What was wrong first; empty as long as all is well.
  [[nodiscard]] const Problem& Complaint() const { return complaint_; }
  // After a while without wind, when the tool has read all that it was sent: what should have come has come.
  // `log` is all of the tool's log.
  void Rest(std::string_view log);
  // What may keep a press from its effect; empty when nothing does.
  [[nodiscard]] std::string_view Unrest() const;

 private:
  enum class Kind { kDown, kUp, kShort, kLong, kShortOrLong };
  struct Sign {
    Kind kind;
    size_t button;
    [[nodiscard]] bool IsAction() const { return kind >= Kind::kShort; }
    // What has the same number comes in its order.
    [[nodiscard]] size_t Line() const { return IsAction() ? button : 0; }  // switches have no actions
    bool operator==(const Sign&) const = default;
  };
  struct Awaited : Sign {
    bool isExcused;
    Duration since;
    [[nodiscard]] bool Fits(const Sign& sign) const;
    bool operator==(const Awaited&) const = default;
  };
  // One way in which it may have come about: which press an effect was of is not always certain.
  struct Account {
    std::vector<Awaited> awaited;
    std::array<int, kButtons> mayBeTakenBack{};  // so often: there was a reason since it was pressed
    bool operator==(const Account&) const = default;
  };
  struct Line {
    std::string text;
    bool isExcused;
    Duration since;
  };
  // What happens, what may come to nothing then, and what else it means.
  struct Row {
    std::string_view who;
    std::string_view beginning;
    unsigned excuses;
    bool Model::*flag = nullptr;
    bool isOn = false;
    void (Model::*act)() = nullptr;
  };
  static const Row kRows[];

  void AddSign(std::string text, size_t button, Kind kind) { signs_[std::move(text)] = {kind, button}; }
  void Hear(std::string_view text);
  void HearButton(size_t button, bool isPress, bool isDoubtful);
  void Await(Kind kind, size_t button, bool isExcused);
  void Say(std::string_view text);
  void Did(const std::string& text);
  void NoteHeld(size_t button, bool isHeld);
  void CountHeld(const std::string& text);
  void Watch(std::string_view command);
  void FireTimers();
  [[nodiscard]] bool MayBeMissing(const Awaited& awaited) const;
  void Keep(std::vector<Account> accounts);
  template <class Act>
  void ForAwaited(Act act);
  void Excuse(unsigned what);
  static std::string Describe(const Awaited& awaited);
  void Complain(std::string what);

  void Start();
  void End();
  void Open();
  void LoseReceiver();
  void Lock();
  void BeginUpdate();
  void Answer();

  std::map<std::string, Sign, std::less<>> signs_;
  Duration now_{0};
  Problem complaint_;

  std::set<std::string> hung_;  // applications
  bool isOpen_ = false;
  bool isAsleep_ = false;
  bool isLocked_ = false;
  bool isShown_ = false;    // the options
  bool isRefused_ = false;  // something, by Windows
  bool isUpdating_ = false;
  bool hasUpdated_ = false;  // since the tool was started
  int unanswered_ = 0;       // requests of the tool
  int mostUnanswered_ = 1;   // more when some were asked again, or their answers are lost
  bool mayAskAgain_ = false;
  Duration mayAskAgainUntil_{0};

  std::vector<Account> accounts_ = {{}};
  std::vector<Awaited> onTheWay_;                       // presses and releases while the line is closed
  std::array<std::optional<Awaited>, kButtons> armed_;  // long presses
  std::array<bool, kButtons> isPressed_{};              // as the controller said last
  std::array<bool, kButtons> isHeld_{};                 // as the tool did last
  std::array<std::optional<Duration>, kButtons> mustBeReleasedBy_;
  Duration lastReason_{0};                     // to take back what is pressed
  std::array<std::string, kButtons> outputs_;  // by which it was pressed last
  std::set<std::string> heldOutputs_;          // "mouse left", "key 0x20"

  std::deque<Line> questions_;
  std::set<std::string> asked_;  // of them, what the tool has said
  std::string said_;             // by the tool, last
  Duration saidAt_{0};
  std::vector<Line> logLines_;
};

}  // namespace storm
