#include "kxcommonr/xml/internal/KXCodePage.h"

#include <gtest/gtest.h>

#include <clocale>
#include <random>
#include <string>

#include "kxcommonr/testing/XmlTestSupport.h"

#ifndef _WIN32
#include <iconv.h>
#endif

namespace {

namespace detail = KXXML_NAMESPACE::detail;

#ifndef _WIN32

// iconv's own UTF-16LE to UTF-8 conversion, the reference for valid text.
std::string IconvUtf8(const std::u16string& units) {
  std::string in;
  for (char16_t unit : units) {
    in += static_cast<char>(unit & 0xFF);
    in += static_cast<char>(unit >> 8);
  }
  iconv_t converter = iconv_open("UTF-8", "UTF-16LE");
  std::string out(4 * units.size() + 4, '\0');
  char* inPointer = &in[0];
  char* outPointer = &out[0];
  std::size_t inLeft = in.size(), outLeft = out.size();
  const std::size_t status = iconv(converter, &inPointer, &inLeft, &outPointer, &outLeft);
  EXPECT_NE(status, static_cast<std::size_t>(-1));
  iconv_close(converter);
  out.resize(out.size() - outLeft);
  return out;
}

TEST(KXCodePageTest, EncodesUtf16AsIconvDoesAndUnpairedSurrogatesInThreeBytes) {
  // One, two and three UTF-8 bytes (below and above the surrogates), and pairs.
  const char16_t ranges[][2] = {{0, 0x7F}, {0x80, 0x7FF}, {0x800, 0xD7FF}, {0xE000, 0xFFFD}};
  std::mt19937 rng(5);
  for (int trial = 0; trial < 2000; ++trial) {
    std::u16string units;  // the first string: every boundary
    if (trial == 0) {
      units = {0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFD, 0xD800, 0xDC00, 0xDBFF, 0xDFFF};
    }
    for (int i = static_cast<int>(rng() % 6); i > 0; --i) {
      const unsigned kind = rng() % 5;
      if (kind < 4) {
        const unsigned span = ranges[kind][1] - ranges[kind][0] + 1u;
        units += static_cast<char16_t>(ranges[kind][0] + rng() % span);
      } else {
        units += static_cast<char16_t>(0xD800 + rng() % 0x400);
        units += static_cast<char16_t>(0xDC00 + rng() % 0x400);
      }
    }
    ASSERT_EQ(detail::EncodeUtf16AsUtf8(units), IconvUtf8(units));
  }
  EXPECT_EQ(detail::EncodeUtf16AsUtf8({0xD800, 0x41}), "\xED\xA0\x80" "A");
  EXPECT_EQ(detail::EncodeUtf16AsUtf8({0xDC00}), "\xED\xB0\x80");
}
#endif  // iconv, the reference

// Bytes the character set does not define, or a sequence cut off, become
// U+FFFD one byte at a time; long text crosses the converter's chunks.
TEST(KXCodePageTest, ConvertsFromTheLocaleCharacterSet) {
  const std::string mixed = "a\xC3\xA9z\xE2\x82\xAC\xF0\x9F\x98\x80!";  // a é z € 😀 !
  std::string longText;
  for (int i = 0; i < 700; ++i) longText += "\xC3\xA9x";
  const struct { const char* locale; std::string in, out; } table[] = {
      {"C.UTF-8", mixed, mixed}, {"C.UTF-8", longText, longText},
      {"C.UTF-8", "x\x80y\xC3", "x\xEF\xBF\xBDy\xEF\xBF\xBD"}, {"C", "ok\xE9", "ok\xEF\xBF\xBD"},
      {"de_DE.ISO-8859-1", "caf\xE9", "caf\xC3\xA9"}, {"C", "plain", "plain"}};
  for (const auto& row : table) {
    kxtesting::LocaleScope scope(LC_CTYPE, row.locale);
    if (!scope.active()) continue;  // not every machine has every locale
    EXPECT_EQ(detail::SystemCodePageToUtf8(row.in), row.out) << row.locale;
  }
}

}  // namespace
