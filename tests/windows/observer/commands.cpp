#include "tests/windows/observer/commands.h"

#include <windows.h>

#include <dbt.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>
#include <thread>
#include <vector>

#include "base/handles.h"
#include "tests/windows/observer/command_table.h"
#include "tests/windows/observer/hung_windows.h"
#include "tests/windows/observer/registry.h"
#include "tests/windows/observer/report.h"
#include "tests/windows/observer/watched_windows.h"

namespace observer {
namespace {

HWND Find(const std::string& className) {
  const HWND window = FindWindowW(Wide(className).c_str(), nullptr);
  if (!window) throw std::runtime_error("no such window");
  return window;
}

// ---- windows ----------------------------------------------------------------------------------------------

std::string RunOpen(const Words& words) {
  OpenWatchedWindow(Wide(words[1]));
  return {};
}

std::string RunField(const Words& words) {
  OpenTextField(Wide(words[1]));
  return {};
}

std::vector<veltra::UniqueKernelObject> heldMutexes;

std::string RunHold(const Words& words) {
  heldMutexes.emplace_back(CreateMutexW(nullptr, FALSE, Wide(words[1]).c_str()));
  if (!heldMutexes.back()) throw std::runtime_error("no such mutex to be had");
  return {};
}

std::string RunClose(const Words&) {
  heldMutexes.clear();
  CloseHungWindows();
  CloseWatchedWindows();
  return {};
}

std::string RunFind(const Words& words) {
  return FindWindowW(Wide(words[1]).c_str(), nullptr) ? "yes" : "no";
}

std::string RunHandle(const Words& words) {
  return std::to_string(reinterpret_cast<uintptr_t>(Find(words[1])));
}

std::string RunHang(const Words& words) {
  OpenHungWindow(Wide(words[1]));
  return {};
}

std::string RunSend(const Words& words) {
  return std::to_string(Send(Find(words[1]), static_cast<UINT>(Number(words[2])), Number(words[3]),
                             static_cast<LPARAM>(Number(words[4]))));
}

std::string RunPost(const Words& words) {
  if (!PostMessageW(Find(words[1]), static_cast<UINT>(Number(words[2])), Number(words[3]),
                    static_cast<LPARAM>(Number(words[4]))))
    throw std::runtime_error("not posted");
  return {};
}

std::string RunCopy(const Words& words) {
  std::string bytes = BytesFromHex(words[3]);
  COPYDATASTRUCT data = {};
  data.dwData = static_cast<ULONG_PTR>(Number(words[2]));
  data.cbData = static_cast<DWORD>(bytes.size());
  data.lpData = bytes.data();
  return std::to_string(Send(Find(words[1]), WM_COPYDATA, reinterpret_cast<WPARAM>(OwnWindow()),
                             reinterpret_cast<LPARAM>(&data)));
}

// The notification as Windows sends it when a port comes or goes; it travels with its record.
std::string RunDevice(const Words& words) {
  if (words[2] != "arrived" && words[2] != "removed") throw std::invalid_argument("arrived or removed");
  const std::wstring name = Wide(words[3]);
  const size_t size = sizeof(DEV_BROADCAST_PORT_W) + name.size() * sizeof(wchar_t);
  std::vector<uint8_t> record(size);
  auto* const port = reinterpret_cast<DEV_BROADCAST_PORT_W*>(record.data());
  port->dbcp_size = static_cast<DWORD>(size);
  port->dbcp_devicetype = DBT_DEVTYP_PORT;
  std::memcpy(port->dbcp_name, name.c_str(), (name.size() + 1) * sizeof(wchar_t));
  return std::to_string(Send(Find(words[1]), WM_DEVICECHANGE,
                             words[2] == "arrived" ? DBT_DEVICEARRIVAL : DBT_DEVICEREMOVECOMPLETE,
                             reinterpret_cast<LPARAM>(port)));
}

// The editor has a thread of its own: meanwhile commands go on.
std::string RunCompose(const Words& words) {
  std::thread([library = Wide(words[1]), text = words[2]] {
    using ComposeMacro = char* (*)(HWND, char*, char*, char*);
    const veltra::UniqueModule module(LoadLibraryW(library.c_str()));
    const auto compose = veltra::FindExport<ComposeMacro>(module.Get(), "ComposeMacro");
    char model[256] = "Sarvik5";
    char macro[1024] = {};
    char file[260] = "C:\\custom.mcr";
    text.copy(macro, sizeof macro - 1);
    const char* composed = compose ? compose(nullptr, model, macro, file) : "no plug-in";
    Report({"composed", composed ? composed : "nothing"});
  }).detach();
  return {};
}

// ---- registry ---------------------------------------------------------------------------------------------

std::string RunList(const Words& words) {
  return ListValues(words[1], words[2]);
}

std::string RunSetNumber(const Words& words) {
  SetNumber(words[1], words[2], words[3], static_cast<unsigned long>(Number(words[4])));
  return {};
}

std::string RunSetText(const Words& words) {
  SetText(words[1], words[2], words[3], words[4]);
  return {};
}

std::string RunDelete(const Words& words) {
  DeleteKey(words[1], words[2]);
  return {};
}

// ---- resources --------------------------------------------------------------------------------------------

// A string table stores sixteen texts a block, each behind its length.
std::string RunString(const Words& words) {
  const veltra::UniqueModule module(
      LoadLibraryExW(Wide(words[1]).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
  if (!module) throw std::runtime_error("the file cannot be opened");
  const auto id = static_cast<WORD>(Number(words[2]));
  const auto language = static_cast<WORD>(Number(words[3]));
  const HRSRC block = FindResourceExW(module.Get(), MAKEINTRESOURCEW(6) /* RT_STRING */,
                                      MAKEINTRESOURCEW(id / 16 + 1), language);
  if (!block) throw std::runtime_error("no such text in that language");
  const auto* text = static_cast<const wchar_t*>(LockResource(LoadResource(module.Get(), block)));
  for (int skipped = id % 16; skipped > 0; --skipped) text += 1 + *text;
  return Utf8({text + 1, static_cast<size_t>(*text)});
}

constexpr Command kCommands[] = {
    {"open", 1, RunOpen},             // CLASS: a watched window of that class
    {"field", 1, RunField},           // CAPTION: a window with a text field that has the keyboard
    {"compose", 2, RunCompose},       // LIBRARY TEXT: the editor of a macro plug-in; its end is an event
    {"close", 0, RunClose},           // all windows but its own, and the mutexes
    {"hold", 1, RunHold},             // NAME: a mutex
    {"find", 1, RunFind},             // CLASS: yes or no
    {"handle", 1, RunHandle},         // CLASS: the number of its window
    {"hang", 1, RunHang},             // CLASS: a window whose thread looks at no messages
    {"send", 4, RunSend},             // CLASS MESSAGE WPARAM LPARAM: the window's result
    {"post", 4, RunPost},             // CLASS MESSAGE WPARAM LPARAM
    {"copy", 3, RunCopy},             // CLASS TAG HEX: the window's result
    {"device", 3, RunDevice},         // CLASS arrived|removed PORT: the window's result
    {"list", 2, RunList},             // ROOT PATH: the values of a key
    {"set-number", 4, RunSetNumber},  // ROOT PATH NAME NUMBER
    {"set-text", 4, RunSetText},      // ROOT PATH NAME TEXT
    {"delete", 2, RunDelete},         // ROOT PATH
    {"string", 3, RunString},         // FILE ID LANGUAGE: a text of a program's resources
};

const Command* FindCommand(const std::string& name) {
  for (const std::span<const Command> table : {std::span<const Command>(kCommands), DialogCommands()})
    if (const auto command = std::ranges::find(table, name, &Command::name); command != table.end())
      return &*command;
  return nullptr;
}

Words Split(const std::string& line) {
  Words words;
  size_t begin = 0;
  for (size_t tab = line.find('\t'); tab != line.npos; begin = tab + 1, tab = line.find('\t', begin))
    words.push_back(line.substr(begin, tab - begin));
  words.push_back(line.substr(begin));
  return words;
}

}  // namespace

void RunCommand(const std::string& line) {
  const Words words = Split(line);
  const Command* const command = FindCommand(words[0]);
  if (!command) return Report({"!", "unknown command"});
  if (words.size() != command->arguments + 1) return Report({"!", "wrong number of words"});
  try {
    Report({"=", command->run(words)});
  } catch (const std::exception& error) {
    Report({"!", error.what()});
  }
}

}  // namespace observer
