#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/TransService.hpp>

#include "testing/files.h"
#include "testing/xml_platform.h"

/// What a file or document says, as values, read without any code of the tested library.
namespace test_support {

using Attributes = std::map<std::string, std::string>;

struct XmlElement {
  std::string name;           ///< With its prefix.
  std::string namespace_uri;  ///< "" if there is none.
  Attributes attributes;      ///< By name with prefix, without the namespace declarations.
  std::string text;           ///< Between the tags, without that of the children.
  std::vector<XmlElement> children;

  /// The only child of that local name.
  const XmlElement& Child(const std::string& local_name) const;
};

inline std::string LocalName(const std::string& name) { return name.substr(name.find(':') + 1); }

inline const XmlElement& XmlElement::Child(const std::string& local_name) const {
  const XmlElement* found = nullptr;
  for (const XmlElement& child : children) {
    if (LocalName(child.name) != local_name) continue;
    if (found) throw std::runtime_error("more than one " + local_name);
    found = &child;
  }
  if (!found) throw std::runtime_error("no " + local_name);
  return *found;
}

/// As one line of XML: local names, attributes by name, values not escaped, no text.
inline std::string Show(const XmlElement& element) {
  std::string text = "<" + LocalName(element.name);
  for (const auto& [name, value] : element.attributes) {
    text.append(" ").append(name).append("=\"").append(value).append("\"");
  }
  if (element.children.empty()) return text + "/>";
  text += ">";
  for (const XmlElement& child : element.children) text += Show(child);
  return text + "</" + LocalName(element.name) + ">";
}

/// The children, each as Show gives it, in alphabetical order: for what has no order of its own.
inline std::vector<std::string> ShowSortedChildren(const XmlElement& element) {
  std::vector<std::string> texts;
  for (const XmlElement& child : element.children) texts.push_back(Show(child));
  std::sort(texts.begin(), texts.end());
  return texts;
}

inline std::vector<std::string> ChildNames(const XmlElement& element) {
  std::vector<std::string> names;
  for (const XmlElement& child : element.children) names.push_back(child.name);
  return names;
}

/// The element and all below it, in document order.
inline std::vector<const XmlElement*> AllElements(const XmlElement& root) {
  std::vector<const XmlElement*> elements = {&root};
  for (const XmlElement& child : root.children) {
    for (const XmlElement* element : AllElements(child)) elements.push_back(element);
  }
  return elements;
}

inline std::string Utf8(const XMLCh* text) {
  if (!text) return {};
  const xercesc::TranscodeToStr utf8(text, "UTF-8");
  return std::string(reinterpret_cast<const char*>(utf8.str()), utf8.length());
}

/// The XML library must be initialised.
inline XmlElement ToXmlElement(const xercesc::DOMElement& element) {
  XmlElement result{Utf8(element.getNodeName()), Utf8(element.getNamespaceURI()), {}, "", {}};
  const xercesc::DOMNamedNodeMap& attributes = *element.getAttributes();
  for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
    const std::string name = Utf8(attributes.item(i)->getNodeName());
    if (name == "xmlns" || name.rfind("xmlns:", 0) == 0) continue;
    result.attributes[name] = Utf8(attributes.item(i)->getNodeValue());
  }
  for (const auto* node = element.getFirstChild(); node; node = node->getNextSibling()) {
    if (node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
      result.children.push_back(ToXmlElement(*static_cast<const xercesc::DOMElement*>(node)));
    } else {
      result.text += Utf8(node->getNodeValue());
    }
  }
  return result;
}

/// Parses a file and gives its root element.
/// @exception xercesc::SAXParseException if it is not well-formed
inline XmlElement ReadXmlFile(const std::string& path) {
  const std::string bytes = ReadFile(path);
  const XmlPlatform platform;
  xercesc::HandlerBase throwing_handler;
  xercesc::XercesDOMParser parser;
  parser.setDoNamespaces(true);
  parser.setErrorHandler(&throwing_handler);
  parser.parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(bytes.data()),
                                          bytes.size(), "file"));
  return ToXmlElement(*parser.getDocument()->getDocumentElement());
}

/// The bytes of an exported file without the time that it was written at.
inline std::string WithoutTimeStamp(const std::string& bytes) {
  return std::regex_replace(bytes, std::regex("last_change_date=\"[^\"]*\""), "");
}

inline bool operator==(const XmlElement& a, const XmlElement& b) {
  return a.name == b.name && a.namespace_uri == b.namespace_uri && a.attributes == b.attributes &&
         a.text == b.text && a.children == b.children;
}

inline void PrintTo(const XmlElement& element, std::ostream* out) { *out << Show(element); }

}  // namespace test_support
