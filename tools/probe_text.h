// The tool's answers as a person reads them, in UTF-8.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/text.h"

namespace probe {

// A surrogate without its partner becomes U+FFFD; of the control characters only the line feed stays, the
// others become blanks, so that no value moves the cursor of a terminal.
std::string Utf8(veltra::WideView text);

struct ReportItem {
  veltra::WideText category;
  veltra::WideText key;
  veltra::WideText value;
};

// The items of a device report. Empty when the text is no such document.
std::optional<std::vector<ReportItem>> ReadReport(veltra::WideView document);

// Each category as a heading, its keys and values in two columns below it.
std::string FormatReport(const std::vector<ReportItem>& items);

// The numbers of the tool's answers.
std::string FormatPowerSource(int64_t answer);
std::string FormatVolume(int64_t answer);

}  // namespace probe
