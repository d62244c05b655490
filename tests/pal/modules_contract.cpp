// The program, its modules and their exports.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "test_window.h"

namespace {

using Text = std::basic_string<WCHAR>;

TEST(Modules, TheProgramKnowsWhereItIs) {
  EXPECT_NE(GetModuleHandleW(nullptr), nullptr);
  WCHAR path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  ASSERT_EQ(Text(path).size(), length);
  EXPECT_EQ(path[1], ':');
  EXPECT_TRUE(Text(path).ends_with(TEXT(".exe")));

  WCHAR byHandle[MAX_PATH] = {};
  EXPECT_EQ(GetModuleFileNameW(GetModuleHandleW(nullptr), byHandle, MAX_PATH), length);
  EXPECT_EQ(Text(byHandle), Text(path));

  // Too little room: what fits, with a terminator, and the size of the room.
  WCHAR little[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(GetModuleFileNameW(nullptr, little, 4), 4U);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(Text(little, 3), Text(path).substr(0, 3));
  if (!contract::WineDeviates("leaves the terminator out")) {
    EXPECT_EQ(little[3], 0);
  }
}

TEST(Modules, TheKernelIsAlwaysThere) {
  const HMODULE kernel = GetModuleHandleW(TEXT("kernel32.dll"));
  ASSERT_NE(kernel, nullptr);
  EXPECT_EQ(GetModuleHandleW(TEXT("KERNEL32")), kernel);
  EXPECT_NE(GetProcAddress(kernel, "SetThreadUILanguage"), nullptr);
  EXPECT_EQ(GetProcAddress(kernel, "setthreaduilanguage"), nullptr);  // names of exports have a case
  EXPECT_EQ(GetProcAddress(kernel, "NoSuchExport"), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
  EXPECT_EQ(LoadLibraryExW(TEXT("kernel32.dll"), nullptr, 0), kernel);
  EXPECT_TRUE(FreeLibrary(kernel));
  EXPECT_EQ(GetModuleHandleW(TEXT("kernel32.dll")), kernel);
}

TEST(Modules, MissingModules) {
  WCHAR path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const Text directory = Text(path).substr(0, Text(path).rfind('\\') + 1);
  EXPECT_EQ(LoadLibraryExW(TEXT("no such module.dll"), nullptr, 0), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  const Text missing = directory + TEXT("no such module.dll");
  EXPECT_EQ(LoadLibraryExW(missing.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  EXPECT_EQ(GetModuleHandleW(TEXT("no such module.dll")), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

}  // namespace
