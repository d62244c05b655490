// Conversions between UTF-16 and 8-bit texts.
#include <algorithm>
#include <cstring>
#include <string>

#include "pal/machine/state.h"
#include "pal/text/code_page.h"
#include "pal/text/unicode.h"

using namespace pal;

namespace {

// The layer knows UTF-8, and the code page that the machine's programs and threads have.
void CheckCodePage(UINT codePage) {
  if (codePage != CP_ACP && codePage != CP_THREAD_ACP && codePage != CP_UTF8)
    Die("unknown code page " + std::to_string(codePage));
}

// The common end of both conversions: the length, and the result when there is room for it.
template <class Unit>
int Deliver(std::basic_string_view<Unit> converted, Unit* result, int resultSize) {
  if (resultSize == 0) return static_cast<int>(converted.size());
  if (converted.size() > static_cast<size_t>(resultSize)) return Refuse(ERROR_INSUFFICIENT_BUFFER, 0);
  std::ranges::copy(converted, result);
  return static_cast<int>(converted.size());
}

struct Encoded {
  std::string bytes;
  bool usedDefault = false;
};

Encoded EncodeLatin(std::u16string_view text, bool fits, char defaultChar) {
  Encoded encoded;
  for (const char16_t unit : text) {
    std::optional<uint8_t> byte = EncodeCodePage(unit);
    if (!byte && fits) byte = FitToCodePage(unit);
    encoded.usedDefault = encoded.usedDefault || !byte;
    encoded.bytes.push_back(byte ? static_cast<char>(*byte) : defaultChar);
  }
  return encoded;
}

}  // namespace

int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH text, int textLength, LPSTR result,
                               int resultSize, LPCCH defaultChar, LPBOOL usedDefaultChar) {
  const Call call("WideCharToMultiByte");
  if (call.Fails()) return 0;
  CheckCodePage(codePage);
  if (!text || textLength == 0 || resultSize < 0 || (!result && resultSize > 0))
    return Refuse(ERROR_INVALID_PARAMETER, 0);
  const std::u16string_view units = textLength < 0
                                        ? std::u16string_view(text, std::u16string_view(text).size() + 1)
                                        : std::u16string_view(text, static_cast<size_t>(textLength));
  if (flags & ~(codePage == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS))
    Die("WideCharToMultiByte with an unknown flag");
  if (codePage != CP_UTF8) {
    const bool fits = (flags & WC_NO_BEST_FIT_CHARS) == 0;
    const Encoded encoded = EncodeLatin(units, fits, defaultChar ? *defaultChar : kDefaultChar);
    if (usedDefaultChar) *usedDefaultChar = encoded.usedDefault ? TRUE : FALSE;
    return Deliver<char>(encoded.bytes, result, resultSize);
  }
  if (defaultChar || usedDefaultChar) Die("UTF-8 has no default character");
  return Deliver<char>(ToUtf8(units), result, resultSize);
}

int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH text, int textLength, LPWSTR result,
                               int resultSize) {
  const Call call("MultiByteToWideChar");
  if (call.Fails()) return 0;
  CheckCodePage(codePage);
  if (codePage == CP_UTF8) Die("MultiByteToWideChar of UTF-8");
  if (!text || textLength == 0 || resultSize < 0 || (!result && resultSize > 0))
    return Refuse(ERROR_INVALID_PARAMETER, 0);
  const std::string_view bytes = textLength < 0 ? std::string_view(text, std::strlen(text) + 1)
                                                : std::string_view(text, static_cast<size_t>(textLength));
  if (flags != 0) Die("MultiByteToWideChar with an unknown flag");
  std::u16string decoded;
  for (const char byte : bytes) decoded.push_back(DecodeCodePage(static_cast<uint8_t>(byte)));
  return Deliver<WCHAR>(decoded, result, resultSize);
}
