// The machine behind the API: virtual time, the order of things, the end of a program, the outside's hands.
#include "pal/machine.h"

#include <dbt.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace {

using namespace std::chrono_literals;
using pal::Machine;
using pal::Select;

using Log = std::vector<std::string>;

// ---- a small program for the tests --------------------------------------------------------------------------

std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>& WindowHandler() {
  static std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)> handler;
  return handler;
}

LRESULT CALLBACK HandledProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (WindowHandler() && message >= WM_COPYDATA) return WindowHandler()(window, message, wParam, lParam);
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeWindow(const WCHAR* className = TEXT("MachineTest")) {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = HandledProcedure;
  windowClass.lpszClassName = className;
  RegisterClassExW(&windowClass);
  return CreateWindowExW(0, className, TEXT(""), WS_OVERLAPPEDWINDOW, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                         nullptr);
}

int RunLoop() {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return static_cast<int>(message.wParam);
}

HANDLE OpenPort(int number) {
  const std::u16string name = u"\\\\.\\COM" + std::u16string(1, static_cast<char16_t>(u'0' + number));
  const HANDLE port = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OVERLAPPED, nullptr);
  COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 10, 1000};
  if (port != INVALID_HANDLE_VALUE) SetCommTimeouts(port, &timeouts);
  return port;
}

// One read of what is there; `error` is what it ended with.
std::vector<uint8_t> ReadPort(HANDLE port, DWORD* error = nullptr) {
  std::vector<uint8_t> bytes(512);
  OVERLAPPED overlapped = {};
  overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD count = 0;
  SetLastError(0);
  BOOL done = ReadFile(port, bytes.data(), 512, &count, &overlapped);
  if (!done && GetLastError() == ERROR_IO_PENDING)
    done = GetOverlappedResult(port, &overlapped, &count, TRUE);
  if (error) *error = done ? 0 : GetLastError();
  CloseHandle(overlapped.hEvent);
  bytes.resize(count);
  return bytes;
}

void WritePort(HANDLE port, const std::string& text) {
  OVERLAPPED overlapped = {};
  overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD count = 0;
  WriteFile(port, text.data(), static_cast<DWORD>(text.size()), &count, &overlapped);
  CloseHandle(overlapped.hEvent);
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
  void TearDown() override {
    machine_.reset();
    WindowHandler() = nullptr;
  }

  std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
  }

  std::optional<Machine> machine_{std::in_place};
  Machine& machine = *machine_;
};

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
    const HANDLE thread = StartThread(helper);
    Sleep(1000);
    log.emplace_back("main");
    WaitForSingleObject(thread, INFINITE);
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

// Threads that pass work to each other do it in the same order every time.
TEST(MachineRuns, AreTheSameEveryTime) {
  const auto run = [] {
    Machine machine;
    HANDLE gate = nullptr;
    std::vector<std::function<void()>> workers(4);
    for (size_t i = 0; i < workers.size(); ++i) {
      workers[i] = [&gate, i] {
        for (int round = 0; round < 50; ++round) {
          WaitForSingleObject(gate, INFINITE);
          const char16_t text[] = {static_cast<char16_t>(u'a' + i), 0};
          OutputDebugStringW(text);
          if (round % (static_cast<int>(i) + 2) == 0) Sleep(static_cast<DWORD>(i));
          SetEvent(gate);
        }
      };
    }
    machine.StartProgram([&] {
      gate = CreateEventW(nullptr, FALSE, TRUE, nullptr);
      std::vector<HANDLE> threads;
      for (std::function<void()>& worker : workers) threads.push_back(StartThread(worker));
      WaitForMultipleObjects(static_cast<DWORD>(threads.size()), threads.data(), TRUE, INFINITE);
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
  EXPECT_GT(first.size(), 200u);
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

// ---- messages from the outside ------------------------------------------------------------------------------

TEST_F(MachineTest, TheOutsideSendsAndPosts) {
  std::string received;
  Log ports;
  machine.StartProgram([&] {
    MakeWindow();
    WindowHandler() = [&](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
      if (message == WM_COPYDATA) {
        const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        received = std::to_string(data.dwData) + ":" +
                   std::string(static_cast<const char*>(data.lpData), data.cbData);
        return 1;
      }
      if (message == WM_DEVICECHANGE) {
        const auto& device = *reinterpret_cast<const DEV_BROADCAST_PORT_W*>(lParam);
        std::string name;
        for (const WCHAR* unit = device.dbcp_name; *unit; ++unit) name.push_back(static_cast<char>(*unit));
        ports.push_back(name);
        return 1;
      }
      return static_cast<LRESULT>(wParam * 2);
    };
    return RunLoop();
  });
  machine.Advance(0s);
  const HWND window = machine.ProgramWindow(u"machinetest");
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(machine.Send(window, WM_APP, 21, 0), 42);
  EXPECT_EQ(machine.SendCopyData(window, nullptr, 12346, BytesOf("abcd")), 1);
  EXPECT_EQ(received, "12346:abcd");
  EXPECT_EQ(machine.SendCopyData(window, nullptr, 0, {}), 1);
  EXPECT_EQ(received, "0:");

  // What a message points to is copied: it is handled when the sender's memory may be gone.
  for (const bool post : {false, true}) {
    auto bytes = std::make_unique<std::vector<uint8_t>>(sizeof(DEV_BROADCAST_PORT_W) + 10);
    auto* device = reinterpret_cast<DEV_BROADCAST_PORT_W*>(bytes->data());
    device->dbcp_size = static_cast<DWORD>(bytes->size());
    device->dbcp_devicetype = DBT_DEVTYP_PORT;
    std::u16string(u"COM3").copy(device->dbcp_name, 4);
    const auto lParam = reinterpret_cast<LPARAM>(device);
    if (post) {
      EXPECT_TRUE(machine.Post(window, WM_DEVICECHANGE, DBT_DEVICEARRIVAL, lParam));
    } else {
      EXPECT_EQ(machine.Send(window, WM_DEVICECHANGE, DBT_DEVICEARRIVAL, lParam, 0s), std::nullopt);
    }
    bytes.reset();
    machine.Advance(0s);
  }
  EXPECT_EQ(ports, (Log{"COM3", "COM3"}));
}

TEST_F(MachineTest, SendingGivesUpOnAProgramThatSleeps) {
  machine.StartProgram([] {
    MakeWindow();
    Sleep(60'000);
    return RunLoop();
  });
  machine.Advance(1s);
  const HWND window = machine.ProgramWindow(u"MachineTest");
  EXPECT_EQ(machine.Send(window, WM_APP, 0, 0, 5s), std::nullopt);
  EXPECT_EQ(machine.Now(), 6s);
  EXPECT_EQ(machine.Send(window, WM_APP, 0, 0, 120s), 0);
  EXPECT_EQ(machine.Now(), 60s);
  EXPECT_EQ(machine.Send(nullptr, WM_APP, 0, 0), std::nullopt);
}

TEST_F(MachineTest, ASleepingThreadHoldsTenThousandMessages) {
  int handled = 0;
  machine.StartProgram([&] {
    MakeWindow();
    WindowHandler() = [&](HWND, UINT, WPARAM, LPARAM) -> LRESULT { return ++handled; };
    Sleep(3000);
    return RunLoop();
  });
  machine.Advance(1s);
  const HWND window = machine.ProgramWindow(u"MachineTest");
  for (int i = 0; i < 10'000; ++i) ASSERT_TRUE(machine.Post(window, WM_APP, 0, 0));
  EXPECT_FALSE(machine.Post(window, WM_APP, 0, 0));
  EXPECT_EQ(machine.QueuedMessages(), 10'000u);
  machine.Advance(2s);
  EXPECT_EQ(machine.QueuedMessages(), 0u);
  EXPECT_EQ(handled, 10'000);
}

// ---- windows of other programs ------------------------------------------------------------------------------

TEST_F(MachineTest, OtherProgramsAreToldAndAnswer) {
  Log heard;
  const HWND app =
      machine.AddForeignWindow(u"Talk Builder", [&](const pal::ForeignMessage& message) -> LRESULT {
        heard.push_back("talk " + std::to_string(message.message) + " " +
                        std::string(message.payload.begin(), message.payload.end()));
        if (message.message == WM_APP)
          machine.After(1s, [&] { machine.Post(machine.ProgramWindow(u"MachineTest"), WM_APP + 7, 0, 0); });
        return 33;
      });
  machine.AddForeignWindow(u"Wendle", [&](const pal::ForeignMessage& message) -> LRESULT {
    heard.push_back("wendle " + std::to_string(message.message));
    return 0;
  });
  LRESULT answer = 0;
  pal::Time called{0};
  UINT registered = 0;
  machine.StartProgram([&] {
    MakeWindow();
    WindowHandler() = [&](HWND, UINT message, WPARAM, LPARAM) -> LRESULT {
      if (message == WM_APP + 7) called = machine.Now();
      return 0;
    };
    const HWND found = FindWindowW(TEXT("talk builder"), nullptr);
    EXPECT_EQ(found, app);
    answer = SendMessageW(found, WM_APP, 1, 2);
    char text[] = "68";
    COPYDATASTRUCT data = {5, 2, text};
    SendMessageW(found, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    PostMessageW(found, WM_APP + 1, 0, 0);
    registered = RegisterWindowMessageW(TEXT("Machine_Test"));
    SendNotifyMessageW(HWND_BROADCAST, registered, 4, 0);
    return RunLoop();
  });
  machine.Advance(5s);
  EXPECT_EQ(answer, 33);
  EXPECT_EQ(called, 1s);
  const std::string number = std::to_string(registered);
  EXPECT_EQ(heard,
            (Log{"talk 32768 ", "talk 74 68", "talk 32769 ", "wendle " + number, "talk " + number + " "}));
  const auto sent = Select<pal::ForeignMessageSent>(machine.Effects());
  ASSERT_EQ(sent.size(), 4u);
  EXPECT_EQ(sent[0].className, u"Talk Builder");
  EXPECT_EQ(sent[0].lParam, 2);
  EXPECT_EQ(sent[1].copyDataTag, 5u);
  EXPECT_EQ(sent[1].payload, (std::vector<uint8_t>{'6', '8'}));
  EXPECT_EQ(sent[3].className, u"*");
  EXPECT_EQ(sent[3].wParam, 4u);

  machine.RemoveForeignWindow(app);
  EXPECT_EQ(machine.ProgramWindow(u"Talk Builder"), nullptr);
}

TEST_F(MachineTest, AnotherProcessHoldsAMutex) {
  machine.AddForeignMutex(u"VeltraInternal");
  DWORD error = 0;
  DWORD waited = 0;
  machine.StartProgram([&] {
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, TEXT("VeltraInternal"));
    error = GetLastError();
    waited = WaitForSingleObject(mutex, 1000);
    return 6;
  });
  machine.Advance(2s);
  EXPECT_EQ(error, static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  EXPECT_EQ(waited, static_cast<DWORD>(WAIT_TIMEOUT));
}

// ---- the person ---------------------------------------------------------------------------------------------

TEST_F(MachineTest, ThePersonAnswersTheInnermostBox) {
  std::vector<int> answers;
  machine.StartProgram([&] {
    const HWND window = MakeWindow();
    WindowHandler() = [&](HWND, UINT message, WPARAM, LPARAM) -> LRESULT {
      if (message == WM_APP) answers.push_back(MessageBoxW(window, TEXT("inner"), TEXT("c"), MB_OKCANCEL));
      return 0;
    };
    PostMessageW(window, WM_APP, 0, 0);
    answers.push_back(MessageBoxW(nullptr, TEXT("outer"), nullptr, MB_YESNO | MB_ICONQUESTION));
    answers.push_back(MessageBoxW(nullptr, TEXT("automatic"), TEXT("c"), MB_OK));
    return 0;
  });
  machine.Advance(1s);
  const auto boxes = machine.OpenMessageBoxes();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_EQ(boxes[0].text, u"outer");
  EXPECT_EQ(boxes[0].caption, u"Error");
  EXPECT_EQ(boxes[1].text, u"inner");
  machine.AnswerMessageBox(IDOK);
  machine.Advance(1s);
  EXPECT_EQ(machine.OpenMessageBoxes().size(), 1u);
  machine.AnswerMessageBoxesWith(IDOK);
  machine.At(3s, [&] { machine.AnswerMessageBox(IDNO); });
  machine.Advance(2s);
  EXPECT_EQ(answers, (std::vector<int>{IDOK, IDNO, IDOK}));
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_EQ(Select<pal::BoxShown>(machine.Effects()).size(), 3u);
  EXPECT_EQ(Select<pal::BoxAnswered>(machine.Effects()).size(), 3u);
}

// The end of the message loop closes a box, and the loop outside sees it, too.
TEST_F(MachineTest, QuittingClosesABox) {
  int code = 0;
  machine.StartProgram([&] {
    const HWND window = MakeWindow();
    WindowHandler() = [&](HWND, UINT message, WPARAM, LPARAM) -> LRESULT {
      if (message == WM_APP) MessageBoxW(window, TEXT("?"), TEXT("?"), MB_OK);
      if (message == WM_APP + 1) PostQuitMessage(4);
      return 0;
    };
    PostMessageW(window, WM_APP, 0, 0);
    code = RunLoop();
    return code;
  });
  machine.Advance(1s);
  EXPECT_TRUE(machine.Post(machine.ProgramWindow(u"MachineTest"), WM_APP + 1, 0, 0));
  machine.Advance(1s);
  EXPECT_EQ(machine.ExitCode(), 4);
  EXPECT_TRUE(machine.OpenMessageBoxes().empty());
}

// ---- failures -----------------------------------------------------------------------------------------------

TEST_F(MachineTest, CallsFailWhenArmed) {
  std::vector<DWORD> outcome;
  machine.Fail("CreateEventW", 2, ERROR_NO_SYSTEM_RESOURCES, 1);
  machine.StartProgram([&] {
    for (int i = 0; i < 4; ++i) {
      const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
      outcome.push_back(event ? 0 : GetLastError());
    }
    return 0;
  });
  machine.Advance(1s);
  EXPECT_EQ(outcome, (std::vector<DWORD>{0, ERROR_NO_SYSTEM_RESOURCES, ERROR_NO_SYSTEM_RESOURCES, 0}));
}

TEST(MachineDeathTest, WhatTheLayerDoesNotKnowIsLoud) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_DEATH(GetTickCount64(), "without a machine");
  EXPECT_DEATH(
      {
        Machine machine;
        machine.StartProgram([] { return CreateEventW(nullptr, TRUE, FALSE, TEXT("name")) ? 0 : 1; });
        machine.Advance(1s);
      },
      "CreateEventW with");
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

// ---- serial ports -------------------------------------------------------------------------------------------

class SerialMachineTest : public MachineTest {
 protected:
  // A reader as the tool has one: waits for bytes and takes them until the wait fails or the mask ends it.
  void StartReader() {
    reader = [this] {
      port = OpenPort(2);
      SetCommMask(port, EV_RXCHAR);
      DWORD events = 0;
      while (WaitCommEvent(port, &events, nullptr) && events != 0) {
        for (std::vector<uint8_t> bytes = ReadPort(port); !bytes.empty(); bytes = ReadPort(port))
          received.insert(received.end(), bytes.begin(), bytes.end());
      }
      lastError = GetLastError();
      lastEvents = events;
      ended = true;
      CloseHandle(port);
    };
    machine.StartProgram([this] {
      StartThread(reader);
      MakeWindow();
      return RunLoop();
    });
    machine.Advance(1s);
  }

  pal::SerialPort& line = machine.AddSerialPort(2);
  std::function<void()> reader;
  HANDLE port = INVALID_HANDLE_VALUE;
  std::vector<uint8_t> received;
  bool ended = false;
  DWORD lastError = 0;
  DWORD lastEvents = 99;
};

TEST_F(SerialMachineTest, AMegabyteAtOnceArrivesByteForByte) {
  StartReader();
  EXPECT_TRUE(line.IsOpen());
  std::vector<uint8_t> sent(1 << 20);
  uint32_t state = 1;
  for (uint8_t& byte : sent) byte = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  const pal::Time before = machine.Now();
  line.Deliver(sent);
  machine.Advance(0s);
  EXPECT_EQ(machine.Now(), before);  // all of it before the clock moves on
  EXPECT_EQ(received, sent);
}

TEST_F(SerialMachineTest, ADeviceThatVanishesEndsTheWaitAndComesBack) {
  StartReader();
  line.Vanish();
  machine.Advance(0s);
  EXPECT_TRUE(ended);
  EXPECT_EQ(lastError, static_cast<DWORD>(ERROR_OPERATION_ABORTED));
  EXPECT_FALSE(line.IsOpen());
  line.Deliver(BytesOf("nobody hears"));

  const auto tryToOpen = [&] {
    DWORD error = 0;
    Machine* outside = &machine;
    reader = [&] {
      const HANDLE handle = OpenPort(2);
      error = handle == INVALID_HANDLE_VALUE ? GetLastError() : 0;
      if (handle == INVALID_HANDLE_VALUE) return;
      EXPECT_EQ(OpenPort(2), INVALID_HANDLE_VALUE);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
      outside->AddSerialPort(2).Vanish();  // under the handle's feet
      DWORD errors = 0;
      EXPECT_FALSE(ClearCommError(handle, &errors, nullptr));
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_COMMAND));
      EXPECT_FALSE(SetCommMask(handle, 0));
      CloseHandle(handle);
    };
    WindowHandler() = [&](HWND, UINT, WPARAM, LPARAM) -> LRESULT {
      CloseHandle(StartThread(reader));
      return 0;
    };
    machine.Post(machine.ProgramWindow(u"MachineTest"), WM_APP, 0, 0);
    machine.Advance(1s);
    return error;
  };
  EXPECT_EQ(tryToOpen(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  line.Return();
  EXPECT_EQ(tryToOpen(), 0u);
  EXPECT_EQ(machine.CountOpen("serial"), 0);
  EXPECT_EQ(received, std::vector<uint8_t>{});
}

TEST_F(SerialMachineTest, WhatIsWrittenReachesTheDeviceAndTheStream) {
  std::vector<std::pair<pal::Time, std::string>> heard;
  line.OnWrite([&](std::span<const uint8_t> bytes) {
    heard.emplace_back(machine.Now(), std::string(bytes.begin(), bytes.end()));
    line.Deliver(BytesOf("reply"));
  });
  machine.StartProgram([this] {
    port = OpenPort(2);
    SetCommMask(port, EV_RXCHAR);
    Sleep(1500);
    WritePort(port, "Ready");
    DWORD events = 0;
    EXPECT_TRUE(WaitCommEvent(port, &events, nullptr));
    received = ReadPort(port);
    CloseHandle(port);
    return 0;
  });
  machine.Advance(5s);
  EXPECT_EQ(heard, (std::vector<std::pair<pal::Time, std::string>>{{1500ms, "Ready"}}));
  EXPECT_EQ(std::string(received.begin(), received.end()), "reply");
  EXPECT_EQ(line.Timeouts().ReadIntervalTimeout, MAXDWORD);
  Log stream;
  for (const pal::Effect& effect : machine.Effects())
    if (!std::holds_alternative<pal::ProgramStarted>(effect.detail))
      stream.push_back(std::to_string(effect.at / 1ms) + " " + Describe(effect));
  EXPECT_EQ(stream, (Log{"0 " + pal::Describe({0s, pal::SerialOpened{2}}),
                         "1500 " + pal::Describe({0s, pal::SerialWrite{2, {'R', 'e', 'a', 'd', 'y'}}}),
                         "1500 " + pal::Describe({0s, pal::SerialClosed{2}}),
                         "1500 " + pal::Describe({0s, pal::ProgramEnded{0}})}));
}

TEST_F(SerialMachineTest, ReadsFailInTheCallOrInTheirCompletion) {
  std::vector<DWORD> errors;
  std::vector<DWORD> flags;
  machine.StartProgram([&] {
    port = OpenPort(2);
    for (const bool atOnce : {false, true}) {
      line.FailNextRead(ERROR_OPERATION_ABORTED, CE_FRAME, atOnce);
      DWORD error = 0;
      ReadPort(port, &error);
      errors.push_back(error);
      DWORD raised = 0;
      ClearCommError(port, &raised, nullptr);
      flags.push_back(raised);
      ClearCommError(port, &raised, nullptr);
      EXPECT_EQ(raised, 0u);
    }
    return 0;
  });
  machine.Advance(1s);
  EXPECT_EQ(errors, (std::vector<DWORD>{ERROR_OPERATION_ABORTED, ERROR_OPERATION_ABORTED}));
  EXPECT_EQ(flags, (std::vector<DWORD>{CE_FRAME, CE_FRAME}));
}

// A thread for each opening, ended by the mask as the tool does it: nothing stays behind.
TEST_F(SerialMachineTest, AThousandOpeningsLeaveNothing) {
  int opened = 0;
  reader = [&] {
    DWORD events = 0;
    while (WaitCommEvent(port, &events, nullptr) && events != 0) ReadPort(port);
  };
  machine.StartProgram([&] {
    for (int i = 0; i < 1000; ++i) {
      port = OpenPort(2);
      if (port == INVALID_HANDLE_VALUE) return 1;
      ++opened;
      SetCommMask(port, EV_RXCHAR);
      const HANDLE thread = StartThread(reader);
      if (i % 3 == 0) Sleep(1);
      SetCommMask(port, 0);
      if (WaitForSingleObject(thread, 1000) != WAIT_OBJECT_0) return 2;
      CloseHandle(thread);
      CloseHandle(port);
    }
    Sleep(1000);
    return 0;
  });
  EXPECT_TRUE(machine.AdvanceUntil([&] { return opened == 1000; }, 60s));
  machine.Advance(10ms);
  for (const char* kind : {"thread", "thread handle", "event", "serial"})
    EXPECT_EQ(machine.CountOpen(kind), 0) << kind;
  machine.Advance(10s);
  EXPECT_EQ(machine.ExitCode(), 0);
}

}  // namespace
