#include "xml/dom_parser.h"

#include <algorithm>
#include <vector>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xercesc/framework/XMLAttDef.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/internal/IGXMLScanner.hpp>
#include <xercesc/util/XMLString.hpp>

namespace projectdb::xml {
namespace {

using xercesc::XMLAttr;
using xercesc::XMLString;
using xercesc::XMLUni;

using XmlAttributes = xercesc::RefVectorOf<XMLAttr>;

constexpr XMLSize_t kManyAttributes = 16;

// Every so many levels, the first so many prefixes of a file are declared once more.
constexpr XMLSize_t kLevelsBetweenDeclarations = 64;
constexpr std::size_t kMostPrefixes = 32;

bool IsBefore(const XMLAttr* a, const XMLAttr* b) {
  return XMLString::compareString(a->getQName(), b->getQName()) < 0;
}

// The XML library keeps a number for each level of elements. It makes room for them only where it
// validates, and then by doubling it once: below many levels that are in no schema, it would write
// beyond. The function that makes room is private, which an explicit instantiation may name. A
// version without that function does not compile: whether it writes beyond must be seen first.
constexpr XMLSize_t kFirstRoomForLevels = 16;

template <void (xercesc::IGXMLScanner::*Function)()>
struct RoomForLevels {
  friend void DoubleRoomForLevels(xercesc::IGXMLScanner& scanner) { (scanner.*Function)(); }
};
template struct RoomForLevels<&xercesc::IGXMLScanner::resizeElemState>;
void DoubleRoomForLevels(xercesc::IGXMLScanner& scanner);

bool HasPrefix(const XMLAttr& attribute) { return attribute.getPrefix() && *attribute.getPrefix(); }

}  // namespace

class DomParser::Scanner : public xercesc::IGXMLScanner {
 public:
  using IGXMLScanner::IGXMLScanner;

  /// Makes room for the children of an element, before the base class sees them.
  /// @param depth of the element; 1 for the root
  void MakeRoomBelow(XMLSize_t depth) {
    while (depth + 1 >= room_for_levels_) {
      DoubleRoomForLevels(*this);
      room_for_levels_ *= 2;
    }
  }

  /// Declares for the current element what is in scope there anyway.
  void Declare(const std::set<std::u16string>& prefixes) {
    for (const std::u16string& prefix : prefixes) {
      bool is_unknown = false;
      const unsigned int uri = fElemStack.mapPrefixToURI(prefix.c_str(), is_unknown);
      if (!is_unknown) fElemStack.addPrefix(prefix.c_str(), uri);
    }
  }

 private:
  XMLSize_t room_for_levels_ = kFirstRoomForLevels;
};

DomParser::DomParser()
    : scanner_(new (fMemoryManager) Scanner(fValidator, fGrammarResolver, fMemoryManager)) {
  scanner_->setParseSettings(fScanner);
  scanner_->setURIStringPool(fURIStringPool);
  delete fScanner;
  fScanner = scanner_;
}

void DomParser::startDocument() {
  fDocument = NewDocument(*fMemoryManager);
  fCurrentParent = fDocument;
  fCurrentNode = fDocument;
  fDocument->setErrorChecking(false);
  fDocument->setDocumentURI(fScanner->getLocator()->getSystemId());
  fDocument->setInputEncoding(fScanner->getReaderMgr()->getCurrentEncodingStr());
  prefixes_ = {u""};
  depth_ = 0;
  kinds_.clear();
}

void DomParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                             const XMLCh* prefix, const XmlAttributes& attributes, XMLSize_t count,
                             bool is_empty, bool is_root) {
  EnterElement(attributes, count);
  if (!AppendPlainElement(declaration, uri, prefix, attributes, count)) {
    StartOtherElement(declaration, uri, prefix, attributes, count, is_empty, is_root);
    NoteKind(declaration, uri);
  } else if (is_empty) {
    endElement(declaration, uri, is_root, prefix);
  }
}

// Appends an element whose kind is known and whose attributes are plain, and makes it the current
// one. A declaration is of one local name, but of any prefix and namespace.
bool DomParser::AppendPlainElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                   const XMLCh* prefix, const XmlAttributes& attributes,
                                   XMLSize_t count) {
  const auto kind = kinds_.find(&declaration);
  if (kind == kinds_.end() || kind->second.uri != uri) return false;
  const ElementNames& names = kind->second.names;
  if (!XMLString::equals(names.prefix, prefix) || !ArePlain(attributes, count)) return false;
  xercesc::DOMElementNSImpl* element = AppendElement(*fCurrentParent, names);
  if (!element) return false;
  TextAttributes& texts = *TextAttributesOf(*element);
  for (XMLSize_t i = 0; i < count; ++i) {
    const XMLAttr& attribute = *attributes.elementAt(i);
    texts.Set(attribute.getName(), attribute.getValue());
  }
  fCurrentParent = element;
  fCurrentNode = element;
  return true;
}

// Whether the attributes are few and different, stand in the file, unlike a schema's defaults, and
// neither declare nor identify anything.
bool DomParser::ArePlain(const XmlAttributes& attributes, XMLSize_t count) const {
  if (count >= kManyAttributes) return false;
  for (XMLSize_t i = 0; i < count; ++i) {
    const XMLAttr& attribute = *attributes.elementAt(i);
    const XMLCh* name = attribute.getName();
    if (HasPrefix(attribute) || attribute.getURIId() != fScanner->getEmptyNamespaceId() ||
        XMLString::equals(name, XMLUni::fgXMLNSString) || !attribute.getSpecified() ||
        attribute.getType() == xercesc::XMLAttDef::ID) {
      return false;
    }
    for (XMLSize_t j = 0; j < i; ++j) {
      if (XMLString::equals(attributes.elementAt(j)->getName(), name)) return false;
    }
  }
  return true;
}

// As the XML library does it.
void DomParser::StartOtherElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                  const XMLCh* prefix, const XmlAttributes& attributes,
                                  XMLSize_t count, bool is_empty, bool is_root) {
  if (count < kManyAttributes) {
    DOMLSParserImpl::startElement(declaration, uri, prefix, attributes, count, is_empty, is_root);
    return;
  }
  DOMLSParserImpl::startElement(declaration, uri, prefix, attributes, 0, false, is_root);
  AddAttributes(attributes, count);
  if (is_empty) endElement(declaration, uri, is_root, prefix);
}

// Remembers the kind of the element that has just begun.
void DomParser::NoteKind(const xercesc::XMLElementDecl& declaration, unsigned int uri) {
  const xercesc::DOMElementNSImpl* element = PlainElement(fCurrentNode);
  if (!element || kinds_.size() == kMostKinds) return;
  kinds_.emplace(&declaration, Kind{uri, ElementNames(*element)});
}

void DomParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                           bool is_root, const XMLCh* prefix) {
  LeaveElement();
  const xercesc::DOMElementNSImpl* element = PlainElement(fCurrentParent);
  if (!element || !PlainElement(element->fNode.fOwnerNode)) {
    DOMLSParserImpl::endElement(declaration, uri, is_root, prefix);
    return;
  }
  fCurrentNode = fCurrentParent;
  fCurrentParent = element->fNode.fOwnerNode;
}

void DomParser::EnterElement(const XmlAttributes& attributes, XMLSize_t count) {
  ++depth_;
  scanner_->MakeRoomBelow(depth_);
  NotePrefixes(attributes, count);
  if (depth_ % kLevelsBetweenDeclarations == 0) scanner_->Declare(prefixes_);
}

void DomParser::NotePrefixes(const XmlAttributes& attributes, XMLSize_t count) {
  for (XMLSize_t i = 0; i < count && prefixes_.size() < kMostPrefixes; ++i) {
    const XMLAttr& attribute = *attributes.elementAt(i);
    if (attribute.getURIId() == fScanner->getXMLNSNamespaceId()) {
      prefixes_.insert(attribute.getName());
    }
  }
}

// In the order in which the element keeps its attributes: each goes to their end.
void DomParser::AddAttributes(const XmlAttributes& attributes, XMLSize_t count) {
  std::vector<const XMLAttr*> in_order;
  for (XMLSize_t i = 0; i < count; ++i) in_order.push_back(attributes.elementAt(i));
  std::sort(in_order.begin(), in_order.end(), IsBefore);
  for (const XMLAttr* attribute : in_order) AddAttribute(*attribute);
}

void DomParser::AddAttribute(const XMLAttr& attribute) {
  const XMLCh* prefix = attribute.getPrefix();
  const XMLCh* name = attribute.getName();
  const bool is_default_namespace =
      !HasPrefix(attribute) && XMLString::equals(name, XMLUni::fgXMLNSString);
  const unsigned int uri =
      is_default_namespace ? fScanner->getXMLNSNamespaceId() : attribute.getURIId();
  const bool has_namespace = uri != fScanner->getEmptyNamespaceId();
  xercesc::DOMAttr* added = createAttrNS(has_namespace ? fScanner->getURIText(uri) : nullptr,
                                         prefix, name, attribute.getQName());
  added->setValue(attribute.getValue());
  static_cast<xercesc::DOMElement*>(fCurrentNode)->setAttributeNode(added);
}

void SyntaxParser::startElement(const xercesc::XMLElementDecl& /*declaration*/,
                                unsigned int /*uri*/, const XMLCh* /*prefix*/,
                                const XmlAttributes& attributes, XMLSize_t count, bool is_empty,
                                bool /*is_root*/) {
  EnterElement(attributes, count);
  if (is_empty) LeaveElement();
}

void SyntaxParser::endElement(const xercesc::XMLElementDecl& /*declaration*/, unsigned int /*uri*/,
                              bool /*is_root*/, const XMLCh* /*prefix*/) {
  LeaveElement();
}

void Configure(xercesc::DOMLSParser& parser, xercesc::DOMErrorHandler& error_handler) {
  Set(parser, XMLUni::fgDOMComments, false);
  Set(parser, XMLUni::fgDOMDatatypeNormalization, true);
  Set(parser, XMLUni::fgDOMEntities, false);
  Set(parser, XMLUni::fgDOMNamespaces, true);
  Set(parser, XMLUni::fgDOMElementContentWhitespace, false);
  Set(parser, XMLUni::fgDOMValidate, true);
  Set(parser, XMLUni::fgXercesSchema, true);
  Set(parser, XMLUni::fgXercesSchemaFullChecking, false);
  Set(parser, XMLUni::fgXercesUserAdoptsDOMDocument, true);
  // A document type declaration could make a small file expand without bound or read other files.
  Set(parser, XMLUni::fgDOMDisallowDoctype, true);
  parser.getDomConfig()->setParameter(XMLUni::fgDOMErrorHandler, &error_handler);
}

void Set(xercesc::DOMLSParser& parser, const XMLCh* parameter, bool value) {
  xercesc::DOMConfiguration& configuration = *parser.getDomConfig();
  if (configuration.canSetParameter(parameter, value)) {
    configuration.setParameter(parameter, value);
  }
}

Owned<xercesc::DOMDocument> Parse(xercesc::DOMLSParser& parser, const xercesc::InputSource& input) {
  // The wrapper wants a pointer that it could adopt; it is told not to.
  const xercesc::Wrapper4InputSource source(const_cast<xercesc::InputSource*>(&input), false);
  return Owned<xercesc::DOMDocument>(parser.parse(&source));
}

}  // namespace projectdb::xml
