// Window classes, windows and what finds them.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "test_window.h"

namespace {

using contract::TestWindow;

// Of the messages of a window's life, those that the tool depends on.
bool IsOfLife(UINT message) {
  return message == WM_NCCREATE || message == WM_CREATE || message == WM_CLOSE || message == WM_DESTROY ||
         message == WM_NCDESTROY;
}

TEST(Windows, LifeBeginsAndEndsInOrder) {
  std::vector<UINT> seen;
  const CREATESTRUCTW* create = nullptr;
  void* parameter = nullptr;
  HWND closing = nullptr;
  TestWindow window([&](HWND handle, UINT message, WPARAM, LPARAM lParam) {
    if (IsOfLife(message)) seen.push_back(message);
    if (message == WM_CREATE) {
      create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
      parameter = create->lpCreateParams;
    }
    if (message == WM_DESTROY) closing = handle;
    return TestWindow::kDefault;
  });
  ASSERT_NE(window.Get(), nullptr);
  EXPECT_EQ(parameter, &window);
  EXPECT_TRUE(IsWindow(window.Get()));
  EXPECT_EQ(seen, (std::vector<UINT>{WM_NCCREATE, WM_CREATE}));

  // The default handling of WM_CLOSE destroys the window.
  EXPECT_EQ(SendMessageW(window.Get(), WM_CLOSE, 0, 0), 0);
  EXPECT_EQ(seen, (std::vector<UINT>{WM_NCCREATE, WM_CREATE, WM_CLOSE, WM_DESTROY, WM_NCDESTROY}));
  EXPECT_EQ(closing, window.Get());
  EXPECT_FALSE(IsWindow(window.Get()));
  EXPECT_FALSE(DestroyWindow(window.Get()));
}

TEST(Windows, ClassesAreRegisteredOnce) {
  EXPECT_EQ(
      CreateWindowExW(0, TEXT("NoSuchClass"), TEXT(""), 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr),
      nullptr);
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = DefWindowProcW;
  for (const WCHAR* name : {TEXT("ContractOnce"), TEXT("CONTRACTonce")}) {  // the same name
    windowClass.lpszClassName = name;
    EXPECT_EQ(RegisterClassExW(&windowClass) != 0, name[1] == 'o');
  }
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CLASS_ALREADY_EXISTS));
}

TEST(Windows, AreFoundByClassAndTitle) {
  TestWindow window({}, TEXT("ContractFound"));
  EXPECT_EQ(FindWindowW(TEXT("ContractFound"), nullptr), window.Get());
  EXPECT_EQ(FindWindowW(TEXT("CONTRACTFOUND"), TEXT("contract title")), window.Get());
  EXPECT_EQ(FindWindowW(nullptr, TEXT("contract title")), window.Get());
  EXPECT_EQ(FindWindowW(TEXT("ContractFound"), TEXT("another title")), nullptr);
  SendMessageW(window.Get(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(TEXT("another title")));
  EXPECT_EQ(FindWindowW(TEXT("ContractFound"), TEXT("another title")), window.Get());
}

TEST(Windows, KeepWhatTheProgramStoresInThem) {
  TestWindow window;
  const int second = sizeof(LONG_PTR);
  EXPECT_EQ(SetWindowLongPtrW(window.Get(), GWLP_USERDATA, 7), 0);
  EXPECT_EQ(SetWindowLongPtrW(window.Get(), GWLP_USERDATA, 8), 7);
  EXPECT_EQ(SetWindowLongPtrW(window.Get(), second, 9), 0);
  EXPECT_EQ(GetWindowLongPtrW(window.Get(), GWLP_USERDATA), 8);
  EXPECT_EQ(GetWindowLongPtrW(window.Get(), second), 9);
  EXPECT_EQ(GetWindowLongPtrW(window.Get(), 2 * second), 0);  // after the extra bytes
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_INDEX));
}

TEST(Windows, KeysHaveTheirPlaceOnTheKeyboard) {
  const HKL layout = GetKeyboardLayout(0);
  const std::pair<UINT, UINT> keys[] = {
      {'A', 0x1E},     {'Z', 0x2C},  {'0', 0x0B},  {VK_ESCAPE, 0x01},  {VK_RETURN, 0x1C}, {VK_SPACE, 0x39},
      {VK_LEFT, 0x4B}, {0x70, 0x3B}, {0x7B, 0x58}, {VK_CONTROL, 0x1D}, {0xA0, 0x2A},      {VK_DELETE, 0x53}};
  for (const auto& [key, place] : keys)
    EXPECT_EQ(MapVirtualKeyExW(key, MAPVK_VK_TO_VSC, layout), place) << key;
  EXPECT_EQ(MapVirtualKeyExW(0, MAPVK_VK_TO_VSC, layout), 0u);
}

}  // namespace
