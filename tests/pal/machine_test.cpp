// The machine behind the API, as far as no test of the tool sees it: the order of things, the end of a
// program, what the person and other programs can do, and misuse.
#include <commctrl.h>
#include <commdlg.h>
#include <endpointvolume.h>
#include <gtest/gtest.h>
#include <mmdeviceapi.h>

#include <algorithm>
#include <optional>

#include "pal/machine/machine.h"
#include "pal/machine/person.h"
#include "tests/pal/contract_ids.h"
#include "tests/pal/contract_menu.h"
#include "tests/pal/test_dialog.h"
#include "tests/pal/test_window.h"

namespace {

using namespace std::chrono_literals;
using contract::TestWindow;
using pal::Machine;
using pal::Select;
using Log = std::vector<std::string>;

HANDLE OpenPort() {
  return CreateFileW(TEXT("\\\\.\\COM2"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                     FILE_FLAG_OVERLAPPED, nullptr);
}

// A thread of the program; the action lives as long as the test.
HANDLE StartThread(std::function<void()>& action) {
  return CreateThread(
      nullptr, 0,
      [](void* parameter) -> DWORD {
        (*static_cast<std::function<void()>*>(parameter))();
        return 0;
      },
      &action, 0, nullptr);
}

TestWindow::Answer Ignore(HWND, UINT, WPARAM, LPARAM) {
  return TestWindow::kDefault;
}

class MachineTest : public testing::Test {
 protected:
  // The program ends while everything that it uses is still there.
  void TearDown() override { machine_.reset(); }
  // Runs it as a program, for that long.
  void Run(const std::function<void()>& program, pal::Time time = 1s) {
    machine.StartProgram([program] {
      program();
      return 0;
    });
    machine.clock.Advance(time);
  }
  // A program that is one dialog.
  void OpenDialog(const std::function<void(HWND, UINT, WPARAM)>& look) {
    Run(
        [look] {
          contract::TestDialog dialog([&](HWND window, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
            look(window, message, wParam);
            return message == WM_INITDIALOG;
          });
          dialog.Run();
        },
        1ms);
  }

  std::optional<Machine> machine_{std::in_place};
  Machine& machine = *machine_;
};

// ---- time ---------------------------------------------------------------------------------------------------

TEST_F(MachineTest, AtOneTimeEventsComeFirstAndTheMainThreadLast) {
  Log log;
  std::function<void()> helper = [&] {
    Sleep(1000);
    log.emplace_back("helper");
  };
  machine.clock.At(1s, [&] { log.emplace_back("event"); });
  machine.clock.At(1s, [&] {
    log.emplace_back("second event");
    machine.clock.At(1s, [&] { log.emplace_back("its consequence"); });
  });
  Run([&] {
    StartThread(helper);
    Sleep(1000);
    log.emplace_back("main");
  });
  log.emplace_back("outside");
  EXPECT_EQ(log, (Log{"event", "second event", "its consequence", "helper", "main", "outside"}));
}

TEST_F(MachineTest, LocalTimeFollowsTheClock) {
  SYSTEMTIME first{};
  SYSTEMTIME second{};
  machine.clock.localTimeAtStart = {2025, 2, 0, 28, 23, 59, 59, 900};
  Run([&] {
    GetLocalTime(&first);
    Sleep(250);
    GetLocalTime(&second);
  });
  EXPECT_EQ(first.wDayOfWeek, 5);  // a Friday
  EXPECT_EQ(second.wMonth * 100 + second.wDay, 301);
  EXPECT_EQ(second.wHour, 0);
  EXPECT_EQ(second.wMilliseconds, 150);
}

// Threads that meet at the same moments meet in the same order every time.
TEST(MachineRuns, AreTheSameEveryTime) {
  const auto run = [] {
    Machine machine;
    std::vector<std::function<void()>> workers(4);
    for (size_t i = 0; i < workers.size(); ++i)
      workers[i] = [i] {
        for (DWORD round = 0; round < 50; ++round) {
          const char16_t text[] = {static_cast<char16_t>(u'a' + i), 0};
          OutputDebugStringW(text);
          Sleep(round % (static_cast<DWORD>(i) + 2));
        }
      };
    machine.StartProgram([&] {
      for (std::function<void()>& worker : workers) StartThread(worker);
      Sleep(1000);
      return 0;
    });
    machine.clock.Advance(10s);
    Log log;
    for (const pal::Effect& effect : machine.Effects()) log.push_back(ToJson(effect));
    return log;
  };
  const Log first = run();
  EXPECT_EQ(first.size(), 202u);
  for (int i = 0; i < 20; ++i) ASSERT_EQ(run(), first);
}

// ---- the end of a program -----------------------------------------------------------------------------------

TEST(MachineEnd, BringsEveryWaitBack) {
  Log returned;
  const auto note = [&](const char* what, bool asExpected) {
    returned.push_back(std::string(what) + (asExpected ? "" : " wrongly"));
  };
  HWND mainWindow = nullptr;
  std::vector<std::function<void()>> waiting;
  {
    Machine machine;
    machine.serial.Add(2);
    waiting = {
        [&] {
          Sleep(INFINITE);
          note("sleep", true);
        },
        [&] { note("box", MessageBoxW(nullptr, TEXT("?"), TEXT("?"), MB_YESNO) == IDCANCEL); },
        [&] {
          const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
          note("event", WaitForSingleObject(event, INFINITE) == WAIT_FAILED);
        },
        [&] {
          const HANDLE port = OpenPort();
          SetCommMask(port, EV_RXCHAR);
          DWORD events = 0;
          note("port", WaitCommEvent(port, &events, nullptr) == FALSE);
        },
        [&] { note("send", SendMessageW(mainWindow, WM_APP, 0, 0) == 0); },
        [&] {
          MSG message;
          note("messages", GetMessageW(&message, nullptr, 0, 0) == 0 && message.message == WM_QUIT);
        },
    };
    machine.StartProgram([&] {
      const TestWindow window(Ignore);
      mainWindow = window.Get();
      for (std::function<void()>& action : waiting) StartThread(action);
      Sleep(INFINITE);
      note("main", true);
      return 0;
    });
    machine.clock.Advance(1s);
    EXPECT_EQ(machine.CountOpen("thread"), 6);
    EXPECT_TRUE(returned.empty());
  }
  std::sort(returned.begin(), returned.end());
  EXPECT_EQ(returned, (Log{"box", "event", "main", "messages", "port", "send", "sleep"}));
}

TEST_F(MachineTest, AProgramThatReturnsTakesItsThreadsAndHandlesWithIt) {
  constexpr const char* kKinds[] = {"thread", "window", "timer",         "event",     "mutex",
                                    "serial", "file",   "thread handle", "com object"};
  machine.serial.Add(2);
  machine.disk.Write(u"C:\\held.txt", "x");
  std::function<void()> helper = [&] {
    const HANDLE port = OpenPort();
    SetCommMask(port, EV_RXCHAR);
    DWORD events = 0;
    while (WaitCommEvent(port, &events, nullptr)) continue;
  };
  bool windowFound = true;
  DWORD mutexError = 99;
  HANDLE file = nullptr;
  std::optional<TestWindow> window;  // the program leaves it open
  const auto open = [&] {
    windowFound = FindWindowW(TEXT("MachineTest"), nullptr) != nullptr;
    CreateMutexW(nullptr, TRUE, TEXT("held"));
    mutexError = GetLastError();
    file = CreateFileW(TEXT("C:\\held.txt"), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  };
  Run(
      [&] {
        open();
        window.emplace(Ignore, TEXT("MachineTest"));
        SetTimer(FindWindowW(TEXT("MachineTest"), nullptr), 1, 1000, nullptr);
        CreateEventW(nullptr, TRUE, FALSE, nullptr);
        StartThread(helper);
        CoInitialize(nullptr);
        void* forgotten = nullptr;
        constexpr CLSID kClass = {
            0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
        constexpr IID kEnumerator = {
            0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};
        CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, kEnumerator, &forgotten);
        Sleep(500);
      },
      100ms);
  for (const char* kind : kKinds) EXPECT_EQ(machine.CountOpen(kind), 1) << kind;
  machine.clock.Advance(400ms);
  for (const char* kind : kKinds) EXPECT_EQ(machine.CountOpen(kind), 0) << kind;
  EXPECT_EQ(Select<pal::ProgramEnded>(machine.Effects()).size(), 1u);
  Run(open);  // another program finds nothing of the first
  EXPECT_FALSE(windowFound);
  EXPECT_EQ(mutexError, 0u);
  EXPECT_NE(file, INVALID_HANDLE_VALUE);
}

TEST(MachineDisk, GoesWithTheMachine) {
  std::filesystem::path root;
  {
    const Machine machine;
    root = machine.disk.HostPath(u"C:\\");
    EXPECT_TRUE(std::filesystem::exists(root));
  }
  EXPECT_FALSE(std::filesystem::exists(root.parent_path()));
}

// ---- other programs and the person --------------------------------------------------------------------------

TEST_F(MachineTest, AnotherProgramAnswers) {
  machine.desktop.AddForeignWindow(u"Talk Builder", [](const pal::ForeignMessage& message) {
    return static_cast<LRESULT>(message.wParam + 1);
  });
  LRESULT answer = 0;
  Run([&] { answer = SendMessageW(FindWindowW(TEXT("talk builder"), nullptr), WM_APP, 32, 2); });
  EXPECT_EQ(answer, 33);
  const pal::ForeignMessageSent sent = {u"Talk Builder", WM_APP, 32, 2, 0, {}};
  EXPECT_EQ(Select<pal::ForeignMessageSent>(machine.Effects()).at(0), sent);
}

TEST_F(MachineTest, ThePersonAnswersTheInnermostBox) {
  std::vector<int> answers;
  Run([&] {
    const TestWindow window([&](HWND self, UINT message, WPARAM, LPARAM) {
      if (message == WM_APP) answers.push_back(MessageBoxW(self, TEXT("inner"), TEXT("c"), MB_YESNO));
      return TestWindow::kDefault;
    });
    PostMessageW(window.Get(), WM_APP, 0, 0);
    answers.push_back(MessageBoxW(nullptr, TEXT("outer"), nullptr, MB_YESNO | MB_ICONINFORMATION));
  });
  ASSERT_EQ(machine.boxes.Shown().size(), 2u);
  EXPECT_EQ(machine.boxes.Shown()[0].caption, u"Error");
  machine.boxes.Answer(IDYES);
  machine.clock.Advance(0s);
  machine.boxes.Answer(IDNO);
  machine.clock.Advance(0s);
  EXPECT_EQ(answers, (std::vector<int>{IDYES, IDNO}));
}

TEST_F(MachineTest, ThePersonChoosesWhatIsNotGray) {
  machine.resources.Load(VELTRA_RESOURCES);
  Run([] {
    const TestWindow window(Ignore);
    const contract::ContractMenu menu;
    TrackPopupMenu(GetSubMenu(menu.Get(), 0), TPM_RIGHTALIGN, 7, 8, 0, window.Get(), nullptr);
  });
  for (const char16_t* label : {u"Inner", u"D\u00e9ja", u"No such item"})
    EXPECT_FALSE(machine.menus.Choose(label));
  EXPECT_TRUE(machine.menus.Choose(u"first"));
  machine.clock.Advance(0s);
  EXPECT_EQ(Select<pal::MenuChosen>(machine.Effects()).at(0), (pal::MenuChosen{127, u"&First\tF1"}));
  const pal::MenuShown shown = Select<pal::MenuShown>(machine.Effects()).at(0);
  EXPECT_EQ(pal::Describe({0s, shown}), "menu First | - | Inner > [D\xC3\xA9ja (checked) (gray)] | Last");
  EXPECT_EQ(shown, (pal::MenuShown{shown.items, 7, 8, TPM_RIGHTALIGN}));
}

TEST_F(MachineTest, ADragIsToldInThreeSteps) {
  machine.resources.Load(VELTRA_RESOURCES);
  std::vector<WPARAM> scrolls;
  OpenDialog([&](HWND, UINT message, WPARAM wParam) {
    if (message == WM_HSCROLL) scrolls.push_back(wParam);
  });
  pal::person::Drag(TRACKBAR, 500);
  machine.clock.Advance(0s);
  EXPECT_EQ(scrolls, (std::vector<WPARAM>{MAKEWPARAM(TB_THUMBTRACK, 100), MAKEWPARAM(TB_THUMBPOSITION, 100),
                                          TB_ENDTRACK}));
}

TEST_F(MachineTest, AFileNameThatDoesNotFitIsNotChosen) {
  BOOL chosen = TRUE;
  Run([&] {
    WCHAR path[8] = u"a.hex";
    OPENFILENAMEW box = {};
    box.lStructSize = sizeof(box);
    box.lpstrFile = path;
    box.nMaxFile = 8;
    chosen = GetOpenFileNameW(&box);
  });
  pal::person::AnswerFileBox(u"C:\\long.hex");
  machine.clock.Advance(0s);
  EXPECT_FALSE(chosen);
}

TEST_F(MachineTest, AModuleIsLoadedByItsFullPathAsOftenAsItIsFreed) {
  machine.modules.Add(u"Device.dll", {{"Answer", nullptr}});
  const std::u16string path = std::u16string(pal::Disk::kProgramDirectory) + u"DEVICE.DLL";
  Run([&] {
    EXPECT_EQ(LoadLibraryExW(u"device.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), nullptr);
    const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), module);
    for (const BOOL expected : {TRUE, TRUE, FALSE}) EXPECT_EQ(FreeLibrary(module), expected);
  });
  EXPECT_EQ(Select<pal::ModuleFreed>(machine.Effects()).size(), 1U);
}

// ---- misuse -------------------------------------------------------------------------------------------------

TEST(MachineDeathTest, MisuseIsLoud) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto inProgram = [](const std::function<void()>& program) {
    Machine machine;
    machine.StartProgram([&] {
      program();
      return 0;
    });
    machine.clock.Advance(1s);
  };
  const auto inDialog = [](const std::function<void()>& act) {
    Machine machine;
    machine.resources.Load(VELTRA_RESOURCES);
    machine.StartProgram([] {
      contract::TestDialog dialog([](HWND window, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) EnableWindow(GetDlgItem(window, PUSH_BUTTON), FALSE);
        if (message == WM_INITDIALOG) ShowWindow(GetDlgItem(window, EDIT), SW_HIDE);
        return FALSE;
      });
      dialog.Run();
      return 0;
    });
    machine.clock.Advance(1ms);
    act();
    machine.clock.Advance(1ms);
  };
  EXPECT_DEATH(GetCommandLineW(), "without a machine");
  EXPECT_DEATH(inProgram([] { CreateEventW(nullptr, TRUE, FALSE, TEXT("name")); }), "CreateEventW of");
  EXPECT_DEATH(inProgram([] { WideCharToMultiByte(437, 0, u"a", 1, nullptr, 0, nullptr, nullptr); }),
               "code page");
  EXPECT_DEATH(inDialog([] { Sleep(10); }), "outside the program's threads");
  EXPECT_DEATH(inDialog([] { pal::person::Press(PUSH_BUTTON); }), "1005 is disabled");
  EXPECT_DEATH(inDialog([] { pal::person::Type(EDIT, u"x"); }), "1006 is hidden");
  EXPECT_DEATH(inDialog([] { pal::person::Press(9999); }), "9999 is not in the dialog");
  EXPECT_DEATH(inDialog([] { pal::person::Choose(LIST, u"plum"); }), "1007 has no entry plum");
}

}  // namespace
