#include "pal/resource_script.h"

#include <windows.h>

#include <array>
#include <map>
#include <set>

#include "pal/resource_parser.h"
#include "pal/unicode.h"

namespace pal {
namespace {

// The language of what stands before the first LANGUAGE.
constexpr uint16_t kFirstLanguage = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
constexpr size_t kStringsInBlock = 16;
constexpr size_t kLongestString = 0xFFFF;

ResourceName Numbered(const WCHAR* id) {
  return {{}, static_cast<uint16_t>(reinterpret_cast<ULONG_PTR>(id))};
}

const ResourceName kStringType = Numbered(RT_STRING);
const ResourceName kIconImageType = Numbered(RT_ICON);

using StringBlock = std::array<std::u16string, kStringsInBlock>;

std::vector<uint8_t> Encode(const StringBlock& block) {
  ByteWriter writer;
  for (const std::u16string& text : block) {
    writer.Word(text.size());
    writer.Units(text);
  }
  return writer.Take();
}

class ScriptCompiler {
 public:
  ScriptCompiler(std::vector<Token> tokens, const ScriptFileLoader& load)
      : tokens_(std::move(tokens)), load_(load) {}

  std::vector<Resource> Compile() {
    while (!tokens_.AtEnd()) {
      if (tokens_.TakeIf("LANGUAGE"))
        language_ = tokens_.TakeLanguage();
      else if (tokens_.TakeIf("STRINGTABLE"))
        ReadStrings();
      else
        ReadResource();
    }
    std::vector<Resource> resources;
    for (auto& [key, block] : strings_) resources_[key] = Encode(block);
    for (auto& [key, data] : resources_) resources.push_back({key, std::move(data)});
    return resources;
  }

 private:
  // Words of 16-bit Windows that have no meaning any more.
  void SkipMemoryOptions() {
    constexpr std::string_view kWords[] = {"MOVEABLE", "FIXED",      "PURE",       "IMPURE",
                                           "PRELOAD",  "LOADONCALL", "DISCARDABLE"};
    bool found = true;
    while (found) {
      found = false;
      for (const std::string_view word : kWords) found = tokens_.TakeIf(word) || found;
    }
  }

  void ReadStrings() {
    SkipMemoryOptions();
    uint16_t language = language_;
    while (tokens_.TakeIf("LANGUAGE")) language = tokens_.TakeLanguage();
    tokens_.ExpectBegin();
    while (!tokens_.TakeIfEnd()) {
      const ScriptPlace place = tokens_.Peek().place;
      const uint16_t id = tokens_.TakeWord();
      tokens_.TakeIf(",");
      const std::u16string text = tokens_.TakeText();
      if (text.size() > kLongestString) throw ScriptError(place, "the text is too long");
      if (!stringIds_.insert({language, id}).second)
        throw ScriptError(place, "string " + std::to_string(id) + " stands here for the second time");
      const ResourceName block = {{}, static_cast<uint16_t>(id / kStringsInBlock + 1)};
      strings_[{kStringType, block, language}][id % kStringsInBlock] = text;
    }
  }

  void ReadResource() {
    const ScriptPlace place = tokens_.Peek().place;
    const ResourceName name = tokens_.TakeName();
    uint16_t language = language_;
    if (tokens_.TakeIf("MENU")) {
      SkipMemoryOptions();
      auto menu = CompileMenu(tokens_, language);
      Add({Numbered(RT_MENU), name, language}, std::move(menu), place);
    } else if (tokens_.Peek().Is("DIALOG") || tokens_.Peek().Is("DIALOGEX")) {
      const bool extended = tokens_.Take().Is("DIALOGEX");
      SkipMemoryOptions();
      auto dialog = CompileDialog(tokens_, extended, language);
      Add({Numbered(RT_DIALOG), name, language}, std::move(dialog), place);
    } else if (tokens_.TakeIf("VERSIONINFO")) {
      Add({Numbered(RT_VERSION), name, language}, CompileVersion(tokens_), place);
    } else if (tokens_.TakeIf("ICON")) {
      SkipMemoryOptions();
      ReadIcon(name, place);
    } else {
      const ResourceName type = TakeType();
      SkipMemoryOptions();
      const std::string content = ReadFile();
      Add({type, name, language}, {content.begin(), content.end()}, place);
    }
  }

  // A type whose content is a file.
  ResourceName TakeType() {
    for (const std::string_view word : {"MENUEX", "ACCELERATORS", "BITMAP", "CURSOR", "FONT", "MESSAGETABLE",
                                        "TOOLBAR", "DLGINIT", "HTML", "TYPELIB"})
      if (tokens_.Peek().Is(word)) tokens_.Fail(std::string(word) + " is not known");
    if (tokens_.TakeIf("RCDATA")) return Numbered(RT_RCDATA);
    if (tokens_.Peek().kind == Token::Kind::kText)
      tokens_.Fail("the type of a resource is a name or a number");
    return tokens_.TakeName();
  }

  std::string ReadFile() {
    const Token file = tokens_.Peek();
    if (file.kind != Token::Kind::kText) tokens_.Fail("the name of a file is missing here");
    return LoadScriptFile(load_, ToUtf8(tokens_.TakeText()), file.place).content;
  }

  void ReadIcon(const ResourceName& name, const ScriptPlace& place) {
    CompiledIcon icon = CompileIcon(ReadFile(), nextIconImage_, place);
    for (IconImage& image : icon.images) {
      Add({kIconImageType, {{}, image.id}, language_}, std::move(image.data), place);
      nextIconImage_ = static_cast<uint16_t>(image.id + 1);
    }
    Add({Numbered(RT_GROUP_ICON), name, language_}, std::move(icon.group), place);
  }

  void Add(ResourceKey key, std::vector<uint8_t> data, const ScriptPlace& place) {
    if (!resources_.try_emplace(std::move(key), std::move(data)).second)
      throw ScriptError(place, "this resource stands here for the second time");
  }

  TokenReader tokens_;
  const ScriptFileLoader& load_;
  uint16_t language_ = kFirstLanguage;
  uint16_t nextIconImage_ = 1;
  std::map<ResourceKey, std::vector<uint8_t>> resources_;
  std::map<ResourceKey, StringBlock> strings_;
  std::set<std::pair<uint16_t, uint16_t>> stringIds_;
};

}  // namespace

CompiledResources CompileResourceScript(std::string_view text, const ScriptFileLoader& load,
                                        const std::string& fileName) {
  try {
    return {ScriptCompiler(ReadTokens(text, load, fileName), load).Compile(), {}};
  } catch (const ScriptError& error) {
    return {{}, error.what()};
  }
}

}  // namespace pal
