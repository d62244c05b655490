// The built program itself: what it needs and how it is protected.
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

#include <gtest/gtest.h>

#include "simulator/wine/process.h"

namespace simulator {
namespace {

class BinaryTest : public testing::Test {
 protected:
  static std::string Headers(const char* program = "veltratool.exe") {
    const std::string command = "x86_64-w64-mingw32-objdump -hp '" + ProgramPath(program) + "'";
    const auto closePipe = [](FILE* pipe) { pclose(pipe); };
    const std::unique_ptr<FILE, decltype(closePipe)> pipe(popen(command.c_str(), "r"), closePipe);
    std::string text;
    std::array<char, 4096> buffer;
    size_t count = 0;
    while (pipe && (count = fread(buffer.data(), 1, buffer.size(), pipe.get())) > 0)
      text.append(buffer.data(), count);
    return text;
  }
};

TEST_F(BinaryTest, ItNeedsOnlyWhatWindowsBrings) {
  const std::set<std::string> brought = {"ADVAPI32.dll", "COMCTL32.dll", "comdlg32.dll", "GDI32.dll",
                                         "KERNEL32.dll", "OLEAUT32.dll", "POWRPROF.dll", "SETUPAPI.dll",
                                         "SHELL32.dll",  "USER32.dll",   "VERSION.dll",  "WINMM.dll",
                                         "msvcrt.dll",   "ole32.dll"};
  const std::string headers = Headers();
  const std::string label = "DLL Name: ";
  int count = 0;
  for (size_t at = headers.find(label); at != headers.npos; at = headers.find(label, at + 1), ++count) {
    const size_t begin = at + label.size();
    const std::string name = headers.substr(begin, headers.find('\n', begin) - begin);
    EXPECT_TRUE(brought.contains(name)) << name;
  }
  EXPECT_GT(count, 0);
}

TEST_F(BinaryTest, ItIsSmallAndProtected) {
  EXPECT_LE(std::filesystem::file_size(ProgramPath("veltratool.exe")), 1'500'000u);
  const std::string headers = Headers();
  for (const char* wanted : {"HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT", ".reloc", "symbols stripped"})
    EXPECT_NE(headers.find(wanted), headers.npos) << wanted;
}

// A library with a section for thread-local data hangs when it is loaded late, as on a change of the
// language.
TEST_F(BinaryTest, MacroPlugInsHaveNoThreadLocalData) {
  for (const char* library : {"macm_English.dll", "macm_Nederlands.dll"}) {
    const std::string headers = Headers(library);
    EXPECT_NE(headers.find("RunMacro"), headers.npos) << library;
    EXPECT_NE(headers.find(" 0000000000000000 00000000 Thread Storage"), headers.npos) << library;
    EXPECT_EQ(headers.find(" .tls "), headers.npos) << library;
  }
}

}  // namespace
}  // namespace simulator
