#include "tools/probe_text.h"

#include <algorithm>

#include "base/ansi_text.h"

namespace probe {
namespace {

using veltra::WideChar;
using veltra::Widen;
using veltra::WideText;
using veltra::WideView;

// ---- the document -------------------------------------------------------------------------------------------

struct Entity {
  std::string_view text;
  WideChar character;
};

constexpr Entity kEntities[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''},
};

WideText Unescape(WideView text) {
  WideText result;
  while (!text.empty()) {
    const auto* entity = std::ranges::find_if(
        kEntities, [&](const Entity& candidate) { return text.starts_with(Widen(candidate.text)); });
    const bool found = entity != std::end(kEntities);
    result.push_back(found ? entity->character : text.front());
    text.remove_prefix(found ? entity->text.size() : 1);
  }
  return result;
}

bool Skip(WideView& text, std::string_view expected) {
  if (!text.starts_with(Widen(expected))) return false;
  text.remove_prefix(expected.size());
  return true;
}

// ` NAME="VALUE"`
bool TakeAttribute(WideView& text, std::string_view name, WideText& value) {
  if (!Skip(text, " ") || !Skip(text, name) || !Skip(text, "=\"")) return false;
  const size_t end = text.find('"');
  if (end == text.npos) return false;
  value = Unescape(text.substr(0, end));
  text.remove_prefix(end + 1);
  return true;
}

bool TakeItem(WideView& text, ReportItem& item) {
  return TakeAttribute(text, "C", item.category) && TakeAttribute(text, "K", item.key) &&
         TakeAttribute(text, "V", item.value) && Skip(text, "/>\r\n");
}

}  // namespace

std::string Utf8(WideView text) {
  WideText printable(text);
  for (WideChar& c : printable)
    if ((c < 0x20 && c != '\n') || (c >= 0x7F && c <= 0x9F)) c = ' ';
  return veltra::ConvertToUtf8(printable);
}

std::optional<std::vector<ReportItem>> ReadReport(WideView document) {
  std::vector<ReportItem> items;
  if (!Skip(document, "<Report Version=\"1\"")) return std::nullopt;
  if (document == Widen("/>\r\n")) return items;
  if (!Skip(document, ">\r\n")) return std::nullopt;
  while (Skip(document, "<Item"))
    if (!TakeItem(document, items.emplace_back())) return std::nullopt;
  if (document != Widen("</Report>\r\n")) return std::nullopt;
  return items;
}

std::string FormatReport(const std::vector<ReportItem>& items) {
  size_t width = 0;
  for (const ReportItem& item : items) width = std::max(width, item.key.size());
  std::string lines;
  const WideText* category = nullptr;
  for (const ReportItem& item : items) {
    if (!category || *category != item.category) lines += Utf8(item.category) + "\n";
    category = &item.category;
    const std::string blanks(width - item.key.size() + 2, ' ');
    lines += "  " + Utf8(item.key) + blanks + (item.value.empty() ? "-" : Utf8(item.value)) + "\n";
  }
  return lines;
}

std::string FormatPowerSource(int64_t answer) {
  switch (answer) {
    case 1:
      return "battery";
    case 2:
      return "mains, charging";
    case 3:
      return "mains, battery full";
    case 4:
      return "mains, no battery";
    default:
      return std::string("unknown (").append(std::to_string(answer)).append(")");
  }
}

std::string FormatVolume(int64_t answer) {
  constexpr int64_t kMark = 0x10000;  // tells an answer from no answer at all
  if ((answer & ~int64_t{0xFFFF}) != kMark) return "unknown";
  const auto volume = static_cast<int16_t>(answer & 0xFFFF);
  return volume < 0 ? "not set" : std::to_string(volume);
}

}  // namespace probe
