// A storm over the whole tool, in virtual time: storm [--hours N] [--seed N] [--keep FOLDER]
//
// Each seed is a tablet of its own for an hour of storm and calm by turns. What is wrong first ends it: then
// the seed is printed, and a script, shortened as far as it still goes wrong, that the console plays as well.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <span>
#include <sstream>

#include "resources/resource_ids.h"
#include "simulator/console.h"
#include "simulator/joystick.h"
#include "simulator/tablet_world.h"
#include "tests/storm/model.h"
#include "tests/storm/weather.h"

namespace storm {
namespace {

constexpr int kCheckBoxes[] = {
    IDO_FLIGHT_MODE, IDO_WLAN, IDO_BLUETOOTH, IDO_MOBILE_PHONE, IDO_DISABLE_USB_BACK, IDO_DISABLE_USB_BOTTOM};

constexpr Duration kLongestWork = std::chrono::minutes(5);  // with a codec that fails and fails

// A tablet in the storm, and what is wrong on it.
class Story {
 public:
  Story() { console_.TheTimeline().Silence(); }

  // Lines parted by semicolons.
  void Play(const std::string& lines) {
    std::istringstream rest(lines);
    for (std::string line; std::getline(rest, line, ';');)
      if (!Wrong()) PlayLine(line);
  }

  void Calm() {
    Play(std::string(kCalm));
    if (world_.ExitCode()) Play("start -s;wait 20s");
    Repair();
    Play("# at rest;tap sw1;tap sw2;tap esc;tap fn1;tap fn2;wait 16s;# at rest;# calm");
  }

  // What a person sets in the options they still say after the tool has been started again.
  void ChangeOptions(Dice& dice) {
    Play("tray tool double-click");
    for (const simulator::ControlLook& control : Controls()) Play(Change(control, dice));
    Play(
        "# these options;press OK;wait 20s;close;wait 20s;start -s;wait 20s;tray tool double-click;"
        "# the same options");
  }

  [[nodiscard]] const Problem& Wrong() const { return model_.Complaint() ? model_.Complaint() : wrong_; }
  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }
  [[nodiscard]] Duration Now() { return world_.Now(); }
  // The end of the timeline, as comments.
  void PrintLast(std::ostream& out) {
    constexpr size_t kMost = 300;
    constexpr std::string_view kHousekeeping[] = {"i2c",  "timer",    "opened",
                                                  "file", "registry", "serial COM2 "};
    const auto& entries = console_.TheTimeline().Entries();
    for (const TimelineEntry& entry : std::span(entries).last(std::min(kMost, entries.size())))
      if (std::ranges::none_of(kHousekeeping, [&](auto word) { return entry.text.starts_with(word); }))
        out << "# " << simulator::FormatSeconds(entry.at) << "  " << entry.who << "  " << entry.text << "\n";
    out << "# " << Wrong().value_or("not again") << "\n";
  }

 private:
  // The console passes over what begins with #.
  void PlayLine(const std::string& line) {
    lines_.push_back(line);
    if (line == "# leave the dialogs") LeaveDialogs();
    if (line == "# at rest") Rest();
    if (line == "# calm" && !model_.Unrest().empty())
      wrong_ = "no calm comes, " + std::string(model_.Unrest());
    if (line == "# these options") options_ = Options();
    if (line == "# the same options" && Options() != options_)
      wrong_ = "other options: " + Options() + "before " + options_;
    Do(line);
  }

  std::vector<simulator::ControlLook> Controls() {
    const auto dialog = world_.FrontDialog();
    return dialog ? dialog->controls : std::vector<simulator::ControlLook>();
  }

  std::string Change(const simulator::ControlLook& control, Dice& dice) {
    const std::string name = std::to_string(control.id) + " ";
    if (const std::vector<std::string> entries = world_.Entries(control.id); !entries.empty()) {
      const std::string& entry = entries[dice.Below(entries.size())];
      return "choose " + name + "\"" + entry.substr(0, entry.rfind('=')) + "\"";
    }
    if (control.kind == "Edit") return "type " + name + std::to_string(dice.Below(100));
    if (control.kind == "msctls_trackbar32") return "slide " + name + std::to_string(dice.Below(8));
    const bool isCheckBox = std::ranges::find(kCheckBoxes, control.id) != std::end(kCheckBoxes);
    return isCheckBox && dice.Below(2) ? "press " + name : "# leave " + name;
  }

  std::string Options() {
    std::ostringstream said;
    for (const simulator::ControlLook& control : Controls())
      if (control.isShown && control.kind != "Static")
        said << control.id << " " << control.text << " " << control.isChecked << control.position << ", ";
    return said.str();
  }

  void Do(const std::string& line) {
    const Problem problem = console_.RunLine(line);
    const auto& entries = console_.TheTimeline().Entries();
    for (; looked_ < entries.size(); ++looked_) {
      const std::string& text = entries[looked_].text;
      if (!problem || text != line) model_.Take(entries[looked_]);
      if (text == "stays awake") update_ = console_.LastUpdate();
      if (!text.starts_with("dialog \"Firmware\": Firmware was updated successfully.")) continue;
      console_.LastUpdate() = update_;  // another may have been asked for, and refused
      if (const Problem wrong = simulator::CheckFlash(console_, {}, true)) wrong_ = wrong;
    }
  }

  void LeaveDialogs() {
    for (int tries = 40; world_.FrontDialog() && tries > 0; --tries) {
      for (const char* line : {"answer ok", "answer no", "press OK", "key escape"}) Do(line);
      if (world_.FrontDialog() && world_.FrontDialog()->title == "Power meter") Do("close-dialog");
      Do("wait 16s");
    }
    if (world_.FrontDialog()) wrong_ = "a dialog that nobody can leave: " + world_.FrontDialog()->title;
  }

  // A controller whose firmware was lost in an update is given it again.
  void Repair() {
    if (world_.Pic().bootloader.HasFirmware()) return;
    Play(
        "firmware-file repair.hex 0x1800;update repair.hex;wait 60s;# leave the dialogs;controller-power off;"
        "controller-power on;wait 16s");
    if (!world_.Pic().bootloader.HasFirmware()) wrong_ = "a second update does not repair the controller";
    if (world_.ExitCode()) Play("start -s;wait 20s");
  }

  // Once the tool watches the battery, and has read what it was sent.
  void Rest() {
    const pal::Machine& machine = world_.Tablet().Machine();
    const auto waits = [&] { return machine.CountOpen("timer") > 0 && machine.QueuedMessages() == 0; };
    const bool isAtWork = model_.Unrest().empty() && !world_.WaitUntil(waits, kLongestWork);
    Do("");
    if (isAtWork && model_.Unrest().empty()) wrong_ = "it works and works";
    const auto file = [this](std::string_view name) {
      return world_.ReadFile(std::string(simulator::kDataFolder) + std::string(name)).value_or("");
    };
    model_.Rest(file("DevLog_pt2.txt") + file("DevLog.txt"));
    if (!model_.Unrest().empty() || world_.FrontDialog()) return;
    if (simulator::TheJoystick().pressed != 0) wrong_ = "a joystick button is held";
    const std::string held = world_.Tablet().Holdings();
    if (heldAtFirst_.empty()) heldAtFirst_ = held;
    if (held != heldAtFirst_ && !Wrong()) wrong_ = "left over: " + held + ", at first " + heldAtFirst_;
  }

  simulator::TabletWorld world_;
  std::ostringstream out_;
  simulator::Console console_{world_, out_};
  Model model_;
  Problem wrong_;
  simulator::UpdateRecord update_;  // the one that runs
  std::vector<std::string> lines_;
  std::string heldAtFirst_;
  std::string options_;
  size_t looked_ = 0;
};

Problem PlayLines(const std::vector<std::string>& lines) {
  Story story;
  for (const std::string& line : lines) story.Play(line);
  return story.Wrong();
}

// What is wrong, without its time and its names.
std::string KindOf(const Problem& problem) {
  if (!problem) return {};
  const size_t begin = problem->find("  ") + 1;
  return problem->substr(begin, problem->find(':', begin) - begin);
}

// Leaves out pieces, ever smaller ones, as long as the same is wrong without them.
std::vector<std::string> Shorten(std::vector<std::string> lines) {
  const std::string kind = KindOf(PlayLines(lines));
  for (size_t piece = lines.size() / 2; piece > 0; piece /= 2)
    for (size_t at = 0; at < lines.size();) {
      std::vector<std::string> fewer(lines);
      const auto begin = fewer.begin() + static_cast<std::ptrdiff_t>(at);
      fewer.erase(begin, begin + static_cast<std::ptrdiff_t>(std::min(piece, lines.size() - at)));
      if (KindOf(PlayLines(fewer)) == kind)
        lines = std::move(fewer);
      else
        at += piece;
    }
  return lines;
}

void Report(const std::vector<std::string>& lines, const std::string& name) {
  std::ofstream script(name);
  Story story;
  for (const std::string& line : lines) {
    story.Play(line);
    script << line << "\n";
  }
  story.PrintLast(script);
  std::cout << "  shortened to " << lines.size() << " lines: " << story.Wrong().value_or("not again")
            << "\n  " << name << "\n";
}

// An hour, or until something is wrong.
Problem PlayHour(uint64_t seed, std::vector<std::string>& lines) {
  constexpr auto kEnd = std::chrono::hours(1);
  constexpr int kActsBetweenCalms = 60;
  Dice dice(seed);
  Story story;
  story.Play(SetUp(dice));
  while (!story.Wrong() && story.Now() < kEnd) {
    for (int i = 0; i < kActsBetweenCalms; ++i) story.Play(Gust(dice));
    story.Calm();
  }
  story.ChangeOptions(dice);
  lines = story.Lines();
  return story.Wrong();
}

bool PlaySeed(uint64_t seed, const std::string& folder) {
  std::vector<std::string> lines;
  const Problem problem = PlayHour(seed, lines);
  if (!problem) return true;
  std::cout << "seed " << seed << " after " << lines.size() << " lines: " << *problem << std::endl;
  Report(Shorten(std::move(lines)), folder + "/storm_" + std::to_string(seed) + ".scenario");
  return false;
}

}  // namespace
}  // namespace storm

int main(int count, char** arguments) {
  uint64_t hours = 20;
  uint64_t seed = 1;
  std::string folder = ".";
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string name = arguments[i];
    if (name == "--hours") hours = std::strtoull(arguments[i + 1], nullptr, 10);
    if (name == "--seed") seed = std::strtoull(arguments[i + 1], nullptr, 10);
    if (name == "--keep") folder = arguments[i + 1];
  }
  uint64_t broken = 0;
  for (uint64_t i = 0; i < hours; ++i) broken += storm::PlaySeed(seed + i, folder) ? 0 : 1;
  std::cout << hours << " hours of storm, " << broken << " of them with something wrong\n";
  return broken == 0 ? 0 : 1;
}
