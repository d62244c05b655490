// The program, its modules and their exports.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

using Text = std::basic_string<WCHAR>;

TEST(Modules, TheProgramKnowsWhereItIs) {
  EXPECT_NE(GetModuleHandleW(nullptr), nullptr);
  WCHAR path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  EXPECT_EQ(Text(path).size(), length);
  EXPECT_EQ(path[1], ':');
  EXPECT_TRUE(Text(path).ends_with(TEXT(".exe")));
}

TEST(Modules, TheKernelIsAlwaysThere) {
  const HMODULE kernel = GetModuleHandleW(TEXT("kernel32.dll"));
  ASSERT_NE(kernel, nullptr);
  EXPECT_EQ(GetModuleHandleW(TEXT("KERNEL32")), kernel);
  EXPECT_NE(GetProcAddress(kernel, "SetThreadUILanguage"), nullptr);
  EXPECT_EQ(GetProcAddress(kernel, "setthreaduilanguage"), nullptr);  // names of exports have a case
  EXPECT_EQ(GetProcAddress(kernel, "NoSuchExport"), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
}

TEST(Modules, MissingModules) {
  WCHAR path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const Text missing = Text(path).append(TEXT(".no such module.dll"));
  EXPECT_EQ(LoadLibraryExW(missing.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  EXPECT_EQ(GetModuleHandleW(TEXT("no such module.dll")), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

}  // namespace
