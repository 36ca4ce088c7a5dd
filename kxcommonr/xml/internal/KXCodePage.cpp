#include "kxcommonr/xml/internal/KXCodePage.h"

#include <cstddef>
#include <cstdint>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <climits>
#else
#include <iconv.h>
#include <langinfo.h>

#include <cerrno>
#endif

namespace KXXML_NAMESPACE {
namespace detail {

namespace {

constexpr char16_t kReplacementCharacter = 0xFFFD;

std::u16string Latin1ToUtf16(const std::string& text) {
  std::u16string units;
  units.reserve(text.size());
  for (char c : text) units.push_back(static_cast<unsigned char>(c));
  return units;
}

}  // namespace

#ifdef _WIN32

std::u16string SystemCodePageToUtf16(const std::string& text) {
  if (text.empty()) return std::u16string();
  if (text.size() > static_cast<std::size_t>(INT_MAX)) return Latin1ToUtf16(text);
  const UINT codePage = GetACP();
  const int byteCount = static_cast<int>(text.size());
  const int unitCount =
      MultiByteToWideChar(codePage, 0, text.data(), byteCount, nullptr, 0);
  if (unitCount <= 0) return Latin1ToUtf16(text);
  std::wstring wide(static_cast<std::size_t>(unitCount), L'\0');
  const int written = MultiByteToWideChar(codePage, 0, text.data(), byteCount,
                                          &wide[0], unitCount);
  if (written <= 0) return Latin1ToUtf16(text);
  wide.resize(static_cast<std::size_t>(written));
  return std::u16string(wide.begin(), wide.end());
}

#else

std::u16string SystemCodePageToUtf16(const std::string& text) {
  if (text.empty()) return std::u16string();
  const char* charset = nl_langinfo(CODESET);
  if (charset == nullptr || *charset == '\0') charset = "ANSI_X3.4-1968";
  // Little-endian output bytes are assembled into units below, so the result
  // does not depend on the host's byte order or on a byte-order mark.
  iconv_t converter = iconv_open("UTF-16LE", charset);
  if (converter == reinterpret_cast<iconv_t>(-1)) return Latin1ToUtf16(text);

  std::u16string units;
  units.reserve(text.size());
  char* in = const_cast<char*>(text.data());
  std::size_t inLeft = text.size();
  char chunk[512];
  while (inLeft > 0) {
    char* out = chunk;
    std::size_t outLeft = sizeof chunk;
    const std::size_t status = iconv(converter, &in, &inLeft, &out, &outLeft);
    const std::size_t produced = sizeof chunk - outLeft;
    for (std::size_t i = 0; i + 1 < produced; i += 2) {
      units.push_back(static_cast<char16_t>(
          static_cast<unsigned char>(chunk[i]) |
          (static_cast<unsigned char>(chunk[i + 1]) << 8)));
    }
    if (status != static_cast<std::size_t>(-1)) continue;
    if (errno == E2BIG && produced > 0) continue;  // chunk full: drained, go on
    // EILSEQ (a byte the character set does not define) or EINVAL (a
    // sequence cut off at the end of the text): replace one byte, resume.
    units.push_back(kReplacementCharacter);
    ++in;
    --inLeft;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);  // reset the shift state
  }
  // Flush a stateful encoding's return to its initial state.
  char* out = chunk;
  std::size_t outLeft = sizeof chunk;
  iconv(converter, nullptr, nullptr, &out, &outLeft);
  const std::size_t produced = sizeof chunk - outLeft;
  for (std::size_t i = 0; i + 1 < produced; i += 2) {
    units.push_back(static_cast<char16_t>(
        static_cast<unsigned char>(chunk[i]) |
        (static_cast<unsigned char>(chunk[i + 1]) << 8)));
  }
  iconv_close(converter);
  return units;
}

#endif

std::string EncodeUtf16AsUtf8(const std::u16string& units) {
  std::string bytes;
  bytes.reserve(units.size());
  const std::size_t count = units.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t unit = units[i];
    if (unit < 0x80) {
      bytes.push_back(static_cast<char>(unit));
    } else if (unit < 0x800) {
      bytes.push_back(static_cast<char>(0xC0 | (unit >> 6)));
      bytes.push_back(static_cast<char>(0x80 | (unit & 0x3F)));
    } else if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < count &&
               units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
      const std::uint32_t low = units[i + 1];
      const std::uint32_t codePoint =
          0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
      bytes.push_back(static_cast<char>(0xF0 | (codePoint >> 18)));
      bytes.push_back(static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F)));
      bytes.push_back(static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F)));
      bytes.push_back(static_cast<char>(0x80 | (codePoint & 0x3F)));
      ++i;
    } else {
      bytes.push_back(static_cast<char>(0xE0 | (unit >> 12)));
      bytes.push_back(static_cast<char>(0x80 | ((unit >> 6) & 0x3F)));
      bytes.push_back(static_cast<char>(0x80 | (unit & 0x3F)));
    }
  }
  return bytes;
}

std::string SystemCodePageToUtf8(const std::string& text) {
  bool ascii = true;
  for (char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) {
      ascii = false;
      break;
    }
  }
  if (ascii) return text;
  return EncodeUtf16AsUtf8(SystemCodePageToUtf16(text));
}

}  // namespace detail
}  // namespace KXXML_NAMESPACE
