// kxcommonr/xml/internal/KXCodePage.h
//
// Text in the system code page turned into UTF-8, for the UTF-8 writers.
// SystemCodePageToUtf16 is the one platform-dependent function of the XML
// writer: on Windows it widens with the ANSI code page (GetACP,
// MultiByteToWideChar); elsewhere it converts with iconv from the character
// set of the current C locale (LC_CTYPE). EncodeUtf16AsUtf8 is portable.
//
// Internal: not installed, not exported.
// Thread rule: the conversion reads the process locale; callers that change
// the locale must not run it at the same time.
#ifndef KXCOMMONR_XML_INTERNAL_KXCODEPAGE_H
#define KXCOMMONR_XML_INTERNAL_KXCODEPAGE_H

#include <string>

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {
namespace detail {

// The UTF-16 code units of `text`, read in the system code page. Each byte
// that starts a sequence the code page does not define becomes U+FFFD and
// the conversion resumes at the next byte; when no converter can be opened
// at all, each byte is taken as its Latin-1 code point. Never fails.
std::u16string SystemCodePageToUtf16(const std::string& text);

// The UTF-8 bytes of `units`: a unit below 0x80 as one byte, below 0x800 as
// two, a high surrogate directly followed by a low surrogate as one four-byte
// sequence, and every other unit (unpaired surrogates included) as three.
std::string EncodeUtf16AsUtf8(const std::u16string& units);

// EncodeUtf16AsUtf8(SystemCodePageToUtf16(text)), with a shortcut for pure
// ASCII text, which every supported code page maps to itself.
std::string SystemCodePageToUtf8(const std::string& text);

}  // namespace detail
}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_INTERNAL_KXCODEPAGE_H
