// Private-profile (ini) files: what the text of one says, and how a section of it is replaced.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pal {

// How the file stores its text: 8-bit in the code page, or UTF-16 little-endian after a byte-order mark.
enum class ProfileEncoding { kCodePage, kUtf16 };

struct ProfileText {
  std::u16string text;
  ProfileEncoding encoding = ProfileEncoding::kCodePage;
};
ProfileText DecodeProfile(std::string_view bytes);
std::string EncodeProfile(const ProfileText& profile);

// The value of the key in the first section of that name, without blanks and quotes around it; empty when
// there is none. Names are compared without regard to case.
std::optional<std::u16string> FindProfileValue(std::u16string_view text, std::u16string_view section,
                                               std::u16string_view key);

// The lines of the first section of that name that have an equals sign and are no comments, without blanks
// around them.
std::vector<std::u16string> ProfileSectionLines(std::u16string_view text, std::u16string_view section);

// A number as Windows reads one: decimal, 0x, 0o, 0b, with a sign; what follows the digits is ignored and
// what is too large loses its upper bits.
uint32_t ProfileNumber(std::u16string_view value);

// The text with the section's lines replaced; a section that was missing comes at the end.
std::u16string ReplaceProfileSection(std::u16string_view text, std::u16string_view section,
                                     const std::vector<std::u16string>& lines);

}  // namespace pal
