// Any profile file: a section that is replaced reads as it was written, whatever stood around it, and a
// section of another name stays as it was. The tool's own view of a section finds the values that the layer
// finds.
#include <cstdlib>

#include "base/profile_section.h"
#include "base/text.h"
#include "pal/store/private_profile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const pal::ProfileText profile = pal::DecodeProfile(veltra::TextOf({data, size}));
  const std::u16string& text = profile.text;
  const auto before = pal::FindProfileValue(text, u"Button2", u"BtCmdText");
  if (before) pal::ProfileNumber(*before);
  const std::u16string replaced =
      pal::ReplaceProfileSection(text, u"Button1", {u"BtCmd=0", u"BtCmdText=x = y"});
  if (pal::FindProfileValue(replaced, u"button1", u"btcmdtext") != u"x = y") std::abort();
  if (pal::FindProfileValue(replaced, u"Button1", u"BtCmdVal")) std::abort();
  if (pal::FindProfileValue(replaced, u"Button2", u"BtCmdText") != before) std::abort();
  veltra::WideText lines;
  for (const std::u16string& line : pal::ProfileSectionLines(text, u"Button2")) lines += line + u'\0';
  const bool cutsLines = text.find(u'\0') != text.npos;  // what ends a line of a section cannot stand in one
  if (!cutsLines && veltra::ProfileSection(lines).Text(u"BtCmdText") != before.value_or(u"")) std::abort();
  const pal::ProfileText again = pal::DecodeProfile(pal::EncodeProfile({text, profile.encoding}));
  if (profile.encoding == pal::ProfileEncoding::kUtf16 && again.text != text) std::abort();
  return 0;
}
