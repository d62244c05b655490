// The machine behind the API, as far as no test of the tool sees it: the order of things, the end of a
// program, and what other programs can do.
#include <dbt.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "pal/machine/machine.h"
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

// ---- the end of a program -----------------------------------------------------------------------------------

TEST(MachineEnd, BringsEveryWaitBack) {
  HWND mainWindow = nullptr;
  const std::vector<std::function<bool()>> waits = {
      [] { return Sleep(INFINITE), true; },
      [] { return MessageBoxW(nullptr, TEXT("?"), TEXT("?"), MB_YESNO) == IDCANCEL; },
      [] {
        return WaitForSingleObject(CreateEventW(nullptr, TRUE, FALSE, nullptr), INFINITE) == WAIT_FAILED;
      },
      [] {
        const HANDLE port = OpenPort();
        SetCommMask(port, EV_RXCHAR);
        DWORD events = 0;
        return WaitCommEvent(port, &events, nullptr) == FALSE;
      },
      [&] { return SendMessageW(mainWindow, WM_APP, 0, 0) == 0; },
      [] {
        MSG message;
        return GetMessageW(&message, nullptr, 0, 0) == 0 && message.message == WM_QUIT;
      },
  };
  std::vector<std::optional<bool>> asExpected(waits.size());
  std::vector<std::function<void()>> threads;
  {
    Machine machine;
    machine.serial.Add(2);
    for (size_t i = 0; i < waits.size(); ++i) threads.emplace_back([&, i] { asExpected[i] = waits[i](); });
    machine.StartProgram([&] {
      const TestWindow window;
      mainWindow = window.Get();
      for (std::function<void()>& thread : threads) StartThread(thread);
      Sleep(INFINITE);
      return 0;
    });
    machine.clock.Advance(1s);
    EXPECT_EQ(machine.CountOpen("thread"), 6);
    EXPECT_EQ(asExpected, std::vector<std::optional<bool>>(waits.size()));
  }
  EXPECT_EQ(asExpected, std::vector<std::optional<bool>>(waits.size(), true));
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
        window.emplace(TestWindow::Handler(), TEXT("MachineTest"));
        SetTimer(FindWindowW(TEXT("MachineTest"), nullptr), 1, 1000, nullptr);
        CreateEventW(nullptr, TRUE, FALSE, nullptr);
        StartThread(helper);
        CoInitialize(nullptr);
        void* forgotten = nullptr;
        CoCreateInstance(pal::kDeviceEnumeratorClass, nullptr, CLSCTX_INPROC_SERVER,
                         pal::kDeviceEnumeratorInterface, &forgotten);
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

// ---- other programs --------------------------------------------------------------------------

TEST_F(MachineTest, WhatASentMessagePointsToIsCopied) {
  UINT size = 0;
  Run([&] {
    const TestWindow window([&](HWND, UINT message, WPARAM, LPARAM lParam) {
      if (message == WM_DEVICECHANGE) size = reinterpret_cast<const DEV_BROADCAST_HDR*>(lParam)->dbch_size;
      return TestWindow::kDefault;
    });
    MSG message;
    GetMessageW(&message, nullptr, 0, 0);
  });
  DEV_BROADCAST_HDR header = {sizeof(header), 0, 0};
  machine.desktop.Send(machine.desktop.ProgramWindow(u"ContractWindow"), WM_DEVICECHANGE, 0,
                       reinterpret_cast<LPARAM>(&header), 0s);
  header = {};
  machine.clock.Advance(0s);
  EXPECT_EQ(size, sizeof(header));
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

}  // namespace
