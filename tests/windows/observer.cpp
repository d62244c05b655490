#include "tests/windows/observer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

namespace windows_test {
namespace {

std::vector<std::string> Split(const std::string& line) {
  std::vector<std::string> words;
  size_t begin = 0;
  for (size_t tab = line.find('\t'); tab != line.npos; begin = tab + 1, tab = line.find('\t', begin))
    words.push_back(line.substr(begin, tab - begin));
  words.push_back(line.substr(begin));
  return words;
}

std::string Join(const std::vector<std::string>& words, char separator) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : std::string(1, separator)) + word;
  return line;
}

std::string HexOf(std::string_view bytes) {
  std::string hex;
  char digits[3];
  for (const char c : bytes) {
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned char>(c));
    hex += digits;
  }
  return hex;
}

bool IsAnswer(const std::vector<std::string>& words) {
  return words[0] == "=" || words[0] == "!";
}

std::string NameOf(Root root) {
  return root == Root::kUser ? "user" : "machine";
}

}  // namespace

Observer::Observer(const Where& where) : process_("observer.exe", {}, where) {
  if (const std::string line = process_.ReadLine(where); line != "ready")
    Fail("the observer: " + line, where);
}

Observer::~Observer() {
  process_.CloseInput();
  const auto limit = std::chrono::steady_clock::now() + kPatience;
  while (process_.IsRunning() && std::chrono::steady_clock::now() < limit)
    std::this_thread::sleep_for(kPollPause);
}

Observer::Words Observer::RunUnchecked(const Words& words, const Where& where) {
  process_.WriteLine(Join(words, '\t'), where);
  for (;;) {
    Words line = Split(process_.ReadLine(where));
    if (IsAnswer(line)) return line;
    std::string event = Join(line, ' ');
    if (ignored_.empty() || !event.starts_with(ignored_)) events_.push_back(std::move(event));
  }
}

Observer::Words Observer::Run(const Words& words, const Where& where) {
  Words answer = RunUnchecked(words, where);
  if (answer[0] == "!") Fail(Join(words, ' ') + ": " + answer.at(1), where);
  answer.erase(answer.begin());
  return answer;
}

void Observer::Expect(std::string_view event, const Where& where) {
  // Every answer comes behind the events before it, so asking anything brings them in.
  WaitUntil(
      std::string(event),
      [&] {
        if (events_.empty()) Run({"find", "nothing"}, where);
        return !events_.empty();
      },
      where);
  const std::string seen = events_.front();
  events_.pop_front();
  if (seen != event) Fail("expected \"" + std::string(event) + "\", saw \"" + seen + "\"", where);
}

void Observer::ExpectNothing(const Where& where) {
  Run({"find", "nothing"}, where);
  if (!events_.empty()) Fail("nothing was to happen, but saw \"" + events_.front() + "\"", where);
}

void Observer::OpenWindow(const std::string& className, const Where& where) {
  Run({"open", className}, where);
}

void Observer::OpenTextField(const std::string& caption, const Where& where) {
  Run({"field", caption}, where);
}

void Observer::ComposeMacro(const std::string& library, const std::string& text, const Where& where) {
  Run({"compose", library, text}, where);
}

void Observer::CloseWindows(const Where& where) {
  Run({"close"}, where);
}

void Observer::HoldMutex(const std::string& name, const Where& where) {
  Run({"hold", name}, where);
}

bool Observer::SeesWindow(const std::string& className, const Where& where) {
  return Run({"find", className}, where)[0] == "yes";
}

int64_t Observer::Handle(const std::string& className, const Where& where) {
  return std::stoll(Run({"handle", className}, where)[0]);
}

void Observer::OpenHungWindow(const std::string& className, const Where& where) {
  Run({"hang", className}, where);
}

int64_t Observer::Send(const std::string& className, uint32_t message, int64_t wParam, int64_t lParam,
                       const Where& where) {
  return std::stoll(
      Run({"send", className, std::to_string(message), std::to_string(wParam), std::to_string(lParam)},
          where)[0]);
}

void Observer::Post(const std::string& className, uint32_t message, int64_t wParam, int64_t lParam,
                    const Where& where) {
  Run({"post", className, std::to_string(message), std::to_string(wParam), std::to_string(lParam)}, where);
}

int64_t Observer::Copy(const std::string& className, uint32_t tag, std::string_view payload,
                       const Where& where) {
  return std::stoll(Run({"copy", className, std::to_string(tag), HexOf(payload)}, where)[0]);
}

int64_t Observer::AnnouncePort(const std::string& className, bool arrived, const std::string& port,
                               const Where& where) {
  return std::stoll(Run({"device", className, arrived ? "arrived" : "removed", port}, where)[0]);
}

std::vector<std::string> Observer::Balloons(const Where& where) {
  return Run({"balloons"}, where);
}

std::map<std::string, std::string> Observer::ReadKey(Root root, const std::string& path, const Where& where) {
  std::map<std::string, std::string> values;
  for (const std::string& word : Run({"list", NameOf(root), path}, where)) {
    const size_t equals = word.find('=');
    if (equals != word.npos) values[word.substr(0, equals)] = word.substr(equals + 1);
  }
  return values;
}

void Observer::SetNumber(Root root, const std::string& path, const std::string& name, int64_t value,
                         const Where& where) {
  Run({"set-number", NameOf(root), path, name, std::to_string(value)}, where);
}

void Observer::SetText(Root root, const std::string& path, const std::string& name, const std::string& text,
                       const Where& where) {
  Run({"set-text", NameOf(root), path, name, text}, where);
}

void Observer::DeleteKey(Root root, const std::string& path, const Where& where) {
  Run({"delete", NameOf(root), path}, where);
}

std::optional<std::string> Observer::ReadResourceText(const std::string& program, int id, int language,
                                                      const Where& where) {
  const Words answer = RunUnchecked({"string", program, std::to_string(id), std::to_string(language)}, where);
  if (answer[0] == "!") return std::nullopt;
  return answer.at(1);
}

}  // namespace windows_test
