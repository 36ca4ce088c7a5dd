#include "kxcommonr/xml/XMLElement.h"

#include <new>
#include <typeinfo>
#include <ostream>

#include "kxcommonr/common/foundation/KXAllocation.h"
#include "kxcommonr/xml/XMLAttribute.h"
#include "kxcommonr/xml/XMLString.h"
#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/internal/XMLText.h"

namespace KXXML_NAMESPACE {

// Where an element's text goes: appended to a string, or written to a
// stream (raw or converted to UTF-8). For a stream the text of a whole
// subtree of plain elements and text nodes is gathered and written in
// blocks of about kFlushSize bytes; the block ends only between whole
// pieces of text, so a multi-byte character never straddles two
// conversions.
class XMLElement::Emitter {
 public:
  explicit Emitter(std::string& out) : out_(&out) {}
  Emitter(std::ostream& os, bool utf8) : os_(&os), utf8_(utf8) {
    pending_.reserve(kFlushSize + kFlushSize / 4);
  }
  Emitter(const Emitter&) = delete;
  Emitter& operator=(const Emitter&) = delete;
  ~Emitter() { Flush(); }

  std::string& Pending() { return out_ != nullptr ? *out_ : pending_; }

  // Writes `child`: plain elements and text nodes join the gathered text;
  // any other node (a class of the caller's, which may write itself its own
  // way) gets the stream after what was gathered so far.
  void Child(const XMLInterface& child, ExportFormat& format) {
    if (typeid(child) == typeid(XMLElement)) {
      static_cast<const XMLElement&>(child).Serialize(*this, format);
    } else if (out_ != nullptr) {
      child.ToString(*out_, format);
    } else if (typeid(child) == typeid(XMLString)) {
      child.ToString(pending_, format);
    } else {
      Flush();
      child.ToStream(*os_, format, utf8_);
    }
  }

  void FlushIfLarge() {
    if (pending_.size() >= kFlushSize) Flush();
  }

  void Flush() {
    if (os_ == nullptr || pending_.empty()) return;
    if (utf8_) {
      WriteUTF(*os_, pending_);
    } else {
      detail::PutBytes(*os_, pending_);
    }
    pending_.clear();
  }

 private:
  // Small enough to stay a plain heap block (no page mapping per write).
  static constexpr std::size_t kFlushSize = 16 * 1024;

  std::string* out_ = nullptr;
  std::ostream* os_ = nullptr;
  bool utf8_ = false;
  std::string pending_;
};

XMLElement::XMLElement(const std::string& name) : fsName(name) {}

XMLElement::~XMLElement() {
  for (XMLAttribute* attribute : fvAttributes) delete attribute;
  // Release the subtree with an explicit work list: a recursive release
  // would overflow the stack on very deep trees.
  std::vector<XMLInterface*> pending;
  pending.swap(fvChildren);
  while (!pending.empty()) {
    XMLInterface* node = pending.back();
    pending.pop_back();
    if (XMLElement* element = dynamic_cast<XMLElement*>(node)) {
      pending.insert(pending.end(), element->fvChildren.begin(),
                     element->fvChildren.end());
      element->fvChildren.clear();
    }
    delete node;
  }
}

XMLElement* XMLElement::Create(const std::string& name) {
  return new (std::nothrow) XMLElement(name);
}

int XMLElement::AddAttribute(XMLAttribute* attribute) {
  if (attribute == nullptr) return -1;
  return KXCommon::GuardAllocation([&] {
    fvAttributes.push_back(attribute);
    return 0;
  }, -1);
}

int XMLElement::AddAttribute(const std::string& name, const std::string& value) {
  XMLAttribute* attribute = XMLAttribute::Create(name, value);
  if (AddAttribute(attribute) != 0) {
    delete attribute;
    return -1;
  }
  return 0;
}

int XMLElement::AddAttribute(const std::string& name, double value) {
  XMLAttribute* attribute = XMLAttribute::Create(name, value);
  if (AddAttribute(attribute) != 0) {
    delete attribute;
    return -1;
  }
  return 0;
}

int XMLElement::AddChild(XMLInterface* child) {
  if (child == nullptr || child == this) return -1;
  return KXCommon::GuardAllocation([&] {
    fvChildren.push_back(child);
    return 0;
  }, -1);
}

int XMLElement::AddElement(XMLElement* child) { return AddChild(child); }

int XMLElement::AddText(XMLString* text) { return AddChild(text); }

int XMLElement::ToString(std::string& out, ExportFormat& format) const {
  Emitter emitter(out);
  return Serialize(emitter, format);
}

int XMLElement::ToStream(std::ostream& os, ExportFormat& format,
                         bool utf8) const {
  Emitter emitter(os, utf8);
  return Serialize(emitter, format);
}

int XMLElement::Serialize(Emitter& emitter, ExportFormat& format) const {
  const int level = format.GetLevel();
  std::string& text = emitter.Pending();

  if (format.IsNewParagraph()) text += '\n';
  if (format.HasIndentation()) detail::AppendTabs(text, level);
  text += '<';
  text += fsName;

  if (!fvAttributes.empty()) {
    format.SetLevel(level + 1);
    for (const XMLAttribute* attribute : fvAttributes) {
      text += format.IsNewParagraph() ? '\n' : ' ';
      if (format.HasIndentation()) detail::AppendTabs(text, level + 1);
      attribute->ToString(text, format);
    }
    format.SetLevel(level);
  }

  if (!fvChildren.empty()) {
    text += '>';
    format.SetLevel(level + 1);
    for (const XMLInterface* child : fvChildren) emitter.Child(*child, format);
    format.SetLevel(level);
    // The flags as the last child left them: after a text child the closing
    // tag stays on the text's line.
    std::string& tail = emitter.Pending();  // the same buffer, maybe flushed
    if (format.IsNewParagraph()) tail += '\n';
    if (format.HasIndentation()) detail::AppendTabs(tail, level);
    tail += "</";
    tail += fsName;
    tail += '>';
  } else {
    text += "/>";
  }

  format.SetIsNewParagraph(true);
  format.SetIndentation(true);
  emitter.FlushIfLarge();
  return 0;
}

}  // namespace KXXML_NAMESPACE
