#include <objbase.h>

#include "simulator/board.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::SimulatedTablet;

class DeviceOperations : public ToolTest {
 protected:
  void Request(WPARAM request, int32_t value = 0) {
    tablet.Ask(SimulatedTablet::kDeviceToolRequest, request, value);
    tablet.Advance(50ms);
  }
  void Operate(int32_t operation, int32_t value = 0) { Request(static_cast<WPARAM>(operation + 1), value); }
  int Percent() { return static_cast<int>(machine.playback.volume.level * 100 + 0.5F); }
};

// What leaves the tool by each operation, on the line and on the bus.
TEST_F(DeviceOperations, EachHasItsBytes) {
  // The expander's port B holds 5D before.
  const struct {
    int32_t operation;
    int32_t value;
    std::string line;
    std::string bus;
  } rows[] = {{0, 0, "", "i2c 10: 02 06"},
              {1, 0, "", "i2c 10: 02 86"},
              {3, 0, "EnableGsm=0", "i2c 20: 13 1D"},
              {2, 0, "EnableGsm=1", "i2c 20: 13 5D"},
              {5, 0, "", "i2c 30: 05 22 00 30 01 00"},
              {4, 0, "", "i2c 30: 05 22 00 30 01 28"},
              {6, 5000, "StartWithSwitch=5000", ""},
              {6, 0, "StartWithSwitch=0", ""},
              {6, -7, "StartWithSwitch=0", ""},
              {7, 1, "", ""},
              {9, 0, "", "i2c 38: 00 C9 00 80 00 00; i2c 38: 00 CB 00 80 00 00"},
              {8, 0, "", "i2c 38: 00 C9 00 00 00 00; i2c 38: 00 CB 00 00 00 00"},
              {10, 90, "", "i2c 30: 05 22 00 38 01 28"},
              {10, 0, "", "i2c 30: 05 22 00 00 01 28"},
              {10, 50, "", "i2c 30: 05 22 00 30 01 28"},
              {14, 0, "EnableBT=0", "i2c 20: 13 59"},
              {13, 0, "EnableBT=1", "i2c 20: 13 5D"},
              {16, 0, "", "i2c 30: 05 22 00 30 01 00"},
              {16, 0, "", "i2c 30: 05 22 00 30 01 28"},
              {-1, 1, "", ""},
              {20, 1, "", ""},
              {0x10000, 1, "", ""}};
  Start();
  for (const auto& row : rows) {
    Operate(row.operation, row.value);
    EXPECT_EQ(Joined(NewRequests()), row.line) << row.operation << " " << row.value;
    EXPECT_EQ(Joined(Did({"i2c"})), row.bus) << row.operation << " " << row.value;
  }
  // The mobile phone's supply waits for the controller.
  Operate(3);
  tablet.Pic().SetReplyDelay(1s);
  Did();
  Operate(2);
  EXPECT_EQ(Did({"i2c"}), Texts());
  tablet.Advance(1s);
  EXPECT_EQ(Did({"i2c"}), Texts{"i2c 20: 13 5D"});
}

TEST_F(DeviceOperations, TheCallProfileComesBackToWhereItWas) {
  constexpr uint8_t kWide = 0x2F;
  constexpr uint8_t kNarrow = 0x27;
  tablet.Start();
  tablet.Advance(3300ms);
  Operate(17, 1);  // before the codec is up: the one before is the usual one
  tablet.Advance(10s);
  Did();
  Operate(17, 0);
  EXPECT_EQ(Did({"debug profile"}), Texts{"debug profile normal"});
  Operate(18, 3);
  const std::pair<int32_t, uint8_t> steps[] = {{0, kWide}, {2, kWide},   {1, kNarrow}, {0, kWide},
                                               {0, kWide}, {1, kNarrow}, {1, kNarrow}, {0, kNarrow}};
  for (const auto& [value, width] : steps) {
    Operate(17, value);
    EXPECT_EQ(simulator::TheBoard().codec[0xE280], (std::vector<uint8_t>{0, width})) << value;
  }
  Operate(18, 0);  // no path at all
  Did();
  for (const int32_t value : {1, 0}) Operate(17, value);
  EXPECT_EQ(Did({"debug setprofile"}).size(), 2U);
}

// ---- volumes ----------------------------------------------------------------------------------------------

TEST_F(DeviceOperations, TheVolumeIsStoredAndSetsTheEndpoint) {
  Start();
  EXPECT_FALSE(machine.playback.volume.isMuted);
  const std::pair<int32_t, int> rows[] = {{10, 10},   {30, 50}, {50, 90}, {55, 100},
                                          {100, 100}, {0, 0},   {-40, 0}, {2147483647, 100}};
  for (const auto& [volume, percent] : rows) {
    Operate(10, volume);
    EXPECT_EQ(Percent(), percent) << volume;
    EXPECT_EQ(UserValue(u"SpeakerVol"), static_cast<uint32_t>(volume));
  }
  Operate(10, -1);  // the stored one again
  EXPECT_EQ(UserValue(u"SpeakerVol"), 2147483647U);
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 20), 0x1FFFF);
}

// Five attempts to reach the endpoint, one to set it; a box then, and the tool runs on.
TEST_F(DeviceOperations, AnEndpointThatFails) {
  Start();
  const DWORD error = static_cast<DWORD>(E_FAIL);
  const std::string unreached = "box \"Error termination\": A problem with the audio codec was detected.";
  for (const char* step :
       {"CoCreateGuid", "CoCreateInstance", "GetDefaultAudioEndpoint", "Activate", "SetMute"}) {
    SCOPED_TRACE(step);
    const bool isSetting = std::string_view(step) == "SetMute";
    machine.Fail(step, isSetting ? 1 : 5, error);
    machine.desktop.Post(tablet.MainWindow(), SimulatedTablet::kDeviceToolRequest, 11, 100);
    if (!isSetting) tablet.Advance(9999ms);
    EXPECT_TRUE(machine.boxes.Shown().empty());
    Did();
    tablet.Advance(10ms);
    EXPECT_EQ(Joined(Did({"box", "i2c"})),
              isSetting ? "box \"Fatal error\": The program will exit." : unreached);
    ASSERT_EQ(machine.boxes.Shown().size(), 1U);
    machine.boxes.Answer(IDOK);
    tablet.Advance(10ms);
    EXPECT_EQ(Did({"i2c"}), Texts{"i2c 30: 05 22 00 3A 01 28"});
    EXPECT_EQ(machine.CountOpen("com object"), 0);
  }
  const std::string retried = "debug SetSpeakerVolume failed: retrying; playback level 50 %";
  machine.boxes.automaticAnswer = IDOK;
  for (const auto& [step, box] :
       {std::pair("CoCreateInstance", ""),
        {"SetMasterVolumeLevelScalar", "box \"Fatal error\": The program will exit.; "}}) {
    machine.Fail(step, 1, error);
    machine.desktop.Post(tablet.MainWindow(), SimulatedTablet::kDeviceToolRequest, 11, 30);
    tablet.Advance(1100ms);
    EXPECT_EQ(Joined(Did({"debug SetSpeaker", "playback level", "box"})), box + retried);
  }
}

// ---- outside tools ----------------------------------------------------------------------------------------

const std::u16string kKey = u"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power";
const std::u16string kDeviceKey =
    u"SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_8086&DEV_9C3A&SUBSYS_72708086&REV_04\\3&11583659&0&B0\\"
    u"Device Parameters\\WDF";

TEST_F(DeviceOperations, PowerSettingsThatAreOnAreTurnedOffBeforeTheWindowExists) {
  machine.registry.SetDword(HKEY_LOCAL_MACHINE, kKey, u"HiberbootEnabled", 1);
  machine.registry.SetDword(HKEY_LOCAL_MACHINE, kDeviceKey, u"IdleInWorkingState", 1);
  machine.system.executedProgramTime = 60s;  // each waits for its 5 seconds
  tablet.Start();
  tablet.Advance(9999ms);
  EXPECT_EQ(tablet.MainWindow(), nullptr);
  tablet.Advance(2ms);
  EXPECT_NE(tablet.MainWindow(), nullptr);
  EXPECT_NE(machine.modules.search.errorMode, 0U);
  const auto started = New<pal::ProgramExecuted>();
  ASSERT_EQ(started.size(), 2U);
  for (size_t n = 0; n < 2; ++n) {
    EXPECT_EQ(started[n].file, u"C:\\Program Files\\Veltra\\FlagToggler.exe");
    EXPECT_EQ(started[n].verb, u"runas");
    EXPECT_EQ(started[n].show, SW_SHOWNORMAL);
    EXPECT_EQ(started[n].errorMode, 0U);
    EXPECT_EQ(started[n].parameters,
              u"OurQuietSmallMarker -KeyName \"" + (n == 0 ? kKey : kDeviceKey) + u"\" -ValueName \"" +
                  (n == 0 ? u"HiberbootEnabled" : u"IdleInWorkingState") + u"\" -SetValue 0");
  }
}

TEST_F(DeviceOperations, PowerSettingsThatAreOffOrOddStartNothing) {
  const uint8_t text[] = {1, 0, 0, 0};
  machine.registry.SetDword(HKEY_LOCAL_MACHINE, kKey, u"HiberbootEnabled", 2);
  machine.registry.Set(HKEY_LOCAL_MACHINE, kDeviceKey, u"IdleInWorkingState", REG_SZ, text);
  Start();
  EXPECT_TRUE(pal::Select<pal::ProgramExecuted>(tablet.Since(0)).empty());
  Operate(15, 70);  // brightness
  const auto started = New<pal::ProgramExecuted>();
  ASSERT_EQ(started.size(), 1U);
  EXPECT_EQ(started[0].file, u"C:\\Program Files\\Veltra\\nircmd.exe");
  EXPECT_EQ(started[0].parameters, u"setbrightness 70");
  EXPECT_EQ(started[0].directory, u"C:\\Program Files\\Veltra\\");
  EXPECT_EQ(started[0].verb, u"");
}

// Neither is looked for anywhere else.
TEST_F(DeviceOperations, OutsideToolsThatAreMissingAreMissedInSilence) {
  machine.registry.SetDword(HKEY_LOCAL_MACHINE, kKey, u"HiberbootEnabled", 1);
  for (const char16_t* name : {u"FlagToggler.exe", u"nircmd.exe"})
    machine.system.RemoveProgram(std::u16string(pal::Disk::kProgramDirectory) + name);
  Start();
  Operate(15, 70);
  machine.Fail("GetModuleFileNameW", 1, ERROR_ACCESS_DENIED);
  Operate(15, 70);
  EXPECT_TRUE(machine.boxes.Shown().empty());
  EXPECT_TRUE(pal::Select<pal::ProgramExecuted>(tablet.Since(0)).empty());
}

}  // namespace
}  // namespace veltra
