// The test's side of observer.exe: another Windows program on the tool's desktop.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/windows/failure.h"
#include "tests/windows/process.h"

namespace windows_test {

enum class Root { kUser, kMachine };

class Observer {
 public:
  explicit Observer(const Where& where = Where::current());
  ~Observer();

  // ---- what it has seen: "mouse left down", "key 65 up", "switch-input CLASS 1 0", "message CLASS 32868 0 68",
  // "copied CLASS TAG HEX SENDER-CLASS", "command CLASS 127".
  // The next event is this one; waits for it.
  void Expect(std::string_view event, const Where& where = Where::current());
  // No event is left. Says something only after the tool has been made to catch up.
  void ExpectNothing(const Where& where = Where::current());
  void ForgetEvents() { events_.clear(); }
  // From now on events that begin so do not count; empty: all count.
  void Ignore(std::string beginning) { ignored_ = std::move(beginning); }

  // ---- what it does
  // Opens a hidden window of that class until CloseWindows.
  void OpenWindow(const std::string& className, const Where& where = Where::current());
  // A window of that class and caption with a text field that has the keyboard, until CloseWindows.
  void OpenTextField(const std::string& caption, const Where& where = Where::current());
  // Opens the editor of a macro plug-in; at its end comes the event "composed TEXT", or "composed nothing".
  void ComposeMacro(const std::string& library, const std::string& text,
                    const Where& where = Where::current());
  void CloseWindows(const Where& where = Where::current());
  // A named mutex, as a running program of that name holds it, until CloseWindows.
  void HoldMutex(const std::string& name, const Where& where = Where::current());
  bool SeesWindow(const std::string& className, const Where& where = Where::current());
  // The number of its window.
  int64_t Handle(const std::string& className, const Where& where = Where::current());
  // Opens a window whose thread looks at no messages, until CloseWindows.
  void OpenHungWindow(const std::string& className, const Where& where = Where::current());
  int64_t Send(const std::string& className, uint32_t message, int64_t wParam = 0, int64_t lParam = 0,
               const Where& where = Where::current());
  void Post(const std::string& className, uint32_t message, int64_t wParam = 0, int64_t lParam = 0,
            const Where& where = Where::current());
  // Sends copied data and returns the window's result.
  int64_t Copy(const std::string& className, uint32_t tag, std::string_view payload,
               const Where& where = Where::current());
  // Announces a serial port, as Windows does when one comes or goes.
  int64_t AnnouncePort(const std::string& className, bool arrived, const std::string& port,
                       const Where& where = Where::current());
  // The texts of the balloons that are to be seen in the notification area.
  std::vector<std::string> Balloons(const Where& where = Where::current());

  // ---- registry; values read "number:10" or "text:abc"
  std::map<std::string, std::string> ReadKey(Root root, const std::string& path,
                                             const Where& where = Where::current());
  void SetNumber(Root root, const std::string& path, const std::string& name, int64_t value,
                 const Where& where = Where::current());
  void SetText(Root root, const std::string& path, const std::string& name, const std::string& text,
               const Where& where = Where::current());
  void DeleteKey(Root root, const std::string& path, const Where& where = Where::current());

  // A text of a program's resources; empty when there is none in exactly that language.
  std::optional<std::string> ReadResourceText(const std::string& program, int id, int language,
                                              const Where& where = Where::current());

  // ---- what stands behind all of this
  using Words = std::vector<std::string>;
  // Gives a command; returns the words of the answer and fails when the observer could not do it.
  Words Run(const Words& words, const Where& where);
  // Its process has ended, as it does with the Windows session.
  bool HasEnded() { return !process_.IsRunning(); }

 private:
  Words RunUnchecked(const Words& words, const Where& where);

  WineProcess process_;
  std::deque<std::string> events_;
  std::string ignored_;
};

}  // namespace windows_test
