#include "tests/storm/model.h"

#include <algorithm>
#include <utility>

namespace storm {
namespace {

constexpr Duration kLongPress = std::chrono::milliseconds(1500);
constexpr Duration kBusy = std::chrono::seconds(6);  // mostly
constexpr Duration kFrame = std::chrono::milliseconds(20);
constexpr std::string_view kLetters[] = {"Dd", "Jj"};  // of the switches
constexpr std::string_view kLetterReceivers[] = {"Talk Builder", "Lexora"};

std::string Numbers(std::string_view before, int first, int second) {
  return std::string(before) + " " + std::to_string(first) + " " + std::to_string(second);
}

}  // namespace

const Model::Row Model::kRows[] = {
    {"effect", "serial COM2 opened", &Model::Open},
    {"effect", "serial COM2 closed", &Model::Close},
    {"effect", "program ends", &Model::Close},
    {"effect", "program ends", &Model::End},
    {"effect", "power off", &Model::TakeBack},
    {"effect", "tray 1978 removed", &Model::TakeBack},
    {"controller ->", "Resend", &Model::MayAskAgain},
    {">", "controller-power off", &Model::LoseFrames},
    {">", "controller-power off", &Model::Cancel},
    {">", "port", &Model::LoseFrames},
    {">", "fail", &Model::SpoilDisk},
    {">", "suspend", &Model::Suspend},
    {">", "resume", &Model::Resume},
    {"effect", "program starts", &Model::Start},
    {">", "screen lock", &Model::Lock},
    {">", "screen cover", &Model::Lock},
    {">", "screen un", &Model::Unlock},
    {"effect", "dialog \"Options\" shown", &Model::Show},
    {"effect", "dialog \"Options\" hidden", &Model::Hide},
    {"effect", "stays awake", &Model::BeginUpdate},
    {"effect", "may sleep", &Model::EndUpdate},
    {"controller ->", "Firmware=", &Model::TakeBack},
    {">", "app", &Model::TakeBack},
    {">", "app hang", &Model::LoseFrames},
    {">", "app close", &Model::LoseReceiver},
    {">", "tray", &Model::TakeBack},
    {">", "quit", &Model::TakeBack},
    {">", "close", &Model::TakeBack},
    {">", "update", &Model::TakeBack},
    {">", "end-session", &Model::LoseFrames},
    {">", "send-data 3", &Model::Cancel},
    {"controller ->", "reply", &Model::Answer},
    {"controller ->", "erased", &Model::Answer},
    {"controller ->", "written", &Model::Answer},
    {"controller ->", "row", &Model::Answer},
    {"controller ->", "finish", &Model::Answer},
};

Model::Model(const SwitchValue& switch1, const SwitchValue& switch2) {
  const SwitchValue* const values[kSwitches] = {&switch1, &switch2};
  constexpr Kind kKinds[] = {Kind::kUp, Kind::kDown};
  for (const int pressed : {0, 1}) {
    const Kind kind = kKinds[pressed];
    for (size_t i = 0; i < kButtons; ++i)
      AddSign(Numbers("notify 0xC000", static_cast<int>(i) + 1, pressed), i, kind);
    for (size_t i = 0; i < kSwitches; ++i) {
      AddSign(Numbers("message 0xC000 to Talk Builder 4 Class", static_cast<int>(i) + 1, pressed), i, kind);
      for (const std::string_view receiver : kLetterReceivers)
        AddSign(Numbers("message 0x8064 to " + std::string(receiver), 0, kLetters[i][pressed ? 0 : 1]), i,
                kind);
      AddSign(std::string(values[i]->output) + (pressed ? " down" : " up"), i, kind);
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
  for (const Row& row : kRows)
    if (entry.who == row.who && entry.text.starts_with(row.beginning)) (this->*row.act)();
  if (entry.who == "controller ->") Hear(entry.text);
  if (entry.who == "tool ->") Say(entry.text);
  if (entry.who == "effect") Did(entry.text);
  if (entry.who == ">") Ask(entry.text);
  if (entry.who == ">") Watch(entry.text);
}

std::string Model::Describe(const Awaited& awaited) {
  constexpr std::string_view kWords[] = {"press", "release", "short press", "long press"};
  return std::string(kWords[static_cast<size_t>(awaited.kind)]) + " of " +
         std::string(simulator::kButtonNames[awaited.button].command) + " at " +
         simulator::FormatSeconds(awaited.since);
}

void Model::Complain(std::string what) {
  if (!complaint_) complaint_ = simulator::FormatSeconds(now_) + "  " + std::move(what);
}

// What was asked may be over, or is asked again. The tool may learn that late.
void Model::MayAskAgain() {
  mayAskAgain_ = true;
  mayAskAgainUntil_ = now_ + kBusy;
}

// ---- reasons why something may come to nothing

// What it could not release on a locked screen nobody can any more.
void Model::End() {
  if (!isLocked_) return;
  isHeld_.fill(false);
  heldOutputs_.clear();
}

// It knows nothing of what was before.
void Model::Start() {
  isAsleep_ = isUpdating_ = hasUpdated_ = false;
  isTakenBack_.fill(false);
}

// What was on its way when the line came.
void Model::Open() {
  isOpen_ = true;
  mayAskAgainUntil_ = now_ + kPatience;  // what was asked before is answered late, and asked again
  for (const Awaited& awaited : std::exchange(onTheWay_, {}))
    if (now_ - awaited.since < kFrame) HearButton(awaited.button, awaited.kind == Kind::kDown, true);
}

void Model::LoseFrames() {
  for (Awaited& awaited : awaited_) awaited.isExcused = true;
  for (Line& line : logLines_) line.isExcused = true;
  TakeBack();
}

void Model::TakeBack() {
  lastReason_ = now_;
  for (int& times : mayBeTakenBack_) times = std::max(times, 1);
  for (auto& queue : actions_)
    for (Awaited& awaited : queue) awaited.isExcused = true;
  for (std::optional<Armed>& armed : armed_)
    if (armed) armed->isExcused = true;
}

void Model::Answer() {
  isAwaiting_ = false;
  if (hasUpdated_) TakeBack();  // the bootloader may be there, late
}

// Who took a letter is gone, and holds nothing any more.
void Model::LoseReceiver() {
  for (size_t i = 0; i < kSwitches; ++i)
    if (outputs_[i].starts_with("message")) isHeld_[i] = false;
}

void Model::Close() {
  isOpen_ = false;
  LoseFrames();
  Cancel();
}

void Model::Suspend() {
  isAsleep_ = true;
  TakeBack();
}

void Model::Lock() {
  isLocked_ = true;
  LoseFrames();
  mayBeTakenBack_.fill(2);  // and what Windows kept held once more
}

void Model::Unlock() {
  isLocked_ = false;
  TakeBack();
}

void Model::Show() {
  isShown_ = true;
  LoseFrames();
}

// Its command that was not answered in time is given up, and so is what was not answered before it.
void Model::BeginUpdate() {
  isUpdating_ = hasUpdated_ = true;
  TakeBack();
  MayAskAgain();
  for (Awaited& awaited : awaited_)
    if (awaited.kind == Kind::kDown && awaited.button >= kSwitches) awaited.isExcused = true;
}

void Model::EndUpdate() {
  isUpdating_ = false;
  MayAskAgain();
}

void Model::Cancel() {
  MayAskAgain();
  for (Line& question : questions_) question.isExcused = true;
}

void Model::SpoilDisk() {
  for (Line& line : logLines_) line.isExcused = true;
  Cancel();
}

bool Model::IsCalm() const {
  return isOpen_ && !isAsleep_ && !isLocked_ && !isShown_ && !isUpdating_;
}

// ---- what the controller says

void Model::Hear(std::string_view text) {
  const bool isSpoilt = text.starts_with("bytes") || text.ends_with(')');
  if (isSpoilt) Cancel();  // the third drops what waits, and what was sent
  if (isSpoilt) return;
  if (isOpen_ && text.starts_with("log note")) logLines_.push_back({std::string(text.substr(4)), false});
  for (size_t i = 0; i < kButtons; ++i) {
    const std::string_view name = simulator::kButtonNames[i].wire;
    const bool isPress = text == std::string(name) + "Make";
    if (!isPress && text != std::string(name) + "Break") continue;
    if (isOpen_)
      HearButton(i, isPress, false);
    else
      onTheWay_.push_back({isPress ? Kind::kDown : Kind::kUp, i, true, now_});
  }
}

void Model::HearButton(size_t button, bool isPress, bool isDoubtful) {
  const bool isSwitch = button < kSwitches;
  const bool wasPressed = std::exchange(isPressed_[button], isPress);
  if (isPress) isTakenBack_[button] = false;
  const bool isExcused =
      isDoubtful || (isSwitch ? isShown_ || isLocked_ || !hung_.empty() : isPress && isUpdating_);
  const bool isDone = !isPress && std::exchange(isTakenBack_[button], false) && !isHeld_[button];
  if (!isDone) awaited_.push_back({isPress ? Kind::kDown : Kind::kUp, button, isExcused, now_});
  if (isSwitch) return;
  if (isPress) {
    if (armed_[button] || wasPressed)  // a press without a release before it: time counts from this one
      for (Awaited& awaited : actions_[button]) awaited.isExcused = true;
    if (armed_[button]) actions_[button].push_back({Kind::kLong, button, true, now_});
    armed_[button] = Armed{now_, isDoubtful || isAsleep_ || isUpdating_};
    return;
  }
  if (!armed_[button]) return;
  actions_[button].push_back({Kind::kShort, button, armed_[button]->isExcused || isLocked_, now_});
  armed_[button].reset();
}

void Model::FireTimers() {
  const auto isStale = [this](const Awaited& awaited) {
    return awaited.isExcused && now_ - awaited.since > 3 * kPatience;  // a codec may fail again and again
  };
  std::erase_if(awaited_, isStale);
  for (std::deque<Awaited>& queue : actions_) std::erase_if(queue, isStale);
  for (size_t i = 0; i < kButtons; ++i) {
    if (!armed_[i] || now_ < armed_[i]->since + kLongPress) continue;
    actions_[i].push_back({Kind::kLong, i, armed_[i]->isExcused || isLocked_, now_});
    armed_[i].reset();
  }
}

// ---- what the tool does

void Model::Did(const std::string& text) {
  CountHeld(text);
  const auto sign = signs_.find(text);
  if (sign == signs_.end()) return;
  const size_t button = sign->second.button;
  const Kind kind = sign->second.kind;
  const bool isAction = kind == Kind::kShort || kind == Kind::kLong;
  std::deque<Awaited>& queue = isAction ? actions_[button] : awaited_;
  const auto fits = std::ranges::find_if(queue, [&](const Awaited& awaited) {
    const bool isHere = awaited.kind == kind && awaited.button == button;
    // This took the last press back, and is not the release of the next.
    const bool isNextPress = kind == Kind::kUp && awaited.kind == Kind::kDown && awaited.button == button &&
                             mayBeTakenBack_[button] > 0 && button < kSwitches;
    const bool mayBeMissing =
        !isNextPress && (awaited.isExcused || (awaited.kind == Kind::kUp && !isHeld_[awaited.button]));
    return isHere || !mayBeMissing;
  });
  const bool isAwaited = fits != queue.end() && fits->kind == kind && fits->button == button;
  const bool wasHeld = isHeld_[button];
  if (!isAction) isHeld_[button] = kind == Kind::kDown;
  if (kind == Kind::kDown) {
    mayBeTakenBack_[button] = isAsleep_ || (isAwaited && lastReason_ >= fits->since) ? 1 : 0;
    isTakenBack_[button] = false;
    outputs_[button] = text;
  }
  if (isAwaited) {
    const auto mayBeMeant = [&](const Awaited& awaited) {
      return awaited.kind == kind && awaited.button == button && !awaited.isExcused;
    };
    const auto next = std::find_if(std::next(fits), queue.end(), mayBeMeant);
    if (fits->isExcused && next != queue.end()) next->isExcused = true;
    for (auto passed = queue.begin(); passed != fits; ++passed) {
      passed->isExcused = true;
      if (passed->kind == Kind::kUp) isTakenBack_[passed->button] = false;
    }
    queue.erase(fits);
    return;
  }
  if (kind == Kind::kUp && !hung_.empty()) return;  // of a press that nobody took
  if (kind != Kind::kUp || mayBeTakenBack_[button] == 0)
    return Complain("without a reason, or twice: " + text +
                    (fits == queue.end() ? "" : ", before the " + Describe(*fits)));
  --mayBeTakenBack_[button];
  for (Awaited& awaited : queue)  // it may have been its own release
    if (awaited.button == button && !wasHeld) awaited.isExcused = true;
  isTakenBack_[button] = wasHeld;
}

void Model::CountHeld(const std::string& text) {
  constexpr std::string_view kDown = " down";
  constexpr std::string_view kUp = " up";
  if (text.ends_with(kDown)) heldOutputs_.insert(text.substr(0, text.size() - kDown.size()));
  if (text.ends_with(kUp)) heldOutputs_.erase(text.substr(0, text.size() - kUp.size()));
}

// ---- what other programs ask

void Model::Ask(std::string_view command) {
  if (!command.starts_with("send-data 0 ") && !command.starts_with("send-data 1 ")) return;
  const size_t begin = command.find('"') + 1;
  questions_.push_back({std::string(command.substr(begin, command.find('"', begin) - begin)),
                        !isOpen_ || now_ <= mayAskAgainUntil_});
}

// Who looks at no messages gets no letter of a switch either.
void Model::Watch(std::string_view command) {
  constexpr std::string_view kHang = "app hang ";
  if (command.starts_with(kHang)) hung_.insert(std::string(command.substr(kHang.size())));
  for (const std::string_view act : {"app wake ", "app close "})
    if (command.starts_with(act)) hung_.erase(std::string(command.substr(act.size())));
}

void Model::Say(std::string_view text) {
  if (text == "Resend" || text.starts_with("bytes")) return;
  constexpr std::string_view kAtAnyTime[] = {"Ready", "GotoBootloader", "erase"};  // it begins again; twice
  const auto begins = [text](std::string_view beginning) { return text.starts_with(beginning); };
  const bool isDisturbed = now_ <= mayAskAgainUntil_;
  const bool mayAskAgain = std::exchange(mayAskAgain_, isDisturbed) || isDisturbed;
  if (std::exchange(isAwaiting_, true) && !mayAskAgain && std::ranges::none_of(kAtAnyTime, begins))
    Complain("before the answer to " + said_ + ": " + std::string(text));
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
  if (!IsCalm()) return;
  const auto look = [this](const std::deque<Awaited>& queue) {
    for (const Awaited& awaited : queue)
      if (!awaited.isExcused && now_ - awaited.since > kPatience &&
          (awaited.kind != Kind::kUp || isHeld_[awaited.button]))
        Complain("lost: " + Describe(awaited));
  };
  look(awaited_);
  awaited_.clear();
  for (std::deque<Awaited>& queue : actions_) {
    look(queue);
    queue.clear();
  }
  for (size_t i = 0; i < kSwitches; ++i)
    if (isHeld_[i] && !isPressed_[i])
      Complain("nobody holds it: " + std::string(simulator::kButtonNames[i].command));
  if (!heldOutputs_.empty() && !isHeld_[0] && !isHeld_[1])
    Complain("nobody holds it: " + *heldOutputs_.begin());

  for (const Line& question : questions_)
    if (!question.isExcused && !isAwaiting_) Complain("never sent: " + question.text);
  for (const Line& line : logLines_) {
    const size_t first = log.find(line.text + "\r\n");
    const bool isOnce = first != log.npos && log.find(line.text + "\r\n", first + 1) == log.npos;
    if (!isOnce && !line.isExcused) Complain("not once in the log: " + line.text);
  }
  logLines_.clear();
}

}  // namespace storm
