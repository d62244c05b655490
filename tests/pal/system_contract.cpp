// COM on a thread.
#include <gtest/gtest.h>
#include <windows.h>

#include <mmdeviceapi.h>
#include <objbase.h>

#include "test_window.h"

namespace {

TEST(Com, BelongsToTheThreadThatBeganIt) {
  constexpr CLSID kEnumeratorClass = {
      0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
  constexpr IID kEnumerator = {0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
  HRESULT result = S_OK;
  void* object = &result;
  const contract::TestThread thread([&] {
    result = CoCreateInstance(kEnumeratorClass, nullptr, CLSCTX_INPROC_SERVER, kEnumerator, &object);
  });
  thread.Join();
  EXPECT_EQ(result, CO_E_NOTINITIALIZED);
  EXPECT_EQ(object, nullptr);
  CoUninitialize();
  CoUninitialize();
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  CoUninitialize();
}

}  // namespace
