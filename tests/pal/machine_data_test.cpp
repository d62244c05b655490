// The machine's registry, disk, modules and version of Windows: what a test sets up, and the effects that it
// sees.
#include <gtest/gtest.h>
#include <windows.h>

#include <shlobj.h>

#include <fstream>

#include "pal/machine.h"

namespace {

using pal::Machine;
using namespace std::chrono_literals;

constexpr std::u16string_view kKey = u"SOFTWARE\\Veltra\\Test";
constexpr std::u16string_view kFile = u"C:\\Users\\Public\\Documents\\Log.txt";

class MachineData : public testing::Test {
 protected:
  // Runs it as a program that must come to its end.
  void Run(const std::function<void()>& program) {
    machine_.StartProgram([&program] {
      program();
      return 0;
    });
    ASSERT_TRUE(machine_.AdvanceUntil([this] { return machine_.ExitCode().has_value(); }, 1min));
  }

  template <class Detail>
  [[nodiscard]] std::vector<Detail> EffectsOf() const {
    return pal::Select<Detail>(machine_.Effects());
  }

  Machine machine_;
};

HANDLE Open(std::u16string_view path, DWORD access, DWORD disposition = OPEN_EXISTING,
            DWORD share = FILE_SHARE_READ) {
  return CreateFileW(std::u16string(path).c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

TEST_F(MachineData, RegistryBothWays) {
  machine_.SetRegistryDword(HKEY_CURRENT_USER, kKey, u"Given", 0xFFFFFFFF);
  Run([] {
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software\\VELTRA\\Test", 0, KEY_READ | KEY_WRITE, &key),
              ERROR_SUCCESS);
    DWORD number = 0;
    DWORD size = sizeof(number);
    EXPECT_EQ(RegQueryValueExW(key, u"given", nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(number, 0xFFFFFFFF);
    number = 7;
    RegSetValueExW(key, u"Taken", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
    RegCloseKey(key);
  });
  EXPECT_EQ(machine_.RegistryDword(HKEY_CURRENT_USER, kKey, u"TAKEN"), 7U);
  EXPECT_EQ(machine_.RegistryValueNames(HKEY_CURRENT_USER, kKey),
            (std::vector<std::u16string>{u"Given", u"Taken"}));
  const auto writes = EffectsOf<pal::RegistryWrite>();
  ASSERT_EQ(writes.size(), 1U);
  EXPECT_EQ(writes[0].key, u"HKEY_CURRENT_USER\\SOFTWARE\\Veltra\\Test");
  EXPECT_EQ(writes[0].data, (std::vector<uint8_t>{7, 0, 0, 0}));

  machine_.DeleteRegistryValue(HKEY_CURRENT_USER, kKey, u"given");
  EXPECT_FALSE(machine_.RegistryDword(HKEY_CURRENT_USER, kKey, u"Given"));
  machine_.DeleteRegistryKey(HKEY_CURRENT_USER, u"software\\veltra");
  EXPECT_TRUE(machine_.RegistryValueNames(HKEY_CURRENT_USER, kKey).empty());
}

TEST_F(MachineData, RegistryThatRefuses) {
  machine_.Fail("RegCreateKeyExW", 1, ERROR_ACCESS_DENIED);
  Run([] {
    HKEY key = nullptr;
    const auto create = [&key] {
      return RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\New", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                             &key, nullptr);
    };
    EXPECT_EQ(create(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(create(), ERROR_SUCCESS);
    RegCloseKey(key);
  });
}

TEST_F(MachineData, FilesOfTheMachineAreFilesOfTheProgram) {
  machine_.WriteFile(kFile, "first\r\n");
  Run([] {
    const HANDLE file = Open(u"c:\\users\\PUBLIC\\documents\\LOG.TXT", GENERIC_READ | GENERIC_WRITE);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    SetFilePointerEx(file, {}, nullptr, FILE_END);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, "second", 6, &written, nullptr));
    EXPECT_TRUE(CloseHandle(file));
  });
  EXPECT_EQ(machine_.ReadFile(kFile), "first\r\nsecond");
  const auto writes = EffectsOf<pal::FileWrite>();
  ASSERT_EQ(writes.size(), 1U);
  EXPECT_EQ(writes[0].bytes, "second");
  EXPECT_TRUE(std::ifstream(machine_.HostPath(u"C:/users/public/documents/log.txt")).good());
  machine_.RemoveFile(kFile);
  EXPECT_FALSE(machine_.ReadFile(kFile));
}

TEST_F(MachineData, OtherProgramsHoldFiles) {
  machine_.WriteFile(kFile, "x");
  machine_.HoldForWriting(kFile, true);
  machine_.WriteFile(u"C:\\fixed.txt", "x");
  machine_.SetReadOnly(u"C:\\FIXED.txt", true);
  Run([] {
    EXPECT_EQ(Open(kFile, GENERIC_READ | GENERIC_WRITE), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(CopyFileW(u"C:\\fixed.txt", std::u16string(kFile).c_str(), FALSE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    const HANDLE reader = Open(kFile, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_NE(reader, INVALID_HANDLE_VALUE);
    CloseHandle(reader);
    EXPECT_EQ(Open(u"C:\\fixed.txt", GENERIC_WRITE), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
  });
  machine_.HoldForWriting(kFile, false);
  machine_.SetReadOnly(u"C:\\fixed.txt", false);
  Run([] {
    for (const std::u16string_view path : {kFile, std::u16string_view(u"C:\\fixed.txt")}) {
      const HANDLE file = Open(path, GENERIC_WRITE);
      EXPECT_NE(file, INVALID_HANDLE_VALUE);
      CloseHandle(file);
    }
  });
}

TEST_F(MachineData, WhatAProgramLeavesOpenGoesWithIt) {
  machine_.WriteFile(kFile, "x");
  Run([this] {
    EXPECT_NE(Open(kFile, GENERIC_WRITE, OPEN_EXISTING, 0), INVALID_HANDLE_VALUE);
    EXPECT_EQ(machine_.CountOpen("file"), 1);
  });
  EXPECT_EQ(machine_.CountOpen("file"), 0);
  Run([] { EXPECT_NE(Open(kFile, GENERIC_WRITE, OPEN_EXISTING, 0), INVALID_HANDLE_VALUE); });
}

int Answer() {
  return 42;
}

Machine::Export MakeExport(const char* name) {
  return {name, reinterpret_cast<FARPROC>(reinterpret_cast<void*>(Answer))};
}

TEST_F(MachineData, ModulesAreLoadedByTheirFullPath) {
  machine_.AddModule(u"Device.dll", {MakeExport("Answer")});
  Run([this] {
    const std::u16string path = std::u16string(Machine::kProgramDirectory) + u"DEVICE.DLL";
    EXPECT_EQ(LoadLibraryExW(u"device.dll", nullptr, 0), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
    const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    ASSERT_NE(module, nullptr);
    const auto answer =
        reinterpret_cast<int (*)()>(reinterpret_cast<void*>(GetProcAddress(module, "Answer")));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(GetProcAddress(module, "answer"), nullptr);

    // Each load wants its own release; meanwhile the file may go.
    EXPECT_EQ(LoadLibraryExW(path.c_str(), nullptr, 0), module);
    EXPECT_EQ(GetModuleHandleW(u"device"), module);
    machine_.RemoveModule(u"device.dll");
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_NE(GetProcAddress(module, "Answer"), nullptr);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_EQ(LoadLibraryExW(path.c_str(), nullptr, 0), nullptr);
  });
  EXPECT_EQ(EffectsOf<pal::ModuleLoaded>().size(), 1U);
  EXPECT_EQ(EffectsOf<pal::ModuleFreed>().size(), 1U);
}

TEST_F(MachineData, VersionLanguageAndFolders) {
  const auto isAtLeast = [](DWORD major, DWORD minor, WORD servicePack) {
    OSVERSIONINFOEXW wanted = {};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = major;
    wanted.dwMinorVersion = minor;
    wanted.wServicePackMajor = servicePack;
    ULONGLONG conditions = 0;
    for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR})
      conditions = VerSetConditionMask(conditions, field, VER_GREATER_EQUAL);
    return VerifyVersionInfoW(&wanted, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR,
                              conditions) != FALSE;
  };
  machine_.SetWindowsVersion(5, 1, 3);
  machine_.SetCommonDocuments(false);
  Run([&] {
    EXPECT_TRUE(isAtLeast(5, 1, 3));
    EXPECT_TRUE(isAtLeast(5, 0, 4));
    EXPECT_FALSE(isAtLeast(5, 1, 4));
    EXPECT_FALSE(isAtLeast(6, 0, 0));
    SetThreadUILanguage(0x0413);
    SetThreadLocale(MAKELCID(0x0809, SORT_DEFAULT));
    WCHAR path[MAX_PATH] = {};
    EXPECT_TRUE(FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_DOCUMENTS, nullptr, SHGFP_TYPE_CURRENT, path)));
  });
  const auto languages = EffectsOf<pal::LanguageSet>();
  ASSERT_EQ(languages.size(), 2U);
  EXPECT_EQ(languages[0].language, 0x0413);
  EXPECT_EQ(languages[1].language, 0x0809);

  machine_.SetCommonDocuments(true);
  machine_.RemoveFile(Machine::kCommonDocuments);
  Run([] {
    WCHAR path[MAX_PATH] = {};
    EXPECT_TRUE(FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_DOCUMENTS, nullptr, SHGFP_TYPE_CURRENT, path)));
    EXPECT_EQ(SHGetFolderPathW(nullptr, CSIDL_COMMON_DOCUMENTS | CSIDL_FLAG_CREATE, nullptr,
                               SHGFP_TYPE_CURRENT, path),
              S_OK);
    EXPECT_NE(GetFileAttributesW(path), INVALID_FILE_ATTRIBUTES);
  });
}

TEST_F(MachineData, WhatTheLayerDoesNotKnowIsLoud) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(Run([] { WideCharToMultiByte(437, 0, u"a", 1, nullptr, 0, nullptr, nullptr); }),
               "pal: unknown code page");
  EXPECT_DEATH(Run([] {
                 HKEY key = nullptr;
                 RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, 0x01000000, &key);
               }),
               "pal: unknown access to a registry key");
}

TEST(MachineDisk, GoesWithTheMachine) {
  std::filesystem::path root;
  {
    const Machine machine;
    root = machine.HostPath(u"C:\\");
    EXPECT_TRUE(std::filesystem::exists(root));
    EXPECT_EQ(machine.HostPath(u"C:\\none\\there"), root / "none" / "there");
  }
  EXPECT_FALSE(std::filesystem::exists(root.parent_path()));
}

TEST(MachineResources, ADamagedFileIsTheEnd) {
  std::ifstream original(VELTRA_RESOURCES, std::ios::binary);
  const std::string whole(std::istreambuf_iterator<char>(original), {});
  ASSERT_GT(whole.size(), 64u);
  std::string otherHeader = whole;
  ++otherHeader[36];  // the size of the second header, after the first one's 32 bytes
  struct Row {
    std::string content;
    const char* error;
  };
  const Row rows[] = {
      {"", "a resource ends too early"},
      {"STRINGTABLE { 1 \"a script, which nobody compiled\" }", "no resource file"},
      {whole.substr(0, 50), "a resource ends too early"},                // in a header
      {whole.substr(0, whole.size() - 8), "a resource ends too early"},  // in the data
      {otherHeader, "a resource has another header"},
  };
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "pal-damaged.res";
  for (const Row& row : rows) {
    std::ofstream(file, std::ios::binary) << row.content;
    EXPECT_DEATH(Machine().LoadResources(file), row.error);
  }
  std::filesystem::remove(file);
  EXPECT_DEATH(Machine().LoadResources(file), "cannot read the resource file");
}

}  // namespace
