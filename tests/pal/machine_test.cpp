// The machine behind the API: virtual time, the order of things, the end of a program, calls that fail.
#include <algorithm>

#include "tests/pal/machine_program.h"

namespace {

using namespace std::chrono_literals;
using pal::Machine;
using pal::Select;

// ---- time ---------------------------------------------------------------------------------------------------

TEST_F(MachineTest, TheClockJumpsFromMomentToMoment) {
  std::vector<pal::Time> ticks;
  machine.StartProgram([&] {
    const HWND window = MakeWindow();
    WindowHandler() = [&](HWND, UINT message, WPARAM, LPARAM) -> LRESULT {
      if (message == WM_TIMER) ticks.push_back(machine.Now());
      return 0;
    };
    SetTimer(window, 1, 3000, nullptr);
    return RunLoop();
  });
  machine.Advance(10s);
  EXPECT_EQ(machine.Now(), 10s);
  EXPECT_EQ(ticks, (std::vector<pal::Time>{3s, 6s, 9s}));
  machine.Advance(2s);
  EXPECT_EQ(ticks.back(), 12s);  // what is due at the end of the span happens in it
}

TEST_F(MachineTest, AtOneTimeEventsComeFirstAndTheMainThreadLast) {
  Log log;
  std::function<void()> helper = [&] {
    Sleep(1000);
    log.emplace_back("helper");
  };
  machine.StartProgram([&] {
    StartThread(helper);
    Sleep(1000);
    log.emplace_back("main");
    return 0;
  });
  machine.At(1s, [&] { log.emplace_back("event"); });
  machine.At(1s, [&] {
    log.emplace_back("second event");
    machine.At(1s, [&] { log.emplace_back("its consequence"); });
  });
  machine.Advance(1s);
  log.emplace_back("outside");
  EXPECT_EQ(log, (Log{"event", "second event", "its consequence", "helper", "main", "outside"}));
}

TEST_F(MachineTest, AdvanceUntilStopsWhenTheConditionHoldsOrAtTheLimit) {
  machine.StartProgram([] {
    for (int i = 0; i < 5; ++i) {
      Sleep(100);
      OutputDebugStringW(TEXT("step"));
    }
    return 3;
  });
  const auto steps = [&] { return Select<pal::DebugOutput>(machine.Effects()).size(); };
  EXPECT_TRUE(machine.AdvanceUntil([&] { return steps() == 2; }, 10s));
  EXPECT_EQ(machine.Now(), 200ms);
  EXPECT_FALSE(machine.AdvanceUntil([&] { return steps() == 100; }, 1s));
  EXPECT_EQ(machine.Now(), 1200ms);
  EXPECT_EQ(machine.ExitCode(), 3);
}

TEST_F(MachineTest, LocalTimeFollowsTheClock) {
  SYSTEMTIME first{};
  SYSTEMTIME second{};
  machine.SetLocalTime({2025, 2, 0, 28, 23, 59, 59, 900});
  machine.StartProgram([&] {
    GetLocalTime(&first);
    Sleep(250);
    GetLocalTime(&second);
    return 0;
  });
  machine.Advance(1s);
  EXPECT_EQ(first.wDayOfWeek, 5);  // a Friday
  EXPECT_EQ(second.wYear, 2025);
  EXPECT_EQ(second.wMonth, 3);
  EXPECT_EQ(second.wDay, 1);
  EXPECT_EQ(second.wHour, 0);
  EXPECT_EQ(second.wMilliseconds, 150);
}

// Threads that meet at the same moments meet in the same order every time.
TEST(MachineRuns, AreTheSameEveryTime) {
  const auto run = [] {
    Machine machine;
    std::vector<std::function<void()>> workers(4);
    for (size_t i = 0; i < workers.size(); ++i) {
      workers[i] = [i] {
        for (DWORD round = 0; round < 50; ++round) {
          const char16_t text[] = {static_cast<char16_t>(u'a' + i), 0};
          OutputDebugStringW(text);
          Sleep(round % (static_cast<DWORD>(i) + 2));
        }
      };
    }
    machine.StartProgram([&] {
      for (std::function<void()>& worker : workers) StartThread(worker);
      Sleep(1000);
      return 0;
    });
    machine.Advance(10s);
    EXPECT_TRUE(machine.ExitCode().has_value());
    Log log;
    for (const pal::Effect& effect : machine.Effects())
      log.push_back(std::to_string(effect.at.count()) + Describe(effect));
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
    machine.AddSerialPort(2);
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
          const HANDLE port = OpenPort(2);
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
      mainWindow = MakeWindow();
      for (std::function<void()>& action : waiting) StartThread(action);
      Sleep(INFINITE);
      note("main", true);
      return 0;
    });
    machine.Advance(1s);
    EXPECT_EQ(machine.CountOpen("thread"), 6);
    EXPECT_TRUE(returned.empty());
  }
  std::sort(returned.begin(), returned.end());
  EXPECT_EQ(returned, (Log{"box", "event", "main", "messages", "port", "send", "sleep"}));
}

TEST_F(MachineTest, AProgramThatReturnsTakesItsThreadsAndHandlesWithIt) {
  machine.AddSerialPort(2);
  bool helperReturned = false;
  std::function<void()> helper = [&] {
    const HANDLE port = OpenPort(2);
    SetCommMask(port, EV_RXCHAR);
    DWORD events = 0;
    while (WaitCommEvent(port, &events, nullptr)) continue;
    helperReturned = true;
  };
  machine.StartProgram([&] {
    const HWND window = MakeWindow();
    SetTimer(window, 1, 1000, nullptr);
    CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CreateMutexW(nullptr, TRUE, TEXT("held"));
    StartThread(helper);
    Sleep(500);
    return 6;
  });
  machine.Advance(100ms);
  for (const char* kind : {"thread", "window", "timer", "event", "mutex", "serial"})
    EXPECT_EQ(machine.CountOpen(kind), 1) << kind;
  EXPECT_EQ(machine.ExitCode(), std::nullopt);
  machine.Advance(400ms);
  EXPECT_EQ(machine.ExitCode(), 6);
  EXPECT_TRUE(helperReturned);
  for (const char* kind : {"thread", "window", "timer", "event", "mutex", "serial", "thread handle"})
    EXPECT_EQ(machine.CountOpen(kind), 0) << kind;
  EXPECT_EQ(Select<pal::ProgramEnded>(machine.Effects()).size(), 1u);

  // Another program finds nothing of the first.
  bool windowFound = true;
  DWORD mutexError = 99;
  machine.StartProgram([&] {
    windowFound = FindWindowW(TEXT("MachineTest"), nullptr) != nullptr;
    CreateMutexW(nullptr, TRUE, TEXT("held"));
    mutexError = GetLastError();
    return 0;
  });
  machine.Advance(1s);
  EXPECT_FALSE(windowFound);
  EXPECT_EQ(mutexError, 0u);
}

// ---- failures -----------------------------------------------------------------------------------------------

TEST_F(MachineTest, CallsFailWhenArmed) {
  std::vector<DWORD> outcome;
  machine.Fail("CreateEventW", 2, ERROR_NOT_ENOUGH_MEMORY, 1);
  machine.StartProgram([&] {
    for (int i = 0; i < 4; ++i) {
      const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
      outcome.push_back(event ? 0 : GetLastError());
    }
    return 0;
  });
  machine.Advance(1s);
  EXPECT_EQ(outcome, (std::vector<DWORD>{0, ERROR_NOT_ENOUGH_MEMORY, ERROR_NOT_ENOUGH_MEMORY, 0}));
}

TEST(MachineDeathTest, WhatTheLayerDoesNotKnowIsLoud) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_DEATH(GetCommandLineW(), "without a machine");
  EXPECT_DEATH(
      {
        Machine machine;
        machine.StartProgram([] { return CreateEventW(nullptr, TRUE, FALSE, TEXT("name")) ? 0 : 1; });
        machine.Advance(1s);
      },
      "CreateEventW of");
  EXPECT_DEATH(
      {
        Machine machine;
        Sleep(10);
      },
      "outside the program's threads");
  EXPECT_DEATH(
      {
        Machine machine;
        machine.At(1s, [&] { machine.Advance(1s); });
        machine.Advance(2s);
      },
      "the clock is moved by the outside");
}

}  // namespace
