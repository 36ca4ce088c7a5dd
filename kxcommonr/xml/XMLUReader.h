// kxcommonr/xml/XMLUReader.h
//
// The older object-stream reader set, namespace xmlu, kept for callers
// written against it. It reads the same lines as the current set
// (XMLReader.h) with weaker checks, and new code should use the current set:
// - line feeds only: a carriage return is not a delimiter, so files with
//   CR LF line ends do not read;
// - the prologue's third line needs a token but not the root name;
// - object names end at any blank or markup character, not only at '"';
// - "Missing" is not recognised (the Double stays unchanged, true);
// - there are no string or bool readers.
// Results, failures and the 255-character line limit are otherwise those of
// the current set.
//
// Thread-compatible, as the current set.
#ifndef KXCOMMONR_XML_XMLUREADER_H
#define KXCOMMONR_XML_XMLUREADER_H

#include <fstream>
#include <string>

#include "kxcommonr/config.h"

namespace xmlu {

// Reads three lines starting with "<?xml", "<!DOCTYPE" and any token.
KXCOMMONR_API bool ParseStartXML(std::ifstream& is);
// One optional empty line, then <Obj name="NAME"> with NAME == name.
KXCOMMONR_API bool ParseStartObj(std::ifstream& is, const std::string& name);
// One line starting with </Obj>.
KXCOMMONR_API bool ParseEndObj(std::ifstream& is);
// <Int value="V"/> as atoi (clamped to int).
KXCOMMONR_API bool ParseValue(std::ifstream& is, int& value);
// <Int value="V"/> as atof, truncated; false outside 0..4294967295.
KXCOMMONR_API bool ParseValue(std::ifstream& is, unsigned int& value);
// <Long value="V"/> as atol (clamped to long).
KXCOMMONR_API bool ParseValue(std::ifstream& is, long& value);
// <Double value="V"/> in the classic locale; no number leaves value unchanged
// and returns true ("Missing" included).
KXCOMMONR_API bool ParseValue(std::ifstream& is, double& value);

}  // namespace xmlu

#endif  // KXCOMMONR_XML_XMLUREADER_H
