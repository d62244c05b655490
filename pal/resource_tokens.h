// The words of a resource script, after #include, #define and conditions have done their work.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "pal/resource_script.h"

namespace pal {

struct ScriptPlace {
  std::shared_ptr<const std::string> file;
  int line = 0;
};

// Ends the compilation; caught by CompileResourceScript.
class ScriptError : public std::runtime_error {
 public:
  ScriptError(const ScriptPlace& place, const std::string& what)
      : std::runtime_error(*place.file + ":" + std::to_string(place.line) + ": " + what) {}
};

struct Token {
  enum class Kind { kNumber, kText, kName, kSign, kEnd };

  Kind kind = Kind::kEnd;
  ScriptPlace place;
  std::string word;     // of a name or sign, as it is written
  std::u16string text;  // of a text
  uint32_t number = 0;

  [[nodiscard]] bool Is(std::string_view wanted) const {
    return (kind == Kind::kName || kind == Kind::kSign) && word == wanted;
  }
};

// The tokens of one line without comments.
std::vector<Token> SplitLine(std::string_view line, const ScriptPlace& place);

struct ScriptFile {
  std::string name;
  std::string content;
};

// A file that the script names at that place.
ScriptFile LoadScriptFile(const ScriptFileLoader& load, const std::string& name, const ScriptPlace& place);

// The tokens of the script and of all that it includes; ends with a token of kind kEnd.
std::vector<Token> ReadTokens(std::string_view text, const ScriptFileLoader& load,
                              const std::string& fileName);

}  // namespace pal
