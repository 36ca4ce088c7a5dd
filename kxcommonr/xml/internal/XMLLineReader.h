// kxcommonr/xml/internal/XMLLineReader.h
//
// The one implementation behind both object-stream reader sets (KXXML and
// the older xmlu). Each call reads one physical line of at most 255
// characters, splits it with the strtok-rules tokenizer and checks the tokens;
// the two sets differ only in the ReaderDialect they pass: delimiter sets,
// whether the root element's name is checked, whether "Missing" is known and
// whether a lone carriage return counts as an empty line.
//
// The functions work on any std::istream so that they can be exercised from
// memory; the public functions take std::ifstream& and forward here.
//
// Internal: not installed, not exported. Thread-compatible: no shared state.
#ifndef KXCOMMONR_XML_INTERNAL_XMLLINEREADER_H
#define KXCOMMONR_XML_INTERNAL_XMLLINEREADER_H

#include <iosfwd>
#include <string>

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {
namespace detail {

struct ReaderDialect {
  const char* prologueDelimiters;   // every token of ParseStartXML
  const char* startDelimiters;      // "Obj" and "name" of ParseStartObj
  const char* nameDelimiters;       // the object's name
  const char* elementDelimiters;    // the element token of ParseValue
  const char* attributeDelimiters;  // the "value" token of ParseValue
  const char* numberDelimiters;     // the numeric value token
  const char* endDelimiters;        // ParseEndObj
  bool checksRootName;              // third prologue token must be KXXMLRoot
  bool knowsMissing;                // "Missing" reads as the missing value
  bool carriageReturnLineIsEmpty;   // "\r" counts as an empty line
};

// The current set: carriage returns are delimiters, so CR LF files read.
const ReaderDialect& CurrentDialect();
// The older set: line feeds only, no root-name check, no "Missing".
const ReaderDialect& OlderDialect();

// The longest line the readers accept (the buffer holds one more byte).
constexpr int kMaxLineLength = 255;

bool ParseStartXML(std::istream& is, const ReaderDialect& dialect);
bool ParseStartObj(std::istream& is, const std::string& name,
                   const ReaderDialect& dialect);
bool ParseEndObj(std::istream& is, const ReaderDialect& dialect);
bool ParseValue(std::istream& is, int& value, const ReaderDialect& dialect);
bool ParseValue(std::istream& is, unsigned int& value, const ReaderDialect& dialect);
bool ParseValue(std::istream& is, long& value, const ReaderDialect& dialect);
bool ParseValue(std::istream& is, double& value, const ReaderDialect& dialect);
// String and bool lines exist in the current set only; they use its
// dialect for the element and attribute tokens.
bool ParseValue(std::istream& is, std::string& value, const ReaderDialect& dialect);
bool ParseValue(std::istream& is, bool& value, const ReaderDialect& dialect);

}  // namespace detail
}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_INTERNAL_XMLLINEREADER_H
