// kxcommonr/xml/XMLElement.h
//
// An element of the XML object model: a name, attributes in insertion order
// and children (elements and text nodes) in insertion order. An element owns
// its attributes and children and deletes them with itself, so the caller
// deletes only the root. Duplicate attribute names are not detected, and a
// node must not be added to two parents.
//
// Layout when written with formatting on: each element starts on a new line
// indented by its depth in tabs, each attribute on its own line one tab
// deeper; an element without children closes itself ("/>") directly after its
// last attribute; a text child keeps its element's closing tag on its line.
// With formatting off the element is written on one line, attributes
// separated by one blank.
//
// Example:
//   XMLElement* root = XMLElement::Create("Model");
//   root->AddAttribute("version", 4.3);
//   XMLElement* note = XMLElement::Create("Note");
//   note->AddText(XMLString::Create("fitted"));
//   root->AddElement(note);
//   WriteTree(std::cout, nullptr, root, true);
//   delete root;
//
// Thread-compatible: building needs exclusive access; writing only reads the
// tree (each thread with its own ExportFormat). Writing recurses once per
// level of nesting, so the depth is bounded by the thread's stack.
#ifndef KXCOMMONR_XML_XMLELEMENT_H
#define KXCOMMONR_XML_XMLELEMENT_H

#include <string>
#include <vector>

#include "kxcommonr/config.h"
#include "kxcommonr/xml/XMLInterface.h"

namespace KXXML_NAMESPACE {

class XMLAttribute;
class XMLString;

class KXCOMMONR_API XMLElement : public XMLInterface {
 public:
  // A new, empty element that the caller owns. The name is written as given
  // (it is not checked or escaped). Returns null only when allocation fails.
  static XMLElement* Create(const std::string& name);

  // Deletes the attributes and the whole subtree (without recursion, so deep
  // trees are released safely).
  ~XMLElement() override;

  XMLElement(const XMLElement&) = delete;
  XMLElement& operator=(const XMLElement&) = delete;

  // Appends an attribute and takes ownership of it. Returns 0; returns -1
  // and takes nothing (the caller keeps ownership) when `attribute` is null
  // or memory runs out.
  int AddAttribute(XMLAttribute* attribute);
  // Appends a new attribute name="value". Returns 0, or -1 when memory runs
  // out (the element is then unchanged).
  int AddAttribute(const std::string& name, const std::string& value);
  // Appends a new attribute whose value is Format(value). Returns 0 or -1 as
  // above.
  int AddAttribute(const std::string& name, double value);

  // Appends the element, its attributes and its subtree (see the layout
  // above), raising format's level by one for attributes and children and
  // restoring it; finally switches the new-paragraph and indentation flags
  // on. Returns 0.
  int ToString(std::string& out, ExportFormat& format) const override;

  // The same characters as ToString, written to `os` as they are produced
  // (through WriteUTF when `utf8` is true) instead of being collected; the
  // utf8 flag is passed down to the children. Returns 0.
  int ToStream(std::ostream& os, ExportFormat& format, bool utf8) const override;

  // Appends a child element and takes ownership of it. Returns 0; returns -1
  // and takes nothing (the caller keeps ownership) when `child` is null, is
  // this element itself, or memory runs out.
  virtual int AddElement(XMLElement* child);

  // Appends a text child and takes ownership of it; returns 0, or -1 as
  // AddElement (null text, memory exhausted).
  virtual int AddText(XMLString* text);

  const std::string& GetName() const { return fsName; }
  std::size_t GetAttributeCount() const { return fvAttributes.size(); }
  std::size_t GetChildCount() const { return fvChildren.size(); }

 protected:
  explicit XMLElement(const std::string& name);

 private:
  class Emitter;
  int Serialize(Emitter& emitter, ExportFormat& format) const;
  int AddChild(XMLInterface* child);

  std::vector<XMLAttribute*> fvAttributes;
  std::string fsName;
  std::vector<XMLInterface*> fvChildren;
};

}  // namespace KXXML_NAMESPACE

#endif  // KXCOMMONR_XML_XMLELEMENT_H
