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
  const std::pair<std::string_view, std::vector<std::string_view>> cases[] = {
      {"",
       {"", "-h", "-help", "--s", "-", "--", "---help", "-silently", "s", "-x=1", "\"-s -v5\"", "x\"y -s\""}},
      {"s", {"-s", "-si", "-sil", "-silent", "/S", "/SiLeNt", "\"-s\"", "\"-s", "\"\" -s"}},
      {"v", {"-v", "-v5", "/V5", "\"-s\"-v5\" -v5"}},
      {"h", {"-?", "/?", "--h", "--hel", "--help", "/-HELP", "-? -s=1"}},
      {"sv", {"-s -v5", "\t-s\r\n-v5 "}},
      {"hs", {"-s --help -v5"}},
      {"!", {"-s=1"}},
      {"v!", {"-sil=yes -v5"}},
      {"s!", {"--help=now -s"}}};
  for (const auto& [expected, lines] : cases)
    for (const std::string_view arguments : lines)
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
