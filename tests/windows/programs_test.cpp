// The programs among others of the desktop: two copies of the tool, the macro plug-in, toolprobe.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/windows/story.h"

namespace simulator {
namespace {

using ProgramsTest = StoryTest;

TEST_F(ProgramsTest, ASecondStartShowsTheFirstAndLeaves) {
  Start("set Sw1CmdVal -1\n");
  WineProcess second("veltratool.exe", {"-s"});
  EXPECT_EQ(second.ExitCode(), 6);
  Play("check dialog Power meter\nsw1 press\nexpect exactly mouse left down\n");
}

TEST_F(ProgramsTest, NoPressOfABurstIsLost) {
  constexpr int kPresses = 100;
  Start("set Sw1CmdVal -1\n");
  for (int n = 0; n < kPresses; ++n) {
    world.Pic().Press(Button::kSwitch1);
    world.Pic().Release(Button::kSwitch1);
  }
  for (int n = 0; n < kPresses; ++n) Play("expect exactly mouse left down\nexpect exactly mouse left up\n");
  Play("expect no mouse\n");
}

TEST_F(ProgramsTest, ThePortMayComeAndGoManyTimesAsAnotherDeviceEachTime) {
  constexpr int kTimes = 20;
  Start();
  const size_t threads = world.ToolThreadCount();
  for (int n = 0; n < kTimes; ++n) {
    world.Pic().Press(Button::kSwitch1);  // the port goes while bytes arrive
    Play("port remove\nport arrive\nled 3\nexpect exactly tool -> SetStatusLed=3\n");
  }
  EXPECT_TRUE(world.WaitUntil([&] { return world.ToolThreadCount() == threads; }, kPatience))
      << world.ToolThreadCount() << " threads, began with " << threads;
}

// What a library of another maker needs comes from the tool's folder or from Windows', and from nowhere else.
TEST_F(ProgramsTest, NothingIsLoadedThatAStrangerLeftSomewhere) {
  namespace fs = std::filesystem;
  constexpr auto kReplace = fs::copy_options::overwrite_existing;
  const fs::path devices = std::getenv("VELTRA_DEVICES");
  const fs::path built = devices.parent_path() / "planted";
  const fs::path drive = fs::path(ProgramPath("")) / "..";
  const fs::path places[] = {drive / "stranger", drive / "windows", drive / "windows/system",
                             ProgramPath("")};  // the last one is safe
  for (const fs::path& place : places) fs::create_directories(place);
  fs::copy_file(built / "needs_planted.dll", ProgramPath("vJoyInterface.dll"), kReplace);
  Play("set StartupDelay 0\n");
  for (const fs::path& place : places) {
    fs::copy_file(built / "planted.dll", place / "planted.dll", kReplace);
    WineProcess tool("cmd", {"/c", "cd C:\\stranger&set PATH=C:\\stranger&C:\\veltra\\veltratool.exe -s"});
    EXPECT_TRUE(world.WaitUntil([&] { return world.HasMainWindow(); }, kPatience));
    world.Post(kCloseMessage, 0, 0);
    tool.ExitCode();
    EXPECT_EQ(fs::remove(drive / "planted.txt"), place == places[3]) << place;
    fs::remove(place / "planted.dll");
  }
  fs::copy_file(devices / "vJoyInterface.dll", ProgramPath("vJoyInterface.dll"), kReplace);
}

// ---- the macro plug-in
// -----------------------------------------------------------------------------------

TEST_F(ProgramsTest, AMacroIsTypedIntoTheTextField) {
  Play(
      "action fn1-short 0 nothing{Entr}\naction fn2-short 0 Hi {{Jan}}, caf\xE9{Left 2}{Shift+X}{Pause "
      "100}{End}!\n");
  Start();
  world.Run({"field", "Letter"});
  Play("tap fn1\ntap fn2\n");
  const auto isTyped = [&] { return world.Run({"texts", "Letter"}) == "yes\tHi {Jan}, caXf\xC3\xA9!"; };
  EXPECT_TRUE(world.WaitUntil(isTyped, kPatience)) << world.Run({"texts", "Letter"});
}

// ---- toolprobe
// ----------------------------------------------------------------------------------------------

// What it prints, with plain line ends.
std::string Probe(const std::vector<std::string>& arguments, int exitCode) {
  WineProcess probe("toolprobe.exe", arguments);
  std::string text = probe.ReadAll();
  EXPECT_EQ(probe.ExitCode(), exitCode);
  std::erase(text, '\r');
  return text;
}

TEST_F(ProgramsTest, TheProbePrintsWhatTheToolKnows) {
  EXPECT_EQ(Probe({}, 1), "");
  Start("set SpeakerVol 70\n");
  Play("battery 64\nlog seen\ncheck log seen\n");
  const std::string text = Probe({}, 0);
  for (const char* line :
       {"capacity        64 %\n", "speaker volume  70\n", "firmware        95 or later\n",
        "codec           ready\n", "  DevSn              SV5-0012345\n", "  BoardName          QX7-i\n",
        "  MemType            DDR3\n", "  Cycles             37\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line << " in " << text;
  EXPECT_EQ(Probe({"--log", "C:\\veltra\\sent.txt"}, 0), "");
  std::stringstream sent;
  sent << std::ifstream(ProgramPath("sent.txt")).rdbuf();
  for (const char* part : {"speaker volume  70", "SpeakerVol              70", "keapi.dll", "missing", "COM2",
                           "veltratool.exe", "version 1.", " seen"})
    EXPECT_NE(sent.str().find(part), std::string::npos) << part << " in " << sent.str();
  EXPECT_TRUE(Probe({"--xml", "report"}, 0).starts_with("<Report Version=\"1\">\n<Item C=\"HW\""));
}

}  // namespace
}  // namespace simulator
