// Messages between the program and the outside, and the person who answers its boxes.
#include <dbt.h>

#include <memory>

#include "tests/pal/machine_program.h"

namespace {

using namespace std::chrono_literals;
using pal::Select;

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
  machine.StartProgram([&] {
    CreateMutexW(nullptr, TRUE, TEXT("VeltraInternal"));
    error = GetLastError();
    return 6;
  });
  machine.Advance(2s);
  EXPECT_EQ(error, static_cast<DWORD>(ERROR_ALREADY_EXISTS));
}

// ---- the person ---------------------------------------------------------------------------------------------

TEST_F(MachineTest, ThePersonAnswersTheInnermostBox) {
  std::vector<int> answers;
  machine.StartProgram([&] {
    const HWND window = MakeWindow();
    WindowHandler() = [&](HWND, UINT message, WPARAM, LPARAM) -> LRESULT {
      if (message == WM_APP) answers.push_back(MessageBoxW(window, TEXT("inner"), TEXT("c"), MB_YESNO));
      return 0;
    };
    PostMessageW(window, WM_APP, 0, 0);
    answers.push_back(MessageBoxW(nullptr, TEXT("outer"), nullptr, MB_YESNO | MB_ICONINFORMATION));
    answers.push_back(MessageBoxW(nullptr, TEXT("automatic"), TEXT("c"), MB_OK));
    return 0;
  });
  machine.Advance(1s);
  const auto boxes = machine.OpenMessageBoxes();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_EQ(boxes[0].text, u"outer");
  EXPECT_EQ(boxes[0].caption, u"Error");
  EXPECT_EQ(boxes[1].text, u"inner");
  machine.AnswerMessageBox(IDYES);
  machine.Advance(1s);
  EXPECT_EQ(machine.OpenMessageBoxes().size(), 1u);
  machine.AnswerMessageBoxesWith(IDOK);
  machine.At(3s, [&] { machine.AnswerMessageBox(IDNO); });
  machine.Advance(2s);
  EXPECT_EQ(answers, (std::vector<int>{IDYES, IDNO, IDOK}));
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

}  // namespace
