#include "pal/store/private_profile.h"

#include <algorithm>

#include "pal/text/code_page.h"
#include "pal/text/unicode.h"

namespace pal {
namespace {

using View = std::u16string_view;

constexpr std::string_view kByteOrderMark = "\xFF\xFE";
constexpr View kLineEnd = u"\r\n";

bool IsBlank(char16_t c) {
  return c <= u' ';
}

View Trim(View text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

View WithoutQuotes(View text) {
  if (text.size() < 2 || text.front() != text.back()) return text;
  return text.front() == u'"' || text.front() == u'\'' ? text.substr(1, text.size() - 2) : text;
}

// One line at the start of the text, with its end: CR LF, LF or CR.
View FirstLine(View text) {
  const size_t end = text.find_first_of(kLineEnd);
  if (end == text.npos) return text;
  return text.substr(0, text.substr(end).starts_with(kLineEnd) ? end + 2 : end + 1);
}

std::optional<View> SectionName(View line) {
  line = Trim(line);
  if (!line.starts_with(u'[')) return std::nullopt;
  const size_t end = line.rfind(u']');
  if (end == line.npos) return std::nullopt;
  return Trim(line.substr(1, end - 1));
}

// The lines of the first section of that name, its heading not included.
struct Section {
  size_t begin = 0;
  size_t end = 0;
};

std::optional<Section> FindSection(View text, View name) {
  std::optional<Section> found;
  if (Trim(name).empty()) found = Section{};  // what stands before the first heading has no name
  for (size_t at = 0; at < text.size();) {
    const View line = FirstLine(text.substr(at));
    const std::optional<View> heading = SectionName(line);
    if (heading && found) return Section{found->begin, at};
    at += line.size();
    if (heading && EqualFolded(*heading, Trim(name))) found = Section{at, at};
  }
  if (found) found->end = text.size();
  return found;
}

void AppendLineEnd(std::u16string& text) {
  if (!text.empty() && !text.ends_with(u'\n') && !text.ends_with(u'\r')) text += kLineEnd;
}

struct Radix {
  char16_t letter;
  uint32_t base;
};
constexpr Radix kRadixes[] = {{u'x', 16}, {u'o', 8}, {u'b', 2}};

uint32_t DigitValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return static_cast<uint32_t>(c - u'0');
  if (c >= u'A' && c <= u'F') return static_cast<uint32_t>(c - u'A' + 10);
  if (c >= u'a' && c <= u'f') return static_cast<uint32_t>(c - u'a' + 10);
  return UINT32_MAX;
}

// Takes the sign of 0x, 0o or 0b off.
uint32_t TakeBase(View& digits) {
  if (digits.size() < 2 || digits.front() != u'0') return 10;
  const auto* radix = std::ranges::find(kRadixes, digits[1], &Radix::letter);
  if (radix == std::end(kRadixes)) return 10;
  digits.remove_prefix(2);
  return radix->base;
}

}  // namespace

ProfileText DecodeProfile(std::string_view bytes) {
  ProfileText profile;
  if (!bytes.starts_with(kByteOrderMark)) {
    for (const char byte : bytes) profile.text.push_back(DecodeCodePage(static_cast<uint8_t>(byte)));
    return profile;
  }
  profile.encoding = ProfileEncoding::kUtf16;
  for (size_t at = kByteOrderMark.size(); at + 1 < bytes.size(); at += 2) {
    const auto low = static_cast<uint8_t>(bytes[at]);
    const auto high = static_cast<uint8_t>(bytes[at + 1]);
    profile.text.push_back(static_cast<char16_t>(low | high << 8));
  }
  return profile;
}

std::string EncodeProfile(const ProfileText& profile) {
  std::string bytes;
  if (profile.encoding == ProfileEncoding::kUtf16) {
    bytes = kByteOrderMark;
    for (const char16_t unit : profile.text)
      bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    return bytes;
  }
  for (const char16_t unit : profile.text) {
    std::optional<uint8_t> byte = EncodeCodePage(unit);
    if (!byte) byte = FitToCodePage(unit);
    bytes.push_back(byte ? static_cast<char>(*byte) : kDefaultChar);
  }
  return bytes;
}

std::vector<std::u16string> ProfileSectionLines(View text, View section) {
  std::vector<std::u16string> lines;
  const Section found = FindSection(text, section).value_or(Section());
  for (size_t at = found.begin; at < found.end;) {
    const View line = FirstLine(text.substr(at, found.end - at));
    at += line.size();
    const View trimmed = Trim(line);
    if (trimmed.find(u'=') != trimmed.npos && !trimmed.starts_with(u';')) lines.emplace_back(trimmed);
  }
  return lines;
}

std::optional<std::u16string> FindProfileValue(View text, View section, View key) {
  const std::vector<std::u16string> lines = ProfileSectionLines(text, section);
  for (const View line : lines) {
    const size_t equals = line.find(u'=');
    if (EqualFolded(Trim(line.substr(0, equals)), Trim(key)))
      return std::u16string(WithoutQuotes(Trim(line.substr(equals + 1))));
  }
  return std::nullopt;
}

uint32_t ProfileNumber(View value) {
  value = Trim(value);
  const bool negative = value.starts_with(u'-');
  if (negative || value.starts_with(u'+')) value.remove_prefix(1);
  const uint32_t base = TakeBase(value);
  uint32_t number = 0;
  for (const char16_t c : value) {
    const uint32_t digit = DigitValue(c);
    if (digit >= base) break;
    number = number * base + digit;
  }
  return negative ? 0 - number : number;
}

std::u16string ReplaceProfileSection(View text, View section, const std::vector<std::u16string>& lines) {
  const std::optional<Section> found = FindSection(text, section);
  const Section place = found.value_or(Section{text.size(), text.size()});
  std::u16string result(text.substr(0, place.begin));
  AppendLineEnd(result);
  if (!found) result += u'[' + std::u16string(section) + u']' + std::u16string(kLineEnd);
  for (const std::u16string& line : lines) result += line + std::u16string(kLineEnd);
  return result + std::u16string(text.substr(place.end));
}

}  // namespace pal
