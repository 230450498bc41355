#pragma once

#include <string>
#include <string_view>

#include <projectdb/vocabulary.h>

/// Which info attributes a project keeps under their names.
namespace projectdb {

/// A namespace declaration or schema-instance attribute: "xmlns", "xsi" or a name so prefixed.
inline bool IsForXmlItself(std::string_view name) {
  const std::string_view prefix = name.substr(0, name.find(':'));
  return prefix == "xmlns" || prefix == "xsi";
}

/// The field that a reserved name stands for; null for any other name.
template <typename Project>
auto* ReservedField(Project& project, const std::string& name) {
  if (name == kProjectNameKey) return &project.project_name;
  if (name == kSoftwareVersionKey) return &project.software_version;
  if (name == kLastModifyTimeKey) return &project.last_modify_time;
  return static_cast<decltype(&project.project_name)>(nullptr);
}

}  // namespace projectdb
