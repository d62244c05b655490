// What the tool holds: memory, handles, objects of GDI and USER.
#include <windows.h>

#include <psapi.h>
#include <winternl.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "base/handles.h"
#include "simulator/wine/observer/commands.h"

// Wine counts neither handles nor objects for GetProcessHandleCount and GetGuiResources. What they would
// count is told by the list of all handles, by the table of GDI objects that a process block points to, and
// by the numbers of new USER objects.
namespace observer {
namespace {

constexpr auto kHandlesOfAll = static_cast<SYSTEM_INFORMATION_CLASS>(16);
struct HandleEntry {
  ULONG owner;  // process id
  ULONG kindAndValue;
  void* object;
  ULONG access;
};
struct HandleList {
  ULONG count;
  HandleEntry entries[1];
};

constexpr size_t kGdiTableInProcessBlock = sizeof(void*) == 8 ? 0xF8 : 0x94;
struct GdiEntry {
  uint64_t object;
  uint32_t owner;
  uint16_t unique;
  uint8_t kind;  // 0: free
  uint8_t flags;
  uint64_t userPointer;
};

void Check(bool isDone, const char* what) {
  if (!isDone) throw std::runtime_error(what);
}

size_t CountHandles(DWORD process) {
  std::vector<uint8_t> room(1 << 20);
  Check(NtQuerySystemInformation(kHandlesOfAll, room.data(), static_cast<ULONG>(room.size()), nullptr) == 0,
        "no list of handles");
  const auto& list = *reinterpret_cast<const HandleList*>(room.data());
  return static_cast<size_t>(
      std::ranges::count(list.entries, list.entries + list.count, process, &HandleEntry::owner));
}

size_t CountGdiObjects(HANDLE process) {
  static std::array<GdiEntry, 0x4000> table;
  PROCESS_BASIC_INFORMATION information = {};
  Check(NtQueryInformationProcess(process, ProcessBasicInformation, &information, sizeof information,
                                  nullptr) == 0,
        "no process block");
  const auto* const block = reinterpret_cast<const uint8_t*>(information.PebBaseAddress);
  const void* at = nullptr;
  Check(ReadProcessMemory(process, block + kGdiTableInProcessBlock, &at, sizeof at, nullptr) &&
            ReadProcessMemory(process, at, table.data(), sizeof table, nullptr),
        "no table of GDI objects");
  return static_cast<size_t>(
      std::ranges::count_if(table, [](const GdiEntry& entry) { return entry.kind != 0; }));
}

// Of the whole desktop, with a few too many: the numbers of what was destroyed are given again first.
size_t CountUserObjects() {
  std::array<HMENU, 500> menus = {};
  WORD highest = 0;
  for (HMENU& menu : menus) {
    menu = CreateMenu();
    highest = std::max(highest, LOWORD(reinterpret_cast<ULONG_PTR>(menu)));
  }
  for (const HMENU menu : menus) DestroyMenu(menu);
  return highest / 2U;  // numbers are even
}

// CLASS of a window of the process.
std::string RunHoldings(const Words& words) {
  DWORD id = 0;
  GetWindowThreadProcessId(Find(words[1]), &id);
  const veltra::UniqueKernelObject process(
      OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id));
  PROCESS_MEMORY_COUNTERS memory = {};
  Check(K32GetProcessMemoryInfo(process.Get(), &memory, sizeof memory), "no memory counters");
  ReportEvent("holds " + std::to_string(memory.WorkingSetSize / 1024) + " KB, " +
              std::to_string(CountHandles(id)) + " handles, " +
              std::to_string(CountGdiObjects(process.Get())) + " GDI, " + std::to_string(CountUserObjects()) +
              " USER");
  return {};
}

constexpr Command kCommands[] = {{"holdings", 1, RunHoldings}};

}  // namespace

std::span<const Command> HoldingCommands() {
  return kCommands;
}

}  // namespace observer
