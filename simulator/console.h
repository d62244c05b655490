// The simulated tablet at the command line: one line is one command, for a person at a prompt, a
// demonstration or a scenario. A line that cannot be carried out changes nothing and says what is wrong with
// it.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "simulator/tablet.h"
#include "simulator/timeline.h"
#include "simulator/words.h"

namespace simulator {

// What was there before the latest firmware update.
struct UpdateRecord {
  std::u16string file;
  std::vector<uint8_t> flash;
};

class Console {
 public:
  explicit Console(std::ostream& out);

  Problem RunLine(std::string_view line);
  // Runs lines until one fails; the problem then begins with `name` and the line's number.
  Problem RunScript(std::istream& script, std::string_view name);

  [[nodiscard]] bool HasEnded() const { return ended_; }

  // For the commands.
  void End() { ended_ = true; }
  SimulatedTablet& Tablet() { return tablet_; }
  Timeline& TheTimeline() { return timeline_; }
  std::ostream& Out() { return out_; }
  // When the last command ran that did something to the tablet.
  [[nodiscard]] Duration LastActionAt() const { return lastActionAt_; }
  UpdateRecord& LastUpdate() { return lastUpdate_; }

 private:
  std::ostream& out_;
  Timeline timeline_;
  SimulatedTablet tablet_;
  Duration lastActionAt_{0};
  UpdateRecord lastUpdate_;
  bool ended_ = false;
};

struct ConsoleCommand {
  std::string_view name;
  std::string_view arguments;  // as help shows them
  std::string_view help;
  bool acts;  // does something to the tablet: is printed on the timeline
  // `words` holds the command's name and its arguments. Does nothing when it returns a problem.
  Problem (*run)(Console& console, Words words);
};

// The row of that name among the console's own commands, null when there is none.
const ConsoleCommand* FindConsoleCommand(std::string_view name);

// Firmware updates.
Problem RunFirmwareFile(Console& console, Words words);
Problem RunUpdate(Console& console, Words words);
// The controller's flash is as it was before the latest update, but for what the file says.
Problem CheckFlash(Console& console, Words arguments, bool wanted);

// What scenarios demand; the first words are "expect", "at" and "check".
Problem RunExpect(Console& console, Words words);
Problem RunAt(Console& console, Words words);
Problem RunCheck(Console& console, Words words);

}  // namespace simulator
