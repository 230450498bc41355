#include "xml/leaf_filter.h"

#include <algorithm>
#include <new>
#include <string_view>

#include <xercesc/util/XMLString.hpp>

namespace projectdb::xml {
namespace {

using xercesc::DOMElementNSImpl;
using xercesc::DOMNode;
using xercesc::XMLString;

// Whether the serializer writes the character as it is wherever it stands.
bool IsPlain(XMLCh unit) {
  constexpr std::u16string_view kEscaped = u"&<>\"'";
  const bool is_control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
  return !is_control && unit < 0xD800 && kEscaped.find(unit) == std::u16string_view::npos;
}

const DOMElementNSImpl* ParentOf(const DOMElementNSImpl& element) {
  return PlainElement(element.fNode.fOwnerNode);
}

// Whether the prefix stands for the same as in the parent's tag, so that nothing is declared.
bool HasNamespaceOf(const DOMElementNSImpl& parent, const DOMElementNSImpl& element) {
  return XMLString::equals(element.getNamespaceURI(), parent.getNamespaceURI()) &&
         XMLString::equals(element.getPrefix(), parent.getPrefix());
}

// The number of elements around the element.
std::size_t LevelOf(const DOMElementNSImpl& element) {
  std::size_t level = 0;
  for (auto* parent = ParentOf(element); parent; parent = ParentOf(*parent)) ++level;
  return level;
}

}  // namespace

LeafFilter::FilterAction LeafFilter::acceptNode(const DOMNode* node) const {
  const DOMElementNSImpl* element = PlainElement(node);
  try {
    return element && Write(*element) ? FILTER_REJECT : FILTER_ACCEPT;
  } catch (const std::bad_alloc&) {
    return FILTER_ACCEPT;  // The serializer has its own way to say so.
  }
}

// @return false if the element is left to the serializer; nothing is written then
bool LeafFilter::Write(const DOMElementNSImpl& element) const {
  constexpr std::size_t kFirstLevel = 2;
  const TextAttributes* attributes = TextAttributesOf(element);
  if (!attributes || element.fParent.fFirstChild || !element.fChild.nextSibling) return false;
  const std::size_t level = LevelOf(element);
  if (level < kFirstLevel || !HasNamespaceOf(*ParentOf(element), element)) return false;
  line_.assign("\n").append(2 * level, ' ').append("<");
  if (!Append(element.fName)) return false;
  for (auto* attribute = attributes->first(); attribute; attribute = attribute->next) {
    line_ += ' ';
    if (!Append(attribute->name)) return false;
    line_ += "=\"";
    if (!Append(attribute->text)) return false;
    line_ += '"';
  }
  line_ += "/>";
  target_.writeChars(reinterpret_cast<const XMLByte*>(line_.data()), line_.size(), nullptr);
  return true;
}

bool LeafFilter::Append(const XMLCh* text) const {
  if (!std::all_of(text, text + XMLString::stringLen(text), IsPlain)) return false;
  line_ += transcoder_.ToUtf8(text);
  return true;
}

}  // namespace projectdb::xml
