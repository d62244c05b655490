#include "base/xml_writer.h"

namespace veltra {
namespace {

constexpr WideChar kReplacement = 0xFFFD;

struct Entity {
  WideChar character;
  std::string_view text;
};

constexpr Entity kEntities[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&apos;"},
};

std::string_view FindEntity(WideChar c) {
  for (const Entity& entity : kEntities)
    if (entity.character == c) return entity.text;
  return {};
}

bool IsFirstHalf(WideChar c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
bool IsSecondHalf(WideChar c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

bool IsWholeCharacter(WideChar c) {
  if (c < 0x20) return c == '\t' || c == '\r' || c == '\n';
  return !IsFirstHalf(c) && !IsSecondHalf(c) && c != 0xFFFE && c != 0xFFFF;
}

void AppendAscii(WideText& result, std::string_view text) {
  result.append(text.begin(), text.end());
}

void AppendValue(WideText& result, WideView value) {
  for (size_t n = 0; n < value.size(); ++n) {
    const WideChar c = value[n];
    if (const std::string_view entity = FindEntity(c); !entity.empty()) {
      AppendAscii(result, entity);
    } else if (IsWholeCharacter(c)) {
      result.push_back(c);
    } else if (IsFirstHalf(c) && n + 1 < value.size() && IsSecondHalf(value[n + 1])) {
      result.push_back(c);
      result.push_back(value[++n]);
    } else {
      result.push_back(kReplacement);
    }
  }
}

void AppendStart(WideText& result, const XmlElement& element) {
  AppendAscii(result, "<");
  result += element.name;
  for (const XmlAttribute& attribute : element.attributes) {
    AppendAscii(result, " ");
    result += attribute.name;
    AppendAscii(result, "=\"");
    AppendValue(result, attribute.value);
    AppendAscii(result, "\"");
  }
}

void AppendElement(WideText& result, const XmlElement& element) {
  AppendStart(result, element);
  if (element.children.empty()) return AppendAscii(result, "/>\r\n");
  AppendAscii(result, ">\r\n");
  for (const XmlElement& child : element.children) AppendElement(result, child);
  AppendAscii(result, "</");
  result += element.name;
  AppendAscii(result, ">\r\n");
}

}  // namespace

WideText WriteXml(const XmlElement& root) {
  WideText result;
  AppendElement(result, root);
  return result;
}

}  // namespace veltra
