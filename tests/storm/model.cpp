#include "tests/storm/model.h"

#include <algorithm>
#include <utility>

namespace storm {
namespace {

constexpr Duration kLongPress = std::chrono::milliseconds(1500);
constexpr Duration kBusy = std::chrono::seconds(6);       // mostly
constexpr Duration kLongBusy = std::chrono::seconds(15);  // with a codec that fails
constexpr Duration kForgotten = 3 * kLongBusy;            // and fails again
constexpr Duration kFrame = std::chrono::milliseconds(20);
constexpr std::string_view kLetters[] = {"Dd", "Jj"};  // of the switches
constexpr std::string_view kLetterReceivers[] = {"Talk Builder", "Lexora"};

std::string Numbers(std::string_view before, int first, int second) {
  return std::string(before) + " " + std::to_string(first) + " " + std::to_string(second);
}

// What a setting of a switch lets it do; with 0 it notifies.
struct SwitchValue {
  std::string_view number;
  std::string_view output;
};
constexpr SwitchValue kSwitchValues[] = {
    {"-1", "mouse left"}, {"-2", "mouse right"}, {"32", "key 0x20"}, {"50002", "joystick button 3"}};
// What the side buttons do, short and long; a key of its own for each in the profile.
constexpr std::string_view kShortActions[] = {"mouse filter 1", "key 0x70 down", "key 0x71 down"};
constexpr std::string_view kLongActions[] = {"mouse filter 0", "key 0x72 down", "key 0x73 down"};

// What may come to nothing.
enum Excuse : unsigned {
  kHolding = 1,  // what is pressed may be taken back, and side buttons do nothing
  kFrames = 2,   // what the controller has said is lost
  kAsking = 4,   // what was asked is not answered any more, or asked again. The tool may learn that late
  kQuestions = 8,
  kLog = 16,
  kReleases = 32,  // what is pressed must be released
};
constexpr unsigned kLine = kFrames | kLog | kHolding;
constexpr unsigned kAll = kLine | kQuestions | kAsking;

std::string NameOf(size_t button) {
  return std::string(simulator::kButtonNames[button].command);
}

}  // namespace

const Model::Row Model::kRows[] = {
    {"effect", "serial COM2 opened", 0, &Model::isOpen_, true, &Model::Open},
    {"effect", "serial COM2 closed", kAll | kReleases, &Model::isOpen_, false},
    {"effect", "program ends", kAll, &Model::isOpen_, false, &Model::End},
    {"effect", "program starts", 0, nullptr, false, &Model::Start},
    {"effect", "power off", kHolding},
    {"effect", "tray 1978 removed", kHolding},
    {"effect", "dialog \"Options\" shown", kLine, &Model::isShown_, true},
    {"effect", "dialog \"Options\" hidden", 0, &Model::isShown_, false},
    {"effect", "stays awake", kHolding | kAsking | kReleases, &Model::isUpdating_, true, &Model::BeginUpdate},
    {"effect", "may sleep", kAsking, &Model::isUpdating_, false},
    {"controller ->", "Resend", kAsking},
    {"controller ->", "Firmware=", kHolding},
    {"controller ->", "reply", 0, nullptr, false, &Model::Answer},
    {"controller ->", "erased", 0, nullptr, false, &Model::Answer},
    {"controller ->", "written", 0, nullptr, false, &Model::Answer},
    {"controller ->", "row", 0, nullptr, false, &Model::Answer},
    {"controller ->", "finish", 0, nullptr, false, &Model::Answer},
    {">", "controller-power off", kAll},
    {">", "port", kLine},
    {">", "fail", kLog | kQuestions | kAsking, &Model::isRefused_, true},
    {">", "fail off", 0, &Model::isRefused_, false},
    {">", "suspend", kHolding | kReleases, &Model::isAsleep_, true},
    {">", "resume", 0, &Model::isAsleep_, false},
    {">", "screen lock", kLine, &Model::isLocked_, true, &Model::Lock},
    {">", "screen cover", kLine, &Model::isLocked_, true, &Model::Lock},
    {">", "screen un", kHolding, &Model::isLocked_, false},
    {">", "app", kHolding},
    {">", "app hang", kLine},
    {">", "app close", 0, nullptr, false, &Model::LoseReceiver},
    {">", "tray", kHolding},
    {">", "quit", kHolding},
    {">", "close", kHolding},
    {">", "update", kHolding},
    {">", "end-session", kLine},
    {">", "send-data 3", kQuestions | kAsking},
};

Model::Model() {
  for (const int pressed : {0, 1}) {
    const Kind kind = pressed ? Kind::kDown : Kind::kUp;
    for (size_t i = 0; i < kButtons; ++i)
      AddSign(Numbers("notify 0xC000", static_cast<int>(i) + 1, pressed), i, kind);
    for (size_t i = 0; i < kSwitches; ++i) {
      AddSign(Numbers("message 0xC000 to Talk Builder 4 Class", static_cast<int>(i) + 1, pressed), i, kind);
      for (const std::string_view receiver : kLetterReceivers)
        AddSign(Numbers("message 0x8064 to " + std::string(receiver), 0, kLetters[i][pressed ? 0 : 1]), i,
                kind);
    }
  }
  for (size_t i = kSwitches; i < kButtons; ++i) {
    AddSign(std::string(kShortActions[i - kSwitches]), i, Kind::kShort);
    AddSign(std::string(kLongActions[i - kSwitches]), i, Kind::kLong);
  }
}

void Model::Take(const TimelineEntry& entry) {
  now_ = entry.at;
  FireTimers();
  for (const Row& row : kRows) {
    if (entry.who != row.who || !entry.text.starts_with(row.beginning)) continue;
    if (row.flag) this->*row.flag = row.isOn;
    Excuse(row.excuses);
    if (row.act) (this->*row.act)();
  }
  if (entry.who == "controller ->") Hear(entry.text);
  if (entry.who == "tool ->") Say(entry.text);
  if (entry.who == "effect") Did(entry.text);
  if (entry.who == ">") Watch(entry.text);
}

bool Model::Awaited::Fits(const Sign& sign) const {
  return button == sign.button && (kind == sign.kind || (kind == Kind::kShortOrLong && sign.IsAction()));
}

std::string Model::Describe(const Awaited& awaited) {
  constexpr std::string_view kWords[] = {"press", "release", "short press", "long press",
                                         "short or long press"};
  return std::string(kWords[static_cast<size_t>(awaited.kind)]) + " of " + NameOf(awaited.button) + " at " +
         simulator::FormatSeconds(awaited.since);
}

void Model::Complain(std::string what) {
  if (!complaint_) complaint_ = simulator::FormatSeconds(now_) + "  " + std::move(what);
}

// ---- reasons why something may come to nothing

template <class Act>
void Model::ForAwaited(Act act) {
  for (Account& account : accounts_)
    for (Awaited& awaited : account.awaited) act(awaited);
}

void Model::Excuse(unsigned what) {
  if (what & kFrames) ForAwaited([](Awaited& awaited) { awaited.isExcused |= !awaited.IsAction(); });
  if (what & kLog)
    for (Line& line : logLines_) line.isExcused |= now_ - line.since < kForgotten;
  if (what & kQuestions)
    for (Line& question : questions_) question.isExcused = true;
  if (what & kAsking) {
    mayAskAgain_ = true;
    mayAskAgainUntil_ = now_ + kBusy;
  }
  if ((what & kReleases) && !isLocked_ && hung_.empty())  // who hangs takes no letter
    for (size_t i = 0; i < kSwitches; ++i)
      if (isHeld_[i]) mustBeReleasedBy_[i] = now_ + kForgotten;
  if (!(what & kHolding)) return;
  lastReason_ = now_;
  for (Account& account : accounts_)
    for (int& times : account.mayBeTakenBack) times = std::max(times, 1);
  ForAwaited([](Awaited& awaited) { awaited.isExcused |= awaited.IsAction(); });
  for (std::optional<Awaited>& armed : armed_)
    if (armed) armed->isExcused = true;
}

// It knows nothing of what was before.
void Model::Start() {
  isAsleep_ = isShown_ = isUpdating_ = hasUpdated_ = false;
}

// What it could not release on a locked screen nobody can any more.
void Model::End() {
  if (!isLocked_) return;
  for (size_t i = 0; i < kButtons; ++i) NoteHeld(i, false);
  heldOutputs_.clear();
}

// What was on its way when the line came is heard; what was asked before is answered late, and asked again.
void Model::Open() {
  mayAskAgainUntil_ = now_ + kLongBusy;
  for (const Awaited& awaited : std::exchange(onTheWay_, {}))
    if (now_ - awaited.since < kFrame) HearButton(awaited.button, awaited.kind == Kind::kDown, true);
}

void Model::Answer() {
  unanswered_ = std::max(unanswered_ - 1, 0);
  if (hasUpdated_) Excuse(kHolding);  // the bootloader may be there, late
}

// Who took a letter is gone, and holds nothing any more.
void Model::LoseReceiver() {
  for (size_t i = 0; i < kSwitches; ++i)
    if (outputs_[i].starts_with("message")) NoteHeld(i, false);
}

// And what Windows keeps is released once more.
void Model::Lock() {
  mustBeReleasedBy_ = {};
  for (Account& account : accounts_) account.mayBeTakenBack.fill(2);
}

// The command that was not answered in time is given up, and so is what was not answered before it.
void Model::BeginUpdate() {
  hasUpdated_ = true;
  ForAwaited([](Awaited& awaited) {
    awaited.isExcused |= awaited.kind == Kind::kDown && awaited.button >= kSwitches;
  });
}

std::string_view Model::Unrest() const {
  if (isAsleep_) return "it sleeps";
  if (isLocked_) return "the screen is locked";
  if (isShown_) return "the options are shown";
  if (isUpdating_) return "an update runs";
  return isOpen_ ? "" : "the line is closed";
}

// ---- what the controller says

void Model::Hear(std::string_view text) {
  const bool isSpoilt = text.starts_with("bytes") || text.ends_with(')');
  if (isSpoilt) return Excuse(kQuestions | kAsking);  // the third drops what waits, and what was sent
  if (isOpen_ && text.starts_with("log note"))
    logLines_.push_back({std::string(text.substr(4)), isRefused_, now_});
  for (size_t i = 0; i < kButtons; ++i) {
    const std::string_view name = simulator::kButtonNames[i].wire;
    const bool isPress = text == std::string(name) + "Make";
    if (!isPress && text != std::string(name) + "Break") continue;
    if (isOpen_)
      HearButton(i, isPress, false);
    else
      onTheWay_.push_back({{isPress ? Kind::kDown : Kind::kUp, i}, true, now_});
  }
}

void Model::Await(Kind kind, size_t button, bool isExcused) {
  for (Account& account : accounts_) account.awaited.push_back({{kind, button}, isExcused, now_});
}

void Model::HearButton(size_t button, bool isPress, bool isDoubtful) {
  const bool isSwitch = button < kSwitches;
  const bool wasPressed = std::exchange(isPressed_[button], isPress);
  const std::optional<Awaited> armed = std::exchange(armed_[button], std::nullopt);
  Await(isPress ? Kind::kDown : Kind::kUp, button,
        isDoubtful || (isSwitch ? isShown_ || isLocked_ || !hung_.empty() : isPress && isUpdating_));
  if (isSwitch) return;
  if (isPress) {
    if (armed || wasPressed)  // a press without a release before it: time counts from this one
      ForAwaited(
          [&](Awaited& awaited) { awaited.isExcused |= awaited.IsAction() && awaited.button == button; });
    if (armed) Await(Kind::kLong, button, true);
    armed_[button] = {{Kind::kLong, button}, isDoubtful || isAsleep_ || isUpdating_, now_};
  } else if (armed) {
    const bool isShort = now_ + kFrame < armed->since + kLongPress;
    Await(isShort ? Kind::kShort : Kind::kShortOrLong, button, armed->isExcused || isLocked_);
  } else {
    ForAwaited([&](Awaited& awaited) {
      if (awaited.kind == Kind::kLong && awaited.button == button && now_ < awaited.since + kFrame)
        awaited.kind = Kind::kShortOrLong;
    });
  }
}

void Model::FireTimers() {
  for (Account& account : accounts_)
    std::erase_if(account.awaited, [this](const Awaited& awaited) {
      return awaited.isExcused && now_ - awaited.since > kForgotten;
    });
  for (size_t i = 0; i < kSwitches; ++i)
    if (now_ > mustBeReleasedBy_[i].value_or(now_)) Complain("still held: " + NameOf(i));
  for (size_t i = kSwitches; i < kButtons; ++i) {
    if (!armed_[i] || now_ < armed_[i]->since + kLongPress) continue;
    Await(Kind::kLong, i, armed_[i]->isExcused || isLocked_);
    armed_[i].reset();
  }
}

// ---- what the tool does

bool Model::MayBeMissing(const Awaited& awaited) const {
  return awaited.isExcused || (awaited.kind == Kind::kUp && !isHeld_[awaited.button]);
}

void Model::Did(const std::string& text) {
  CountHeld(text);
  const auto found = signs_.find(text);
  if (found == signs_.end()) return;
  const Sign sign = found->second;
  std::vector<Account> possible;
  std::string before;
  for (const Account& account : accounts_) {
    Account rest = account;
    for (size_t i = 0; i < rest.awaited.size();) {
      const Awaited awaited = rest.awaited[i];
      if (awaited.Line() != sign.Line()) {
        ++i;
        continue;
      }
      rest.awaited.erase(rest.awaited.begin() + static_cast<std::ptrdiff_t>(i));
      if (awaited.Fits(sign)) {
        possible.push_back(rest);
        if (sign.kind == Kind::kDown)
          possible.back().mayBeTakenBack[sign.button] = isAsleep_ || lastReason_ >= awaited.since ? 1 : 0;
      }
      if (MayBeMissing(awaited)) continue;
      before = ", before the " + Describe(awaited);
      break;
    }
    if (sign.kind == Kind::kUp && account.mayBeTakenBack[sign.button] > 0)
      --possible.emplace_back(account).mayBeTakenBack[sign.button];
  }
  if (!sign.IsAction()) NoteHeld(sign.button, sign.kind == Kind::kDown);
  if (sign.kind == Kind::kDown) outputs_[sign.button] = text;
  if (!possible.empty()) return Keep(std::move(possible));
  if (sign.kind == Kind::kUp && !hung_.empty()) return;  // of a press that nobody took
  Complain("without a reason, or twice: " + text + before);
}

void Model::Keep(std::vector<Account> accounts) {
  accounts_.clear();
  for (Account& account : accounts)
    if (std::ranges::find(accounts_, account) == accounts_.end()) accounts_.push_back(std::move(account));
}

void Model::NoteHeld(size_t button, bool isHeld) {
  isHeld_[button] = isHeld;
  mustBeReleasedBy_[button].reset();
}

void Model::CountHeld(const std::string& text) {
  const std::string output = text.substr(0, text.rfind(' '));
  if (text.ends_with(" down")) heldOutputs_.insert(output);
  if (text.ends_with(" up")) heldOutputs_.erase(output);
}

// ---- what other programs ask

// Who looks at no messages gets no letter of a switch either.
void Model::Watch(std::string_view command) {
  if (command.starts_with("send-data 0 ") || command.starts_with("send-data 1 ")) {
    const size_t begin = command.find('"') + 1;
    questions_.push_back({std::string(command.substr(begin, command.find('"', begin) - begin)),
                          !isOpen_ || now_ <= mayAskAgainUntil_, now_});
  }
  constexpr std::string_view kHang = "app hang ";
  if (command.starts_with(kHang)) hung_.insert(std::string(command.substr(kHang.size())));
  for (const std::string_view act : {"app wake ", "app close "})
    if (command.starts_with(act)) hung_.erase(std::string(command.substr(act.size())));
  for (size_t i = 0; i < kSwitches; ++i)
    for (const SwitchValue& value : kSwitchValues)
      if (command == "set Sw" + std::to_string(i + 1) + "CmdVal " + std::string(value.number)) {
        AddSign(std::string(value.output) + " down", i, Kind::kDown);
        AddSign(std::string(value.output) + " up", i, Kind::kUp);
      }
}

void Model::Say(std::string_view text) {
  if (text == "Resend") return Excuse(kQuestions | kAsking);  // now it knows of a spoilt frame
  if (text.starts_with("bytes")) return;
  if (unanswered_ == 0 && now_ - saidAt_ > kBusy) mostUnanswered_ = 1;
  saidAt_ = now_;
  constexpr std::string_view kAtAnyTime[] = {"Ready", "GotoBootloader", "erase"};  // it begins again; twice
  const auto begins = [text](std::string_view beginning) { return text.starts_with(beginning); };
  const bool isDisturbed = now_ <= mayAskAgainUntil_;
  const bool mayAskAgain = std::exchange(mayAskAgain_, isDisturbed) || isDisturbed;
  if (++unanswered_ > mostUnanswered_ && !mayAskAgain && std::ranges::none_of(kAtAnyTime, begins))
    Complain("before the answer to " + said_ + ": " + std::string(text));
  mostUnanswered_ = std::max(mostUnanswered_, unanswered_);
  said_ = text;
  if (!text.starts_with("Ask") || (mayAskAgain && asked_.contains(said_))) return;
  const auto asked = std::ranges::find_if(
      questions_, [&](const Line& question) { return question.text == text || !question.isExcused; });
  if (asked == questions_.end() || asked->text != text)
    return Complain("out of its turn, or never asked: " + std::string(text));
  questions_.erase(questions_.begin(), std::next(asked));
  asked_.insert(said_);
}

// ---- afterwards

void Model::Rest(std::string_view log) {
  if (!Unrest().empty()) return;
  const auto isOld = [this](const Awaited& awaited) { return now_ - awaited.since > kLongPress; };
  const auto isLost = [&](const Awaited& awaited) { return isOld(awaited) && !MayBeMissing(awaited); };
  std::string lost;
  ForAwaited([&](const Awaited& awaited) { lost = isLost(awaited) ? Describe(awaited) : lost; });
  std::erase_if(accounts_,
                [&](const Account& account) { return std::ranges::any_of(account.awaited, isLost); });
  if (accounts_.empty()) return Complain("lost: " + lost);
  for (Account& account : accounts_) std::erase_if(account.awaited, isOld);
  Keep(std::exchange(accounts_, {}));
  for (size_t i = 0; i < kSwitches; ++i)
    if (isHeld_[i] && !isPressed_[i]) Complain("nobody holds it: " + NameOf(i));
  if (!heldOutputs_.empty() && !isHeld_[0] && !isHeld_[1])
    Complain("nobody holds it: " + *heldOutputs_.begin());

  for (const Line& question : questions_)
    if (!question.isExcused && unanswered_ < mostUnanswered_) Complain("never sent: " + question.text);
  for (const Line& line : logLines_) {
    ptrdiff_t written = 0;
    for (size_t at = 0; (at = log.find(line.text + "\r\n", at)) != log.npos; ++at) ++written;
    const auto isIt = [&](const Line& other) { return other.text == line.text; };
    const auto isSure = [&](const Line& other) { return isIt(other) && !other.isExcused; };
    if (written > std::ranges::count_if(logLines_, isIt) ||
        written < std::ranges::count_if(logLines_, isSure))
      Complain("not as often in the log as said: " + line.text);
  }
  logLines_.clear();
}

}  // namespace storm
