#include "simulator/prompt.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <utility>

#ifdef VELTRA_LIBEDIT
#include <histedit.h>

#include <clocale>
#include <cwchar>
#include <filesystem>
#endif

namespace simulator {
namespace {

// The output is a terminal that moves its cursor.
bool IsCapable() {
  const char* terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) && terminal && std::string_view(terminal) != "dumb";
}

// A world in wall time goes on while the person thinks.
void AwaitInput(World& world, const std::function<void()>& afterEachLook) {
  constexpr int kLookMs = 10;
  pollfd input{STDIN_FILENO, POLLIN, 0};
  while (poll(&input, 1, kLookMs) == 0) {
    world.GoOn();
    afterEachLook();
  }
}

void RunPromptLine(Console& console, const std::string& line) {
  if (const Problem problem = console.RunLine(line)) std::cout << "  " << *problem << "\n";
  std::cout.flush();
}

void RunPlainPrompt(Console& console) {
  std::setvbuf(stdin, nullptr, _IONBF, 0);  // lines that were read ahead would not wake AwaitInput
  std::string line;
  while (!console.HasEnded()) {
    std::cout << "> " << std::flush;
    AwaitInput(console.TheWorld(), [] {});
    if (!std::getline(std::cin, line)) return;
    RunPromptLine(console, line);
  }
}

#ifdef VELTRA_LIBEDIT

Console& ConsoleOf(EditLine* editor) {
  void* console = nullptr;
  el_get(editor, EL_CLIENTDATA, &console);
  return *static_cast<Console*>(console);
}

// What happens meanwhile takes the place of the line, which comes again below it.
void AwaitKey(EditLine* editor) {
  Console& console = ConsoleOf(editor);
  bool isLineGone = false;
  console.TheTimeline().OnPrint([&isLineGone] {
    if (!std::exchange(isLineGone, true)) std::cout << "\r\033[K";
  });
  AwaitInput(console.TheWorld(), [&] {
    if (!std::exchange(isLineGone, false)) return;
    std::cout.flush();
    el_set(editor, EL_REFRESH);
  });
  console.TheTimeline().OnPrint({});
}

// 1 when there is a character, 0 at the end of the input.
int ReadCharacter(EditLine* editor, wchar_t* character) {
  AwaitKey(editor);
  std::mbstate_t state{};
  for (char byte = 0; read(STDIN_FILENO, &byte, 1) == 1;) {
    constexpr auto kUnfinished = static_cast<size_t>(-2);
    const size_t taken = std::mbrtowc(character, &byte, 1, &state);
    if (taken <= 1) return 1;
    if (taken != kUnfinished) state = {};
  }
  return 0;
}

// What all of them begin with.
std::string_view CommonBeginning(const std::vector<std::string_view>& names) {
  std::string_view common = names.front();
  for (const std::string_view name : names)
    common = common.substr(0, static_cast<size_t>(std::ranges::mismatch(common, name).in1 - common.begin()));
  return common;
}

unsigned char Complete(EditLine* editor, int) {
  const LineInfo* info = el_line(editor);
  const std::string_view line(info->buffer, static_cast<size_t>(info->cursor - info->buffer));
  const std::vector<std::string_view> names = Completions(ConsoleOf(editor), line);
  if (names.empty()) return CC_REFRESH_BEEP;
  const size_t begun = line.size() - (line.find_last_of(" \t") + 1);
  std::string more(CommonBeginning(names).substr(begun));
  if (names.size() == 1) more += ' ';
  if (!more.empty()) return el_insertstr(editor, more.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
  std::cout << "\n";
  for (const std::string_view name : names) std::cout << "  " << name;
  std::cout << "\n" << std::flush;
  return CC_REDISPLAY;
}

// Where the lines are kept from one prompt to the next, its folder made; empty when there is no such place.
std::string HistoryFile() {
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  std::filesystem::path folder;
  if (state && *state == '/')
    folder = state;
  else if (home && *home == '/')
    folder = std::filesystem::path(home) / ".local/state";
  else
    return {};
  folder /= "veltratool";
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);
  return failed ? std::string() : (folder / "history").string();
}

void RunEditedPrompt(Console& console) {
  constexpr int kRemembered = 500;
  const std::string file = HistoryFile();
  std::setlocale(LC_CTYPE, "C.UTF-8");
  EditLine* editor = el_init("tablet", stdin, stdout, stderr);
  History* past = history_init();
  HistEvent event{};
  history(past, &event, H_SETSIZE, kRemembered);
  history(past, &event, H_SETUNIQUE, 1);
  if (!file.empty()) history(past, &event, H_LOAD, file.c_str());
  el_set(editor, EL_CLIENTDATA, &console);
  el_set(
      editor, EL_PROMPT, +[](EditLine*) { return const_cast<char*>("> "); });
  el_set(editor, EL_EDITOR, "emacs");
  el_set(editor, EL_SIGNAL, 1);  // the terminal is as it was when the program is stopped
  el_set(editor, EL_HIST, history, past);
  el_set(editor, EL_GETCFN, ReadCharacter);
  el_wset(editor, EL_ADDFN, L"complete", L"complete the word", Complete);  // el_set leaks the two names
  el_set(editor, EL_BIND, "\t", "complete", nullptr);
  while (!console.HasEnded()) {
    int count = 0;
    const char* text = el_gets(editor, &count);
    if (!text || count <= 0) {
      std::cout << "\n";
      break;
    }
    std::string line(text, static_cast<size_t>(count));
    while (line.ends_with('\n') || line.ends_with(' ')) line.pop_back();
    if (!line.empty()) history(past, &event, H_ENTER, line.c_str());
    if (!file.empty()) history(past, &event, H_SAVE, file.c_str());
    RunPromptLine(console, line);
  }
  history_end(past);
  el_end(editor);
}

#endif

}  // namespace

bool TerminalHasColours() {
  const char* refused = std::getenv("NO_COLOR");
  return IsCapable() && !(refused && *refused);
}

void RunPrompt(Console& console) {
#ifdef VELTRA_LIBEDIT
  if (isatty(STDIN_FILENO) && IsCapable()) return RunEditedPrompt(console);
#endif
  RunPlainPrompt(console);
}

}  // namespace simulator
