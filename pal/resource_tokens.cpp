#include "pal/resource_tokens.h"

#include <map>
#include <set>

#include "pal/resource_constants.h"

namespace pal {
namespace {

// Far beyond any real script; a script that includes or expands itself without end stops here.
constexpr int kDeepestInclude = 16;
constexpr int kDeepestExpansion = 16;
constexpr size_t kMostSteps = 100'000;  // lines and words

// Blanks in the place of comments, line by line the same text.
std::string WithoutComments(std::string_view text, ScriptPlace place) {
  enum class In { kCode, kText, kLineComment, kBlockComment };
  std::string result(text);
  In in = In::kCode;
  place.line = 1;
  ScriptPlace begin = place;
  for (size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const char next = at + 1 < text.size() ? text[at + 1] : '\n';
    if (c == '\n') {
      ++place.line;
      if (in != In::kBlockComment) in = In::kCode;
    } else if (in == In::kCode && c == '/' && (next == '/' || next == '*')) {
      in = next == '/' ? In::kLineComment : In::kBlockComment;
      begin = place;
      result[at] = result[at + 1] = ' ';
      ++at;
    } else if (in == In::kBlockComment && c == '*' && next == '/') {
      in = In::kCode;
      result[at] = result[at + 1] = ' ';
      ++at;
    } else if (in == In::kLineComment || in == In::kBlockComment) {
      result[at] = ' ';
    } else if (in == In::kText && c == '\\' && next != '\n') {
      ++at;
    } else if (c == '"') {
      in = in == In::kText ? In::kCode : In::kText;
    }
  }
  if (in == In::kBlockComment) throw ScriptError(begin, "the comment does not end");
  return result;
}

class ScriptReader {
 public:
  explicit ScriptReader(const ScriptFileLoader& load) : load_(load) { defines_["RC_INVOKED"] = {}; }

  void ReadFile(std::string_view text, const std::string& name, int depth) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    ScriptPlace place = {std::make_shared<const std::string>(name), 0};
    const std::string clean = WithoutComments(text, place);
    std::string_view rest = clean;
    std::vector<Condition> conditions;
    while (!rest.empty()) {
      ++place.line;
      std::string_view line = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(std::min(rest.size(), line.size() + 1));
      if (line.ends_with('\r')) line.remove_suffix(1);
      ReadLine(line, place, conditions, depth);
    }
    if (!conditions.empty()) throw ScriptError(conditions.back().place, "the condition does not end");
  }

  std::vector<Token> Take() {
    Token end;
    end.place = tokens_.empty() ? last_ : tokens_.back().place;
    tokens_.push_back(end);
    return std::move(tokens_);
  }

 private:
  struct Condition {
    ScriptPlace place;
    bool holds;
    bool hadElse = false;
  };

  static bool AllHold(const std::vector<Condition>& conditions) {
    for (const Condition& condition : conditions)
      if (!condition.holds) return false;
    return true;
  }

  void ReadLine(std::string_view line, const ScriptPlace& place, std::vector<Condition>& conditions,
                int depth) {
    last_ = place;
    CountStep(place);
    const size_t begin = line.find_first_not_of(" \t");
    if (begin == line.npos) return;
    line.remove_prefix(begin);
    if (line.front() != '#') {
      if (AllHold(conditions)) Append(SplitLine(line, place), place, 0);
      return;
    }
    line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t", 1)));
    const std::string_view directive = line.substr(0, line.find_first_of(" \t<\"("));
    std::string_view argument = line.substr(directive.size());
    argument.remove_prefix(std::min(argument.size(), argument.find_first_not_of(" \t")));
    argument = argument.substr(0, argument.find_last_not_of(" \t") + 1);
    if (ReadCondition(directive, argument, place, conditions) || !AllHold(conditions)) return;
    if (directive == "include") {
      Include(argument, place, depth);
    } else if (directive == "define") {
      Define(argument, place);
    } else if (directive == "undef") {
      defines_.erase(NameIn(argument, place));
    } else if (directive != "pragma") {
      throw ScriptError(place, "unknown directive #" + std::string(directive));
    } else if (argument == "once") {
      onlyOnce_.insert(*place.file);
    } else if (argument != "code_page(65001)") {
      throw ScriptError(place, "unknown #pragma " + std::string(argument));
    }
  }

  // Whether the directive was one of a condition.
  bool ReadCondition(std::string_view directive, std::string_view argument, const ScriptPlace& place,
                     std::vector<Condition>& conditions) {
    if (directive == "ifdef" || directive == "ifndef") {
      const bool defined = AllHold(conditions) && IsDefined(NameIn(argument, place));
      conditions.push_back({place, defined == (directive == "ifdef")});
    } else if (directive == "if") {
      if (AllHold(conditions) && argument != "0" && argument != "1")
        throw ScriptError(place, "only #if 0 and #if 1 are known");
      conditions.push_back({place, argument == "1"});
    } else if (directive == "else") {
      if (conditions.empty() || conditions.back().hadElse)
        throw ScriptError(place, "#else without a condition");
      conditions.back().holds = !conditions.back().holds;
      conditions.back().hadElse = true;
    } else if (directive == "endif") {
      if (conditions.empty()) throw ScriptError(place, "#endif without a condition");
      conditions.pop_back();
    } else if (directive == "elif") {
      throw ScriptError(place, "#elif is not known");
    } else {
      return false;
    }
    return true;
  }

  bool IsDefined(const std::string& name) const {
    return defines_.contains(name) || (hasConstants_ && FindResourceConstant(name));
  }

  static std::string NameIn(std::string_view argument, const ScriptPlace& place) {
    const std::vector<Token> tokens = SplitLine(argument, place);
    if (tokens.size() != 1 || tokens[0].kind != Token::Kind::kName)
      throw ScriptError(place, "a name is missing here");
    return tokens[0].word;
  }

  void Include(std::string_view argument, const ScriptPlace& place, int depth) {
    const bool quoted = argument.size() > 2 && argument.starts_with('"') && argument.ends_with('"');
    const bool angled = argument.size() > 2 && argument.starts_with('<') && argument.ends_with('>');
    if (!quoted && !angled) throw ScriptError(place, "#include names no file");
    const std::string name(argument.substr(1, argument.size() - 2));
    if (angled) {
      if (!IsSystemHeader(name)) throw ScriptError(place, "unknown header <" + name + ">");
      hasConstants_ = true;
      return;
    }
    if (depth == kDeepestInclude) throw ScriptError(place, "files include each other too deep");
    const ScriptFile file = LoadScriptFile(load_, name, place);
    if (!onlyOnce_.contains(file.name)) ReadFile(file.content, file.name, depth + 1);
  }

  void Define(std::string_view argument, const ScriptPlace& place) {
    std::vector<Token> tokens = SplitLine(argument, place);
    if (tokens.empty() || tokens[0].kind != Token::Kind::kName)
      throw ScriptError(place, "#define without a name");
    const std::string name = tokens[0].word;
    if (argument.substr(name.size()).starts_with('('))
      throw ScriptError(place, "only plain names can be defined");
    tokens.erase(tokens.begin());
    defines_[name] = std::move(tokens);
  }

  void CountStep(const ScriptPlace& place) {
    if (++steps_ > kMostSteps) throw ScriptError(place, "the script is too long");
  }

  // Appends the tokens with what their names stand for.
  void Append(const std::vector<Token>& tokens, const ScriptPlace& place, int depth) {
    for (const Token& token : tokens) {
      CountStep(place);
      const bool isName = token.kind == Token::Kind::kName;
      const auto define = isName ? defines_.find(token.word) : defines_.end();
      if (define != defines_.end()) {
        if (depth == kDeepestExpansion) throw ScriptError(place, token.word + " is defined by itself");
        Append(define->second, place, depth + 1);
        continue;
      }
      Token& added = tokens_.emplace_back(token);
      added.place = place;
      const auto constant = isName && hasConstants_ ? FindResourceConstant(token.word) : std::nullopt;
      if (!constant) continue;
      added.kind = Token::Kind::kNumber;
      added.number = *constant;
    }
  }

  const ScriptFileLoader& load_;
  std::map<std::string, std::vector<Token>, std::less<>> defines_;
  std::set<std::string> onlyOnce_;
  bool hasConstants_ = false;
  std::vector<Token> tokens_;
  size_t steps_ = 0;
  ScriptPlace last_;
};

}  // namespace

ScriptFile LoadScriptFile(const ScriptFileLoader& load, const std::string& name, const ScriptPlace& place) {
  const size_t slash = place.file->rfind('/');
  if (slash != std::string::npos) {
    const std::string beside = place.file->substr(0, slash + 1) + name;
    if (auto content = load(beside)) return {beside, std::move(*content)};
  }
  if (auto content = load(name)) return {name, std::move(*content)};
  throw ScriptError(place, "cannot read \"" + name + "\"");
}

std::vector<Token> ReadTokens(std::string_view text, const ScriptFileLoader& load,
                              const std::string& fileName) {
  ScriptReader reader(load);
  reader.ReadFile(text, fileName, 0);
  return reader.Take();
}

}  // namespace pal
