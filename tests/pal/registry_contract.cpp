// Keys and values of the registry.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "test_window.h"

namespace {

using Text = std::basic_string<WCHAR>;

const BYTE* BytesOf(const void* data) {
  return static_cast<const BYTE*>(data);
}

class Registry : public testing::Test {
 protected:
  LSTATUS Create(const Text& path, HKEY* key, DWORD* disposition = nullptr) {
    return RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                           KEY_ALL_ACCESS, nullptr, key, disposition);
  }
  void TearDown() override {
    if (key_) RegCloseKey(key_);
  }
  HKEY Key() {
    if (!key_) {
      EXPECT_EQ(Create(outer, &key_), ERROR_SUCCESS);
    }
    return key_;
  }
  LSTATUS Set(HKEY key, DWORD type, const void* data, DWORD size) {
    return RegSetValueExW(key, TEXT("Value"), 0, type, BytesOf(data), size);
  }

  // No run finds the keys of another one.
  const Text outer = TEXT("Software\\Veltra Contract\\") + contract::UniqueName();

 private:
  HKEY key_ = nullptr;
};

TEST_F(Registry, KeysAreMadeWithAllAboveThem) {
  HKEY key = nullptr;
  const Text inner = outer + TEXT("\\Inner");
  EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, inner.c_str(), 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  DWORD disposition = 0;
  for (const DWORD expected : {1U, 2U}) {  // made, and found
    ASSERT_EQ(Create(inner, &key, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, expected);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  }
  HKEY opened = nullptr;
  EXPECT_EQ(RegOpenKeyExW(Key(), TEXT("iNNER"), 0, KEY_READ, &opened), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(opened), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(opened), ERROR_INVALID_HANDLE);
}

// The last write wins, with whatever type and size it has; what does not fit is left out whole.
TEST_F(Registry, ValuesComeBackWithTypeAndSize) {
  const DWORD number = 0xFFFFFFFE;
  constexpr DWORD kBytes = 3;       // REG_BINARY
  const WCHAR text[] = TEXT("10");  // 6 bytes with its terminator
  const struct {
    DWORD type;
    const void* data;
    DWORD size;
    LSTATUS result;
    DWORD read;
  } rows[] = {{REG_DWORD, &number, 4, ERROR_SUCCESS, number},
              {REG_SZ, text, 6, ERROR_MORE_DATA, 0x55555555},
              {kBytes, text, 2, ERROR_SUCCESS, 0x55550031}};
  for (const auto& row : rows) {
    ASSERT_EQ(Set(Key(), row.type, row.data, row.size), ERROR_SUCCESS);
    DWORD buffer = 0x55555555;
    DWORD type = 0;
    DWORD size = sizeof(buffer);
    const auto query = [&](BYTE* room, DWORD* roomSize) {
      return RegQueryValueExW(Key(), TEXT("vALUE"), nullptr, &type, room, roomSize);
    };
    EXPECT_EQ(query(reinterpret_cast<BYTE*>(&buffer), &size), row.result);
    EXPECT_EQ(buffer, row.read);
    EXPECT_EQ(type, row.type);
    EXPECT_EQ(size, row.size);
    size = 0;
    EXPECT_EQ(query(nullptr, &size), ERROR_SUCCESS);  // without a buffer the size is told
    EXPECT_EQ(size, row.size);
    EXPECT_EQ(query(reinterpret_cast<BYTE*>(&buffer), nullptr), ERROR_INVALID_PARAMETER);
  }
}

TEST_F(Registry, AHandleAllowsWhatItWasOpenedFor) {
  const struct {
    REGSAM access;
    LSTATUS set;
    LSTATUS query;
  } rows[] = {{KEY_READ, ERROR_ACCESS_DENIED, ERROR_FILE_NOT_FOUND},
              {KEY_WRITE, ERROR_SUCCESS, ERROR_ACCESS_DENIED},
              {KEY_READ | KEY_WRITE, ERROR_SUCCESS, ERROR_SUCCESS}};
  Key();
  for (const auto& row : rows) {
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, outer.c_str(), 0, row.access, &key), ERROR_SUCCESS);
    const DWORD number = 1;
    DWORD size = 0;
    EXPECT_EQ(Set(key, REG_DWORD, &number, sizeof(number)), row.set);
    EXPECT_EQ(RegQueryValueExW(key, TEXT("Value"), nullptr, nullptr, nullptr, &size), row.query);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(key, TEXT("Value"), nullptr, nullptr, nullptr, &size), ERROR_INVALID_HANDLE);
  }
}

}  // namespace
