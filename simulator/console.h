// The tool and everything around it at the command line: one line is one command, for a person at a prompt, a
// demonstration or a scenario. A line that cannot be carried out changes nothing and says what is wrong with
// it.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "simulator/timeline.h"
#include "simulator/world.h"

namespace simulator {

// What was there before the latest firmware update.
struct UpdateRecord {
  std::string file;
  std::vector<uint8_t> flash;
};

class Console {
 public:
  Console(World& world, std::ostream& out);

  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  Problem RunLine(std::string_view line);
  // Runs lines until one fails; the problem then begins with `name` and the line's number.
  Problem RunScript(std::istream& script, std::string_view name);

  [[nodiscard]] bool HasEnded() const { return ended_; }

  // For the commands.
  void End() { ended_ = true; }
  World& TheWorld() { return world_; }
  Timeline& TheTimeline() { return timeline_; }
  std::ostream& Out() { return out_; }
  // When the last command ran that did something.
  [[nodiscard]] Duration LastActionAt() const { return lastActionAt_; }
  // How many requests the controller had before the tool was started last.
  [[nodiscard]] size_t RequestsAtStart() const { return requestsAtStart_; }
  void NoteStart() {
    requestsAtStart_ = world_.Pic().Requests().size();
    hasStarted_ = true;
  }
  [[nodiscard]] bool ToolRuns() { return hasStarted_ && !world_.ExitCode(); }
  UpdateRecord& LastUpdate() { return lastUpdate_; }

 private:
  Problem RunOnly(std::string_view line, Words words);

  World& world_;
  std::ostream& out_;
  Timeline timeline_;
  Duration lastActionAt_{0};
  UpdateRecord lastUpdate_;
  size_t requestsAtStart_ = 0;
  bool hasStarted_ = false;
  bool ended_ = false;
};

struct ConsoleCommand {
  std::string_view name;
  std::string_view arguments;  // as help shows them
  std::string_view help;
  bool acts;  // does something: is printed on the timeline
  // `words` holds the command's name and its arguments. Does nothing when it returns a problem.
  Problem (*run)(Console& console, Words words);
};

// The row of that name among the console's own commands, null when there is none.
const ConsoleCommand* FindConsoleCommand(std::string_view name);

inline constexpr std::string_view kWorldNames[] = {"tablet", "windows"};
inline constexpr std::string_view kUnknownCommand = "unknown command, \"help\" lists them";

// What the first word after the command may be, where it is one of many names: settings, functions, buttons.
// Empty for other commands.
std::vector<std::string_view> NamesFor(Console& console, std::string_view command);
// A problem when the command has such names and this is none of them.
Problem CheckName(Console& console, std::string_view command, std::string_view name);
// What the last word of the line may become; the word may have begun or not.
std::vector<std::string_view> Completions(Console& console, std::string_view line);
std::span<const std::string_view> CheckNames();

// Firmware updates.
Problem RunFirmwareFile(Console& console, Words words);
Problem RunUpdate(Console& console, Words words);
// The controller's flash is as it was before the latest update, but for what the file says.
Problem CheckFlash(Console& console, Words arguments, bool wanted);

// The person at dialogs, message boxes and tray icons.
std::span<const ConsoleCommand> DialogCommands();
// A control or a menu of the front dialog is as the rest of the words say.
Problem CheckControl(Console& console, Words arguments, bool wanted);
// One of the dialogs' texts holds the text, in the front dialog or, with `boxes`, in any message box.
Problem CheckShown(Console& console, Words arguments, bool wanted, bool boxes);

// What scenarios demand; the first words are "expect", "at" and "check".
Problem RunExpect(Console& console, Words words);
Problem RunAt(Console& console, Words words);
Problem RunCheck(Console& console, Words words);
// What is under way has come, as far as that can be told.
void CatchUp(Console& console);
// Tries again while it finds a problem, as long as the world is patient.
Problem Eventually(Console& console, const std::function<Problem()>& attempt);

}  // namespace simulator
