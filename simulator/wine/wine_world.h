// The real program in a Windows of its own as a place for stories, in wall time: the controller on its line,
// another program of the desktop that sees and does what a person and other programs would, and libraries
// that keep a record of what the board, the joystick, the mouse filter and the playback device are told.
#pragma once

#include <filesystem>
#include <fstream>
#include <memory>

#include "simulator/wine/controller_line.h"
#include "simulator/wine/process.h"
#include "simulator/world.h"

namespace simulator {

class WineWorld : public World {
 public:
  // A new tablet: no settings, no files of the tool.
  WineWorld();

  // What the observer answers to a command; the Problem of one that it cannot carry out is thrown by Run.
  std::string Run(const std::vector<std::string>& words);
  Problem TryRun(const std::vector<std::string>& words, std::string* answer = nullptr);
  // Beside the tool, until this world ends.
  void StartProgram(const std::string& name, const std::vector<std::string>& arguments);
  [[nodiscard]] size_t ToolThreadCount() const { return tool_->ThreadCount(); }

  [[nodiscard]] std::string_view Name() const override { return "windows"; }
  [[nodiscard]] std::span<const WorldCommand> Commands() const override;
  Controller& Pic() override { return line_.Pic(); }
  void OnEntry(std::function<void(TimelineEntry, bool)> listener) override;

  [[nodiscard]] Duration Now() override { return line_.Now(); }
  void Wait(Duration span) override;
  bool WaitUntil(const std::function<bool()>& condition, Duration limit) override;
  void Settle() override;
  void GoOn() override { Turn(); }
  [[nodiscard]] Duration Tolerance() const override { return std::chrono::seconds(10); }

  [[nodiscard]] bool Sees(std::string_view line) const override;

  void Start(std::string_view arguments) override;
  [[nodiscard]] std::optional<int> ExitCode() override;
  [[nodiscard]] bool HasMainWindow() override;
  std::optional<int64_t> Ask(uint32_t message, int64_t wParam, int64_t lParam) override;
  bool Post(uint32_t message, int64_t wParam, int64_t lParam) override;
  std::optional<int64_t> SendData(std::string_view sender, uint64_t tag, std::string_view payload) override;
  std::optional<std::string> AskReport(int64_t selection) override;
  std::optional<int64_t> AnnouncePort(bool arrived, std::string_view name) override;
  std::optional<int64_t> PlugPort(bool plugged) override;
  Problem LosePort(bool lost) override;

  void SetNumber(Root root, std::string_view name, int64_t value) override;
  void SetText(Root root, std::string_view name, std::string_view text) override;
  [[nodiscard]] std::vector<Setting> Settings() override;
  [[nodiscard]] std::optional<std::string> ReadFile(std::string_view path) override;
  void WriteFile(std::string_view path, std::string_view content) override;

  void OpenApplication(std::string_view windowClass) override;
  bool CloseApplication(std::string_view windowClass) override;
  [[nodiscard]] bool IsApplicationOpen(std::string_view windowClass) override;
  Problem HangApplication(std::string_view windowClass, bool hangs) override;
  void PlayOtherCopy() override;

  [[nodiscard]] std::optional<DialogLook> FrontDialog() override;
  [[nodiscard]] std::vector<DialogLook> Dialogs() override;
  [[nodiscard]] std::vector<std::string> Entries(int id) override;
  void Press(int id) override;
  void DoubleClick(int id) override;
  void Choose(int id, std::string_view entry) override;
  void Slide(int id, int position) override;
  void Type(int id, std::string_view text) override;
  Problem PressKey(int virtualKey) override;
  Problem CloseDialog() override;
  Problem PickFile(std::string_view path) override;
  Problem UseTrayIcon(TrayIcon icon, MouseAction action) override;
  Problem ChooseMenuItem(std::string_view label) override;

 private:
  std::optional<int64_t> AskNumber(const std::vector<std::string>& words);
  // Looks once at everything that may have happened.
  void Turn();
  void TakeObserverLines();
  void TakeDeviceCalls();
  void WatchTool();
  void Happened(std::string_view who, std::string text);

  ControllerLine line_;
  std::unique_ptr<WineProcess> observer_;
  std::unique_ptr<WineProcess> tool_;
  std::vector<std::unique_ptr<WineProcess>> others_;
  std::ifstream deviceLog_;
  std::string deviceCall_;  // the beginning of the next one
  std::optional<std::string> answer_;
  std::function<void(TimelineEntry, bool)> listener_;
  bool wasOpen_ = false;
  bool hasEnded_ = true;  // the end of the tool has been told
  bool otherCopyHangs_ = false;
  bool sessionEnded_ = false;
};

}  // namespace simulator
