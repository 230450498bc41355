#pragma once

#include <string>

#include <fmt/format.h>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMImplementation.hpp>

#include "base/failure.h"
#include "project_db/format.h"
#include "xml/dom.h"
#include "xml/owned.h"

/// The document of a project file, before its sections.
namespace projectdb {

/// What a file says of its last writing.
struct Stamps {
  std::string software_version;
  std::string last_modify_time;
};

/// This library's version and the local time.
Stamps NewStamps();

/// A document whose root has the schema's location, and nothing else.
xml::Owned<xercesc::DOMDocument> CreateProjectDocument(xercesc::DOMImplementation& core);

/// @exception Failure, with the attribute's key, for a name or text that XML cannot carry
inline void SetInfoAttribute(xml::ElementWriter& writer, xercesc::DOMElement* root,
                             const std::string& name, const std::string& value) {
  try {
    writer.SetQualifiedAttribute(root, name, value);
  } catch (const Failure& failure) {
    throw Failure(fmt::format("{}.{}: {}", kInfoAttributesKey, name, failure.what()));
  }
}

/// Sets the root's attributes, those of the project's own in their order. A stamp without text is
/// left out.
/// @exception Failure for a name or text that XML cannot carry
template <typename InfoAttributes>
void SetRootAttributes(xercesc::DOMElement* root, const std::string& project_name,
                       const InfoAttributes& info_attributes, const Stamps& stamps) {
  xml::ElementWriter writer(format::kNamespace.wide, format::kPrefix.wide);
  writer.SetDOMElementAttribute(root, format::kProjectName, project_name);
  for (const auto& [name, value] : info_attributes) SetInfoAttribute(writer, root, name, value);
  const auto set_stamp = [&](const Name& name, const std::string& text) {
    if (!text.empty()) writer.SetDOMElementAttribute(root, name, text);
  };
  set_stamp(format::kSoftwareVersion, stamps.software_version);
  set_stamp(format::kLastModifyTime, stamps.last_modify_time);
}

}  // namespace projectdb
