// A popup menu keeps its thread's messages and timers going, and tells the choice by a posted message.
#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "tests/pal/contract_menu.h"
#include "tests/pal/test_window.h"

namespace {

using contract::ContractMenu;
using contract::TakeAll;
using contract::TestWindow;

constexpr UINT_PTR kPerson = 7;

// Presses keys one by one, each at a tick of its timer, as somebody would who sees the menu.
class Person {
 public:
  explicit Person(std::vector<WPARAM> keys) : keys_(std::move(keys)) {}

  void Start(HWND window) const { SetTimer(window, kPerson, 100, nullptr); }
  void Tick(HWND window) {
    if (pressed_ == keys_.size()) return;
    PostMessageW(window, WM_KEYDOWN, keys_[pressed_], 1);
    ++pressed_;
  }

 private:
  const std::vector<WPARAM> keys_;
  size_t pressed_ = 0;
};

struct Outcome {
  BOOL result = FALSE;
  std::vector<WPARAM> commandsInside;  // that came while the menu was open
  std::vector<WPARAM> commandsAfter;
  int posted = 0;
};

Outcome Track(std::vector<WPARAM> keys) {
  Outcome outcome;
  Person person(std::move(keys));
  TestWindow window([&](HWND self, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_TIMER && wParam == kPerson) person.Tick(self);
    if (message == WM_COMMAND) outcome.commandsInside.push_back(wParam);
    outcome.posted += message == WM_APP ? 1 : 0;
    return TestWindow::kDefault;
  });
  const ContractMenu menu;
  SetForegroundWindow(window.Get());
  person.Start(window.Get());
  PostMessageW(window.Get(), WM_APP, 0, 0);
  outcome.result =
      TrackPopupMenu(GetSubMenu(menu.Get(), 0), TPM_RIGHTALIGN | TPM_BOTTOMALIGN | TPM_RIGHTBUTTON, 400, 400,
                     0, window.Get(), nullptr);
  KillTimer(window.Get(), kPerson);
  for (const MSG& message : TakeAll(window.Get(), WM_COMMAND, WM_COMMAND))
    outcome.commandsAfter.push_back(message.wParam);
  return outcome;
}

TEST(MenuLoop, TheChoiceIsPosted) {
  struct Case {
    std::vector<WPARAM> keys;
    std::vector<WPARAM> commands;
  };
  const Case cases[] = {
      {{VK_DOWN, VK_RETURN}, {127}},
      {{VK_UP, VK_RETURN}, {128}},
      {{VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN}, {128}},  // past the separator and the inner menu
      {{VK_DOWN, VK_ESCAPE}, {}},
      {{VK_DOWN, VK_DOWN, VK_RETURN, VK_RETURN, VK_ESCAPE, VK_ESCAPE}, {}},  // the inner item is gray
  };
  for (const Case& c : cases) {
    const Outcome outcome = Track(c.keys);
    EXPECT_TRUE(outcome.result) << c.keys.size();
    EXPECT_TRUE(outcome.commandsInside.empty()) << c.keys.size();
    EXPECT_EQ(outcome.commandsAfter, c.commands) << c.keys.size();
    EXPECT_EQ(outcome.posted, 1) << c.keys.size();
  }
}

TEST(MenuLoop, NeedsAMenuAndAWindow) {
  const ContractMenu menu;
  EXPECT_FALSE(TrackPopupMenu(GetSubMenu(menu.Get(), 0), 0, 0, 0, 0, nullptr, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
  const TestWindow window([](HWND, UINT, WPARAM, LPARAM) { return TestWindow::kDefault; });
  EXPECT_FALSE(TrackPopupMenu(nullptr, 0, 0, 0, 0, window.Get(), nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_MENU_HANDLE});
}

}  // namespace
