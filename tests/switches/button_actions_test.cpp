// What the side buttons can be set to, one effect after the other.
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::Button;
using simulator::SimulatedTablet;

struct Row {
  int type;
  int value;
  std::string text;
  std::string did;  // after the end of the sound that plays
};

class SideButtonActions : public ToolTest {
 protected:
  SideButtonActions() { SetUserValue(u"StartupDelay", 0); }

  // Presses the buttons that are set so: top and bottom, then both for long.
  void Try(std::span<const Row> rows) {
    std::string profile;
    for (size_t n = 0; n < rows.size(); ++n)
      profile += "[Button" + std::to_string(n + 1) + "]\r\nBtCmd=" + std::to_string(rows[n].type) +
                 "\r\nBtCmdVal=" + std::to_string(rows[n].value) + "\r\nBtCmdText=" + rows[n].text + "\r\n";
    machine.disk.Write(SimulatedTablet::kProfileFile, profile);
    Start();
    for (size_t n = 0; n < rows.size(); ++n) {
      Did();
      Press(n % 2 == 0 ? Button::kTop : Button::kBottom);
      EXPECT_EQ(Did({"sound", "key", "beep", "run"}), Texts());
      tablet.Advance(n < 2 ? 1400ms : 2000ms);
      Release(n % 2 == 0 ? Button::kTop : Button::kBottom);
      Texts did = Did();
      std::erase_if(did, [](const std::string& text) {
        return text == "awake" || text.starts_with("notify") || text.starts_with("tray") ||
               text.starts_with("timer");
      });
      EXPECT_EQ(Joined(did), std::string(n < 2 ? "" : "beep; ") + "sound stopped" + rows[n].did)
          << rows[n].type << " " << rows[n].value << " " << rows[n].text;
    }
    ASSERT_TRUE(tablet.Quit());
  }
};

TEST_F(SideButtonActions, DoWhatTheProfileSays) {
  for (const char* application : {"Talk Builder 4 Class", "PageVoice", "Wendle"})
    tablet.TheDesk().Open(application);
  const std::string beside = "; sound C:\\Program Files\\Veltra\\";
  const Row rows[] = {
      {1, 0x120, "", "; key 0x20 down; key 0x20 up"},
      {8, 3, "", ""},
      {10, 0, "", ""},
      {-7, 5, "", ""},
      {5, -2, "", "; data 1703 to Talk Builder 4 Class: FE FF FF FF"},
      {6, 12, "", "; message 0x805B to PageVoice 12 0"},
      {7, 13, "", "; message 0x8049 to Wendle 13 0"},
      {9, -1, "c7", "; data 1704 to Talk Builder 4 Class: 63 00 37 00"},
      {2, -1, "bell.wav", beside + "bell.wav (missing)"},
      {2, -1, "D:\\bell.wav", "; sound D:\\bell.wav (missing)"},
      {2, -1, "\\\\server\\bell.wav", "; sound \\\\server\\bell.wav (missing)"},
      {2, -1, "\\bell.wav", beside + "\\bell.wav (missing)"},
      {2, -1, "D:bell.wav", beside + "D:bell.wav (missing)"},
      {2, -1, "x", beside + "x (missing)"},
      {2, -1, "", ""},
      {3, -1, "", ""},
      {3, -1, "notepad.exe", "; run notepad.exe"},
      {3, -1, "C:\\Tools\\Speech\\talk.exe", "; run talk.exe"},
      {0, -1, "caf\xE9{Enter}{Ctrl+S 2}",
       "; macro types caf\xC3\xA9; macro presses 13; macro presses 17+83 2 times"},
      {0, -1, "Hello{Entr}", "; macro refused at 6; beep"},
  };
  for (size_t n = 0; n < std::size(rows); n += 4) Try(std::span(rows).subspan(n, 4));
  const std::vector<pal::Effect> effects = tablet.Since(0);
  for (const auto& sound : pal::Select<pal::SoundPlayed>(effects))
    if (!sound.file.empty()) {
      EXPECT_EQ(sound.flags, 0x20001U);
    }
  const auto run = pal::Select<pal::ProgramExecuted>(effects);
  ASSERT_EQ(run.size(), 2U);
  EXPECT_EQ(run[0].directory, u"");
  EXPECT_EQ(run[0].errorMode, 0U);
  EXPECT_EQ(run[1].directory, u"C:\\Tools\\Speech");
  EXPECT_EQ(run[1].file, u"C:\\Tools\\Speech\\talk.exe");
  EXPECT_EQ(run[1].verb + run[1].parameters, u"");
  EXPECT_EQ(run[1].show, SW_SHOWNORMAL);
}

TEST_F(SideButtonActions, WithoutApplicationsAndPlugInNothingIsSent) {
  tablet.TheDesk().Remove(simulator::Library::kEnglishMacros);
  const Row rows[] = {{5, -2, "", ""}, {6, 12, "", ""}, {9, -1, "c7", ""}, {0, -1, "Hello", "; beep"}};
  Try(rows);
}

TEST_F(SideButtonActions, A32BitToolOn64BitsStartsProgramsWithTheRealSystemDirectory) {
  machine.system.isWow64 = true;
  const Row started[] = {
      {3, -1, "C:\\a.exe", "; system directory real; run a.exe; system directory redirected"}};
  Try(started);
  machine.Fail("Wow64EnableWow64FsRedirection", 1, ERROR_INVALID_FUNCTION);
  const Row refused[] = {{3, -1, "C:\\a.exe", ""}};
  Try(refused);
}

}  // namespace
}  // namespace veltra
