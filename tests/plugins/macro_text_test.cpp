#include "plugins/macro/macro_text.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>

#include "plugins/macro/macro_keys.h"

namespace macro {
namespace {

std::string Narrow(const WideText& text) {
  return {text.begin(), text.end()};
}

// The steps in words: "type Hello", "keys 11 41", "keys 25 x3", "pause 500".
std::string Describe(const ParsedMacro& macro) {
  std::string words;
  for (const MacroStep& step : macro.steps) {
    if (!words.empty()) words += "; ";
    if (step.kind == MacroStep::Kind::kText) words += "type " + Narrow(step.text);
    if (step.kind == MacroStep::Kind::kPause) words += "pause " + std::to_string(step.count);
    if (step.kind != MacroStep::Kind::kKeys) continue;
    words += "keys";
    for (const MacroKey& key : step.keys) {
      char hex[8];
      std::snprintf(hex, sizeof(hex), " %02X", key.virtualKey);
      words += hex;
    }
    if (step.count != 1) words += " x" + std::to_string(step.count);
  }
  return words;
}

TEST(MacroText, WhatIsWrittenIsWhatIsDone) {
  struct Row {
    std::string_view text;
    std::string_view steps;
  };
  constexpr Row kRows[] = {
      {"", ""},
      {"Hello there", "type Hello there"},
      {"a{Enter}b", "type a; keys 0D; type b"},
      {"{ctrl+c}", "keys 11 43"},
      {"{Ctrl+Shift+Left 3}", "keys 11 10 25 x3"},
      {"{Win}{Alt+F4}", "keys 5B; keys 12 73"},
      {"{Win+7}", "keys 5B 37"},
      {"{Pause 500}x{pause 4500}", "pause 500; type x; pause 4500"},
      {"{{a}}{{{{", "type {a}{{"},
      {"{ }{\"}x{+}{'}{:}", "type  \"x+':"},
      {"a\r\nb\nc\td", "type a; keys 0D; type b; keys 0D; type c; keys 09; type d"},
      {"{Rechts}{OMHOOG}{Spatie}", "keys 27; keys 26; keys 20"},
      {"{a}{9 99}", "keys 41; keys 39 x99"},
      {"{Esc}{del}{PgUp}{PgDn}{Ins}{CapsLock}", "keys 1B; keys 2E; keys 21; keys 22; keys 2D; keys 14"},
      {"{Pauze 20}", "pause 20"},
      {"{Tab}{Backspace}{Up}{Down}{Home}{End}{Menu}{PrintScreen}{Plus}{Minus}{Comma}{Period}{F1}{F12}",
       "keys 09; keys 08; keys 26; keys 28; keys 24; keys 23; keys 5D; keys 2C; keys BB; keys BD; keys BC; "
       "keys BE; "
       "keys 70; keys 7B"},
      {"{VolumeUp}{VolumeDown}{VolumeMute}{PlayPause}{NextTrack}{PreviousTrack}{BrowserBack}{BrowserForward}"
       "{BrowserRefresh}{BrowserHome}",
       "keys AF; keys AE; keys AD; keys B3; keys B0; keys B1; keys A6; keys A7; keys A8; keys AC"},
  };
  for (const Row& row : kRows) {
    const ParsedMacro macro = ParseMacro(veltra::Widen(row.text));
    EXPECT_EQ(Describe(macro), row.steps) << row.text;
    EXPECT_FALSE(macro.mistake) << row.text;
  }
}

TEST(MacroText, AMistakeIsFoundInItsPlaceAndNothingIsDone) {
  struct Row {
    std::string_view text;
    Mistake mistake;
    std::string_view place;
  };
  constexpr Row kRows[] = {
      {"a{Enter}b{Tab", Mistake::kNotClosed, "{Tab"},
      {"a}b", Mistake::kNotOpened, "}"},
      {"x{Entre}", Mistake::kUnknownKey, "Entre"},
      {"{Ctrl+}", Mistake::kUnknownKey, ""},
      {"{}", Mistake::kUnknownKey, ""},
      {"{\n}", Mistake::kUnknownKey, "\n"},
      {"{Ctrl+Foo+A}", Mistake::kUnknownKey, "Foo"},
      {"{A+Ctrl}", Mistake::kNotAModifier, "A"},
      {"{Left+A}", Mistake::kNotAModifier, "Left"},
      {"{Left 0}", Mistake::kBadNumber, "0"},
      {"{Left 100}", Mistake::kBadNumber, "100"},
      {"{Left 1a}", Mistake::kBadNumber, "1a"},
      {"{Left  2}", Mistake::kBadNumber, " 2"},
      {"{Left 4294967297}", Mistake::kBadNumber, "4294967297"},
      {"{Pause}", Mistake::kBadNumber, "Pause"},
      {"{Pause 5001}", Mistake::kBadNumber, "5001"},
      {"{Pause 5000}{Pause 1}", Mistake::kTooLong, "1"},
  };
  for (const Row& row : kRows) {
    const ParsedMacro macro = ParseMacro(veltra::Widen(row.text));
    ASSERT_TRUE(macro.mistake) << row.text;
    EXPECT_EQ(macro.mistake->mistake, row.mistake) << row.text;
    EXPECT_EQ(row.text.substr(macro.mistake->at, macro.mistake->length), row.place) << row.text;
    EXPECT_TRUE(macro.steps.empty()) << row.text;
  }
}

TEST(MacroText, FittedForAProfileItMeansTheSame) {
  struct Row {
    std::string_view text;
    std::string_view fitted;
  };
  constexpr Row kRows[] = {
      {"", ""},
      {"plain", "plain"},
      {"  two", "{ } two"},
      {"two  ", "two { }"},
      {" ", "{ }"},
      {"\"said\"", "{\"}said\""},
      {"'said'", "{'}said'"},
      {"'", "'"},
      {"\"open", "\"open"},
      {"a\r\nb\nc\td\n", "a{Enter}b{Enter}c{Tab}d{Enter}"},
  };
  for (const Row& row : kRows) {
    const WideText text = veltra::Widen(row.text);
    EXPECT_EQ(Narrow(FitForProfile(text)), row.fitted) << row.text;
    EXPECT_EQ(Describe(ParseMacro(FitForProfile(text))), Describe(ParseMacro(text))) << row.text;
  }
}

// In a table of the documentation one column is English and the other Dutch; what else it says is of both.
TEST(MacroText, EveryKeyHasItsNamesAsTheDocumentationSays) {
  std::ifstream documentation(VELTRA_MACRO_DOCUMENTATION);
  std::string english, dutch;
  for (std::string line; std::getline(documentation, line);) {
    const size_t bar = line.find(" | `");
    english += line.substr(0, bar);
    dutch += bar == line.npos ? line : line.substr(bar);
  }
  for (int n = 2; n < 12; ++n)  // "`F1` to `F12`"
    for (std::string* names : {&english, &dutch}) names->append("`F").append(std::to_string(n)) += '`';
  for (const KeyName& key : KeyNames())
    for (const auto& [name, names] : {std::pair(key.english, &english), std::pair(key.dutch, &dutch)}) {
      EXPECT_EQ(FindKey(veltra::Widen(name)), &key) << name;
      EXPECT_NE(names->find(std::string("`").append(name) + '`'), std::string::npos) << name;
    }
}

}  // namespace
}  // namespace macro
