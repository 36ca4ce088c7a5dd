// kxcommonr/xml/ExportFormat.h
//
// ExportFormat carries the layout of one XML serialisation: whether elements
// and attributes start on new lines, whether new lines are indented with
// tabs, a master switch over both, and the current depth. The serialisers
// (XMLElement, XMLString) change the depth and overwrite the two layout flags
// as they go; a text node turns both off so that its element's closing tag
// stays on the text's line, and every element turns both back on when done.
//
// Thread-compatible: a plain value; one object per serialisation.
#ifndef KXCOMMONR_XML_EXPORTFORMAT_H
#define KXCOMMONR_XML_EXPORTFORMAT_H

#include "kxcommonr/config.h"

namespace KXXML_NAMESPACE {

class KXCOMMONR_API ExportFormat {
 public:
  // New paragraphs on, indentation on, formatting on, level 0.
  ExportFormat() = default;
  ExportFormat(const ExportFormat&) = default;
  // Copies all four fields.
  ExportFormat& operator=(const ExportFormat&) = default;

  void SetIsNewParagraph(bool newParagraph) { fbNewParagraph = newParagraph; }
  void SetIndentation(bool indentation) { fbIndentation = indentation; }
  // The master switch: when false, neither new paragraphs nor indentation
  // take effect, whatever their own flags say.
  void SetFormat(bool format) { fbFormat = format; }

  // Format flag AND new-paragraph flag.
  bool IsNewParagraph() const { return fbFormat && fbNewParagraph; }
  // Format flag AND indentation flag.
  bool HasIndentation() const { return fbFormat && fbIndentation; }
  bool GetFormat() const { return fbFormat; }

  // The indentation depth in tab characters (a negative depth indents by
  // nothing).
  int GetLevel() const { return fiLevel; }
  void SetLevel(int level) { fiLevel = level; }

 private:
  bool fbNewParagraph = true;
  bool fbIndentation = true;
  bool fbFormat = true;
  int fiLevel = 0;
};

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_EXPORTFORMAT_H
