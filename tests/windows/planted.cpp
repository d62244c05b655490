// Two libraries: one leaves a trace when it is loaded, the other needs it.
#include <windows.h>

#ifdef VELTRA_NEEDS_PLANTED
extern "C" __declspec(dllimport) void Planted();
extern "C" __declspec(dllexport) void Call() {
  Planted();
}
#else
extern "C" __declspec(dllexport) void Planted() {}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH)
    CloseHandle(CreateFileA("C:\\planted.txt", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  return TRUE;
}
#endif
