// Both public reader sets forward to the one implementation in
// internal/XMLLineReader, each with its dialect.
#include "kxcommonr/xml/XMLReader.h"

#include "kxcommonr/xml/XMLUReader.h"
#include "kxcommonr/xml/internal/XMLLineReader.h"

namespace KXXML_NAMESPACE {

using detail::CurrentDialect;

bool ParseStartXML(std::ifstream& is) {
  return detail::ParseStartXML(is, CurrentDialect());
}
bool ParseStartObj(std::ifstream& is, const std::string& name) {
  return detail::ParseStartObj(is, name, CurrentDialect());
}
bool ParseEndObj(std::ifstream& is) { return detail::ParseEndObj(is, CurrentDialect()); }
bool ParseValue(std::ifstream& is, int& value) {
  return detail::ParseValue(is, value, CurrentDialect());
}
bool ParseValue(std::ifstream& is, unsigned int& value) {
  return detail::ParseValue(is, value, CurrentDialect());
}
bool ParseValue(std::ifstream& is, long& value) {
  return detail::ParseValue(is, value, CurrentDialect());
}
bool ParseValue(std::ifstream& is, double& value) {
  return detail::ParseValue(is, value, CurrentDialect());
}
bool ParseValue(std::ifstream& is, std::string& value) {
  return detail::ParseValue(is, value, CurrentDialect());
}
bool ParseValue(std::ifstream& is, bool& value) {
  return detail::ParseValue(is, value, CurrentDialect());
}

}  // namespace KXXML_NAMESPACE

namespace xmlu {

using KXXML_NAMESPACE::detail::OlderDialect;

bool ParseStartXML(std::ifstream& is) {
  return KXXML_NAMESPACE::detail::ParseStartXML(is, OlderDialect());
}
bool ParseStartObj(std::ifstream& is, const std::string& name) {
  return KXXML_NAMESPACE::detail::ParseStartObj(is, name, OlderDialect());
}
bool ParseEndObj(std::ifstream& is) {
  return KXXML_NAMESPACE::detail::ParseEndObj(is, OlderDialect());
}
bool ParseValue(std::ifstream& is, int& value) {
  return KXXML_NAMESPACE::detail::ParseValue(is, value, OlderDialect());
}
bool ParseValue(std::ifstream& is, unsigned int& value) {
  return KXXML_NAMESPACE::detail::ParseValue(is, value, OlderDialect());
}
bool ParseValue(std::ifstream& is, long& value) {
  return KXXML_NAMESPACE::detail::ParseValue(is, value, OlderDialect());
}
bool ParseValue(std::ifstream& is, double& value) {
  return KXXML_NAMESPACE::detail::ParseValue(is, value, OlderDialect());
}

}  // namespace xmlu
