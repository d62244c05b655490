// The simulated tablet as a place for stories, in virtual time.
#pragma once

#include "simulator/tablet.h"
#include "simulator/world.h"

namespace simulator {

class TabletWorld : public World {
 public:
  TabletWorld() = default;

  SimulatedTablet& Tablet() { return tablet_; }

  [[nodiscard]] std::string_view Name() const override { return "tablet"; }
  [[nodiscard]] std::span<const WorldCommand> Commands() const override;
  Controller& Pic() override { return tablet_.Pic(); }
  void OnEntry(std::function<void(TimelineEntry entry, bool noticed)> listener) override;

  [[nodiscard]] Duration Now() override { return tablet_.Machine().clock.Now(); }
  void Wait(Duration span) override { tablet_.Advance(span); }
  bool WaitUntil(const std::function<bool()>& condition, Duration limit) override;
  void Settle() override { tablet_.Advance(Duration(0)); }

  void Start(std::string_view arguments) override;
  [[nodiscard]] std::optional<int> ExitCode() override { return tablet_.Machine().ExitCode(); }
  [[nodiscard]] bool HasMainWindow() override { return tablet_.MainWindow() != nullptr; }
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
  SimulatedTablet tablet_;
};

}  // namespace simulator
