#include "kxcommonr/xml/internal/XMLLineReader.h"

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <locale>
#include <sstream>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/internal/KXTokenizer.h"

namespace KXXML_NAMESPACE {
namespace detail {

namespace {

constexpr ReaderDialect kCurrentDialect = {
    " \t\r\n<>=\"",  // prologue
    " \t\r\n<=\"",   // object start
    "\"",            // object name: up to the next double quote
    " \t\r\n=<\"",   // value element
    "=\"",           // attribute name
    " \t\r\n=<\"",   // numeric value
    " \t\r\n<>",     // object end
    true, true, true};

constexpr char kOlderDelimiters[] = " \t\n<>=\"";
constexpr ReaderDialect kOlderDialect = {
    kOlderDelimiters, kOlderDelimiters, kOlderDelimiters, kOlderDelimiters,
    kOlderDelimiters, kOlderDelimiters, " \t\n<>", false, false, false};

// A string value runs to the next line end or double quote, blanks included.
constexpr char kStringValueDelimiters[] = "\r\n\"";
// What precedes an empty string value's token: the two quotes of value="".
constexpr char kEmptyStringTail[] = "\"\"/>";

// One physical line and the tokenizer over it.
class Line {
 public:
  Line() : buffer_(), tokens_(buffer_) {}
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  // Reads the next line; false when the stream fails (end of file, a line
  // longer than kMaxLineLength, a bad stream). Restarts the tokenizer.
  bool Read(std::istream& is) {
    buffer_[0] = '\0';
    is.getline(buffer_, sizeof buffer_);
    tokens_ = KXTokenizer(buffer_);
    return !is.fail();
  }

  bool IsEmpty(const ReaderDialect& dialect) const {
    return buffer_[0] == '\0' ||
           (dialect.carriageReturnLineIsEmpty && std::strcmp(buffer_, "\r") == 0);
  }

  char* Next(const char* delimiters) { return tokens_.Next(delimiters); }

  // True when the next token exists and equals `expected`.
  bool NextIs(const char* delimiters, const char* expected) {
    const char* token = Next(delimiters);
    return token != nullptr && std::strcmp(token, expected) == 0;
  }

  const char* Begin() const { return buffer_; }

 private:
  char buffer_[kMaxLineLength + 1];
  KXTokenizer tokens_;
};

// Reads a value line and checks its element name and the "value" attribute
// name; on success the next token of `line` is the value.
bool ReadValueLine(std::istream& is, const char* element,
                   const ReaderDialect& dialect, Line& line) {
  return line.Read(is) && line.NextIs(dialect.elementDelimiters, element) &&
         line.NextIs(dialect.attributeDelimiters, kXMLValueAttribute);
}

// The integer reading of atoi and atol (base 10, leading blanks and a sign
// allowed, reading stops at the first non-digit, no digits give 0), with
// values beyond the target type saturated to its limits.
long long ReadInteger(const char* text, long long lowest, long long highest) {
  const long long value = std::strtoll(text, nullptr, 10);
  if (value < lowest) return lowest;
  if (value > highest) return highest;
  return value;
}

// The classic-locale stream extraction of a double; false when the text
// does not start with a number or lies beyond the double range.
bool ReadClassicDouble(const char* text, double& value) {
  // One stream per thread, imbued once: building and imbuing a stream costs
  // more than reading the number.
  thread_local std::istringstream stream = [] {
    std::istringstream classic;
    classic.imbue(std::locale::classic());
    return classic;
  }();
  stream.clear();
  stream.str(text);
  double number = 0.0;
  stream >> number;
  if (stream.fail()) return false;
  value = number;
  return true;
}

}  // namespace

const ReaderDialect& CurrentDialect() { return kCurrentDialect; }
const ReaderDialect& OlderDialect() { return kOlderDialect; }

bool ParseStartXML(std::istream& is, const ReaderDialect& dialect) {
  Line line;
  if (!line.Read(is) || !line.NextIs(dialect.prologueDelimiters, "?xml")) return false;
  if (!line.Read(is) || !line.NextIs(dialect.prologueDelimiters, "!DOCTYPE")) return false;
  if (!line.Read(is)) return false;
  if (dialect.checksRootName) return line.NextIs(dialect.prologueDelimiters, kXMLRootName);
  return line.Next(dialect.prologueDelimiters) != nullptr;
}

bool ParseStartObj(std::istream& is, const std::string& name,
                   const ReaderDialect& dialect) {
  Line line;
  if (!line.Read(is)) return false;
  // One empty line before an object is tolerated, a second is not.
  if (line.IsEmpty(dialect) && !line.Read(is)) return false;
  if (!line.NextIs(dialect.startDelimiters, kXMLObjectElement) ||
      !line.NextIs(dialect.startDelimiters, kXMLNameAttribute)) {
    return false;
  }
  const char* objectName = line.Next(dialect.nameDelimiters);
  return objectName != nullptr && name == objectName;
}

bool ParseEndObj(std::istream& is, const ReaderDialect& dialect) {
  Line line;
  return line.Read(is) && line.NextIs(dialect.endDelimiters, "/Obj");
}

bool ParseValue(std::istream& is, int& value, const ReaderDialect& dialect) {
  Line line;
  if (!ReadValueLine(is, kXMLIntElement, dialect, line)) return false;
  const char* token = line.Next(dialect.numberDelimiters);
  if (token == nullptr) return false;
  value = static_cast<int>(ReadInteger(token, INT_MIN, INT_MAX));
  return true;
}

bool ParseValue(std::istream& is, unsigned int& value,
                const ReaderDialect& dialect) {
  Line line;
  if (!ReadValueLine(is, kXMLIntElement, dialect, line)) return false;
  const char* token = line.Next(dialect.numberDelimiters);
  if (token == nullptr) return false;
  // The writer gives every number the text of a double, so large unsigned
  // values may come as such text: read as atof does (no number gives 0),
  // then truncate. A value outside the unsigned range fails.
  const double number = std::trunc(std::strtod(token, nullptr));
  if (!(number >= 0.0 && number <= 4294967295.0)) return false;
  value = static_cast<unsigned int>(number);
  return true;
}

bool ParseValue(std::istream& is, long& value, const ReaderDialect& dialect) {
  Line line;
  if (!ReadValueLine(is, kXMLLongElement, dialect, line)) return false;
  const char* token = line.Next(dialect.numberDelimiters);
  if (token == nullptr) return false;
  value = static_cast<long>(ReadInteger(token, LONG_MIN, LONG_MAX));
  return true;
}

bool ParseValue(std::istream& is, double& value, const ReaderDialect& dialect) {
  Line line;
  if (!ReadValueLine(is, kXMLDoubleElement, dialect, line)) return false;
  const char* token = line.Next(dialect.numberDelimiters);
  if (token == nullptr) return false;
  if (dialect.knowsMissing && std::strcmp(token, kXMLMissingWord) == 0) {
    value = KXCommon::KXMV::Missing();
    return true;
  }
  // A token that is no number leaves the value as it was; the line itself
  // had the expected shape, so this still counts as success.
  ReadClassicDouble(token, value);
  return true;
}

bool ParseValue(std::istream& is, std::string& value,
                const ReaderDialect& dialect) {
  Line line;
  if (!ReadValueLine(is, kXMLStringElement, dialect, line)) return false;
  const char* token = line.Next(kStringValueDelimiters);
  // value="" leaves "/>" as the token, right after the two quotes.
  const bool emptyValue =
      token == nullptr ||
      (token - line.Begin() >= 2 &&
       std::strncmp(token - 2, kEmptyStringTail, sizeof kEmptyStringTail - 1) == 0);
  if (emptyValue) {
    value.clear();
  } else {
    value = token;
  }
  return true;
}

bool ParseValue(std::istream& is, bool& value, const ReaderDialect& dialect) {
  Line line;
  if (!ReadValueLine(is, kXMLIntElement, dialect, line)) return false;
  const char* token = line.Next(dialect.numberDelimiters);
  if (token == nullptr) return false;
  const long long number = ReadInteger(token, INT_MIN, INT_MAX);
  if (number != 0 && number != 1) return false;
  value = number == 1;
  return true;
}

}  // namespace detail
}  // namespace KXXML_NAMESPACE
