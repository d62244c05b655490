// The version of Windows, languages of threads, folders of the shell, COM.
#include <gtest/gtest.h>
#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <string>

namespace {

using Text = std::basic_string<WCHAR>;

bool IsAtLeast(DWORD major, DWORD minor, WORD servicePack) {
  OSVERSIONINFOEXW wanted = {};
  wanted.dwOSVersionInfoSize = sizeof(wanted);
  wanted.dwMajorVersion = major;
  wanted.dwMinorVersion = minor;
  wanted.wServicePackMajor = servicePack;
  ULONGLONG conditions = 0;
  for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR})
    conditions = VerSetConditionMask(conditions, field, VER_GREATER_EQUAL);
  return VerifyVersionInfoW(&wanted, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR, conditions);
}

TEST(WindowsVersion, GreaterFieldsCountFirst) {
  EXPECT_TRUE(IsAtLeast(5, 1, 3));  // a higher service pack of an older version
  EXPECT_TRUE(IsAtLeast(6, 1, 0));
  EXPECT_FALSE(IsAtLeast(99, 0, 0));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_OLD_WIN_VERSION});
  EXPECT_EQ(VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL), 0x18U);
  EXPECT_EQ(VerSetConditionMask(0, VER_SERVICEPACKMAJOR, VER_GREATER_EQUAL), 0x18000U);
}

TEST(Languages, AThreadTakesALanguage) {
  EXPECT_TRUE(SetThreadLocale(MAKELCID(MAKELANGID(LANG_DUTCH, SUBLANG_DUTCH), SORT_DEFAULT)));
  EXPECT_NE(GetUserDefaultLangID(), 0);
}

TEST(Shell, CommonDocuments) {
  WCHAR path[MAX_PATH] = {};
  ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_COMMON_DOCUMENTS | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT,
                             path),
            S_OK);
  EXPECT_FALSE(Text(path).ends_with(TEXT("\\")));
  const DWORD attributes = GetFileAttributesW(path);
  ASSERT_NE(attributes, INVALID_FILE_ATTRIBUTES);
  EXPECT_NE(attributes & FILE_ATTRIBUTE_DIRECTORY, 0U);
}

TEST(Com, ASecondInitializationSaysSo) {
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
  CoUninitialize();
  CoUninitialize();
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  CoUninitialize();
}

}  // namespace
