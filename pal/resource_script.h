// Resource scripts: reads what the GNU resource compiler reads and makes the resources that it makes, in the
// binary forms in which Windows keeps them.
//
// Known: #include, #define of plain names, #undef, #ifdef, #ifndef, #if 0 and #if 1, #pragma once and
// code_page(65001); LANGUAGE, STRINGTABLE, MENU, DIALOG, DIALOGEX, VERSIONINFO, ICON, and every other type
// whose content is a file. Texts are narrow strings in UTF-8. Everything else is an error that names file and
// line.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pal {

// Name or type of a resource: a number, or a text in upper case.
struct ResourceName {
  std::u16string text;  // empty for a number
  uint16_t number = 0;

  auto operator<=>(const ResourceName&) const = default;
};

struct ResourceKey {
  ResourceName type;
  ResourceName name;
  uint16_t language = 0;

  auto operator<=>(const ResourceKey&) const = default;
};

struct Resource {
  ResourceKey key;
  std::vector<uint8_t> data;
};

struct CompiledResources {
  std::vector<Resource> resources;  // in the order of their keys; none when there is an error
  std::string error;                // "file:line: what is wrong"; empty when there is none
};

// The content of a file that the script names, empty when there is none. A file beside the one that names it
// is asked for first.
using ScriptFileLoader = std::function<std::optional<std::string>(const std::string& name)>;

CompiledResources CompileResourceScript(std::string_view text, const ScriptFileLoader& load,
                                        const std::string& fileName = "script");

}  // namespace pal
