// Profile files, written by the tool and read back by the private-profile functions: natively those of the
// platform layer, in the Windows build the system's own.
#include <gtest/gtest.h>
#include <windows.h>

#include "app/app_state.h"
#include "switches/button_profile.h"

namespace veltra {
namespace {

class StoredProfile : public testing::Test {
 protected:
  StoredProfile() {
    WCHAR folder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    path_ = WideText(folder, length).append(TEXT("veltra contract.bpf"));
    DeleteFileW(path_.c_str());
    GetAppState();
  }
  ~StoredProfile() override {
    DeleteFileW(path_.c_str());
    DestroyAppState();
  }
  ButtonActions& Actions() { return GetAppState().switches.buttonActions; }
  // What comes back of a text in the last record.
  WideText StoreText(const WideText& text) {
    Actions() = {};
    Actions()[kBottomLong] = {0, -1, text};
    SaveProfile(path_);
    Actions() = {};
    LoadProfile(path_);
    EXPECT_EQ(Actions()[kBottomLong].BtCmdVal, -1);
    return Actions()[kBottomLong].BtCmdText;
  }

  WideText path_;
};

TEST_F(StoredProfile, ATextComesBackAsItWas) {
  const WideText texts[] = {
      TEXT(""),
      TEXT("x"),
      WideText(330, TEXT('a')),
      WideText(387, TEXT('b')),
      WideText(1022, TEXT('c')),
      TEXT("a=b;c [Button2] \\ \"this\" it's"),
      TEXT("caf\x00E9 \x20AC"),
      TEXT("\x0416\x4E2D\xD83D\xDE00"),
      WideText(1022, TEXT('\x0391')),
      TEXT("plain again"),
  };
  for (const WideText& text : texts) EXPECT_EQ(StoreText(text), text) << text.size();
  EXPECT_EQ(StoreText(WideText(1100, TEXT('z'))), WideText(1022, TEXT('z')));
}

TEST_F(StoredProfile, BlanksAndQuotesAroundATextAreLost) {
  EXPECT_EQ(StoreText(TEXT("  two  ")), TEXT("two"));
  EXPECT_EQ(StoreText(TEXT("\"said\"")), TEXT("said"));
}

TEST_F(StoredProfile, EveryRecordHasItsSection) {
  for (size_t i = 0; i < Actions().size(); ++i)
    Actions()[i] = {static_cast<int32_t>(i) + 1, -static_cast<int32_t>(i), {}};
  SaveProfile(path_);
  Actions() = {};
  LoadProfile(path_);
  for (size_t i = 0; i < Actions().size(); ++i) {
    EXPECT_EQ(Actions()[i].BtCmd, static_cast<int32_t>(i) + 1);
    EXPECT_EQ(Actions()[i].BtCmdVal, -static_cast<int32_t>(i));
  }
}

}  // namespace
}  // namespace veltra
