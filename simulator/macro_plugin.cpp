#include "simulator/macro_plugin.h"

#include "plugins/macro/macro_text.h"
#include "simulator/report.h"

namespace {

constexpr size_t kTextSize = 1024;

macro::WideText FromAnsi(const std::string& text) {
  macro::WideText wide(text.size() + 1, 0);
  const int size = static_cast<int>(wide.size());
  wide.resize(
      static_cast<size_t>(MultiByteToWideChar(CP_THREAD_ACP, 0, text.c_str(), -1, wide.data(), size)) - 1);
  return wide;
}

std::string ToUtf8(const macro::WideText& text) {
  constexpr int kMostBytes = 4;  // of one character
  std::string bytes(text.size() * kMostBytes, '\0');
  bytes.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                       bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                                       nullptr)));
  return bytes;
}

std::string Describe(const macro::MacroStep& step) {
  if (step.kind == macro::MacroStep::Kind::kText) return "types " + ToUtf8(step.text);
  if (step.kind == macro::MacroStep::Kind::kPause) return "waits " + std::to_string(step.count) + " ms";
  std::string keys;
  for (const macro::MacroKey& key : step.keys)
    keys += (keys.empty() ? "" : "+") + std::to_string(key.virtualKey);
  return "presses " + keys + (step.count == 1 ? "" : " " + std::to_string(step.count) + " times");
}

void Perform(const macro::MacroStep& step) {
  simulator::Report("macro", Describe(step));
  if (step.kind == macro::MacroStep::Kind::kPause) Sleep(static_cast<DWORD>(step.count));
}

}  // namespace

simulator::MacroEditor& simulator::TheMacroEditor() {
  static MacroEditor editor;
  return editor;
}

void RunMacro(const char* text, int /*mode*/) {
  const macro::ParsedMacro parsed = macro::ParseMacro(FromAnsi(text));
  if (parsed.mistake) {
    simulator::Report("macro", "refused at " + std::to_string(parsed.mistake->at));
    MessageBeep(MB_OK);
  }
  for (const macro::MacroStep& step : parsed.steps) Perform(step);
}

char* ComposeMacro(HWND /*owner*/, char* model, char* text, char* customFile) {
  static char composed[kTextSize];
  simulator::MacroEditor& editor = simulator::TheMacroEditor();
  editor.shown = std::string(model) + "|" + text + "|" + customFile;
  if (!editor.answer || editor.answer->size() >= kTextSize) return nullptr;
  if (macro::ParseMacro(FromAnsi(*editor.answer)).mistake) return nullptr;
  composed[editor.answer->copy(composed, kTextSize - 1)] = '\0';
  return composed;
}

void FreeMacroDll() {}
