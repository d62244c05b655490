#include "base/command_line.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

// The options that a command line sets, one letter each: h s v, then one ! for each refused one.
std::string Parsed(std::string_view line) {
  const CommandLine result = ParseCommandLine(Widen(line));
  return std::string(result.help ? "h" : "") + (result.silent ? "s" : "") + (result.openOptions ? "v" : "") +
         std::string(result.refused.size(), '!');
}

TEST(CommandLine, Spellings) {
  const std::pair<std::string_view, std::string_view> cases[] = {{"", ""},
                                                                 {"-s", "s"},
                                                                 {"-silent", "s"},
                                                                 {"/S", "s"},
                                                                 {"/SiLeNt", "s"},
                                                                 {"-v5", "v"},
                                                                 {"/V5", "v"},
                                                                 {"-?", "h"},
                                                                 {"/?", "h"},
                                                                 {"--help", "h"},
                                                                 {"/-HELP", "h"},
                                                                 {"-s -v5", "sv"},
                                                                 {"\t-s\r\n-v5 ", "sv"},
                                                                 {"-si", "s"},
                                                                 {"-sil", "s"},
                                                                 {"-v", "v"},
                                                                 {"--h", "h"},
                                                                 {"--hel", "h"},
                                                                 {"-h", ""},
                                                                 {"-help", ""},
                                                                 {"--s", ""},
                                                                 {"-", ""},
                                                                 {"--", ""},
                                                                 {"---help", ""},
                                                                 {"-silently", ""},
                                                                 {"s", ""},
                                                                 {"-s --help -v5", "hs"},
                                                                 {"-? -s=1", "h"},
                                                                 {"-s=1", "!"},
                                                                 {"-sil=yes -v5", "v!"},
                                                                 {"--help=now -s", "s!"},
                                                                 {"-x=1", ""},
                                                                 {"\"-s\"", "s"},
                                                                 {"\"-s -v5\"", ""},
                                                                 {"\"-s\"-v5\" -v5", "v"},
                                                                 {"\"-s", "s"},
                                                                 {"x\"y -s\"", ""},
                                                                 {"\"\" -s", "s"}};
  for (const auto& [arguments, expected] : cases)
    EXPECT_EQ(Parsed("\"C:\\Program Files\\Veltra\\veltratool.exe\" " + std::string(arguments)), expected)
        << arguments;
  // The program is skipped however it is written.
  EXPECT_EQ(Parsed("-s") + Parsed(""), "");
  EXPECT_EQ(Parsed("veltratool.exe -s") + Parsed("  \"my tool\" -s"), "ss");
}

TEST(CommandLine, TheRefusedTextIsKeptAsWritten) {
  const CommandLine result = ParseCommandLine(Widen("tool /Silent=\xE9 -s"));
  ASSERT_EQ(result.refused.size(), 1U);
  EXPECT_EQ(result.refused[0], Widen("/Silent=\xE9"));
}

}  // namespace
}  // namespace veltra
