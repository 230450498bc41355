#include "xml/dom.h"

#include <algorithm>

#include <fmt/format.h>
#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "base/failure.h"
#include "xml/file_uri.h"

namespace projectdb::xml {
namespace {

using xercesc::DOMElement;

// Not recursive: the nesting is as deep as the file says.
const DOMElement* NextInDocumentOrder(const DOMElement* element, const DOMElement* root) {
  if (const DOMElement* child = element->getFirstElementChild()) return child;
  while (element != root) {
    if (const DOMElement* sibling = element->getNextElementSibling()) return sibling;
    element = static_cast<const DOMElement*>(element->getParentNode());
  }
  return nullptr;
}

// A parsed value is a single text node. Asking that is cheaper than asking the attribute, which
// first finds out whether there are more.
const XMLCh* TextOf(const xercesc::DOMNode& attribute) {
  const xercesc::DOMNode* text = attribute.getFirstChild();
  return text ? text->getNodeValue() : nullptr;
}

// Calls visit(name, text).
template <typename Visit>
void ForEachAttribute(const DOMElement& element, Visit visit) {
  if (const TextAttributes* attributes = TextAttributesOf(element)) {
    for (const TextAttribute* attribute = attributes->first(); attribute;
         attribute = attribute->next) {
      visit(attribute->name, attribute->text);
    }
    return;
  }
  const xercesc::DOMNamedNodeMap& nodes = *element.getAttributes();
  for (XMLSize_t i = 0; const xercesc::DOMNode* node = nodes.item(i); ++i) {
    visit(node->getNodeName(), TextOf(*node));
  }
}

}  // namespace

std::vector<const DOMElement*> DescendantElements(
    const DOMElement* root, std::u16string_view namespace_uri, std::u16string_view local_name,
    const std::function<void(const DOMElement*)>& visit_other) {
  std::vector<const DOMElement*> found;
  const DOMElement* element = root;
  while ((element = NextInDocumentOrder(element, root)) != nullptr) {
    const XMLCh* uri = element->getNamespaceURI();
    if (uri && uri == namespace_uri && element->getLocalName() == local_name) {
      found.push_back(element);
    } else if (visit_other) {
      visit_other(element);
    }
  }
  return found;
}

bool HasLocalName(const DOMElement* element, const Name& name) {
  return xercesc::XMLString::equals(element->getLocalName(), name.wide);
}

// One pass over the attributes is cheaper than a search for each.
void ReadAttributes(Transcoder& transcoder, const DOMElement* element,
                    std::initializer_list<AttributeText> attributes) {
  ForEachAttribute(*element, [&](const XMLCh* name, const XMLCh* text) {
    for (const AttributeText& attribute : attributes) {
      if (!xercesc::XMLString::equals(name, attribute.name.wide)) continue;
      attribute.text = transcoder.ToUtf8(text);
      break;
    }
  });
}

std::string GetDOMAttributeString(Transcoder& transcoder, const DOMElement* element,
                                  const Name& name) {
  if (TextAttributesOf(*element)) {
    std::string text;
    ReadAttributes(transcoder, element, {{name, text}});
    return text;
  }
  const xercesc::DOMAttr* attribute = element->getAttributeNode(name.wide);
  return attribute ? transcoder.ToUtf8(TextOf(*attribute)) : std::string();
}

DOMElement* ElementWriter::AddChildDOMElement(DOMElement* parent, const XMLCh* tag) {
  if (!parent || !tag || !*tag) return nullptr;
  const ElementNames* const names = KnownNames(tag);
  if (names) {
    if (DOMElement* child = xml::AppendElement(*parent, *names)) return child;
  }
  xercesc::DOMDocument* document = parent->getOwnerDocument();
  if (!document) return nullptr;
  try {
    DOMElement* child = document->createElementNS(namespace_uri_, tag);
    if (namespace_uri_ && prefix_) child->setPrefix(prefix_);
    if (!names && known_names_.size() < kMostKinds) known_names_.emplace_back(*child);
    parent->appendChild(child);
    return child;
  } catch (const xercesc::DOMException&) {
    return nullptr;  // A namespace and prefix that do not go together.
  }
}

const ElementNames* ElementWriter::KnownNames(const XMLCh* tag) const {
  // The tags of the section at hand came last.
  const auto names = std::find_if(
      known_names_.rbegin(), known_names_.rend(),
      [tag](const auto& each) { return xercesc::XMLString::equals(each.local_name, tag); });
  return names == known_names_.rend() ? nullptr : &*names;
}

void ElementWriter::SetDOMElementAttribute(DOMElement* element, const Name& name,
                                           std::string_view value) {
  if (!element) return;
  const XMLCh* text = transcoder().ToXml(value).c_str();
  if (TextAttributes* attributes = TextAttributesOf(*element)) {
    attributes->Set(name.wide, text);
  } else {
    element->setAttribute(name.wide, text);
  }
}

void ElementWriter::SetQualifiedAttribute(DOMElement* element, std::string_view name,
                                          std::string_view value) {
  const std::size_t colon = name.find(':');
  const bool has_prefix = colon != std::string_view::npos;
  const std::string_view prefix = has_prefix ? name.substr(0, colon) : "";
  if ((has_prefix && !IsName(prefix)) || !IsName(has_prefix ? name.substr(colon + 1) : name)) {
    throw Failure(fmt::format("{:?} cannot be the name of an attribute", name));
  }
  const std::u16string qualified_name = transcoder().ToXml(name);
  const std::u16string uri = has_prefix ? NamespaceOfPrefix(prefix) : std::u16string();
  const XMLCh* text = transcoder().ToXml(value).c_str();
  // By its whole name, which is found fast; by namespace, all attributes would be searched.
  xercesc::DOMAttr* attribute = element->getAttributeNode(qualified_name.c_str());
  if (!attribute) {
    attribute = element->getOwnerDocument()->createAttributeNS(has_prefix ? uri.c_str() : nullptr,
                                                               qualified_name.c_str());
    element->setAttributeNode(attribute);
  }
  attribute->setValue(text);
}

bool ElementWriter::IsName(std::string_view text) { return IsNCName(transcoder().ToXml(text)); }

std::u16string ElementWriter::NamespaceOfPrefix(std::string_view prefix) {
  const std::u16string text = transcoder().ToXml(prefix);
  if (text == u"xml") return xercesc::XMLUni::fgXMLURIName;
  if (prefix_ && text == prefix_) return namespace_uri_;
  return namespace_uri_ + (u"/prefix/" + transcoder().ToXml(EscapeForUri(prefix)));
}

bool ElementWriter::AddChildDOMElementWithAttribute(DOMElement* parent, const XMLCh* tag,
                                                    const Name& attribute, std::string_view value) {
  return AppendElement(parent, tag,
                       [&](DOMElement* child) { SetDOMElementAttribute(child, attribute, value); });
}

}  // namespace projectdb::xml
