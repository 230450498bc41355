#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "contents/parameter_rules.h"
#include "project_db/elements.h"
#include "project_db/project_data.h"
#include "xml/dom.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;
using xml::ElementWriter;

// The caller's tag; empty, so that no element is made, if the parent is null or the tag is no name.
std::u16string TagOf(ElementWriter& writer, const DOMElement* parent, const char* tag) {
  return parent && tag ? writer.ElementName(tag) : std::u16string();
}

/// A parameter map and the tag of its parameters' elements.
using TaggedMap = std::pair<std::u16string, const ParameterMap*>;

// The maps of a process that are written.
std::vector<TaggedMap> TaggedMaps(ElementWriter& writer, const FlowProcess& process) {
  std::vector<TaggedMap> maps;
  ForEachFilledParameterMap(process, [&](const std::string& name, const ParameterMap& map) {
    maps.emplace_back(writer.ElementName(name), &map);
  });
  return maps;
}

bool HasTag(const TaggedMap& map) { return !map.first.empty(); }

}  // namespace

bool KelProjectDatabase::AppendDeviceInfoToDOMElement(DOMElement* parent, DeviceInfo& device_info,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendSection(writer, parent, device_info);
}

bool KelProjectDatabase::AppendDesignInfoToDOMElement(DOMElement* parent, DesignInfo& design_info,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendSection(writer, parent, design_info);
}

bool KelProjectDatabase::AppendDesignConstraintToDOMElement(DOMElement* parent,
                                                            DesignConstraint& constraint,
                                                            const char16_t* namespace_uri,
                                                            const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendSection(writer, parent, constraint);
}

bool KelProjectDatabase::AppendISFToDOMElement(DOMElement* parent, DesignISF& isf,
                                               const char16_t* namespace_uri,
                                               const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendSection(writer, parent, isf);
}

bool KelProjectDatabase::AppendDesignFileListToDOMElement(DOMElement* parent, const char* list_tag,
                                                          const char* item_tag,
                                                          std::vector<DesignFile>& files,
                                                          const char16_t* namespace_uri,
                                                          const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  const std::u16string list = TagOf(writer, parent, list_tag);
  // A list without items, or one that shall have none, asks for no tag for them.
  const bool has_items = item_tag && !files.empty();
  const std::u16string item = has_items ? TagOf(writer, parent, item_tag) : std::u16string();
  if (has_items && item.empty()) return false;
  return AppendSection(writer, parent, list.c_str(), item.c_str(), files);
}

bool KelProjectDatabase::AppendDesignFileToDOMElement(DOMElement* parent, const char* tag,
                                                      DesignFile& file,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendDesignFile(writer, parent, TagOf(writer, parent, tag).c_str(), file);
}

bool KelProjectDatabase::AppendIPInfoToDOMElement(DOMElement* parent, IPInfo& ip_info,
                                                  const char16_t* namespace_uri,
                                                  const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendSection(writer, parent, ip_info);
}

bool KelProjectDatabase::AppendIPInstanceToDOMElement(DOMElement* parent, const char* tag, IP& ip,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendIPInstance(writer, parent, TagOf(writer, parent, tag).c_str(), ip);
}

bool KelProjectDatabase::AppendIPSrcFileToDOMElement(DOMElement* parent, const char* tag,
                                                     IPSrcFile& file, const char16_t* namespace_uri,
                                                     const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendNamedElement(writer, parent, TagOf(writer, parent, tag).c_str(), file.name);
}

bool KelProjectDatabase::AppendProcessParameterToDOMElement(DOMElement* parent,
                                                            const Parameter& parameter,
                                                            const char* tag,
                                                            const char16_t* namespace_uri,
                                                            const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendParameter(writer, parent, TagOf(writer, parent, tag).c_str(), parameter);
}

bool KelProjectDatabase::AppendFlowProcessToDOMElement(DOMElement* parent,
                                                       const FlowProcess& process,
                                                       const char16_t* namespace_uri,
                                                       const char16_t* prefix) const {
  if (!parent) return false;
  ElementWriter writer(namespace_uri, prefix);
  const std::vector<TaggedMap> maps = TaggedMaps(writer, process);
  if (!std::all_of(maps.begin(), maps.end(), HasTag)) return false;
  return AppendProcess(writer, parent, process.name, process.tool_name, [&](DOMElement* element) {
    for (const auto& [tag, map] : maps) {
      for (const auto& [key, parameter] : *map) {
        AppendParameter(writer, element, tag.c_str(), parameter);
      }
    }
  });
}

bool KelProjectDatabase::AppendSynthesisProcessToDOMElement(DOMElement* parent,
                                                            SynthesisProcess& process,
                                                            const char16_t* namespace_uri,
                                                            const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendSection(writer, parent, process);
}

}  // namespace projectdb
