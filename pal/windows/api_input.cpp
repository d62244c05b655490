// Injected mouse and keyboard input.
#include <algorithm>
#include <iterator>

#include "pal/machine/state.h"

using namespace pal;

namespace {

constexpr DWORD kKnownMouseFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_LEFTDOWN | MOUSEEVENTF_LEFTUP |
                                   MOUSEEVENTF_RIGHTDOWN | MOUSEEVENTF_RIGHTUP;

// The United States layout: where each virtual key lies on the keyboard.
struct Key {
  BYTE virtualKey;
  BYTE scanCode;
};
constexpr Key kKeys[] = {
    {VK_BACK, 0x0E},    {VK_TAB, 0x0F},   {0x0C, 0x4C},       {VK_RETURN, 0x1C}, {VK_SHIFT, 0x2A},
    {VK_CONTROL, 0x1D}, {VK_MENU, 0x38},  {VK_CAPITAL, 0x3A}, {VK_ESCAPE, 0x01}, {VK_SPACE, 0x39},
    {VK_PRIOR, 0x49},   {VK_NEXT, 0x51},  {VK_END, 0x4F},     {VK_HOME, 0x47},   {VK_LEFT, 0x4B},
    {VK_UP, 0x48},      {VK_RIGHT, 0x4D}, {VK_DOWN, 0x50},    {0x2C, 0x54},      {VK_INSERT, 0x52},
    {VK_DELETE, 0x53},  {'0', 0x0B},      {'1', 0x02},        {'2', 0x03},       {'3', 0x04},
    {'4', 0x05},        {'5', 0x06},      {'6', 0x07},        {'7', 0x08},       {'8', 0x09},
    {'9', 0x0A},        {'A', 0x1E},      {'B', 0x30},        {'C', 0x2E},       {'D', 0x20},
    {'E', 0x12},        {'F', 0x21},      {'G', 0x22},        {'H', 0x23},       {'I', 0x17},
    {'J', 0x24},        {'K', 0x25},      {'L', 0x26},        {'M', 0x32},       {'N', 0x31},
    {'O', 0x18},        {'P', 0x19},      {'Q', 0x10},        {'R', 0x13},       {'S', 0x1F},
    {'T', 0x14},        {'U', 0x16},      {'V', 0x2F},        {'W', 0x11},       {'X', 0x2D},
    {'Y', 0x15},        {'Z', 0x2C},      {0x5B, 0x5B},       {0x5C, 0x5C},      {0x5D, 0x5D},
    {0x60, 0x52},       {0x61, 0x4F},     {0x62, 0x50},       {0x63, 0x51},      {0x64, 0x4B},
    {0x65, 0x4C},       {0x66, 0x4D},     {0x67, 0x47},       {0x68, 0x48},      {0x69, 0x49},
    {0x6A, 0x37},       {0x6B, 0x4E},     {0x6D, 0x4A},       {0x6E, 0x53},      {0x6F, 0x35},
    {0x70, 0x3B},       {0x71, 0x3C},     {0x72, 0x3D},       {0x73, 0x3E},      {0x74, 0x3F},
    {0x75, 0x40},       {0x76, 0x41},     {0x77, 0x42},       {0x78, 0x43},      {0x79, 0x44},
    {0x7A, 0x57},       {0x7B, 0x58},     {0x90, 0x45},       {0x91, 0x46},      {0xA0, 0x2A},
    {0xA1, 0x36},       {0xA2, 0x1D},     {0xA3, 0x1D},       {0xA4, 0x38},      {0xA5, 0x38},
    {0xBA, 0x27},       {0xBB, 0x0D},     {0xBC, 0x33},       {0xBD, 0x0C},      {0xBE, 0x34},
    {0xBF, 0x35},       {0xC0, 0x29},     {0xDB, 0x1A},       {0xDC, 0x2B},      {0xDD, 0x1B},
    {0xDE, 0x28},       {0xE2, 0x56},
};

const HKL kUnitedStates = reinterpret_cast<HKL>(static_cast<ULONG_PTR>(0x04090409));

}  // namespace

BOOL WINAPI GetCursorPos(LPPOINT point) {
  const Call call("GetCursorPos");
  if (call.Fails()) return FALSE;
  *point = call->desktop.cursor;
  return TRUE;
}

void WINAPI mouse_event(DWORD flags, DWORD dx, DWORD dy, DWORD data, ULONG_PTR /*extraInfo*/) {
  const Call call;
  if (flags == 0 || (flags & ~kKnownMouseFlags)) Die("mouse_event with unknown flags");
  if (call->desktop.isLocked) return;
  call->Emit(MouseInput{flags, static_cast<int32_t>(dx), static_cast<int32_t>(dy), data});
}

void WINAPI keybd_event(BYTE virtualKey, BYTE scanCode, DWORD flags, ULONG_PTR /*extraInfo*/) {
  const Call call;
  if (flags & ~(KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP)) Die("keybd_event with unknown flags");
  if (call->desktop.isLocked) return;
  call->Emit(KeyInput{virtualKey, scanCode, flags});
}

SHORT WINAPI GetAsyncKeyState(int virtualKey) {
  const Call call;
  return call->desktop.heldKeys.contains(virtualKey) ? static_cast<SHORT>(0x8000) : SHORT{0};
}

UINT WINAPI MapVirtualKeyExW(UINT code, UINT mapType, HKL layout) {
  if (mapType != MAPVK_VK_TO_VSC) Die("MapVirtualKeyExW of an unknown kind");
  if (layout && layout != kUnitedStates) Die("MapVirtualKeyExW of an unknown keyboard layout");
  const auto* key =
      std::find_if(std::begin(kKeys), std::end(kKeys), [&](const Key& k) { return k.virtualKey == code; });
  return key == std::end(kKeys) ? 0 : key->scanCode;
}

HKL WINAPI GetKeyboardLayout(DWORD /*threadId*/) {
  return kUnitedStates;
}
