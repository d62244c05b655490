// What the person sees of a program in the notification area and in its menus, and what they do there.
#include <gtest/gtest.h>
#include <shellapi.h>

#include <deque>

#include "pal/machine.h"
#include "tests/pal/contract_ids.h"
#include "tests/pal/contract_menu.h"
#include "tests/pal/test_window.h"

namespace {

using namespace std::chrono_literals;
using contract::ContractMenu;
using contract::TestWindow;
using pal::Machine;
using pal::Select;

constexpr UINT kIcon = 1977;
constexpr UINT kCallback = WM_USER;

BOOL Notify(DWORD message, HWND window, UINT fields, HICON picture = nullptr,
            const WCHAR* tooltip = TEXT("")) {
  NOTIFYICONDATAW data = {};
  data.cbSize = sizeof(data);
  data.hWnd = window;
  data.uID = kIcon;
  data.uFlags = fields;
  data.uCallbackMessage = kCallback;
  data.hIcon = picture;
  data.dwInfoFlags = NIIF_WARNING;
  data.uTimeout = 10000;
  std::u16string(tooltip).copy(data.szTip, 127);
  std::u16string(u"Low.").copy(data.szInfo, 255);
  std::u16string(u"Model").copy(data.szInfoTitle, 63);
  return Shell_NotifyIconW(message, &data);
}

// A program with one window, whose messages are noted; it acts on the messages that tests post.
class ShellTest : public testing::Test {
 protected:
  using Action = std::function<void(HWND)>;
  static constexpr UINT kAct = WM_APP;

  void SetUp() override {
    machine.LoadResources(VELTRA_RESOURCES);
    machine.StartProgram([this] {
      const TestWindow window([this](HWND self, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == kAct) actions_[wParam](self);
        if (message == kCallback) mouse.push_back(static_cast<UINT>(lParam));
        if (message == WM_COMMAND) commands.push_back(wParam);
        if (message == created_) ++taskbars;
        return TestWindow::kDefault;
      });
      created_ = RegisterWindowMessageW(TEXT("TaskbarCreated"));
      window_ = window.Get();
      contract::RunMessagesUntil([] { return false; });
      return 0;
    });
    machine.Advance(0s);
  }
  // The program ends while everything that it uses is still there.
  void TearDown() override { machine_.reset(); }

  // The program does it, or begins to.
  void Act(Action action) {
    actions_.push_back(std::move(action));
    machine.Post(window_, kAct, actions_.size() - 1, 0);
    machine.Advance(0s);
  }
  void AddIcon() {
    Act([](HWND window) {
      const HICON picture = static_cast<HICON>(LoadImageW(
          GetModuleHandleW(nullptr), MAKEINTRESOURCEW(CONTRACT_ICON), IMAGE_ICON, 16, 16, LR_DEFAULTCOLOR));
      Notify(NIM_ADD, window, NIF_MESSAGE | NIF_ICON | NIF_TIP, picture, TEXT("Model"));
      DestroyIcon(picture);
    });
  }
  void OpenMenu() {
    Act([](HWND window) {
      const ContractMenu menu;
      const HMENU popup = GetSubMenu(menu.Get(), 0);
      SetMenuDefaultItem(popup, 0, TRUE);
      POINT place = {};
      GetCursorPos(&place);
      TrackPopupMenu(popup, TPM_RIGHTALIGN | TPM_BOTTOMALIGN, place.x, place.y, 0, window, nullptr);
    });
  }

  std::optional<Machine> machine_{std::in_place};
  Machine& machine = *machine_;
  std::vector<UINT> mouse;
  std::vector<WPARAM> commands;
  int taskbars = 0;

 private:
  HWND window_ = nullptr;
  UINT created_ = 0;
  std::deque<Action> actions_;
};

TEST_F(ShellTest, AnIconIsSeenWithWhatItWasTold) {
  AddIcon();
  ASSERT_TRUE(machine.FindTrayIcon(kIcon));
  EXPECT_EQ(machine.FindTrayIcon(kIcon)->picture, CONTRACT_ICON);
  EXPECT_EQ(machine.FindTrayIcon(kIcon)->tooltip, u"Model");
  EXPECT_EQ(machine.CountOpen("icon"), 0);  // the shell has a copy

  Act([](HWND window) { Notify(NIM_MODIFY, window, NIF_INFO); });
  Act([](HWND window) { Notify(NIM_MODIFY, window, NIF_ICON | NIF_TIP, nullptr, TEXT("65% remaining")); });
  EXPECT_EQ(machine.FindTrayIcon(kIcon)->picture, 0);
  EXPECT_EQ(machine.FindTrayIcon(kIcon)->tooltip, u"65% remaining");
  Act([](HWND window) { Notify(NIM_DELETE, window, 0); });
  EXPECT_TRUE(machine.TrayIcons().empty());

  std::vector<std::string> seen;
  for (const pal::Effect& effect : machine.Effects())
    if (std::holds_alternative<pal::TrayChange>(effect.detail)) seen.push_back(Describe(effect));
  EXPECT_EQ(seen, (std::vector<std::string>{
                      "tray 1977 added picture 170 tooltip \"Model\"", "tray 1977 balloon \"Model\": Low.",
                      "tray 1977 picture 0 tooltip \"65% remaining\"", "tray 1977 removed"}));
  const pal::TrayBalloon balloon = *Select<pal::TrayChange>(machine.Effects())[1].balloon;
  EXPECT_EQ(balloon.flags, NIIF_WARNING);
  EXPECT_EQ(balloon.timeoutMs, 10000U);
}

TEST_F(ShellTest, WithoutAShellThereIsNoPlaceForIcons) {
  machine.StopShell();
  BOOL added = TRUE;
  Act([&](HWND window) { added = Notify(NIM_ADD, window, NIF_MESSAGE); });
  EXPECT_FALSE(added);
  machine.StartShell();
  machine.Advance(0s);
  EXPECT_EQ(taskbars, 1);
  AddIcon();
  machine.RestartShell();
  machine.Advance(0s);
  EXPECT_EQ(taskbars, 2);
  EXPECT_FALSE(machine.FindTrayIcon(kIcon));
}

TEST_F(ShellTest, TheMouseIsReportedAsToEarlyPrograms) {
  EXPECT_FALSE(machine.ClickTrayIcon(kIcon));
  AddIcon();
  EXPECT_TRUE(machine.DoubleClickTrayIcon(kIcon));
  machine.Advance(0s);
  EXPECT_EQ(mouse,
            (std::vector<UINT>{WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP}));
  mouse.clear();
  EXPECT_TRUE(machine.RightClickTrayIcon(kIcon));
  machine.Advance(0s);
  EXPECT_EQ(mouse, (std::vector<UINT>{WM_MOUSEMOVE, WM_RBUTTONDOWN, WM_RBUTTONUP}));
}

TEST_F(ShellTest, ThePersonSeesTheMenuAndChooses) {
  EXPECT_FALSE(machine.ChooseMenuCommand(127));
  AddIcon();
  machine.RightClickTrayIcon(kIcon);
  OpenMenu();
  ASSERT_TRUE(machine.OpenMenu());
  const pal::MenuShown shown = Select<pal::MenuShown>(machine.Effects()).at(0);
  EXPECT_EQ(pal::Describe({0us, shown}),
            "menu First (default) | - | Inner > [D\xC3\xA9ja (checked) (gray)] | Last");
  EXPECT_EQ(shown.flags, TPM_RIGHTALIGN | TPM_BOTTOMALIGN);
  EXPECT_EQ(shown.x, 1000);  // where the icon is
  EXPECT_EQ(shown.y, 756);

  EXPECT_FALSE(machine.ChooseMenuItem(u"Inner"));      // opens a menu
  EXPECT_FALSE(machine.ChooseMenuItem(u"D\u00e9ja"));  // gray
  EXPECT_FALSE(machine.ChooseMenuItem(u"No such item"));
  machine.Advance(5s);
  EXPECT_TRUE(machine.OpenMenu());
  EXPECT_TRUE(machine.ChooseMenuItem(u"first"));
  machine.Advance(0s);
  EXPECT_FALSE(machine.OpenMenu());
  EXPECT_EQ(commands, (std::vector<WPARAM>{127}));

  OpenMenu();
  EXPECT_TRUE(machine.ChooseMenuCommand(128));
  machine.Advance(0s);
  OpenMenu();
  EXPECT_TRUE(machine.DismissMenu());
  machine.Advance(0s);
  EXPECT_EQ(commands, (std::vector<WPARAM>{127, 128}));
  EXPECT_EQ(machine.CountOpen("menu"), 0);
  std::vector<uint32_t> chosen;
  for (const auto& choice : Select<pal::MenuChosen>(machine.Effects())) chosen.push_back(choice.command);
  EXPECT_EQ(chosen, (std::vector<uint32_t>{127, 128, 0}));
}

TEST_F(ShellTest, AMenuGoesWithTheEndOfTheSession) {
  OpenMenu();
  EXPECT_EQ(machine.CountOpen("menu"), 3);
  Act([](HWND) { PostQuitMessage(0); });
  EXPECT_FALSE(machine.OpenMenu());
  EXPECT_TRUE(machine.ExitCode().has_value());
  EXPECT_TRUE(commands.empty());
}

TEST_F(ShellTest, ABoxInFrontOfAMenu) {
  OpenMenu();
  Act([](HWND window) { MessageBoxW(window, TEXT("text"), TEXT("caption"), MB_OK); });
  EXPECT_TRUE(machine.ChooseMenuItem(u"Last"));
  machine.Advance(1s);
  EXPECT_TRUE(commands.empty());  // the menu's loop waits for the box
  machine.AnswerMessageBox(IDOK);
  machine.Advance(0s);
  EXPECT_EQ(commands, (std::vector<WPARAM>{128}));
}

}  // namespace
