#include "base/command_line.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

// The options that a command line sets, one letter each: h s v, then the number of refused ones.
std::string Parsed(std::string_view arguments) {
  const CommandLine result =
      ParseCommandLine(Widen("\"C:\\Program Files\\Veltra\\veltratool.exe\" ") + Widen(arguments));
  std::string letters;
  if (result.help) letters += 'h';
  if (result.silent) letters += 's';
  if (result.openOptions) letters += 'v';
  for (size_t n = 0; n < result.refused.size(); ++n) letters += '!';
  return letters;
}

TEST(CommandLine, Spellings) {
  const struct {
    std::string_view arguments;
    std::string_view expected;
  } kCases[] = {
      {"", ""},
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
      // abbreviations: of one spelling only, with its kind of dashes, with one letter at least
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
      // help ends the parsing
      {"-s --help -v5", "hs"},
      {"-? -s=1", "h"},
      // a value attached to an option is refused, to anything else ignored
      {"-s=1", "!"},
      {"-sil=yes -v5", "v!"},
      {"--help=now -s", "s!"},
      {"-x=1", ""},
      // quotes
      {"\"-s\"", "s"},
      {"\"-s -v5\"", ""},
      {"\"-s\"-v5\" -v5", "v"},
      {"\"-s", "s"},
      {"x\"y -s\"", ""},
      {"\"\" -s", "s"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Parsed(c.arguments), c.expected) << "arguments: " << c.arguments;
}

TEST(CommandLine, TheProgramIsSkippedHoweverItIsWritten) {
  EXPECT_FALSE(ParseCommandLine(Widen("-s")).silent);
  EXPECT_FALSE(ParseCommandLine(Widen("")).silent);
  EXPECT_TRUE(ParseCommandLine(Widen("veltratool.exe -s")).silent);
  EXPECT_TRUE(ParseCommandLine(Widen("  \"my tool\" -s")).silent);
}

TEST(CommandLine, TheRefusedTextIsKeptAsWritten) {
  const CommandLine result = ParseCommandLine(Widen("tool /Silent=\xE9 -s"));
  ASSERT_EQ(result.refused.size(), 1U);
  EXPECT_EQ(result.refused[0], Widen("/Silent=\xE9"));
  EXPECT_TRUE(result.silent);
}

}  // namespace
}  // namespace veltra
