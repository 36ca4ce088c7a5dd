#include "kxcommonr/mtd/internal/KXObjectIO.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/IOException.h"
#include "kxcommonr/xml/XMLReader.h"

namespace KXMTD_NAMESPACE {
namespace detail {

namespace {

const char kHex[] = "0123456789ABCDEF";
const char kContinued[] = "%+";

bool NeedsEscape(unsigned char c) {
  return c < 0x21 || c > 0x7E || c == '%' || c == '&' || c == '<' || c == '>' ||
         c == '"' || c == '\'';
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string EncodeText(const std::string& text) {
  std::string encoded;
  encoded.reserve(text.size());
  for (const char ch : text) {
    const unsigned char c = static_cast<unsigned char>(ch);
    if (NeedsEscape(c)) {
      encoded += '%';
      encoded += kHex[c >> 4];
      encoded += kHex[c & 15];
    } else {
      encoded += ch;
    }
  }
  return encoded;
}

bool DecodeTextPiece(const std::string& piece, std::string& out, bool& more) {
  std::size_t end = piece.size();
  more = end >= 2 && piece.compare(end - 2, 2, kContinued) == 0;
  if (more) end -= 2;
  for (std::size_t i = 0; i < end; ++i) {
    const char c = piece[i];
    if (c != '%') {
      if (NeedsEscape(static_cast<unsigned char>(c))) return false;
      out += c;
      continue;
    }
    if (i + 2 >= end) return false;
    const int high = HexValue(piece[i + 1]), low = HexValue(piece[i + 2]);
    if (high < 0 || low < 0) return false;
    out += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return true;
}

int ReportReadFailure(const char* name) {
  std::cerr << "Failure reading " << name << "!\n";
  return -1;
}

void FailRead(std::ostream& stream, const char* message) {
  stream << message << std::flush;
  throw new IOException();
}

ObjectWriter::ObjectWriter(std::ostream& os, const std::string& name, int indent)
    : fOs(os), fObj(name, indent) {
  fObj.StartObj(fOs);
  ++fiItems;
}

void ObjectWriter::Exact(double value) {
  fObj.WriteExactSubElement(fOs, value);
  ++fiItems;
}

void ObjectWriter::Text(const std::string& text) {
  const std::string encoded = EncodeText(text);
  std::size_t at = 0;
  do {
    // A piece never splits a %XX escape.
    std::size_t length = std::min(kTextPiece, encoded.size() - at);
    if (at + length < encoded.size()) {
      if (length >= 1 && encoded[at + length - 1] == '%') length -= 1;
      else if (length >= 2 && encoded[at + length - 2] == '%') length -= 2;
    }
    std::string piece = encoded.substr(at, length);
    at += length;
    if (at < encoded.size()) piece += kContinued;
    Value(piece);
  } while (at < encoded.size());
}

void ObjectWriter::Nested(int lines) {
  if (lines < 0) fbFailed = true;
  else fiItems += lines;
}

int ObjectWriter::End() {
  fObj.EndObj(fOs);
  ++fiItems;
  return fbFailed || !fOs ? -1 : fiItems;
}

bool ObjectReader::Start(const std::string& name) {
  return Counted(KXXML_NAMESPACE::ParseStartObj(fIs, name));
}
bool ObjectReader::End() { return Counted(KXXML_NAMESPACE::ParseEndObj(fIs)); }
bool ObjectReader::Value(int& value) { return Counted(KXXML_NAMESPACE::ParseValue(fIs, value)); }
bool ObjectReader::Value(bool& value) { return Counted(KXXML_NAMESPACE::ParseValue(fIs, value)); }
bool ObjectReader::Value(std::string& value) {
  return Counted(KXXML_NAMESPACE::ParseValue(fIs, value));
}

bool ObjectReader::Number(double& value) {
  // The line reader leaves the value as it was when the text is no number.
  double read = std::numeric_limits<double>::quiet_NaN();
  if (!KXXML_NAMESPACE::ParseValue(fIs, read) || std::isnan(read)) return false;
  value = read;
  return Counted(true);
}

bool ObjectReader::Finite(double& value) {
  double read = 0.0;
  if (!Number(read)) return false;
  if (!std::isfinite(read) || KXCommon::KXMV::IsMissing(read)) return false;
  value = read;
  return true;
}

bool ObjectReader::Count(int& count) {
  int read = -1;
  if (!KXXML_NAMESPACE::ParseValue(fIs, read) || read < 0) return false;
  count = read;
  return Counted(true);
}

bool ObjectReader::Text(std::string& text) {
  std::string decoded, piece;
  bool more = true;
  while (more) {
    if (!KXXML_NAMESPACE::ParseValue(fIs, piece) || !DecodeTextPiece(piece, decoded, more)) {
      return false;
    }
    ++fiItems;
  }
  text.swap(decoded);
  return true;
}

bool ObjectReader::Nested(int lines) {
  if (lines < 0) return false;
  fiItems += lines;
  return true;
}

}  // namespace detail
}  // namespace KXMTD_NAMESPACE
