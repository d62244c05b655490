#include "tests/windows/dialog.h"

#include <algorithm>

namespace windows_test {
namespace {

// Messages of the controls.
constexpr uint32_t kGetCheck = 0x00F0;              // BM_GETCHECK
constexpr uint32_t kSliderPosition = 0x0400;        // TBM_GETPOS
constexpr uint32_t kProgressEnd = 0x0400 + 7;       // PBM_GETRANGE
constexpr uint32_t kProgressPosition = 0x0400 + 8;  // PBM_GETPOS

}  // namespace

// The caption stands behind the command's name.
Observer::Words Dialog::Run(Observer::Words command, const Where& where) {
  command.insert(command.begin() + 1, caption_);
  return observer_.Run(command, where);
}

bool Dialog::IsOpen(const Where& where) {
  return Run({"texts"}, where)[0] == "yes";
}

bool Dialog::IsVisible(const Where& where) {
  return Run({"visible"}, where)[0] == "yes";
}

void Dialog::AwaitOpen(const Where& where) {
  WaitUntil(
      caption_ + " is open", [&] { return IsVisible(where); }, where);
}

void Dialog::AwaitClosed(const Where& where) {
  WaitUntil(
      caption_ + " is closed", [&] { return !IsOpen(where); }, where);
}

bool Dialog::Shows(const std::string& text, const Where& where) {
  const Observer::Words texts = Run({"texts"}, where);
  return std::ranges::find(texts, text) != texts.end();
}

void Dialog::AwaitText(const std::string& text, const Where& where) {
  WaitUntil(
      caption_ + " shows \"" + text + "\"", [&] { return Shows(text, where); }, where);
}

void Dialog::PressButton(const std::string& text, const Where& where) {
  Run({"press", text}, where);
}

void Dialog::PressKey(int key, const Where& where) {
  Run({"key", std::to_string(key)}, where);
}

Dialog::Control Dialog::Look(int id, const Where& where) {
  const Observer::Words control = Run({"control", std::to_string(id)}, where);
  return {control.at(0) == "shown", control.at(1) == "enabled", control.at(2)};
}

std::vector<std::string> Dialog::Entries(int id, const Where& where) {
  return Run({"entries", std::to_string(id)}, where);
}

int64_t Dialog::Ask(int id, uint32_t message, int64_t wParam, int64_t lParam, const Where& where) {
  return std::stoll(Run(
      {"ask", std::to_string(id), std::to_string(message), std::to_string(wParam), std::to_string(lParam)},
      where)[0]);
}

bool Dialog::IsChecked(int id, const Where& where) {
  return Ask(id, kGetCheck, 0, 0, where) != 0;
}

int64_t Dialog::Position(int id, const Where& where) {
  return Ask(id, kSliderPosition, 0, 0, where);
}

std::string Dialog::Progress(int id, const Where& where) {
  const int64_t position = Ask(id, kProgressPosition, 0, 0, where);
  const int64_t end = Ask(id, kProgressEnd, 0, 0, where);
  return std::to_string(position) + " of " + std::to_string(end);
}

void Dialog::Click(int id, const Where& where) {
  Run({"click", std::to_string(id)}, where);
}

void Dialog::DoubleClick(int id, const Where& where) {
  Run({"double-click", std::to_string(id)}, where);
}

void Dialog::Choose(int id, const std::string& entry, const Where& where) {
  Run({"choose", std::to_string(id), entry}, where);
}

void Dialog::Enter(int id, const std::string& text, const Where& where) {
  Run({"enter", std::to_string(id), text}, where);
}

void Dialog::Drag(int id, int position, const Where& where) {
  Run({"drag", std::to_string(id), std::to_string(position)}, where);
}

}  // namespace windows_test
