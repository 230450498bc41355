#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "contents/parameter_rules.h"
#include "project_db/format.h"
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

bool AppendDesignFile(ElementWriter& writer, DOMElement* parent, const XMLCh* tag,
                      const DesignFile& file) {
  return writer.AppendElement(parent, tag, [&](DOMElement* element) {
    writer.SetDOMElementAttribute(element, format::kName, file.name);
    writer.SetDOMElementAttribute(element, format::kVersion, file.version);
    writer.SetDOMElementAttribute(element, format::kLibrary, file.library);
  });
}

bool AppendNamedElement(ElementWriter& writer, DOMElement* parent, const XMLCh* tag,
                        const std::string& name) {
  return writer.AddChildDOMElementWithAttribute(parent, tag, format::kName, name);
}

bool AppendIPInstance(ElementWriter& writer, DOMElement* parent, const XMLCh* tag, const IP& ip) {
  return writer.AppendElement(parent, tag, [&](DOMElement* element) {
    writer.SetDOMElementAttribute(element, format::kInstanceName, ip.instance_name);
    writer.SetDOMElementAttribute(element, format::kPath, ip.path);
    for (const IPSrcFile& file : ip.src_files) {
      AppendNamedElement(writer, element, format::kIpSrcFile.wide, file.name);
    }
  });
}

bool AppendParameter(ElementWriter& writer, DOMElement* parent, const XMLCh* tag,
                     const Parameter& parameter) {
  return writer.AppendElement(parent, tag, [&](DOMElement* element) {
    writer.SetDOMElementAttribute(element, format::kName, parameter.name);
    writer.SetDOMElementAttribute(element, format::kValue, parameter.value);
    if (parameter.type != kNoParameterType) {
      writer.SetDOMElementAttribute(element, format::kValueType,
                                    KelProjectDatabase::getParameterTypeStr(parameter.type));
    }
  });
}

// Appends the element of a flow process and calls fill(element) for its parameters.
template <typename Fill>
bool AppendProcess(ElementWriter& writer, DOMElement* parent, const std::string& name,
                   const std::string& tool_name, Fill fill) {
  if (!parent) return false;
  const std::u16string tag = writer.ElementName(name);
  return writer.AppendElement(parent, tag.c_str(), [&](DOMElement* element) {
    if (!tool_name.empty()) {
      writer.SetDOMElementAttribute(element, format::kToolName, tool_name);
    }
    fill(element);
  });
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

void AppendParameters(ElementWriter& writer, DOMElement* process, const Name& tag,
                      const std::vector<Parameter>& parameters) {
  for (const Parameter& parameter : parameters) {
    AppendParameter(writer, process, tag.wide, parameter);
  }
}

}  // namespace

bool KelProjectDatabase::AppendDeviceInfoToDOMElement(DOMElement* parent, DeviceInfo& device_info,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return writer.AppendElement(parent, format::kDeviceInfo.wide, [&](DOMElement* section) {
    const auto append = [&](const Name& tag, const std::string& name) {
      AppendNamedElement(writer, section, tag.wide, name);
    };
    append(format::kFamily, device_info.family);
    append(format::kDevice, device_info.device);
    append(format::kTimingModel, device_info.timing_model);
  });
}

bool KelProjectDatabase::AppendDesignInfoToDOMElement(DOMElement* parent, DesignInfo& design_info,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return writer.AppendElement(parent, format::kDesignInfo.wide, [&](DOMElement* section) {
    writer.SetDOMElementAttribute(section, format::kDefVeriVersion, design_info.def_veri_version);
    writer.SetDOMElementAttribute(section, format::kDefVhdlVersion, design_info.def_vhdl_version);
    AppendNamedElement(writer, section, format::kTopModule.wide, design_info.top_module);
    for (const DesignFile& file : design_info.design_files) {
      AppendDesignFile(writer, section, format::kDesignFile.wide, file);
    }
    AppendNamedElement(writer, section, format::kTopVhdlArch.wide, design_info.top_vhdl_arch);
  });
}

bool KelProjectDatabase::AppendDesignConstraintToDOMElement(DOMElement* parent,
                                                            DesignConstraint& constraint,
                                                            const char16_t* namespace_uri,
                                                            const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return writer.AppendElement(parent, format::kConstraintInfo.wide, [&](DOMElement* section) {
    for (const std::string& name : constraint.sdc_files) {
      AppendNamedElement(writer, section, format::kSdcFile.wide, name);
    }
    AppendNamedElement(writer, section, format::kInterFile.wide, constraint.inter_file);
  });
}

bool KelProjectDatabase::AppendISFToDOMElement(DOMElement* parent, DesignISF& isf,
                                               const char16_t* namespace_uri,
                                               const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return writer.AppendElement(parent, format::kIsfInfo.wide, [&](DOMElement* section) {
    for (const std::string& name : isf.isf_files) {
      AppendNamedElement(writer, section, format::kIsfFile.wide, name);
    }
  });
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
  return writer.AppendElement(parent, list.c_str(), [&](DOMElement* section) {
    for (const DesignFile& file : files) AppendDesignFile(writer, section, item.c_str(), file);
  });
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
  return writer.AppendElement(parent, format::kIpInfo.wide, [&](DOMElement* section) {
    for (const IP& ip : ip_info.ips) AppendIPInstance(writer, section, format::kIp.wide, ip);
  });
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
  return AppendProcess(writer, parent, process.name, process.tool_name, [&](DOMElement* element) {
    const auto& [parameter, define, macro] = format::kParameters;
    AppendParameters(writer, element, parameter, process.params);
    AppendParameters(writer, element, define, process.dyn_params);
    AppendParameters(writer, element, macro, process.def_macros);
  });
}

}  // namespace projectdb
