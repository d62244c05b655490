// The macro plug-in, macm_<language>.dll, on the simulated desk: it says what it would type.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace simulator {

// The person at the plug-in's editor. A macro with a mistake cannot be confirmed: the editor is given up.
struct MacroEditor {
  std::optional<std::string> answer;  // the macro that is confirmed next; empty: given up
  std::string shown;                  // what the editor showed last: "MODEL|MACRO|FILE"
};

// The editor behind the export.
MacroEditor& TheMacroEditor();

}  // namespace simulator

extern "C" {
void RunMacro(const char* macro, int mode);
char* ComposeMacro(HWND owner, char* model, char* macro, char* customFile);
void FreeMacroDll(void);
}
