#include "format.h"
#include "project_db/project_data.h"
#include "xml/dom.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;
using xml::ElementWriter;

bool AppendDesignFile(ElementWriter& writer, DOMElement* parent, const XMLCh* tag,
                      const DesignFile& file) {
  DOMElement* element = writer.AddChildDOMElement(parent, tag);
  writer.SetDOMElementAttribute(element, format::kName, file.name);
  writer.SetDOMElementAttribute(element, format::kVersion, file.version);
  writer.SetDOMElementAttribute(element, format::kLibrary, file.library);
  return element != nullptr;
}

bool AppendIPSrcFile(ElementWriter& writer, DOMElement* parent, const XMLCh* tag,
                     const IPSrcFile& file) {
  DOMElement* element = writer.AddChildDOMElement(parent, tag);
  writer.SetDOMElementAttribute(element, format::kName, file.name);
  return element != nullptr;
}

bool AppendIPInstance(ElementWriter& writer, DOMElement* parent, const XMLCh* tag, const IP& ip) {
  DOMElement* element = writer.AddChildDOMElement(parent, tag);
  writer.SetDOMElementAttribute(element, format::kInstanceName, ip.instance_name);
  writer.SetDOMElementAttribute(element, format::kPath, ip.path);
  if (!element) return false;
  for (const IPSrcFile& file : ip.src_files) {
    AppendIPSrcFile(writer, element, format::kIpSrcFile.wide, file);
  }
  return true;
}

bool AppendParameter(ElementWriter& writer, DOMElement* parent, const XMLCh* tag,
                     const Parameter& parameter) {
  DOMElement* element = writer.AddChildDOMElement(parent, tag);
  writer.SetDOMElementAttribute(element, format::kName, parameter.name);
  writer.SetDOMElementAttribute(element, format::kValue, parameter.value);
  if (parameter.type != kNoParameterType) {
    writer.SetDOMElementAttribute(element, format::kValueType,
                                  KelProjectDatabase::getParameterTypeStr(parameter.type));
  }
  return element != nullptr;
}

DOMElement* AppendProcess(ElementWriter& writer, DOMElement* parent, const std::string& name,
                          const std::string& tool_name) {
  if (name.empty()) return nullptr;
  DOMElement* element = writer.AddChildDOMElement(parent, writer.ElementName(name.c_str()).c_str());
  if (!tool_name.empty()) {
    writer.SetDOMElementAttribute(element, format::kToolName, tool_name);
  }
  return element;
}

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
  DOMElement* section = writer.AddChildDOMElement(parent, format::kDeviceInfo.wide);
  if (!section) return false;
  const auto append = [&](const Name& tag, const std::string& name) {
    writer.AddChildDOMElementWithAttribute(section, tag.wide, format::kName, name);
  };
  append(format::kFamily, device_info.family);
  append(format::kDevice, device_info.device);
  append(format::kTimingModel, device_info.timing_model);
  return true;
}

bool KelProjectDatabase::AppendDesignInfoToDOMElement(DOMElement* parent, DesignInfo& design_info,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  DOMElement* section = writer.AddChildDOMElement(parent, format::kDesignInfo.wide);
  if (!section) return false;
  writer.SetDOMElementAttribute(section, format::kDefVeriVersion, design_info.def_veri_version);
  writer.SetDOMElementAttribute(section, format::kDefVhdlVersion, design_info.def_vhdl_version);
  writer.AddChildDOMElementWithAttribute(section, format::kTopModule.wide, format::kName,
                                         design_info.top_module);
  for (const DesignFile& file : design_info.design_files) {
    AppendDesignFile(writer, section, format::kDesignFile.wide, file);
  }
  writer.AddChildDOMElementWithAttribute(section, format::kTopVhdlArch.wide, format::kName,
                                         design_info.top_vhdl_arch);
  return true;
}

bool KelProjectDatabase::AppendDesignConstraintToDOMElement(DOMElement* parent,
                                                            DesignConstraint& constraint,
                                                            const char16_t* namespace_uri,
                                                            const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  DOMElement* section = writer.AddChildDOMElement(parent, format::kConstraintInfo.wide);
  if (!section) return false;
  for (const std::string& name : constraint.sdc_files) {
    writer.AddChildDOMElementWithAttribute(section, format::kSdcFile.wide, format::kName, name);
  }
  writer.AddChildDOMElementWithAttribute(section, format::kInterFile.wide, format::kName,
                                         constraint.inter_file);
  return true;
}

bool KelProjectDatabase::AppendISFToDOMElement(DOMElement* parent, DesignISF& isf,
                                               const char16_t* namespace_uri,
                                               const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  DOMElement* section = writer.AddChildDOMElement(parent, format::kIsfInfo.wide);
  if (!section) return false;
  for (const std::string& name : isf.isf_files) {
    writer.AddChildDOMElementWithAttribute(section, format::kIsfFile.wide, format::kName, name);
  }
  return true;
}

bool KelProjectDatabase::AppendDesignFileListToDOMElement(DOMElement* parent, const char* list_tag,
                                                          const char* item_tag,
                                                          std::vector<DesignFile>& files,
                                                          const char16_t* namespace_uri,
                                                          const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  DOMElement* section = writer.AddChildDOMElement(parent, writer.ElementName(list_tag).c_str());
  if (!section) return false;
  const std::u16string item = writer.ElementName(item_tag);
  for (const DesignFile& file : files) AppendDesignFile(writer, section, item.c_str(), file);
  return true;
}

bool KelProjectDatabase::AppendDesignFileToDOMElement(DOMElement* parent, const char* tag,
                                                      DesignFile& file,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendDesignFile(writer, parent, writer.ElementName(tag).c_str(), file);
}

bool KelProjectDatabase::AppendIPInfoToDOMElement(DOMElement* parent, IPInfo& ip_info,
                                                  const char16_t* namespace_uri,
                                                  const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  DOMElement* section = writer.AddChildDOMElement(parent, format::kIpInfo.wide);
  if (!section) return false;
  for (const IP& ip : ip_info.ips) AppendIPInstance(writer, section, format::kIp.wide, ip);
  return true;
}

bool KelProjectDatabase::AppendIPInstanceToDOMElement(DOMElement* parent, const char* tag, IP& ip,
                                                      const char16_t* namespace_uri,
                                                      const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendIPInstance(writer, parent, writer.ElementName(tag).c_str(), ip);
}

bool KelProjectDatabase::AppendIPSrcFileToDOMElement(DOMElement* parent, const char* tag,
                                                     IPSrcFile& file, const char16_t* namespace_uri,
                                                     const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendIPSrcFile(writer, parent, writer.ElementName(tag).c_str(), file);
}

bool KelProjectDatabase::AppendProcessParameterToDOMElement(DOMElement* parent,
                                                            const Parameter& parameter,
                                                            const char* tag,
                                                            const char16_t* namespace_uri,
                                                            const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  return AppendParameter(writer, parent, writer.ElementName(tag).c_str(), parameter);
}

bool KelProjectDatabase::AppendFlowProcessToDOMElement(DOMElement* parent,
                                                       const FlowProcess& process,
                                                       const char16_t* namespace_uri,
                                                       const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  DOMElement* element = AppendProcess(writer, parent, process.name, process.tool_name);
  if (!element) return false;
  for (const auto& [map_name, position] : process.parameter_map_index) {
    const auto map = static_cast<std::size_t>(position);
    if (map >= process.parameter_maps.size()) continue;
    const std::u16string tag = writer.ElementName(map_name.c_str());
    for (const auto& [name, parameter] : process.parameter_maps[map]) {
      AppendParameter(writer, element, tag.c_str(), parameter);
    }
  }
  return true;
}

bool KelProjectDatabase::AppendSynthesisProcessToDOMElement(DOMElement* parent,
                                                            SynthesisProcess& process,
                                                            const char16_t* namespace_uri,
                                                            const char16_t* prefix) const {
  ElementWriter writer(namespace_uri, prefix);
  DOMElement* element = AppendProcess(writer, parent, process.name, process.tool_name);
  if (!element) return false;
  AppendParameters(writer, element, kParameterMap, process.params);
  AppendParameters(writer, element, kDefineMap, process.dyn_params);
  AppendParameters(writer, element, kMacroMap, process.def_macros);
  return true;
}

}  // namespace projectdb
