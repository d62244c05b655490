// toolprobe: asks the device tool that runs on this tablet what it knows, for the technician in front of it.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "system/numbers.h"
#include "tools/command_line_program.h"
#include "tools/probe_surroundings.h"
#include "tools/probe_text.h"

namespace {

using namespace veltra;

constexpr int kAnswered = 0;
constexpr int kNoTool = 1;
constexpr int kWrongUsage = 2;
constexpr int kNoAnswer = 3;

constexpr char kUsage[] =
    "usage: toolprobe [--xml] [--log FILE] [QUESTION...]\n"
    "\n"
    "Asks the device tool that is running on this tablet and prints its answers. The questions, all of\n"
    "which are asked when none is named:\n"
    "\n"
    "  battery   where the power comes from, and the battery's capacity\n"
    "  volume    the speaker volume\n"
    "  firmware  whether the controller's firmware is version 95 or later\n"
    "  codec     whether the sound is ready\n"
    "  report    the device report\n"
    "\n"
    "  --xml       print the device report as the document that programs get\n"
    "  --log FILE  write the answers to FILE, and after them settings, ports, libraries and the log, even\n"
    "              when the tool is not running: what to send when something is wrong\n"
    "  --help      print this\n"
    "\n"
    "Exit code: 0 answered, or FILE is written; 1 the tool is not running; 2 wrong usage, or FILE cannot\n"
    "be written; 3 no answer.\n";

// ---- the tool's window --------------------------------------------------------------------------------------

constexpr const WCHAR* kToolWindow = TEXT("VeltraInternal");
constexpr UINT kPatienceMs = 10000;

struct Probe {
  HWND tool = nullptr;
  HWND receiver = nullptr;  // takes the report
  bool asXml = false;
};

// Empty, with words on the standard error output, when there is no answer.
std::optional<LRESULT> Ask(const Probe& probe, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
  // Windows calls a program hung that does not look at its messages for 5 s, and its answer might be given
  // up.
  MSG looked = {};
  PeekMessageW(&looked, nullptr, 0, 0, PM_NOREMOVE);
  DWORD_PTR answer = 0;
  if (SendMessageTimeoutW(probe.tool, message, wParam, lParam, SMTO_NORMAL, kPatienceMs, &answer))
    return static_cast<LRESULT>(answer);
  const DWORD error = GetLastError();
  std::fprintf(stderr, "toolprobe: no answer from the tool, Windows error %s%s\n",
               std::to_string(error).c_str(),
               error == ERROR_ACCESS_DENIED ? ": start this program with the rights that the tool has" : "");
  return std::nullopt;
}

// ---- the report that comes back -----------------------------------------------------------------------------

HWND expectedSender = nullptr;
std::optional<WideText> receivedReport;

LRESULT CALLBACK ReceiverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_COPYDATA) return DefWindowProcW(window, message, wParam, lParam);
  const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
  if (reinterpret_cast<HWND>(wParam) != expectedSender || data.dwData != 0 || !data.lpData) return FALSE;
  WideText text(static_cast<const WCHAR*>(data.lpData), data.cbData / sizeof(WCHAR));
  text.resize(std::min(text.size(), text.find(WCHAR{0})));
  receivedReport = std::move(text);
  return TRUE;
}

HWND MakeReceiver() {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = ReceiverProc;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = TEXT("Veltra Tool Probe");
  RegisterClassExW(&windowClass);
  const HWND receiver = CreateWindowExW(0, windowClass.lpszClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE,
                                        nullptr, windowClass.hInstance, nullptr);
  // Where this program has higher rights than the tool, Windows would keep the report from it.
  ChangeWindowMessageFilterEx(receiver, WM_COPYDATA, MSGFLT_ALLOW, nullptr);
  return receiver;
}

// ---- the questions ------------------------------------------------------------------------------------------

void PrintLine(const char* what, const std::string& answer) {
  std::printf("%-16s%s\n", what, answer.c_str());
}

bool PrintBattery(const Probe& probe) {
  const std::optional<LRESULT> source = Ask(probe, kDeviceToolRequest, kPowerSourceRequest);
  if (!source) return false;
  const std::optional<LRESULT> capacity = Ask(probe, kDeviceToolRequest, kCapacityRequest);
  if (!capacity) return false;
  PrintLine("power source", probe::FormatPowerSource(*source));
  PrintLine("capacity", std::to_string(*capacity) + " %");
  return true;
}

bool PrintVolume(const Probe& probe) {
  const std::optional<LRESULT> volume = Ask(probe, kDeviceToolRequest, kSpeakerVolumeRequest);
  if (volume) PrintLine("speaker volume", probe::FormatVolume(*volume));
  return volume.has_value();
}

bool PrintFirmware(const Probe& probe) {
  const std::optional<LRESULT> answer = Ask(probe, WM_QUERY_PIC_FIRMWARE);
  if (answer) PrintLine("firmware", *answer == 1 ? "95 or later" : "older than 95, or not known");
  return answer.has_value();
}

bool PrintCodec(const Probe& probe) {
  const std::optional<LRESULT> answer = Ask(probe, kCodecStatusQuery);
  if (answer) PrintLine("codec", *answer == 1 ? "ready" : "not ready");
  return answer.has_value();
}

bool PrintReport(const Probe& probe) {
  receivedReport.reset();
  if (!Ask(probe, kDeviceReportRequest, kWholeReport, reinterpret_cast<LPARAM>(probe.receiver))) return false;
  if (!receivedReport) {
    std::fputs("toolprobe: the tool sent no report\n", stderr);
    return false;
  }
  const auto items = probe::ReadReport(*receivedReport);
  if (!items) std::fputs("toolprobe: the report has an unknown form\n", stderr);
  std::erase(*receivedReport, WCHAR{'\r'});  // the standard output makes its own line ends
  const bool asDocument = probe.asXml || !items;
  std::fputs((asDocument ? probe::Utf8(*receivedReport) : probe::FormatReport(*items)).c_str(), stdout);
  return items.has_value();
}

struct Question {
  std::string_view name;
  bool (*print)(const Probe& probe);  // false when there was no answer
};

constexpr Question kQuestions[] = {
    {"battery", PrintBattery}, {"volume", PrintVolume}, {"firmware", PrintFirmware},
    {"codec", PrintCodec},     {"report", PrintReport},
};

// ---- the command line ---------------------------------------------------------------------------------------

struct Options {
  bool help = false;
  bool xml = false;
  std::string log;  // empty: the answers go to the standard output
  std::vector<Question> questions;
};

std::optional<Options> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (size_t n = 0; n < arguments.size(); ++n) {
    const std::string& argument = arguments[n];
    const auto* question = std::ranges::find(kQuestions, argument, &Question::name);
    if (argument == "--help")
      options.help = true;
    else if (argument == "--xml")
      options.xml = true;
    else if (argument == "--log" && n + 1 < arguments.size())
      options.log = arguments[++n];
    else if (question != std::end(kQuestions))
      options.questions.push_back(*question);
    else
      return std::nullopt;
  }
  if (options.questions.empty()) options.questions.assign(std::begin(kQuestions), std::end(kQuestions));
  return options;
}

// The code page of the console while the program prints.
class Utf8Console {
 public:
  Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
  ~Utf8Console() {
    std::fflush(stdout);
    if (before_ != 0) SetConsoleOutputCP(before_);
  }
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;

 private:
  UINT before_;  // 0: there is no console
};

int AskAll(const Options& options) {
  Probe probe;
  probe.asXml = options.xml;
  probe.tool = FindWindowW(kToolWindow, nullptr);
  if (!probe.tool) {
    std::fputs("toolprobe: the device tool is not running\n", stderr);
    return kNoTool;
  }
  expectedSender = probe.tool;
  probe.receiver = MakeReceiver();
  bool answered = true;
  for (const Question& question : options.questions) answered = question.print(probe) && answered;
  DestroyWindow(probe.receiver);
  return answered ? kAnswered : kNoAnswer;
}

int Run(const Options& options) {
  const Utf8Console console;
  if (options.log.empty()) return AskAll(options);
  if (!std::freopen(options.log.c_str(), "w", stdout)) {
    std::fprintf(stderr, "toolprobe: %s cannot be written\n", options.log.c_str());
    return kWrongUsage;
  }
  if (AskAll(options) == kNoTool) std::puts("the device tool is not running");
  probe::PrintSurroundings();
  return kAnswered;
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram<Options>({.name = "toolprobe",
                              .usage = kUsage,
                              .wrongUsage = kWrongUsage,
                              .failed = kNoAnswer,
                              .parse = ParseOptions,
                              .run = Run},
                             argc, argv);
}
