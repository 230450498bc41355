#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

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

std::string LocalName(const std::string& name);

/// As one line of XML: local names, attributes by name, values not escaped, no text.
std::string Show(const XmlElement& element);

/// The children, each as Show gives it, in alphabetical order: for what has no order of its own.
std::vector<std::string> ShowSortedChildren(const XmlElement& element);

std::vector<std::string> ChildNames(const XmlElement& element);

/// The element and all below it, in document order.
std::vector<const XmlElement*> AllElements(const XmlElement& root);

std::string Utf8(const XMLCh* text);

/// The XML library must be initialised.
XmlElement ToXmlElement(const xercesc::DOMElement& element);

/// Parses a file and gives its root element.
/// @exception xercesc::SAXParseException if it is not well-formed
XmlElement ReadXmlFile(const std::string& path);

/// The bytes of an exported file without the time that it was written at.
std::string WithoutTimeStamp(const std::string& bytes);

bool operator==(const XmlElement& a, const XmlElement& b);

void PrintTo(const XmlElement& element, std::ostream* out);

}  // namespace test_support
