#include "base/xml_writer.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(XmlWriter, ElementsStandOnLinesOfTheirOwn) {
  const XmlElement empty = {u"Empty", {}, {}};
  EXPECT_EQ(WriteXml(empty), u"<Empty/>\r\n");

  const XmlElement leaf = {u"Leaf", {{u"A", u"1"}, {u"B", u""}}, {}};
  const XmlElement branch = {u"Branch", {}, {leaf, leaf}};
  EXPECT_EQ(WriteXml({u"Tree", {{u"Version", u"1"}}, {branch, empty}}),
            u"<Tree Version=\"1\">\r\n"
            u"<Branch>\r\n"
            u"<Leaf A=\"1\" B=\"\"/>\r\n"
            u"<Leaf A=\"1\" B=\"\"/>\r\n"
            u"</Branch>\r\n"
            u"<Empty/>\r\n"
            u"</Tree>\r\n");
}

TEST(XmlWriter, ValuesHoldOnlyWhatADocumentCan) {
  const struct {
    std::u16string value;
    std::u16string written;
  } kCases[] = {
      {u"a&b<c>d\"e'f", u"a&amp;b&lt;c&gt;d&quot;e&apos;f"},
      {u"&amp;", u"&amp;amp;"},
      {u"\t\r\n ", u"\t\r\n "},
      {u"\u00E9\u20AC\u4E2D\U0001F600\u0085", u"\u00E9\u20AC\u4E2D\U0001F600\u0085"},
      {std::u16string(u"a\0b\x01"
                      u"c\x1F",
                      6),
       u"a\uFFFDb\uFFFDc\uFFFD"},
      {{u'a', 0xD83D, u'b'}, u"a\uFFFDb"},
      {{u'a', 0xD83D}, u"a\uFFFD"},
      {{0xDE00, 0xD83D}, u"\uFFFD\uFFFD"},
      {{0xD83D, 0xD800, 0xDC00}, u"\uFFFD\U00010000"},
      {{0xD83D, 0xE000}, u"\uFFFD\uE000"},
      {{0xFFFE, 0xFFFF, 0xE000}, u"\uFFFD\uFFFD\uE000"},
  };
  for (const auto& c : kCases)
    EXPECT_EQ(WriteXml({u"E", {{u"V", c.value}}, {}}),
              std::u16string(u"<E V=\"").append(c.written).append(u"\"/>\r\n"));
}

}  // namespace
}  // namespace veltra
