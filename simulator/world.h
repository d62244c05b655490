// Where a story is played: the tool on a tablet, with the controller on its line, and the person and other
// programs around it. The console's commands are written against this alone, so that one story is played on
// the simulated tablet in virtual time and on the real program in a Windows.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/controller.h"
#include "simulator/words.h"
#include "system/numbers.h"

namespace simulator {

// Windows messages and commands that stories send.
inline constexpr uint32_t kCloseMessage = 0x0010;
inline constexpr uint32_t kQueryEndSession = 0x0011;
inline constexpr uint32_t kEndSession = 0x0016;
inline constexpr uint32_t kCommandMessage = 0x0111;
inline constexpr uint32_t kPowerBroadcast = 0x0218;
inline constexpr int64_t kSuspend = 0x04;
inline constexpr int64_t kResumeAutomatic = 0x12;
// Messages that the maker's applications know.
inline constexpr uint32_t kQueryFirmware = veltra::WM_QUERY_PIC_FIRMWARE;
inline constexpr uint32_t kDeviceToolRequest = veltra::kDeviceToolRequest;
inline constexpr uint32_t kDeviceReportRequest = veltra::kDeviceReportRequest;
inline constexpr uint32_t kStatusLedRequest = veltra::kStatusLedRequest;

inline constexpr std::string_view kMainWindow = "VeltraInternal";
inline constexpr std::string_view kDocuments = "C:\\Users\\Public\\Documents\\";
inline constexpr std::string_view kDataFolder = "C:\\Users\\Public\\Documents\\Sarvik5\\";
// Window classes of the maker's applications.
inline constexpr std::string_view kApplications[] = {"Talk Builder", "Lexora", "Talk Builder 4 Class",
                                                     "PageVoice", "Wendle"};

inline constexpr Duration kPatience = std::chrono::seconds(30);

// One line of what happens. `text` is worded alike in all worlds.
struct TimelineEntry {
  Duration at{0};
  std::string who;   // "controller ->", "tool ->", "effect", ">"
  std::string text;  // "Sw1Make", "mouse left down"
  // What expectations compare: with `who` for what crosses the line, alone otherwise.
  [[nodiscard]] std::string Line() const;
};

// A dialog or message box as the person sees it.
struct ControlLook {
  int id = 0;
  std::string kind;  // the window class: "Button", "ComboBox", ...
  std::string text;  // of a drop-down list: what is selected; line ends read as blanks
  bool isShown = false;
  bool isEnabled = false;
  bool isChecked = false;
  int64_t position = 0;  // of a slider or a bar
};
struct DialogLook {
  std::string title;
  bool isBox = false;  // a message box
  std::vector<ControlLook> controls;
};

enum class Root { kUser, kMachine };
enum class TrayIcon { kPower = 1977, kTool = 1978 };
enum class MouseAction { kClick, kDoubleClick, kRightClick };
struct Setting {
  std::string name;
  std::optional<int32_t> number;
};

class World;
// What one world can do beyond the others.
struct WorldCommand {
  std::string_view name;
  std::string_view arguments;  // as help shows them
  std::string_view help;
  // `words` holds the command's name and its arguments. Does nothing when it returns a problem.
  Problem (*run)(World& world, Words words);
};

// Texts are UTF-8, paths those of Windows. What reports a Problem has done nothing.
class World {
 public:
  World() = default;
  virtual ~World() = default;
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  [[nodiscard]] virtual std::string_view Name() const = 0;
  [[nodiscard]] virtual std::span<const WorldCommand> Commands() const { return {}; }
  virtual Controller& Pic() = 0;
  // What the tool does, as it happens; `noticed` by a person at the tablet. Traffic on the line comes from
  // Pic().
  virtual void OnEntry(std::function<void(TimelineEntry entry, bool noticed)> listener) = 0;

  // ---- time
  [[nodiscard]] virtual Duration Now() = 0;
  virtual void Wait(Duration span) = 0;
  // Lets time pass until the condition holds; returns whether it does.
  virtual bool WaitUntil(const std::function<bool()>& condition, Duration limit) = 0;
  // Lets the tool do what it has been told and can do at once.
  virtual void Settle() = 0;
  // Does what is due by itself, where time passes while a person thinks.
  virtual void GoOn() {}
  // How long what is expected may be in coming: nothing where time is virtual.
  [[nodiscard]] virtual Duration Tolerance() const { return Duration(0); }

  // Whether such a line would be seen here; what is not seen is not demanded.
  [[nodiscard]] virtual bool Sees(std::string_view /*line*/) const { return true; }

  // ---- the tool
  virtual void Start(std::string_view arguments) = 0;
  // Empty while it runs, and before its first start.
  [[nodiscard]] virtual std::optional<int> ExitCode() = 0;
  [[nodiscard]] virtual bool HasMainWindow() = 0;
  // What its main window answers; empty without a window or when it does not answer within 30 seconds.
  virtual std::optional<int64_t> Ask(uint32_t message, int64_t wParam, int64_t lParam) = 0;
  virtual bool Post(uint32_t message, int64_t wParam, int64_t lParam) = 0;
  // Copied data from the application of that window class, or from nobody when it is empty.
  virtual std::optional<int64_t> SendData(std::string_view sender, uint64_t tag,
                                          std::string_view payload) = 0;
  // The report of the device as an application gets it.
  virtual std::optional<std::string> AskReport(int64_t selection) = 0;
  // What Windows tells of a port, whether it is true or not.
  virtual std::optional<int64_t> AnnouncePort(bool arrived, std::string_view name) = 0;
  // The controller's own port goes or comes, and Windows tells; or without a word.
  virtual std::optional<int64_t> PlugPort(bool plugged) = 0;
  virtual Problem LosePort(bool lost) = 0;

  // ---- registry and disk
  virtual void SetNumber(Root root, std::string_view name, int64_t value) = 0;
  virtual void SetText(Root root, std::string_view name, std::string_view text) = 0;
  [[nodiscard]] virtual std::vector<Setting> Settings() = 0;
  [[nodiscard]] virtual std::optional<std::string> ReadFile(std::string_view path) = 0;
  virtual void WriteFile(std::string_view path, std::string_view content) = 0;

  // ---- other programs
  // A window of that class.
  virtual void OpenApplication(std::string_view windowClass) = 0;
  virtual bool CloseApplication(std::string_view windowClass) = 0;
  [[nodiscard]] virtual bool IsApplicationOpen(std::string_view windowClass) = 0;
  // It looks at no messages from now on, or does so again.
  virtual Problem HangApplication(std::string_view windowClass, bool hangs) = 0;
  virtual void PlayOtherCopy() = 0;

  // ---- the person
  // The front dialog or message box.
  [[nodiscard]] virtual std::optional<DialogLook> FrontDialog() = 0;
  // All of them, the front one first.
  [[nodiscard]] virtual std::vector<DialogLook> Dialogs() = 0;
  // The entries of a drop-down list in the front dialog: "NAME=VALUE".
  [[nodiscard]] virtual std::vector<std::string> Entries(int id) = 0;
  // These act on controls of the front dialog that are shown and enabled.
  virtual void Press(int id) = 0;
  virtual void DoubleClick(int id) = 0;
  virtual void Choose(int id, std::string_view entry) = 0;
  virtual void Slide(int id, int position) = 0;
  virtual void Type(int id, std::string_view text) = 0;
  virtual Problem PressKey(int virtualKey) = 0;
  virtual Problem CloseDialog() = 0;
  // In the box that asks for a file; empty: cancels it.
  virtual Problem PickFile(std::string_view path) = 0;
  virtual Problem UseTrayIcon(TrayIcon icon, MouseAction action) = 0;
  virtual Problem ChooseMenuItem(std::string_view label) = 0;
};

}  // namespace simulator
