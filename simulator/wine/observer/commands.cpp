#include "simulator/wine/observer/commands.h"

#include <dbt.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>

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
  return std::to_string(Send(Find(words[1]), static_cast<UINT>(Number(words[2])),
                             static_cast<WPARAM>(Number(words[3])), static_cast<LPARAM>(Number(words[4]))));
}

std::string RunPost(const Words& words) {
  if (!PostMessageW(Find(words[1]), static_cast<UINT>(Number(words[2])),
                    static_cast<WPARAM>(Number(words[3])), static_cast<LPARAM>(Number(words[4]))))
    throw std::runtime_error("not posted");
  return {};
}

std::string RunCopy(const Words& words) {
  std::string bytes;
  std::istringstream hex(words[4]);
  for (std::string byte; hex >> byte;) bytes.push_back(static_cast<char>(std::stoi(byte, nullptr, 16)));
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

constexpr Command kCommands[] = {
    {"find", 1, RunFind},      // CLASS: yes or no
    {"handle", 1, RunHandle},  // CLASS: the number of its window
    {"send", 4, RunSend},      // CLASS MESSAGE WPARAM LPARAM: the window's result
    {"post", 4, RunPost},      // CLASS MESSAGE WPARAM LPARAM
    {"copy", 4, RunCopy},      // CLASS SENDER-CLASS TAG HEX: the window's result
    {"device", 3, RunDevice},  // CLASS arrived|removed PORT: the window's result
};

const Command* FindCommand(const std::string& name) {
  for (const std::span<const Command> table : {std::span<const Command>(kCommands), DialogCommands(),
                                               DeskCommands(), RegistryCommands(), HoldingCommands()})
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
