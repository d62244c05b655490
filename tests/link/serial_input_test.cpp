#include "link/serial_input.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <cstring>
#include <random>
#include <stdexcept>

#include "pal/machine/machine.h"

namespace veltra {
namespace {

using namespace std::chrono_literals;
using VeltraFramework::CSerialInput;

// Collects what the monitor thread posts.
struct Collector {
  std::vector<uint8_t> bytes;
  int linesLost = 0;
};

LRESULT CALLBACK CollectorProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* collector = reinterpret_cast<Collector*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (collector && message == WM_PIC_BYTE) collector->bytes.push_back(static_cast<uint8_t>(wParam));
  if (collector && message == WM_PIC_LINE_LOST) ++collector->linesLost;
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND CreateCollectorWindow(Collector& collector) {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = CollectorProc;
  windowClass.lpszClassName = u"Collector";
  RegisterClassExW(&windowClass);
  const HWND window = CreateWindowExW(0, u"Collector", u"", WS_OVERLAPPEDWINDOW, 0, 0, 0, 0, nullptr, nullptr,
                                      nullptr, nullptr);
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&collector));
  return window;
}

// Handles messages until the condition holds or 10 s have passed.
void PumpUntil(const std::function<bool()>& condition) {
  constexpr UINT kLookMs = 10;
  const UINT_PTR look = SetTimer(nullptr, 0, kLookMs, nullptr);
  MSG message = {};
  for (int n = 0; n < 1000 && !condition();) {
    if (GetMessageW(&message, nullptr, 0, 0) <= 0) break;
    if (message.message == WM_TIMER) ++n;
    DispatchMessageW(&message);
  }
  KillTimer(nullptr, look);
}

class Serial : public ::testing::Test {
 protected:
  // Runs `body` as the program until it returns.
  void Run(std::function<void()> body, pal::Time limit = 60s) {
    machine.StartProgram([body = std::move(body)] {
      body();
      return 0;
    });
    ASSERT_TRUE(machine.clock.AdvanceUntil([&] { return machine.ExitCode().has_value(); }, limit));
  }
  // Stops monitoring; how long that took.
  pal::Time Stop(CSerialInput& serial) {
    const pal::Time before = machine.clock.Now();
    serial.StopMon();
    EXPECT_FALSE(serial.IsMonitoring());
    return machine.clock.Now() - before;
  }
  void ExpectNothingLeft() {
    for (const char* kind : {"serial", "event", "thread"}) EXPECT_EQ(machine.CountOpen(kind), 0) << kind;
  }

  pal::Machine machine;
  pal::SerialPort& port = machine.serial.Add(2);
};

TEST_F(Serial, OpensWithItsSettingsAndKeepsTheDriversOthers) {
  DCB driver = {};
  driver.DCBlength = sizeof(driver);
  driver.BaudRate = 1200;
  driver.fOutxCtsFlow = TRUE;
  driver.fRtsControl = RTS_CONTROL_HANDSHAKE;
  driver.fDtrControl = DTR_CONTROL_ENABLE;
  driver.fNull = TRUE;
  driver.ByteSize = 7;
  driver.Parity = 2;    // even
  driver.StopBits = 2;  // two
  port.SetDriverDefaults(driver);
  DCB wanted = driver;
  wanted.BaudRate = 57600;
  wanted.ByteSize = 8;
  wanted.Parity = NOPARITY;
  wanted.StopBits = ONESTOPBIT;
  wanted.fOutxCtsFlow = FALSE;
  wanted.fRtsControl = RTS_CONTROL_ENABLE;
  const COMMTIMEOUTS wantedTimeouts = {MAXDWORD, 0, 0, 10, 1000};
  Run([&] {
    const CSerialInput serial(2, u"name");
    EXPECT_TRUE(serial.IsOpen());
    EXPECT_FALSE(serial.IsMonitoring());
    EXPECT_EQ(serial.GetPort(), 2);
    EXPECT_EQ(serial.GetName(), u"name");
    EXPECT_EQ(serial.GetBaudRate(), 57600U);
    EXPECT_EQ(pal::Select<pal::SerialOpened>(machine.Effects())[0].share, 3U);
    const DCB settings = port.Settings();
    const COMMTIMEOUTS timeouts = port.Timeouts();
    EXPECT_EQ(std::memcmp(&settings, &wanted, sizeof wanted), 0);
    EXPECT_EQ(std::memcmp(&timeouts, &wantedTimeouts, sizeof timeouts), 0);
  });
  ExpectNothingLeft();
}

TEST_F(Serial, AnOpeningThatFailsHalfWayLeavesNothing) {
  for (const char* function :
       {"CreateFileW", "SetCommTimeouts", "GetCommState", "SetCommState", "CreateEventW"}) {
    machine.Fail(function, 1, ERROR_GEN_FAILURE);
    Run([&] {
      const CSerialInput serial(2, u"");
      EXPECT_FALSE(serial.IsOpen()) << function;
      EXPECT_EQ(machine.CountOpen("serial") + machine.CountOpen("event"), 0) << function;
    });
  }
  Run([] { EXPECT_FALSE(CSerialInput(3, u"").IsOpen()); });  // no such port
}

TEST_F(Serial, AMonitorThatCannotStartClosesThePort) {
  Run([&] {
    for (const char* function : {"CreateThread", "CreateEventW"}) {
      CSerialInput serial(2, u"");
      machine.Fail(function, 1, ERROR_NOT_ENOUGH_MEMORY);
      EXPECT_FALSE(serial.StartMon(nullptr, nullptr)) << function;
      EXPECT_FALSE(serial.IsMonitoring());
      EXPECT_FALSE(serial.IsOpen());
      EXPECT_FALSE(serial.StartMon(nullptr, nullptr));
      serial.StopMon();
    }
  });
  ExpectNothingLeft();
}

// The driver refuses the mask with which the monitor listens, or the one with which it is stopped; it ends
// the wait with an empty mask; whoever takes the bytes throws.
TEST_F(Serial, AMonitorThatEndsByItselfSaysSoAndStopsAtOnce) {
  enum { kRefusedStart, kRefusedStop, kEmptyMask, kException, kEnd };
  for (int what = 0; what < kEnd; ++what) {
    Collector collector;
    if (what <= kRefusedStop) machine.Fail("SetCommMask", 1, ERROR_GEN_FAILURE, what);
    machine.clock.After(5ms, [&] {
      if (what == kException) port.Deliver(std::vector<uint8_t>(1, 'x'));
      if (what != kEmptyMask) return;
      port.Hang(pal::SerialPort::Hung::kForEver);
      port.Hang(pal::SerialPort::Hung::kNot);
    });
    Run([&] {
      CSerialInput serial(2, u"");
      const HWND window = what == kException ? nullptr : CreateCollectorWindow(collector);
      EXPECT_TRUE(serial.StartMon(
          window, [](int32_t, const uint8_t*, uint32_t) { throw std::runtime_error("no room"); }));
      Sleep(10);
      EXPECT_EQ(serial.IsMonitoring(), what == kRefusedStop);
      serial.StopMon();
      EXPECT_TRUE(serial.IsOpen());
      PumpUntil([&] { return collector.linesLost > 0; });
    });
    EXPECT_EQ(pal::Select<pal::DebugOutput>(machine.Effects()).size(), what == kException) << what;
    EXPECT_EQ(collector.linesLost, what == kRefusedStart || what == kEmptyMask) << what;
    ExpectNothingLeft();
  }
}

// Behind a box that nobody answers the port is free at once; a driver that heeds no mask is cancelled; with
// one that hangs the port is the thread's until that comes back.
TEST_F(Serial, AThreadThatDoesNotStopIsLeftToItself) {
  using Hung = pal::SerialPort::Hung;
  const struct {
    Hung driver;  // not hung: a box
    pal::Time least, most;
    bool staysOpen, isFree;
  } cases[] = {{Hung::kNot, 0s, 0s, false, true},
               {Hung::kUntilCancelled, 1s, 1s, true, false},
               {Hung::kForEver, 5s, 6s, false, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.most.count());
    Collector collector;
    machine.clock.After(5ms, [&] {
      if (c.driver == Hung::kNot)
        port.FailNextRead(1117, 0);
      else
        port.Hang(c.driver);
      if (!c.staysOpen) port.Deliver(std::vector<uint8_t>(1, 'x'));
    });
    machine.clock.After(20s, [&] {
      if (c.driver == Hung::kNot)
        machine.boxes.Answer(IDOK);
      else
        port.Hang(Hung::kNot);
    });
    Run([&] {
      CSerialInput serial(2, u"");
      serial.StartMon(CreateCollectorWindow(collector), nullptr);
      Sleep(10);
      const pal::Time took = Stop(serial);
      EXPECT_GE(took, c.least);
      EXPECT_LE(took, c.most);
      EXPECT_EQ(serial.IsOpen(), c.staysOpen);
      EXPECT_EQ(CSerialInput(2, u"").IsOpen(), c.isFree);
      serial.Close();
      Sleep(20000);
      PumpUntil([&] { return collector.linesLost > 0; });
    });
    EXPECT_TRUE(collector.bytes.empty());
    EXPECT_EQ(collector.linesLost, 0);
    ExpectNothingLeft();
  }
}

TEST_F(Serial, AMegabyteArrivesByteForByteThroughAQueueOfTenThousand) {
  std::vector<uint8_t> sent(1 << 20);
  std::mt19937 random(2);
  for (uint8_t& byte : sent) byte = static_cast<uint8_t>(random());
  Collector collector;
  machine.clock.At(1s, [&] { port.Deliver(sent); });
  size_t queued = 0;
  machine.clock.At(4s, [&] { queued = machine.QueuedMessages(); });
  Run([&] {
    CSerialInput serial(2, u"");
    serial.StartMon(CreateCollectorWindow(collector), nullptr);
    Sleep(5000);  // as the tool does at start and in its alarms
    PumpUntil([&] { return collector.bytes.size() >= sent.size(); });
    serial.StopMon();
    serial.Close();
  });
  EXPECT_EQ(queued, 10000U);
  EXPECT_TRUE(collector.bytes == sent);
  EXPECT_EQ(collector.linesLost, 0);
  ExpectNothingLeft();
}

TEST_F(Serial, StoppingDoesNotWaitForRoomInTheQueue) {
  Collector collector;
  machine.clock.At(1s, [&] { port.Deliver(std::vector<uint8_t>(20000, 'x')); });
  Run([&] {
    CSerialInput serial(2, u"");
    serial.StartMon(CreateCollectorWindow(collector), nullptr);
    Sleep(2000);
    EXPECT_LE(Stop(serial), 100ms);
    Stop(serial);  // once more does no harm
  });
}

TEST_F(Serial, WithoutAWindowTheCallbackGetsTheBytes) {
  static std::vector<uint8_t> received;
  received.clear();
  machine.clock.At(1s, [&] { port.Deliver(std::vector<uint8_t>(1500, 'y')); });
  Run([&] {
    CSerialInput serial(2, u"");
    serial.StartMon(nullptr, [](int32_t portNumber, const uint8_t* bytes, uint32_t count) {
      EXPECT_EQ(portNumber, 2);
      EXPECT_LE(count, 512U);
      received.insert(received.end(), bytes, bytes + count);
    });
    port.Deliver(std::vector<uint8_t>(2, 'x'));  // before the monitor has got so far as to look
    Sleep(500);
    EXPECT_EQ(received.size(), 2U);
    Sleep(1500);
    serial.StopMon();
  });
  EXPECT_EQ(received.size(), 1502U);
}

TEST_F(Serial, WritesArriveInOrderAndStringsInTheAnsiCodePage) {
  std::string written;
  port.OnWrite([&](std::span<const uint8_t> bytes) { written.append(bytes.begin(), bytes.end()); });
  Run([&] {
    CSerialInput serial(2, u"");
    const uint8_t first[] = {'a', 0, 'b'};
    EXPECT_TRUE(serial.Write(first, 3));
    machine.Fail("WriteFile", 1, ERROR_IO_PENDING);  // the driver takes it over, and is done in a while
    machine.Fail("GetOverlappedResult", 1, ERROR_IO_INCOMPLETE);
    EXPECT_TRUE(serial.Write(first, 3));
    EXPECT_TRUE(serial.WriteString(u"\u20AC\u00E9"));
    EXPECT_TRUE(serial.WriteString(u"c"));
    EXPECT_FALSE(serial.WriteString(u""));
    serial.Close();
    EXPECT_FALSE(serial.Write(first, 3));
  });
  machine.clock.Advance(1ms);
  EXPECT_EQ(written, std::string("a\0b\x80\xE9"
                                 "c",
                                 6));
}

TEST_F(Serial, AThousandLostPortsLeaveNothingBehind) {
  Collector collector;
  Run(
      [&] {
        const HWND window = CreateCollectorWindow(collector);
        for (int n = 0; n < 1000; ++n) {
          machine.Fail("CreateFileW", 1, ERROR_ACCESS_DENIED);
          EXPECT_FALSE(CSerialInput(2, u"").IsOpen());
          CSerialInput serial(2, u"");
          ASSERT_TRUE(serial.IsOpen());
          ASSERT_TRUE(serial.StartMon(window, nullptr));
          const bool vanishes = n % 2 == 0;
          if (vanishes) machine.clock.After(1ms, [&] { port.Vanish(); });
          machine.clock.After(2ms, [&] { port.Return(); });
          const int lost = collector.linesLost;
          if (vanishes) PumpUntil([&] { return collector.linesLost > lost; });
          if (vanishes && n % 4 == 0) {
            EXPECT_FALSE(serial.IsMonitoring());
          }
          Sleep(5);
          serial.StopMon();
          serial.Close();
        }
      },
      600s);
  EXPECT_EQ(collector.linesLost, 500);
  ExpectNothingLeft();
}

TEST_F(Serial, ReadErrorsAreShown) {
  for (const bool atOnce : {false, true})
    machine.clock.At(atOnce ? 2s : 1s, [this, atOnce] {
      port.FailNextRead(1117, 2, atOnce);
      port.Deliver(std::vector<uint8_t>(3, 'z'));
    });
  machine.clock.At(3s, [this] {  // a driver that has nothing more to say
    machine.Fail("ReadFile", 1, ERROR_GEN_FAILURE);
    machine.Fail("ClearCommError", 1, ERROR_GEN_FAILURE, 1);
    port.Deliver(std::vector<uint8_t>(1, 'z'));
  });
  machine.boxes.automaticAnswer = IDOK;
  Collector collector;
  Run([&] {
    CSerialInput serial(2, u"");
    serial.StartMon(CreateCollectorWindow(collector), nullptr);
    PumpUntil([] { return false; });
    serial.StopMon();
  });
  std::vector<std::u16string> boxes;
  for (const auto& box : pal::Select<pal::BoxShown>(machine.Effects()))
    boxes.push_back(box.caption + box.text);
  EXPECT_EQ(boxes, (std::vector<std::u16string>{u"Error<CE1-1117>", u"Error<CE2-2>", u"Error<CE3-2>"}));
  EXPECT_TRUE(collector.bytes.empty());
}

// ---- with the host's time and a tty as the line ----

class SerialOverATty : public ::testing::Test {
 protected:
  SerialOverATty() {
    char name[128] = {};
    termios raw = {};
    cfmakeraw(&raw);
    EXPECT_EQ(openpty(&device_, &tty_, name, &raw, nullptr), 0);
    machine.serial.AttachTty(2, name);
  }
  ~SerialOverATty() override {
    for (const int end : {device_, tty_}) close(end);
  }
  void Send(std::span<const uint8_t> bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = write(device_, bytes.data(), bytes.size());
      ASSERT_GT(count, 0);
      bytes = bytes.subspan(static_cast<size_t>(count));
    }
  }
  [[nodiscard]] std::string Receive(size_t size) const {
    std::string text;
    pollfd ready{device_, POLLIN, 0};
    for (char byte = 0; text.size() < size && poll(&ready, 1, 10'000) > 0 && read(device_, &byte, 1) == 1;)
      text += byte;
    return text;
  }
  // A program that collects what comes until it is told to quit.
  void Start() {
    machine.StartProgram([this] {
      Collector collector;
      CSerialInput serial(2, u"");
      serial.StartMon(window = CreateCollectorWindow(collector), nullptr);
      isReady = true;
      MSG message;
      while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
        if (collector.bytes.size() == answerAt) serial.WriteString(u"Ready");
      }
      serial.StopMon();
      received = std::move(collector.bytes);
      return 0;
    });
    ASSERT_TRUE(machine.clock.AdvanceUntil([this] { return isReady.load(); }, 10s));
  }

  std::atomic<bool> isReady = false;
  HWND window = nullptr;
  size_t answerAt = SIZE_MAX;
  std::vector<uint8_t> received;            // looked at when the program has ended
  pal::Machine machine{pal::Clock::kWall};  // the last: the program ends while all that it uses is there

 private:
  int device_ = -1;
  int tty_ = -1;
};

TEST_F(SerialOverATty, BytesArriveInOrderAndWritesReachTheDevice) {
  std::vector<uint8_t> sent(200'000);
  std::mt19937 random(3);
  for (uint8_t& byte : sent) byte = static_cast<uint8_t>(random());
  answerAt = sent.size();
  Start();
  Send(sent);
  EXPECT_EQ(Receive(5), "Ready");
  EXPECT_EQ(machine.desktop.Send(window, WM_NCCREATE, 0, 0), 1);
  ASSERT_TRUE(machine.desktop.Post(window, WM_QUIT, 0, 0));
  ASSERT_TRUE(machine.clock.AdvanceUntil([this] { return machine.ExitCode().has_value(); }, 10s));
  EXPECT_TRUE(received == sent);
  EXPECT_EQ(machine.CountOpen("thread"), 0);
}

// Ended in the midst of it: the monitor thread polls the tty, the main thread waits for messages.
TEST_F(SerialOverATty, TheMachineEndsARunningProgram) {
  Start();
  Send(std::vector<uint8_t>(100, 'x'));
}

}  // namespace
}  // namespace veltra
