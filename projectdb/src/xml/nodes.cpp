#include "xml/nodes.h"

#include <algorithm>
#include <array>
#include <typeinfo>

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/impl/DOMAttrNSImpl.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XercesVersion.hpp>

namespace projectdb::xml {
namespace {

using xercesc::DOMAttrMapImpl;
using xercesc::DOMDocumentImpl;
using xercesc::DOMElement;
using xercesc::DOMElementNSImpl;
using xercesc::DOMNode;

class Document final : public DOMDocumentImpl {
 public:
  using DOMDocumentImpl::DOMDocumentImpl;

  explicit Document(xercesc::MemoryManager& memory)
      : DOMDocumentImpl(xercesc::DOMImplementation::getImplementation(), &memory) {
    fNameTable = static_cast<xercesc::DOMStringPoolEntry**>(
        allocate(kNameTableSize * sizeof(xercesc::DOMStringPoolEntry*)));
    fNameTableSize = kNameTableSize;
    std::fill_n(fNameTable, kNameTableSize, nullptr);
    is_parsed_ = true;
  }

  /// As the parser makes an attribute, or as setAttribute does.
  xercesc::DOMAttrImpl* NewAttribute(const XMLCh* name) {
    if (!is_parsed_) {
      return new (this, xercesc::DOMMemoryManager::ATTR_OBJECT) xercesc::DOMAttrImpl(this, name);
    }
    return new (this, xercesc::DOMMemoryManager::ATTR_NS_OBJECT)
        xercesc::DOMAttrNSImpl(this, nullptr, nullptr, name, name);
  }

  /// The document's own copy of an attribute's name. A project has few: no table finds them faster.
  const XMLCh* AttributeName(const XMLCh* name) {
    for (const XMLCh*& known : attribute_names_) {
      if (!known) known = getPooledString(name);
      if (xercesc::XMLString::equals(known, name)) return known;
    }
    return getPooledString(name);
  }

 private:
  static constexpr XMLSize_t kNameTableSize = 16411;
  static constexpr std::size_t kFewNames = 8;

  std::array<const XMLCh*, kFewNames> attribute_names_{};
  bool is_parsed_ = false;
};

// An element whose names need not be looked up once more.
class Element final : public DOMElementNSImpl {
 public:
  Element(Document* document, const ElementNames& names) : DOMElementNSImpl(document, nullptr) {
    fName = names.qualified_name;
    fNamespaceURI = names.namespace_uri;
    fPrefix = names.prefix;
    fLocalName = names.local_name;
  }
};

// The document of the node if it is one of these.
Document* OwnDocument(const DOMNode& node) {
  DOMNode* document = node.getOwnerDocument();
  return document && typeid(*document) == typeid(Document) ? static_cast<Document*>(document)
                                                           : nullptr;
}

// The first child knows the last one as the one before it.
void LinkBehind(DOMElementNSImpl* last, DOMElementNSImpl& parent, DOMElementNSImpl& element) {
  if (last) {
    last->fChild.nextSibling = &element;
    element.fChild.previousSibling = last;
  } else {
    parent.fParent.fFirstChild = &element;
    element.fNode.isFirstChild(true);
  }
  PlainElement(parent.fParent.fFirstChild)->fChild.previousSibling = &element;
}

}  // namespace

bool MakesElements() {
#ifdef PROJECTDB_PLAIN_DOM
  return false;
#else
  return XERCES_VERSION_MAJOR == 3 && XERCES_VERSION_MINOR == 2;
#endif
}

ElementNames::ElementNames(const DOMElement& element)
    : document(element.getOwnerDocument()),
      namespace_uri(element.getNamespaceURI()),
      prefix(element.getPrefix()),
      local_name(element.getLocalName()),
      qualified_name(element.getNodeName()) {}

DOMDocumentImpl* NewDocument(xercesc::MemoryManager& memory) {
  return new (&memory) Document(memory);
}

Owned<xercesc::DOMDocument> CreateDocument(xercesc::DOMImplementation& core,
                                           const XMLCh* namespace_uri, const XMLCh* root_name) {
  if (!MakesElements()) {
    return Owned<xercesc::DOMDocument>(core.createDocument(namespace_uri, root_name, nullptr));
  }
  xercesc::MemoryManager* const memory = xercesc::XMLPlatformUtils::fgMemoryManager;
  return Owned<xercesc::DOMDocument>(
      new (memory) Document(namespace_uri, root_name, nullptr, &core, memory));
}

const DOMElementNSImpl* PlainElement(const DOMNode* node) {
  // The type on the left is one of this file alone, so that no names of types are compared.
  const bool is_plain =
      MakesElements() && node &&
      (typeid(Element) == typeid(*node) || typeid(DOMElementNSImpl) == typeid(*node));
  return is_plain ? static_cast<const DOMElementNSImpl*>(node) : nullptr;
}

DOMElementNSImpl* PlainElement(DOMNode* node) {
  return const_cast<DOMElementNSImpl*>(PlainElement(static_cast<const DOMNode*>(node)));
}

DOMElementNSImpl* AppendElement(DOMNode& parent_node, const ElementNames& names) {
  DOMElementNSImpl* parent = PlainElement(&parent_node);
  Document* document = parent ? OwnDocument(parent_node) : nullptr;
  if (!document || document != names.document) return nullptr;
  if (document->getRanges() || parent->fNode.isReadOnly()) return nullptr;
  DOMNode* first_node = parent->fParent.fFirstChild;
  DOMElementNSImpl* first = PlainElement(first_node);
  DOMElementNSImpl* last = first ? PlainElement(first->fChild.previousSibling) : nullptr;
  if (first_node && !last) return nullptr;

  auto* element =
      new (document, xercesc::DOMMemoryManager::ELEMENT_NS_OBJECT) Element(document, names);
  element->fAttributes = new (document) TextAttributes(*element);
  element->fNode.fOwnerNode = parent;
  element->fNode.isOwned(true);
  LinkBehind(last, *parent, *element);
  document->changed();
  return element;
}

void TextAttributes::Set(const XMLCh* name, const XMLCh* text) {
  auto& document = static_cast<Document&>(*element_.getOwnerDocument());
  const XMLSize_t size = xercesc::XMLString::stringLen(text) + 1;
  auto* const kept_text = static_cast<XMLCh*>(document.allocate(size * sizeof(XMLCh)));
  std::copy_n(text, size, kept_text);
  TextAttribute** place = &first_;
  int order = -1;
  while (*place && (order = xercesc::XMLString::compareString((*place)->name, name)) < 0) {
    place = &(*place)->next;
  }
  if (*place && order == 0) {
    (*place)->text = kept_text;
  } else {
    *place = new (&document) TextAttribute{document.AttributeName(name), kept_text, *place};
  }
}

DOMAttrMapImpl& TextAttributes::Map() const {
  if (map_) return *map_;
  auto* document = static_cast<Document*>(element_.getOwnerDocument());
  auto* map = new (document) DOMAttrMapImpl(&element_);
  if (first_) map->reserve(1);  // It grows.
  for (const TextAttribute* attribute = first_; attribute; attribute = attribute->next) {
    xercesc::DOMAttrImpl* node = document->NewAttribute(attribute->name);
    node->setValueFast(attribute->text);
    map->setNamedItemFast(node);  // Asks not whether the element may be changed.
  }
  element_.fAttributes = map;
  map_ = map;
  return *map;
}

DOMAttrMapImpl* TextAttributes::cloneAttrMap(DOMNode* owner) { return Map().cloneAttrMap(owner); }
int TextAttributes::findNamePoint(const XMLCh* name) const { return Map().findNamePoint(name); }
DOMNode* TextAttributes::removeNamedItemAt(XMLSize_t i) { return Map().removeNamedItemAt(i); }
XMLSize_t TextAttributes::getLength() const { return Map().getLength(); }
DOMNode* TextAttributes::item(XMLSize_t i) const { return Map().item(i); }
DOMNode* TextAttributes::getNamedItem(const XMLCh* name) const { return Map().getNamedItem(name); }
DOMNode* TextAttributes::setNamedItem(DOMNode* node) { return Map().setNamedItem(node); }
DOMNode* TextAttributes::setNamedItemNS(DOMNode* node) { return Map().setNamedItemNS(node); }
DOMNode* TextAttributes::removeNamedItem(const XMLCh* name) { return Map().removeNamedItem(name); }

int TextAttributes::findNamePoint(const XMLCh* uri, const XMLCh* local_name) const {
  return Map().findNamePoint(uri, local_name);
}

void TextAttributes::setReadOnly(bool is_read_only, bool is_deep) {
  Map().setReadOnly(is_read_only, is_deep);
}

DOMNode* TextAttributes::getNamedItemNS(const XMLCh* uri, const XMLCh* local_name) const {
  return Map().getNamedItemNS(uri, local_name);
}

DOMNode* TextAttributes::removeNamedItemNS(const XMLCh* uri, const XMLCh* local_name) {
  return Map().removeNamedItemNS(uri, local_name);
}

const TextAttributes* TextAttributesOf(const DOMElement& element) {
  const xercesc::DOMNamedNodeMap* map = element.getAttributes();
  return map && typeid(*map) == typeid(TextAttributes) ? static_cast<const TextAttributes*>(map)
                                                       : nullptr;
}

TextAttributes* TextAttributesOf(DOMElement& element) {
  return const_cast<TextAttributes*>(TextAttributesOf(static_cast<const DOMElement&>(element)));
}

}  // namespace projectdb::xml
