#include "testing/xml_tree.h"

#include <algorithm>
#include <regex>
#include <stdexcept>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/TransService.hpp>

#include "testing/files.h"
#include "testing/xml_platform.h"

namespace test_support {

std::string LocalName(const std::string& name) { return name.substr(name.find(':') + 1); }

const XmlElement& XmlElement::Child(const std::string& local_name) const {
  const XmlElement* found = nullptr;
  for (const XmlElement& child : children) {
    if (LocalName(child.name) != local_name) continue;
    if (found) throw std::runtime_error("more than one " + local_name);
    found = &child;
  }
  if (!found) throw std::runtime_error("no " + local_name);
  return *found;
}

std::string Show(const XmlElement& element) {
  std::string text = "<" + LocalName(element.name);
  for (const auto& [name, value] : element.attributes) {
    text.append(" ").append(name).append("=\"").append(value).append("\"");
  }
  if (element.children.empty()) return text + "/>";
  text += ">";
  for (const XmlElement& child : element.children) text += Show(child);
  return text + "</" + LocalName(element.name) + ">";
}

std::vector<std::string> ShowSortedChildren(const XmlElement& element) {
  std::vector<std::string> texts;
  for (const XmlElement& child : element.children) texts.push_back(Show(child));
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::vector<std::string> ChildNames(const XmlElement& element) {
  std::vector<std::string> names;
  for (const XmlElement& child : element.children) names.push_back(child.name);
  return names;
}

std::vector<const XmlElement*> AllElements(const XmlElement& root) {
  std::vector<const XmlElement*> elements = {&root};
  for (const XmlElement& child : root.children) {
    for (const XmlElement* element : AllElements(child)) elements.push_back(element);
  }
  return elements;
}

std::string Utf8(const XMLCh* text) {
  if (!text) return {};
  const xercesc::TranscodeToStr utf8(text, "UTF-8");
  return std::string(reinterpret_cast<const char*>(utf8.str()), utf8.length());
}

XmlElement ToXmlElement(const xercesc::DOMElement& element) {
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

XmlElement ReadXmlFile(const std::string& path) {
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

std::string WithoutTimeStamp(const std::string& bytes) {
  return std::regex_replace(bytes, std::regex("last_change_date=\"[^\"]*\""), "");
}

bool operator==(const XmlElement& a, const XmlElement& b) {
  return a.name == b.name && a.namespace_uri == b.namespace_uri && a.attributes == b.attributes &&
         a.text == b.text && a.children == b.children;
}

void PrintTo(const XmlElement& element, std::ostream* out) { *out << Show(element); }

}  // namespace test_support
