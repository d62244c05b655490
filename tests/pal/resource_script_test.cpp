// What the reader of resource scripts accepts and refuses, and where it says that something is wrong. What it
// makes of a right script is compared with the real compiler's work in resources_contract.cpp.
#include "pal/resource_script.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using Files = std::map<std::string, std::string>;

constexpr uint16_t kStringType = 6;

pal::CompiledResources Compile(const std::string& script, const Files& files = {}) {
  return pal::CompileResourceScript(script, [&](const std::string& name) -> std::optional<std::string> {
    const auto file = files.find(name);
    if (file == files.end()) return std::nullopt;
    return file->second;
  });
}

// String 0 of the first block, or the error.
std::u16string FirstString(const std::string& script, const Files& files = {}) {
  const pal::CompiledResources compiled = Compile(script, files);
  if (!compiled.error.empty()) return std::u16string(compiled.error.begin(), compiled.error.end());
  for (const pal::Resource& resource : compiled.resources) {
    if (resource.key.type.number != kStringType || resource.key.name.number != 1) continue;
    std::u16string text;
    for (size_t i = 0; i < resource.data[0]; ++i)
      text.push_back(static_cast<char16_t>(resource.data[2 + 2 * i] | resource.data[3 + 2 * i] << 8));
    return text;
  }
  return u"no string";
}

TEST(ResourceScript, Preprocessing) {
  struct Row {
    std::string script;
    std::u16string text;
  };
  const Files files = {
      {"ids.h", "#pragma once\r\n#define ZERO 0 // the first\r\n#define NULL_ZERO ZERO\r\n"},
      {"lang/main.rc", "#include \"part.rc\"\n"},
      {"lang/part.rc", "STRINGTABLE { 0 \"beside\" }"},
      {"part.rc", "STRINGTABLE { 0 \"elsewhere\" }"},
  };
  const Row rows[] = {
      {"#include \"ids.h\"\n#include \"ids.h\"\nSTRINGTABLE { NULL_ZERO \"included\" }", u"included"},
      {"#include \"lang/main.rc\"", u"beside"},
      {"/* a \" \n */ STRINGTABLE // {\n { 0 \"// no /* comment */\" }", u"// no /* comment */"},
      {"#define T \"defined\"\nSTRINGTABLE { 0 T }", u"defined"},
      {"#ifdef NO\nSTRINGTABLE { 0 \"yes\" }\n#else\nSTRINGTABLE { 0 \"no\" }\n#endif", u"no"},
      {"#ifndef RC_INVOKED\nclass C { 'x' ; };\n#endif\nSTRINGTABLE { 0 \"guarded\" }", u"guarded"},
      {"#if 0\n#if 1\n#else\nnonsense\n#endif\n#endif\nSTRINGTABLE { 0 \"nested\" }", u"nested"},
      {"#define A\n#undef A\n#ifdef A\nnonsense\n#endif\nSTRINGTABLE { 0 \"undone\" }", u"undone"},
      {"\xEF\xBB\xBF#pragma code_page(65001)\nSTRINGTABLE { 0 \"\xC3\xA9\\303\\251\\xC3\\xA9\" }",
       u"\u00e9\u00e9\u00e9"},
      {"STRINGTABLE { (1 + 2 * 3 - 7) | 0 L\"wide\" }", u"wide"},
  };
  for (const Row& row : rows) EXPECT_EQ(FirstString(row.script, files), row.text) << row.script;
}

TEST(ResourceScript, ErrorsNameFileAndLine) {
  struct Row {
    std::string script;
    std::string error;
  };
  const std::string icon("\0\0\1\0\1\0\x10\x10\0\0\1\0\x20\0\xFF\0\0\0\x16\0\0\0", 22);
  const Files files = {{"bad.rc", "\n\nSTRINGTABLE\n{\n  x \"a\"\n}"},
                       {"self.rc", "#include \"self.rc\""},
                       {"icon.ico", icon},
                       {"text.txt", "no icon"}};
  const Row rows[] = {
      {"#include \"bad.rc\"", "bad.rc:5: unknown name x"},
      {"\n#include \"none.rc\"", "script:2: cannot read \"none.rc\""},
      {"#include \"self.rc\"", "self.rc:1: files include each other too deep"},
      {"#include <stdio.h>", "script:1: unknown header <stdio.h>"},
      {"#define F(x) x", "script:1: only plain names can be defined"},
      {"#define A B\n#define B A\nSTRINGTABLE { A \"a\" }", "script:3: A is defined by itself"},
      {"#if A > 1\n#endif", "script:1: only #if 0 and #if 1 are known"},
      {"#ifdef A\n", "script:1: the condition does not end"},
      {"#endif", "script:1: #endif without a condition"},
      {"#warning x", "script:1: unknown directive #warning"},
      {"x\n/* y", "script:2: the comment does not end"},
      {"STRINGTABLE { 1 \"a\n\" }", "script:1: the text does not end on its line"},
      {"STRINGTABLE { 1 \"\\q\" }", "script:1: unknown escape: \\q"},
      {"STRINGTABLE { 1 \"\xE9\" }", "script:1: the text is not UTF-8"},
      {"STRINGTABLE { 1 L\"\xC3\xA9\" }",
       "script:1: a wide text may hold ASCII only: write it without the L"},
      {"STRINGTABLE { 0x100000000 \"a\" }", "script:1: the number has more than 32 bits"},
      {"STRINGTABLE { 70000 \"a\" }", "script:1: the number has more than 16 bits"},
      {"STRINGTABLE { 17u \"a\" }", "script:1: not a number"},
      {"STRINGTABLE { 1/0 \"a\" }", "script:1: division by zero"},
      {"STRINGTABLE { 1 }", "script:1: a text is missing here"},
      {"STRINGTABLE {\n1 \"a\"\n1 \"b\" }", "script:3: string 1 stands here for the second time"},
      {"STRINGTABLE { 1 \"a\"", "script:1: END is missing"},
      {"LANGUAGE LANG_DUTCH, 0", "script:1: unknown name LANG_DUTCH"},  // no header brought the name
      {"LANGUAGE 0x400, 0", "script:1: no such language"},
      {"1 MENU { }", "script:1: a menu without items"},
      {"1 MENU { MENUITEM \"a\", 1, LOUD }", "script:1: unknown option of a menu item"},
      {"1 MENUEX { }", "script:1: MENUEX is not known"},
      {"1 DIALOG 1, 2, 3 { }", "script:1: , is missing here"},
      {"1 DIALOG 1, 2, 3, 4 { BUTTON }", "script:1: unknown control"},
      {"1 VERSIONINFO FILEVERSION 1,2,3,4,5 { }", "script:1: a version has four parts"},
      {"1 RCDATA { 1 }", "script:1: the name of a file is missing here"},
      {"1 RCDATA \"text.txt\"\n1 RCDATA \"text.txt\"",
       "script:2: this resource stands here for the second time"},
      {"1 ICON \"text.txt\"", "script:1: the file is no icon"},
      {"1 ICON \"icon.ico\"", "script:1: a picture of the icon is cut off"},
  };
  for (const Row& row : rows) {
    const pal::CompiledResources compiled = Compile(row.script, files);
    EXPECT_EQ(compiled.error, row.error) << row.script;
    EXPECT_TRUE(compiled.resources.empty()) << row.script;
  }
}

TEST(ResourceScript, HostileScriptsEnd) {
  // Names that stand for ten of the next each, and brackets and menus without end.
  std::string bomb;
  for (char name = 'a'; name < 'k'; ++name) {
    bomb += std::string("#define ") + name;
    for (int i = 0; i < 10; ++i) bomb += std::string(" ") + static_cast<char>(name + 1);
    bomb += "\n";
  }
  EXPECT_EQ(Compile(bomb + "a").error, "script:11: the script is too long");
  Files forks = {{"8.rc", ""}};  // each includes the next ten times
  for (int i = 0; i < 8; ++i)
    for (int times = 0; times < 10; ++times)
      forks[std::to_string(i) + ".rc"] += "#include \"" + std::to_string(i + 1) + ".rc\"\n";
  EXPECT_NE(Compile("#include \"0.rc\"", forks).error.find(": the script is too long"), std::string::npos);
  EXPECT_EQ(Compile("STRINGTABLE { " + std::string(10'000, '(')).error, "script:1: brackets too deep");
  std::string menus = "1 MENU {";
  for (int i = 0; i < 1000; ++i) menus += "POPUP \"a\" {";
  EXPECT_EQ(Compile(menus).error, "script:1: menus too deep");
  std::string blocks = "1 VERSIONINFO {";
  for (int i = 0; i < 1000; ++i) blocks += "BLOCK \"a\" {";
  EXPECT_EQ(Compile(blocks).error, "script:1: blocks too deep");
}

}  // namespace
