#include "simulator/joystick.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::Button;

class Switches : public ToolTest {
 protected:
  Switches() {
    simulator::TheJoystick() = {};
    SetUserValue(u"StartupDelay", 0);
  }
  std::vector<uint32_t> NewMouse() {
    std::vector<uint32_t> flags;
    for (const auto& input : New<pal::MouseInput>()) flags.push_back(input.flags);
    return flags;
  }
  // "Class wParam lParam" of each message to other programs.
  std::vector<std::string> NewMessages() {
    std::vector<std::string> texts;
    for (const auto& sent : New<pal::ForeignMessageSent>())
      texts.push_back(std::string(sent.className.begin(), sent.className.end()) + " " +
                      std::to_string(sent.wParam) + " " + std::to_string(sent.lParam));
    return texts;
  }
  void PressAndRelease(Button button, pal::Time held = 100ms) {
    Press(button);
    tablet.Advance(held);
    Release(button);
  }

  using Texts = std::vector<std::string>;
  using Flags = std::vector<uint32_t>;
};

TEST_F(Switches, EachValueHasItsOutput) {
  SetUserValue(u"Sw1CmdVal", -1);
  SetUserValue(u"Sw2CmdVal", -2);
  Start();
  Press(Button::kSwitch1);
  EXPECT_EQ(NewMouse(), Flags{MOUSEEVENTF_LEFTDOWN});
  PressAndRelease(Button::kSwitch2);
  EXPECT_EQ(NewMouse(), (Flags{MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP}));
  Release(Button::kSwitch1);
  EXPECT_EQ(NewMouse(), Flags{MOUSEEVENTF_LEFTUP});
}

TEST_F(Switches, AnyOtherValueIsAKeyByItsLowByte) {
  SetUserValue(u"Sw1CmdVal", VK_RETURN);
  SetUserValue(u"Sw2CmdVal", 50008);  // just behind the joystick buttons
  Start();
  PressAndRelease(Button::kSwitch1);
  PressAndRelease(Button::kSwitch2);
  const auto keys = New<pal::KeyInput>();
  ASSERT_EQ(keys.size(), 4U);
  EXPECT_EQ(keys[0].virtualKey, VK_RETURN);
  EXPECT_EQ(keys[0].scanCode, 0x1C);
  EXPECT_EQ(keys[0].flags, 0U);
  EXPECT_EQ(keys[1].flags, static_cast<uint32_t>(KEYEVENTF_KEYUP));
  EXPECT_EQ(keys[2].virtualKey, 50008 & 0xFF);
}

TEST_F(Switches, JoystickButtons) {
  SetUserValue(u"Sw1CmdVal", 50000);
  SetUserValue(u"Sw2CmdVal", 50007);
  Start();
  Press(Button::kSwitch1);
  Press(Button::kSwitch2);
  EXPECT_EQ(simulator::TheJoystick().pressed, 0x81U);
  simulator::TheJoystick().owner =
      simulator::Joystick::Owner::kNobody;  // given up: taken again before the next button
  Release(Button::kSwitch1);
  EXPECT_EQ(simulator::TheJoystick().owner, simulator::Joystick::Owner::kCaller);
  Release(Button::kSwitch2);
  EXPECT_EQ(simulator::TheJoystick().pressed, 0U);
}

TEST_F(Switches, WithoutAJoystickItsButtonsDoNothing) {
  simulator::TheJoystick().versionsMatch = false;
  SetUserValue(u"Sw1CmdVal", 50003);
  Start();
  PressAndRelease(Button::kSwitch1);
  EXPECT_TRUE(New<pal::DeviceCall>().empty());
  EXPECT_TRUE(New<pal::KeyInput>().empty());
}

TEST_F(Switches, NormalNotifiesTheCommunicationApplicationOrEveryone) {
  SetUserValue(u"TB4RevSw", 1);
  Start();
  PressAndRelease(Button::kSwitch1);
  EXPECT_EQ(NewMessages(), (Texts{"* 1 1", "* 1 0"}));
  tablet.TheDesk().Open("Talk Builder 4 Class");
  PressAndRelease(Button::kSwitch1);
  Press(Button::kSwitch2);
  EXPECT_EQ(NewMessages(),
            (Texts{"Talk Builder 4 Class 2 1", "Talk Builder 4 Class 2 0", "Talk Builder 4 Class 1 1"}));
}

TEST_F(Switches, ApplicationsGoFirst) {
  SetUserValue(u"Sw1CmdVal", -1);
  SetUserValue(u"LexoraRevSw", 1);
  Start();
  tablet.TheDesk().Open("Lexora");
  tablet.TheDesk().Open("Talk Builder 4 Class");
  PressAndRelease(Button::kSwitch1);
  PressAndRelease(Button::kSwitch2);
  EXPECT_EQ(NewMessages(), (Texts{"Lexora 0 74", "Lexora 0 106", "Lexora 0 68", "Lexora 0 100"}));
  tablet.TheDesk().Open("Talk Builder");
  PressAndRelease(Button::kSwitch1);
  PressAndRelease(Button::kSwitch2);
  const auto sent = New<pal::ForeignMessageSent>();
  ASSERT_EQ(sent.size(), 4U);
  const int64_t letters[] = {'D', 'd', 'J', 'j'};
  for (size_t n = 0; n < 4; ++n) {
    EXPECT_EQ(sent[n].className, u"Talk Builder");
    EXPECT_EQ(sent[n].message, static_cast<uint32_t>(WM_APP + 100));
    EXPECT_EQ(sent[n].lParam, letters[n]);
  }
}

TEST_F(Switches, EveryEventKeepsTheDisplayAwake) {
  SetUserValue(u"AllowEscape", 0);
  Start();
  for (const auto& button : simulator::kButtonNames) PressAndRelease(button.button);
  const auto states = New<pal::ExecutionState>();
  EXPECT_EQ(states.size(), 10U);
  for (const auto& state : states)
    EXPECT_EQ(state.flags, static_cast<uint32_t>(ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED));
}

TEST_F(Switches, SideButtonsNotifyAndTellShortFromLong) {
  Start();
  PressAndRelease(Button::kTop, 1000ms);
  EXPECT_EQ(NewMessages(), (Texts{"* 4 1", "* 4 0"}));
  PressAndRelease(Button::kBottom, 2000ms);
  const auto effects = tablet.Since(mark);
  EXPECT_EQ(pal::Select<pal::Beep>(effects).size(), 1U);
  EXPECT_EQ(NewMessages(), (Texts{"* 5 1", "* 5 0"}));
}

TEST_F(Switches, AMiddleButtonHeldLongTypesEscapeAndHeldShortlyGoesToTheMouseFilter) {
  Start();
  PressAndRelease(Button::kMiddle, 1000ms);
  auto effects = tablet.Since(mark);
  ASSERT_EQ(pal::Select<pal::DeviceCall>(effects).size(), 1U);
  EXPECT_EQ(pal::Select<pal::DeviceCall>(effects)[0].call, "1");
  EXPECT_TRUE(pal::Select<pal::Beep>(effects).empty());

  mark = tablet.Mark();
  Press(Button::kMiddle);
  tablet.Advance(1400ms);
  Press(Button::kMiddle);  // a second press starts the time anew
  tablet.Advance(1400ms);
  EXPECT_TRUE(New<pal::KeyInput>().empty());
  tablet.Advance(200ms);
  effects = tablet.Since(mark);
  ASSERT_EQ(pal::Select<pal::KeyInput>(effects).size(), 2U);
  EXPECT_EQ(pal::Select<pal::KeyInput>(effects)[0].virtualKey, VK_ESCAPE);
  EXPECT_EQ(pal::Select<pal::DeviceCall>(effects)[0].call, "0");
  mark = tablet.Mark();
  Release(Button::kMiddle);
  EXPECT_TRUE(New<pal::DeviceCall>().empty());
}

TEST_F(Switches, ADisabledMiddleButtonOnlyWakes) {
  SetUserValue(u"AllowEscape", 0);
  Start();
  PressAndRelease(Button::kMiddle, 2000ms);
  const std::vector<pal::Effect> effects = tablet.Since(mark);
  EXPECT_EQ(pal::Select<pal::ExecutionState>(effects).size(), 2U);
  EXPECT_TRUE(pal::Select<pal::KeyInput>(effects).empty());
  EXPECT_TRUE(pal::Select<pal::DeviceCall>(effects).empty());
  EXPECT_TRUE(pal::Select<pal::ForeignMessageSent>(effects).empty());
}

TEST_F(Switches, AFailedRegistrationSuppressesNotificationsOnly) {
  machine.Fail("RegisterWindowMessageW", 1, ERROR_NOT_ENOUGH_MEMORY);
  SetUserValue(u"Sw2CmdVal", -1);
  Start();
  PressAndRelease(Button::kSwitch1);
  PressAndRelease(Button::kTop);
  EXPECT_TRUE(NewMessages().empty());
  PressAndRelease(Button::kSwitch2);
  EXPECT_EQ(NewMouse(), (Flags{MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP}));
}

// ---- nothing stays pressed --------------------------------------------------------------------------------

class Held : public Switches {
 protected:
  // Starts with switch 1 as a left click, held down.
  void Hold() {
    SetUserValue(u"Sw1CmdVal", -1);
    Start();
    Press(Button::kSwitch1);
    ASSERT_EQ(NewMouse(), Flags{MOUSEEVENTF_LEFTDOWN});
  }
  void ExpectLetGo() { EXPECT_EQ(NewMouse(), Flags{MOUSEEVENTF_LEFTUP}); }
  void ExpectLateReleaseDoesNothing() {
    Release(Button::kSwitch1);
    EXPECT_TRUE(NewMouse().empty());
  }
};

TEST_F(Held, IsLetGoWhenThePortIsRemoved) {
  Hold();
  tablet.NotifyPort(false, u"COM2");
  ExpectLetGo();
  tablet.NotifyPort(true, u"COM2");
  ExpectLateReleaseDoesNothing();
  PressAndRelease(Button::kSwitch1);
  EXPECT_EQ(NewMouse(), (Flags{MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP}));
}

TEST_F(Held, IsLetGoWhenThePortVanishesWithoutAWordAndThePortIsTriedAgain) {
  Hold();
  tablet.VanishPort();
  tablet.Advance(20ms);
  ExpectLetGo();
  tablet.ReturnPort();
  tablet.Advance(31s);
  ExpectLateReleaseDoesNothing();
  PressAndRelease(Button::kSwitch1);
  EXPECT_EQ(NewMouse().size(), 2U);
}

TEST_F(Held, IsLetGoWhenTheTabletSuspends) {
  Hold();
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  ExpectLetGo();
  ExpectLateReleaseDoesNothing();
}

TEST_F(Held, IsLetGoAtTheEndOfTheTool) {
  Hold();
  ASSERT_TRUE(tablet.Quit());
  ExpectLetGo();
}

TEST_F(Held, IsLetGoAtTheEndOfTheSession) {
  Hold();
  tablet.Ask(WM_ENDSESSION, TRUE);
  ExpectLetGo();
}

TEST_F(Held, IsLetGoWhenAnApplicationTakesTheRelease) {
  Hold();
  tablet.TheDesk().Open("Talk Builder");
  Release(Button::kSwitch1);
  ExpectLetGo();
}

TEST_F(Held, JoystickButtonIsLetGoBeforeTheDeviceIsGivenBack) {
  SetUserValue(u"Sw1CmdVal", 50002);
  Start();
  Press(Button::kSwitch1);
  EXPECT_EQ(simulator::TheJoystick().pressed, 4U);
  ASSERT_TRUE(tablet.Quit());
  EXPECT_EQ(simulator::TheJoystick().pressed, 0U);
  EXPECT_EQ(simulator::TheJoystick().owner, simulator::Joystick::Owner::kNobody);
}

// Bytes of a press may wait in the message queue when the removal is handled.
TEST_F(Held, APressThatIsHandledAfterThePortWasClosedIsATap) {
  SetUserValue(u"Sw1CmdVal", -1);
  Start();
  tablet.NotifyPort(false, u"COM2");
  for (const char byte : std::string_view("\x55\x55\x0ASw1Make\x7D\x04"))
    machine.Post(tablet.MainWindow(), WM_APP + 0xCD, static_cast<uint8_t>(byte), 2);
  tablet.Advance(10ms);
  EXPECT_EQ(NewMouse(), (Flags{MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP}));
}

}  // namespace
}  // namespace veltra
