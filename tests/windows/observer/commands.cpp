#include "tests/windows/observer/commands.h"

#include <windows.h>

#include <commctrl.h>
#include <dbt.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

#include "base/handles.h"
#include "tests/windows/observer/hung_windows.h"
#include "tests/windows/observer/registry.h"
#include "tests/windows/observer/report.h"
#include "tests/windows/observer/watched_windows.h"

namespace observer {
namespace {

using Words = std::vector<std::string>;

constexpr UINT kAnswerLimitMs = 30000;  // for a window that was sent a message

unsigned long long Number(const std::string& word) {
  return word.starts_with('-') ? static_cast<unsigned long long>(std::stoll(word, nullptr, 0))
                               : std::stoull(word, nullptr, 0);
}

HWND Find(const std::string& className) {
  const HWND window = FindWindowW(Wide(className).c_str(), nullptr);
  if (!window) throw std::runtime_error("no such window");
  return window;
}

HWND FindCaption(const std::string& caption) {
  return FindWindowW(nullptr, Wide(caption).c_str());
}

std::string Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  DWORD_PTR result = 0;
  if (!SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kAnswerLimitMs, &result))
    throw std::runtime_error("no answer, error " + std::to_string(GetLastError()));
  return std::to_string(static_cast<LRESULT>(result));
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
  return Send(Find(words[1]), static_cast<UINT>(Number(words[2])), Number(words[3]),
              static_cast<LPARAM>(Number(words[4])));
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
  return Send(Find(words[1]), WM_COPYDATA, reinterpret_cast<WPARAM>(OwnWindow()),
              reinterpret_cast<LPARAM>(&data));
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
  return Send(Find(words[1]), WM_DEVICECHANGE,
              words[2] == "arrived" ? DBT_DEVICEARRIVAL : DBT_DEVICEREMOVECOMPLETE,
              reinterpret_cast<LPARAM>(port));
}

// ---- dialogs and other windows with controls ----------------------------------------------------------------------

std::string TextOf(HWND window) {
  wchar_t text[512] = {};
  DWORD_PTR length = 0;  // asked of the control itself, which alone knows what was typed into it
  if (!SendMessageTimeoutW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text), SMTO_NORMAL,
                           kAnswerLimitMs, &length))
    return {};
  return Utf8({text, static_cast<size_t>(length)});
}

std::vector<HWND> ControlsOf(HWND dialog) {
  std::vector<HWND> controls;
  for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
    controls.push_back(control);
  return controls;
}

std::string RunTexts(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  if (!dialog) return "no";
  std::string texts = "yes";
  for (const HWND control : ControlsOf(dialog))
    if (const std::string text = TextOf(control); !text.empty()) texts += '\t' + text;
  return texts;
}

HWND FindButton(const Words& words) {
  const std::vector<HWND> controls = ControlsOf(FindCaption(words[1]));
  const auto button = std::ranges::find_if(controls, [&](HWND control) {
    std::string text = TextOf(control);
    std::erase(text, '&');
    return text == words[2];
  });
  if (button == controls.end()) throw std::runtime_error("no such button");
  return *button;
}

std::string RunPress(const Words& words) {
  PostMessageW(FindButton(words), BM_CLICK, 0, 0);
  return {};
}

std::string RunVisible(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  return dialog && IsWindowVisible(dialog) ? "yes" : "no";
}

std::string RunEnabled(const Words& words) {
  return IsWindowEnabled(FindButton(words)) ? "yes" : "no";
}

std::string RunBar(const Words& words) {
  const HWND bar = FindWindowExW(FindCaption(words[1]), nullptr, PROGRESS_CLASSW, nullptr);
  if (!bar) throw std::runtime_error("no progress bar");
  return Send(bar, PBM_GETPOS, 0, 0) + " of " + Send(bar, PBM_GETRANGE, FALSE, 0);
}

// As the system posts it to the window that has the keyboard.
std::string RunKey(const Words& words) {
  const HWND dialog = FindCaption(words[1]);
  if (!dialog) throw std::runtime_error("no such dialog");
  PostMessageW(dialog, WM_KEYDOWN, Number(words[2]), 1);
  PostMessageW(dialog, WM_KEYUP, Number(words[2]), static_cast<LPARAM>(0xC0000001));
  return {};
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

struct Command {
  const char* name;
  size_t arguments;
  std::string (*run)(const Words& words);
};

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
    {"texts", 1, RunTexts},           // CAPTION: yes and the texts of its controls, or no
    {"press", 2, RunPress},           // CAPTION BUTTON
    {"visible", 1, RunVisible},       // CAPTION: yes or no
    {"enabled", 2, RunEnabled},       // CAPTION BUTTON: yes or no
    {"bar", 1, RunBar},               // CAPTION: position and end of its progress bar
    {"key", 2, RunKey},               // CAPTION KEY: pressed and released
    {"list", 2, RunList},             // ROOT PATH: the values of a key
    {"set-number", 4, RunSetNumber},  // ROOT PATH NAME NUMBER
    {"set-text", 4, RunSetText},      // ROOT PATH NAME TEXT
    {"delete", 2, RunDelete},         // ROOT PATH
    {"string", 3, RunString},         // FILE ID LANGUAGE: a text of a program's resources
};

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
  const auto* command = std::ranges::find(kCommands, words[0], &Command::name);
  if (command == std::end(kCommands)) return Report({"!", "unknown command"});
  if (words.size() != command->arguments + 1) return Report({"!", "wrong number of words"});
  try {
    Report({"=", command->run(words)});
  } catch (const std::exception& error) {
    Report({"!", error.what()});
  }
}

}  // namespace observer
