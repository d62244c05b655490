// A small XML document: elements with attributes, written as one text.
#pragma once

#include <vector>

#include "base/text.h"

namespace veltra {

struct XmlAttribute {
  WideView name;
  WideText value;
};

struct XmlElement {
  WideView name;
  std::vector<XmlAttribute> attributes;
  std::vector<XmlElement> children;
};

// The document with that root, without a declaration: every tag on a line of its own that ends with CR LF,
// nothing indented, an element without children as an empty-element tag. In values the five characters that
// XML has entities for are escaped; a unit that no XML document can hold (a control character, half a
// surrogate pair) becomes U+FFFD, so that a parser never refuses the document for one bad value.
WideText WriteXml(const XmlElement& root);

}  // namespace veltra
