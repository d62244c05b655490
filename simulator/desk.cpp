#include "simulator/desk.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "simulator/board.h"
#include "simulator/joystick.h"
#include "simulator/macro_plugin.h"
#include "simulator/mouse_filter.h"
#include "simulator/report.h"
#include "simulator/words.h"

namespace simulator {
namespace {

template <class Function>
pal::Export MakeExport(const char* name, Function* function) {
  return {name, reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function))};
}

struct LibraryRow {
  Library library;
  std::u16string_view fileName;
  std::vector<pal::Export> exports;
};

std::vector<pal::Export> MacroExports() {
  return {MakeExport("RunMacro", RunMacro), MakeExport("ComposeMacro", ComposeMacro),
          MakeExport("FreeMacroDll", FreeMacroDll)};
}

const std::vector<LibraryRow>& Libraries() {
  static const std::vector<LibraryRow> libraries = {
      {Library::kJoystick,
       u"vJoyInterface.dll",
       {MakeExport("vJoyEnabled", vJoyEnabled), MakeExport("DriverMatch", DriverMatch),
        MakeExport("GetVJDStatus", GetVJDStatus), MakeExport("AcquireVJD", AcquireVJD),
        MakeExport("RelinquishVJD", RelinquishVJD), MakeExport("ResetVJD", ResetVJD),
        MakeExport("SetBtn", SetBtn)}},
      {Library::kMouseFilter, u"portmon.dll", {MakeExport("_MouseFilter@4", MouseFilter)}},
      {Library::kBoard,
       u"keapi.dll",
       {MakeExport("KEApiLibInitialize", KEApiLibInitialize),
        MakeExport("KEApiLibUnInitialize", KEApiLibUnInitialize), MakeExport("KEApiI2cXfer", KEApiI2cXfer),
        MakeExport("KEApiGetBoardInfo", KEApiGetBoardInfo), MakeExport("KEApiGetCpuInfo", KEApiGetCpuInfo),
        MakeExport("KEApiGetMemoryInfo", KEApiGetMemoryInfo)}},
      {Library::kEnglishMacros, u"macm_English.dll", MacroExports()},
      {Library::kDutchMacros, u"macm_Nederlands.dll", MacroExports()},
  };
  return libraries;
}

const LibraryRow& Row(Library library) {
  for (const LibraryRow& row : Libraries())
    if (row.library == library) return row;
  std::abort();
}

// The tables that are delivered with the program.
void InstallTables(pal::Machine& machine) {
  for (const std::filesystem::directory_entry& table : std::filesystem::directory_iterator(VELTRA_TABLES)) {
    std::ifstream file(table.path(), std::ios::binary);
    machine.disk.Write(std::u16string(pal::Disk::kProgramDirectory) + table.path().filename().u16string(),
                       std::string(std::istreambuf_iterator<char>(file), {}));
  }
}

}  // namespace

void Report(const char* device, const std::string& call) {
  pal::CurrentMachine().Emit(pal::DeviceCall{device, call});
}

Desk::Desk(pal::Machine& machine) : machine_(machine) {
  TheJoystick() = {};
  TheBoard() = {};
  TheMacroEditor() = {};
  for (const LibraryRow& row : Libraries()) Install(row.library);
  InstallTables(machine);
}

bool Desk::Install(Library library, std::string_view lacking) {
  std::vector<pal::Export> exports = Row(library).exports;
  const auto removed = std::erase_if(exports, [&](const pal::Export& one) { return one.name == lacking; });
  if (removed == 0 && !lacking.empty()) return false;
  machine_.modules.Add(Row(library).fileName, std::move(exports));
  return true;
}
void Desk::Damage(Library library) {
  Remove(library);
  machine_.disk.Write(std::u16string(pal::Disk::kProgramDirectory).append(Row(library).fileName), "damaged");
}
void Desk::Remove(Library library) {
  machine_.modules.Remove(Row(library).fileName);
}

void Desk::InstallPlainMouseFilter() {
  Remove(Library::kMouseFilter);
  machine_.modules.Add(Row(Library::kMouseFilter).fileName, {MakeExport("MouseFilter", MouseFilter)});
}

HWND Desk::Open(std::string_view windowClass) {
  if (const HWND open = Find(windowClass)) return open;
  const HWND window = machine_.desktop.AddForeignWindow(Utf16(windowClass));
  windows_.emplace(windowClass, window);
  return window;
}

bool Desk::Close(std::string_view windowClass) {
  const auto entry = windows_.find(windowClass);
  if (entry == windows_.end()) return false;
  machine_.desktop.RemoveForeignWindow(entry->second);
  windows_.erase(entry);
  return true;
}

HWND Desk::Find(std::string_view windowClass) const {
  const auto entry = windows_.find(windowClass);
  return entry == windows_.end() ? nullptr : entry->second;
}

}  // namespace simulator
