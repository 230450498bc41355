#include <algorithm>
#include <cstddef>
#include <utility>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include "base/assertions.h"
#include "project_db/format.h"
#include "project_db/load_observer.h"
#include "project_db/project_data.h"
#include "xml/dom.h"

// The readers of a project document; what they leave out they tell an observer.
namespace projectdb {
namespace {

using xercesc::DOMElement;
using xml::ChildElements;
using xml::GetDOMAttributeString;
using xml::HasLocalName;
using xml::ReadAttributes;
using xml::Transcoder;

DesignFile ReadDesignFile(Transcoder& transcoder, const DOMElement* element) {
  DesignFile file("", "", "");
  ReadAttributes(transcoder, element,
                 {{format::kName, file.name},
                  {format::kVersion, file.version},
                  {format::kLibrary, file.library}});
  return file;
}

IP ReadIP(Transcoder& transcoder, const DOMElement* element, LoadObserver& observer) {
  IP ip{GetDOMAttributeString(transcoder, element, format::kInstanceName),
        GetDOMAttributeString(transcoder, element, format::kPath),
        {}};
  for (const DOMElement* child : ChildElements(element)) {
    if (HasLocalName(child, format::kIpSrcFile)) {
      ip.src_files.push_back({GetDOMAttributeString(transcoder, child, format::kName)});
    } else {
      observer.IgnoredElement(*child, {format::kIpSrcFile.narrow});
    }
  }
  return ip;
}

Parameter ReadParameter(Transcoder& transcoder, const DOMElement* element, LoadObserver& observer) {
  Parameter parameter("", "", kNoParameterType);
  std::string type;
  ReadAttributes(transcoder, element,
                 {{format::kName, parameter.name},
                  {format::kValue, parameter.value},
                  {format::kValueType, type}});
  parameter.type = KelProjectDatabase::getParameterTypeFromStr(type);
  if (parameter.type == kNoParameterType && !type.empty()) {
    observer.UnknownParameterType(*element, parameter, type);
  }
  return parameter;
}

// The parameter map that an element of a flow process belongs to; null if there is none.
const Name* AcceptedParameterMap(ProcType type, const DOMElement* element) {
  const Name* const end = format::kParameters.data() + MapsOf(type).size();
  const Name* const map = std::find_if(format::kParameters.data(), end, [=](const Name& name) {
    return HasLocalName(element, name);
  });
  return map == end ? nullptr : map;
}

Names MapNames(ProcType type) {
  Names names;
  for (const ParameterMapName& map : MapsOf(type)) names.emplace_back(map.name);
  return names;
}

// Appends the name of a file unless it is empty.
void ReadFileName(std::vector<std::string>& names, Transcoder& transcoder,
                  const DOMElement* element, LoadObserver& observer) {
  std::string name = GetDOMAttributeString(transcoder, element, format::kName);
  if (name.empty()) {
    observer.NamelessFile(*element);
  } else {
    names.push_back(std::move(name));
  }
}

// Reads a name of which a project has one.
void ReadSingleName(std::string& name, Transcoder& transcoder, const DOMElement* element,
                    LoadObserver& observer) {
  const std::string former =
      std::exchange(name, GetDOMAttributeString(transcoder, element, format::kName));
  if (!former.empty()) observer.ReplacedName(*element, former);
}

// Stores the parameter of an element. One that the map refuses is left out; the file as a whole is
// still accepted.
void StoreParameter(KelProjectDatabase& project, ParameterMap& map, const Parameter& parameter,
                    const DOMElement& element, LoadObserver& observer) {
  const std::size_t former_size = map.size();
  if (!project.InsertOrAssignParameterToMap(map, parameter.name, parameter)) {
    observer.RefusedParameter(element, parameter, map);
  } else if (map.size() == former_size) {
    observer.ReplacedParameter(element, parameter);
  }
}

}  // namespace

bool KelProjectDatabase::LoadProjectInfoAttributes(const char* /*ns*/, const DOMElement* root) {
  if (!root) return false;
  Transcoder transcoder;
  const xercesc::DOMNamedNodeMap& attributes = *root->getAttributes();
  for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
    const xercesc::DOMNode& attribute = *attributes.item(i);
    InsertOrAssignProjectAttribute(transcoder.ToUtf8(attribute.getNodeName()),
                                   transcoder.ToUtf8(attribute.getNodeValue()));
  }
  return true;
}

bool KelProjectDatabase::LoadProjectInfo(const char* ns, const DOMElement* elem,
                                         LoadObserver& observer) {
  const auto is = [elem](const Name& name) { return HasLocalName(elem, name); };
  if (is(format::kDeviceInfo)) return UpdateDeviceInfo(data_->device_info, ns, elem, observer);
  if (is(format::kDesignInfo)) return UpdateDesignInfo(data_->design_info, ns, elem, observer);
  if (is(format::kConstraintInfo)) {
    return UpdateConstraintInfo(data_->design_constraint, ns, elem, observer);
  }
  if (is(format::kIsfInfo)) return UpdateISFInfo(data_->design_isf, ns, elem, observer);
  if (is(format::kSimInfo)) {
    UpdateFileListInfo(data_->sim_files, format::kSimFile.narrow, ns, elem, observer);
    return true;
  }
  if (is(format::kMiscInfo)) {
    UpdateFileListInfo(data_->misc_files, format::kMiscFile.narrow, ns, elem, observer);
    return true;
  }
  if (is(format::kIpInfo)) return UpdateIPInfo(data_->ip_info, ns, elem, observer);
  for (std::size_t i = 0; i < kFlowProcesses.size(); ++i) {
    const auto& [type, name, title] = kFlowProcesses[i];
    if (is(format::kProcesses[i])) return SetUpFlowProcess(type, name, ns, elem, observer);
  }
  if (is(format::kSecurity)) {
    observer.SkippedSection(*elem);
    return true;
  }
  if (is(format::kPackageInfo)) {
    observer.DeprecatedElement(*elem);
    return true;
  }
  observer.UnexpectedSection(*elem);
  return false;
}

bool KelProjectDatabase::UpdateDeviceInfo(DeviceInfo& device_info, const char* /*ns*/,
                                          const DOMElement* elem, LoadObserver& observer) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    const auto read = [&](std::string& name) { ReadSingleName(name, transcoder, child, observer); };
    if (HasLocalName(child, format::kFamily)) {
      read(device_info.family);
    } else if (HasLocalName(child, format::kDevice)) {
      read(device_info.device);
    } else if (HasLocalName(child, format::kTimingModel)) {
      read(device_info.timing_model);
    } else {
      observer.UnexpectedChild(
          *child, {format::kFamily.narrow, format::kDevice.narrow, format::kTimingModel.narrow});
      result = false;
    }
  }
  return result;
}

bool KelProjectDatabase::UpdateDesignInfo(DesignInfo& design_info, const char* /*ns*/,
                                          const DOMElement* elem, LoadObserver& observer) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kDesignFile)) {
      design_info.design_files.push_back(ReadDesignFile(transcoder, child));
    } else if (HasLocalName(child, format::kTopModule)) {
      ReadSingleName(design_info.top_module, transcoder, child, observer);
    } else if (HasLocalName(child, format::kTopVhdlArch)) {
      ReadSingleName(design_info.top_vhdl_arch, transcoder, child, observer);
    } else {
      observer.UnexpectedChild(*child, {format::kTopModule.narrow, format::kDesignFile.narrow,
                                        format::kTopVhdlArch.narrow});
      result = false;
    }
  }
  design_info.def_veri_version = GetDOMAttributeString(transcoder, elem, format::kDefVeriVersion);
  design_info.def_vhdl_version = GetDOMAttributeString(transcoder, elem, format::kDefVhdlVersion);
  return result;
}

bool KelProjectDatabase::UpdateConstraintInfo(DesignConstraint& constraint, const char* /*ns*/,
                                              const DOMElement* elem, LoadObserver& observer) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kSdcFile)) {
      ReadFileName(constraint.sdc_files, transcoder, child, observer);
    } else if (HasLocalName(child, format::kInterFile)) {
      ReadSingleName(constraint.inter_file, transcoder, child, observer);
    } else if (HasLocalName(child, format::kIoPlaceFile) ||
               HasLocalName(child, format::kCorePlaceFile)) {
      observer.DeprecatedElement(*child);
    } else {
      observer.UnexpectedChild(*child, {format::kSdcFile.narrow, format::kInterFile.narrow});
      result = false;
    }
  }
  return result;
}

bool KelProjectDatabase::UpdateISFInfo(DesignISF& isf, const char* /*ns*/, const DOMElement* elem,
                                       LoadObserver& observer) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kIsfFile)) {
      ReadFileName(isf.isf_files, transcoder, child, observer);
    } else {
      observer.UnexpectedChild(*child, {format::kIsfFile.narrow});
      result = false;
    }
  }
  return result;
}

bool KelProjectDatabase::UpdateIPInfo(IPInfo& ip_info, const char* /*ns*/, const DOMElement* elem,
                                      LoadObserver& observer) {
  Transcoder transcoder;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kIp)) {
      ip_info.ips.push_back(ReadIP(transcoder, child, observer));
    } else {
      observer.IgnoredElement(*child, {format::kIp.narrow});
    }
  }
  return true;
}

void KelProjectDatabase::UpdateFileListInfo(std::vector<DesignFile>& files, const char* tag,
                                            const char* ns, const DOMElement* elem,
                                            LoadObserver& observer) {
  Transcoder transcoder;
  const std::u16string namespace_uri = transcoder.ToXml(ns);
  const std::u16string local_name = transcoder.ToXml(tag);
  const auto file_elements = xml::DescendantElements(
      elem, namespace_uri, local_name,
      [&](const DOMElement* other) { observer.IgnoredElement(*other, {tag}); });
  files.reserve(files.size() + file_elements.size());
  for (const DOMElement* file_elem : file_elements) {
    assertions::AssertNotNull(file_elem, "file_elem != nullptr");
    files.push_back(ReadDesignFile(transcoder, file_elem));
  }
}

bool KelProjectDatabase::SetUpFlowProcess(ProcType type, const char* tag, const char* /*ns*/,
                                          const DOMElement* elem, LoadObserver& observer) {
  FlowProcess* process = GetFlowProcess(type);
  if (!process) return false;
  Transcoder transcoder;
  SetFlowProcessName(type, tag);
  process->tool_name = GetDOMAttributeString(transcoder, elem, format::kToolName);
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    const Name* map_name = AcceptedParameterMap(type, child);
    if (!map_name) observer.UnexpectedChild(*child, MapNames(type));
    ParameterMap* map = map_name ? AddFlowProcessParameterMap(type, map_name->narrow) : nullptr;
    if (!map) {
      result = false;
      continue;
    }
    StoreParameter(*this, *map, ReadParameter(transcoder, child, observer), *child, observer);
  }
  return result;
}

}  // namespace projectdb
