// kxcommonr/mtd/internal/KXObjectIO.h
//
// The line bookkeeping shared by the metadata objects: an ObjectWriter and
// an ObjectReader that write and read the lines of one object of the object
// stream and count them, the exact forms of the encoders' formats (doubles
// with 17 digits, texts percent-encoded), and the reporting of a failed read.
//
// Text form: every byte outside the printable ASCII range 0x21..0x7E, and
// each of % & < > " ', is written as %XX (two upper-case hex digits), so the
// text needs no XML escaping and keeps its blanks. A text longer than
// kTextPiece encoded characters is split over several String lines; every
// piece but the last ends in "%+".
#ifndef KXCOMMONR_MTD_INTERNAL_KXOBJECTIO_H
#define KXCOMMONR_MTD_INTERNAL_KXOBJECTIO_H

#include <fstream>
#include <ostream>
#include <string>

#include "kxcommonr/config.h"
#include "kxcommonr/xml/XMLObj.h"

namespace KXMTD_NAMESPACE {
namespace detail {

// Encoded characters per String line of a text.
constexpr std::size_t kTextPiece = 120;

// The encoded pieces of `text` (at least one, possibly empty).
std::string EncodeText(const std::string& text);
// Decodes one piece into `out` (appending); sets `more` when the piece ends
// in the continuation mark. False for a malformed escape.
bool DecodeTextPiece(const std::string& piece, std::string& out, bool& more);

// Writes "Failure reading <name>!" to the standard error stream and returns
// -1: the failed read of an object that does not throw (encoders, statistics).
int ReportReadFailure(const char* name);

// Writes "message" to `stream` and throws a new IOException.
[[noreturn]] void FailRead(std::ostream& stream, const char* message);

class ObjectWriter {
 public:
  // Writes the start line of an object named `name`.
  ObjectWriter(std::ostream& os, const std::string& name, int indent);
  template <class V>
  void Value(const V& value) {
    fObj.WriteSubElement(fOs, value);
    ++fiItems;
  }
  // A double with 17 significant digits.
  void Exact(double value);
  // A text in the encoded form, one line per piece.
  void Text(const std::string& text);
  // Counts the lines of an object written inside this one (-1 marks a
  // failed nested write).
  void Nested(int lines);
  // Writes the end line; returns the lines written, or -1 when the stream
  // failed or a nested write did.
  int End();
  std::ostream& Stream() const { return fOs; }
  int Indent() const { return fObj.GetNTabs(); }

 private:
  std::ostream& fOs;
  KXXML_NAMESPACE::XMLObj fObj;
  int fiItems = 0;
  bool fbFailed = false;
};

class ObjectReader {
 public:
  explicit ObjectReader(std::ifstream& is) : fIs(is) {}
  bool Start(const std::string& name);
  bool End();
  bool Value(int& value);
  bool Value(bool& value);
  bool Value(std::string& value);
  // A Double line holding a number or "Missing" (text that is no number, or
  // beyond the double range, fails).
  bool Number(double& value);
  // A Double line holding a finite number.
  bool Finite(double& value);
  // An Int line holding a count 0..INT_MAX.
  bool Count(int& count);
  // A text in the encoded form.
  bool Text(std::string& text);
  // Counts the lines of a nested object read by its own reader; false for
  // its failure (-1).
  bool Nested(int lines);
  int Items() const { return fiItems; }
  std::ifstream& Stream() const { return fIs; }

 private:
  bool Counted(bool ok) {
    if (ok) ++fiItems;
    return ok;
  }
  std::ifstream& fIs;
  int fiItems = 0;
};

}  // namespace detail
}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_INTERNAL_KXOBJECTIO_H
