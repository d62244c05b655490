#include "tests/windows/observer/commands.h"

#include <dbt.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "base/handles.h"

namespace observer {

unsigned long long Number(const std::string& word) {
  return word.starts_with('-') ? static_cast<unsigned long long>(std::stoll(word, nullptr, 0))
                               : std::stoull(word, nullptr, 0);
}

std::optional<LRESULT> TrySend(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr UINT kAnswerLimitMs = 30000;
  DWORD_PTR result = 0;
  if (!SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kAnswerLimitMs, &result)) return {};
  return static_cast<LRESULT>(result);
}

LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const std::optional<LRESULT> result = TrySend(window, message, wParam, lParam);
  if (!result) throw std::runtime_error("no answer, error " + std::to_string(GetLastError()));
  return *result;
}

HWND Find(const std::string& className) {
  const HWND window = FindWindowW(Wide(className).c_str(), nullptr);
  if (!window) throw std::runtime_error("no such window");
  return window;
}

namespace {

std::string RunFind(const Words& words) {
  return FindWindowW(Wide(words[1]).c_str(), nullptr) ? "yes" : "no";
}

std::string RunHandle(const Words& words) {
  return std::to_string(reinterpret_cast<uintptr_t>(Find(words[1])));
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
  std::string bytes;
  for (size_t at = 0; at + 2 <= words[4].size(); at += 2)
    bytes.push_back(static_cast<char>(std::stoi(words[4].substr(at, 2), nullptr, 16)));
  COPYDATASTRUCT data = {};
  data.dwData = static_cast<ULONG_PTR>(Number(words[3]));
  data.cbData = static_cast<DWORD>(bytes.size());
  data.lpData = bytes.data();
  const HWND sender = words[2].empty() ? nullptr : Find(words[2]);
  return std::to_string(
      Send(Find(words[1]), WM_COPYDATA, reinterpret_cast<WPARAM>(sender), reinterpret_cast<LPARAM>(&data)));
}

// The notification as Windows sends it when a port comes or goes; it travels with its record.
std::string RunDevice(const Words& words) {
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
    ReportEvent(std::string("composed ").append(composed ? composed : "nothing"));
  }).detach();
  return {};
}

// A string table stores sixteen texts a block, each behind its length.
std::string RunString(const Words& words) {
  const veltra::UniqueModule module(
      LoadLibraryExW(Wide(words[1]).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
  if (!module) throw std::runtime_error("the file cannot be opened");
  const auto id = static_cast<WORD>(Number(words[2]));
  const HRSRC block = FindResourceExW(module.Get(), MAKEINTRESOURCEW(6) /* RT_STRING */,
                                      MAKEINTRESOURCEW(id / 16 + 1), static_cast<WORD>(Number(words[3])));
  if (!block) throw std::runtime_error("no such text in that language");
  const auto* text = static_cast<const wchar_t*>(LockResource(LoadResource(module.Get(), block)));
  for (int skipped = id % 16; skipped > 0; --skipped) text += 1 + *text;
  return Utf8({text + 1, static_cast<size_t>(*text)});
}

constexpr Command kCommands[] = {
    {"find", 1, RunFind},        // CLASS: yes or no
    {"handle", 1, RunHandle},    // CLASS: the number of its window
    {"send", 4, RunSend},        // CLASS MESSAGE WPARAM LPARAM: the window's result
    {"post", 4, RunPost},        // CLASS MESSAGE WPARAM LPARAM
    {"copy", 4, RunCopy},        // CLASS SENDER-CLASS TAG HEX: the window's result
    {"device", 3, RunDevice},    // CLASS arrived|removed PORT: the window's result
    {"compose", 2, RunCompose},  // LIBRARY TEXT: the editor of a macro plug-in; its end is an event
    {"string", 3, RunString},    // FILE ID LANGUAGE: a text of a program's resources
};

const Command* FindCommand(const std::string& name) {
  for (const std::span<const Command> table :
       {std::span<const Command>(kCommands), DialogCommands(), DeskCommands(), RegistryCommands()})
    if (const auto command = std::ranges::find(table, name, &Command::name); command != table.end())
      return &*command;
  return nullptr;
}

}  // namespace

void RunCommand(const std::string& line) {
  Words words;
  std::istringstream stream(line + '\t');
  for (std::string word; std::getline(stream, word, '\t');) words.push_back(word);
  const Command* const command = FindCommand(words[0]);
  if (!command || words.size() != command->arguments + 1) return Report("!", "no such command: " + line);
  try {
    Report("=", command->run(words));
  } catch (const std::exception& error) {
    Report("!", error.what());
  }
}

}  // namespace observer
