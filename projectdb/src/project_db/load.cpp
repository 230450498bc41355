#include <filesystem>
#include <system_error>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include "assertions.h"
#include "format.h"
#include "messages.h"
#include "project_db/project_data.h"
#include "xml/dom.h"
#include "xml/errors.h"
#include "xml/parser.h"
#include "xml/platform.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;
using xml::ChildElements;
using xml::GetDOMAttributeString;
using xml::HasLocalName;
using xml::Transcoder;

// A file whose status cannot be read counts as missing, and so does a name that no file can have.
bool FileExists(const std::string& name) {
  std::error_code error;
  return name.find('\0') == std::string::npos &&
         std::filesystem::exists(std::filesystem::u8path(name), error);
}

bool IsProjectFile(const std::string& name) {
  const auto extension = std::filesystem::u8path(name).extension().u8string();
  return extension == KelProjectDatabase::XML_FILE_EXT && FileExists(name);
}

// The schema to parse with: "" if none is given or the given one is missing.
std::string SchemaLocation(const std::string& schema_file) {
  if (schema_file.empty() || FileExists(schema_file)) return schema_file;
  messages::Post(messages::MsgSchemaFileMissing(schema_file));
  return {};
}

DesignFile ReadDesignFile(Transcoder& transcoder, const DOMElement* element) {
  return DesignFile(GetDOMAttributeString(transcoder, element, format::kName),
                    GetDOMAttributeString(transcoder, element, format::kVersion),
                    GetDOMAttributeString(transcoder, element, format::kLibrary));
}

IP ReadIP(Transcoder& transcoder, const DOMElement* element) {
  IP ip{GetDOMAttributeString(transcoder, element, format::kInstanceName),
        GetDOMAttributeString(transcoder, element, format::kPath),
        {}};
  for (const DOMElement* child : ChildElements(element)) {
    if (HasLocalName(child, format::kIpSrcFile)) {
      ip.src_files.push_back({GetDOMAttributeString(transcoder, child, format::kName)});
    }
  }
  return ip;
}

Parameter ReadParameter(Transcoder& transcoder, const DOMElement* element) {
  return Parameter(GetDOMAttributeString(transcoder, element, format::kName),
                   GetDOMAttributeString(transcoder, element, format::kValue),
                   KelProjectDatabase::getParameterTypeFromStr(
                       GetDOMAttributeString(transcoder, element, format::kValueType)));
}

// The parameter map that an element of a flow process belongs to; null if there is none.
const Name* AcceptedParameterMap(ProcType type, const DOMElement* element) {
  if (HasLocalName(element, kParameterMap)) return &kParameterMap;
  if (type != e_synthesis) return nullptr;
  if (HasLocalName(element, kDefineMap)) return &kDefineMap;
  if (HasLocalName(element, kMacroMap)) return &kMacroMap;
  return nullptr;
}

void AppendUnlessEmpty(std::vector<std::string>& names, std::string name) {
  if (!name.empty()) names.push_back(std::move(name));
}

}  // namespace

bool KelProjectDatabase::LoadProjectData(const std::string& xml_file,
                                         const std::string& schema_file) {
  if (xml_file.empty()) return false;
  if (!IsProjectFile(xml_file)) {
    messages::Post(messages::MsgProjectFileMissing(xml_file));
    return false;
  }
  const std::string directory =
      std::filesystem::absolute(std::filesystem::u8path(xml_file)).parent_path().u8string();
  messages::Post(messages::MsgReadingProject(xml_file));
  // Terminated after success only: an exception of the XML library needs the library to be read.
  xml::InitializeXMLPlatform();
  xml::Owned<xercesc::DOMDocument> document =
      xml::ParseProjectXMLFile(xml_file, SchemaLocation(schema_file));
  if (!document) {
    messages::Post(messages::MsgProjectFileMalformed(xml_file));
    return false;
  }
  const bool result =
      xml::WithBadAlloc([&] { return LoadProjectDocument(document->getDocumentElement()); });
  SetProjectCurrentPath(directory);
  document.reset();
  xml::TerminateXMLPlatform();
  return result;
}

bool KelProjectDatabase::LoadProjectDocument(const DOMElement* root) {
  const std::lock_guard<std::mutex> lock(mutex_);
  SetupProjectDatabase();
  LoadProjectInfoAttributes(format::kNamespace.narrow, root);
  bool result = true;
  for (const DOMElement* section : ChildElements(root)) {
    result = LoadProjectInfo(format::kNamespace.narrow, section) && result;
  }
  return result;
}

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

bool KelProjectDatabase::LoadProjectInfo(const char* ns, const DOMElement* elem) {
  const auto is = [elem](const Name& name) { return HasLocalName(elem, name); };
  if (is(format::kDeviceInfo)) return UpdateDeviceInfo(data_->device_info, ns, elem);
  if (is(format::kDesignInfo)) return UpdateDesignInfo(data_->design_info, ns, elem);
  if (is(format::kConstraintInfo)) {
    return UpdateConstraintInfo(data_->design_constraint, ns, elem);
  }
  if (is(format::kIsfInfo)) return UpdateISFInfo(data_->design_isf, ns, elem);
  if (is(format::kSimInfo)) {
    UpdateFileListInfo(data_->sim_files, format::kSimFile.narrow, ns, elem);
    return true;
  }
  if (is(format::kMiscInfo)) {
    UpdateFileListInfo(data_->misc_files, format::kMiscFile.narrow, ns, elem);
    return true;
  }
  if (is(format::kIpInfo)) return UpdateIPInfo(data_->ip_info, ns, elem);
  for (std::size_t type = 0; type < kProcessNames.size(); ++type) {
    if (is(kProcessNames[type])) {
      return SetUpFlowProcess(static_cast<ProcType>(type), kProcessNames[type].narrow, ns, elem);
    }
  }
  if (is(format::kSecurity)) return true;
  const std::string tag = xml::TranscodeXMLString(elem->getLocalName());
  if (is(format::kPackageInfo)) {
    messages::Post(messages::MsgDeprecatedTag(tag));
    return true;
  }
  messages::Post(messages::MsgUnexpectedTag(tag));
  return false;
}

bool KelProjectDatabase::UpdateDeviceInfo(DeviceInfo& device_info, const char* /*ns*/,
                                          const DOMElement* elem) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    const auto name = [&] { return GetDOMAttributeString(transcoder, child, format::kName); };
    if (HasLocalName(child, format::kFamily)) {
      device_info.family = name();
    } else if (HasLocalName(child, format::kDevice)) {
      device_info.device = name();
    } else if (HasLocalName(child, format::kTimingModel)) {
      device_info.timing_model = name();
    } else {
      result = false;
    }
  }
  return result;
}

bool KelProjectDatabase::UpdateDesignInfo(DesignInfo& design_info, const char* /*ns*/,
                                          const DOMElement* elem) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kDesignFile)) {
      design_info.design_files.push_back(ReadDesignFile(transcoder, child));
    } else if (HasLocalName(child, format::kTopModule)) {
      design_info.top_module = GetDOMAttributeString(transcoder, child, format::kName);
    } else if (HasLocalName(child, format::kTopVhdlArch)) {
      design_info.top_vhdl_arch = GetDOMAttributeString(transcoder, child, format::kName);
    } else {
      result = false;
    }
  }
  design_info.def_veri_version = GetDOMAttributeString(transcoder, elem, format::kDefVeriVersion);
  design_info.def_vhdl_version = GetDOMAttributeString(transcoder, elem, format::kDefVhdlVersion);
  return result;
}

bool KelProjectDatabase::UpdateConstraintInfo(DesignConstraint& constraint, const char* /*ns*/,
                                              const DOMElement* elem) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kSdcFile)) {
      AppendUnlessEmpty(constraint.sdc_files,
                        GetDOMAttributeString(transcoder, child, format::kName));
    } else if (HasLocalName(child, format::kInterFile)) {
      constraint.inter_file = GetDOMAttributeString(transcoder, child, format::kName);
    } else if (HasLocalName(child, format::kIoPlaceFile) ||
               HasLocalName(child, format::kCorePlaceFile)) {
      messages::Post(messages::MsgDeprecatedTag(transcoder.ToUtf8(child->getLocalName())));
    } else {
      result = false;
    }
  }
  return result;
}

bool KelProjectDatabase::UpdateISFInfo(DesignISF& isf, const char* /*ns*/, const DOMElement* elem) {
  Transcoder transcoder;
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kIsfFile)) {
      AppendUnlessEmpty(isf.isf_files, GetDOMAttributeString(transcoder, child, format::kName));
    } else {
      result = false;
    }
  }
  return result;
}

bool KelProjectDatabase::UpdateIPInfo(IPInfo& ip_info, const char* /*ns*/, const DOMElement* elem) {
  Transcoder transcoder;
  for (const DOMElement* child : ChildElements(elem)) {
    if (HasLocalName(child, format::kIp)) ip_info.ips.push_back(ReadIP(transcoder, child));
  }
  return true;
}

void KelProjectDatabase::UpdateFileListInfo(std::vector<DesignFile>& files, const char* tag,
                                            const char* ns, const DOMElement* elem) {
  Transcoder transcoder;
  const std::u16string namespace_uri = transcoder.ToXml(ns);
  const std::u16string local_name = transcoder.ToXml(tag);
  const auto file_elements = xml::DescendantElements(elem, namespace_uri, local_name);
  files.reserve(files.size() + file_elements.size());
  for (const DOMElement* file_elem : file_elements) {
    assertions::AssertNotNull(file_elem, "file_elem != nullptr");
    files.push_back(ReadDesignFile(transcoder, file_elem));
  }
}

bool KelProjectDatabase::SetUpFlowProcess(ProcType type, const char* tag, const char* /*ns*/,
                                          const DOMElement* elem) {
  FlowProcess* process = GetFlowProcess(type);
  if (!process) return false;
  Transcoder transcoder;
  SetFlowProcessName(type, tag);
  process->tool_name = GetDOMAttributeString(transcoder, elem, format::kToolName);
  bool result = true;
  for (const DOMElement* child : ChildElements(elem)) {
    const Name* map_name = AcceptedParameterMap(type, child);
    ParameterMap* map = map_name ? AddFlowProcessParameterMap(type, map_name->narrow) : nullptr;
    if (!map) {
      result = false;
      continue;
    }
    const Parameter parameter = ReadParameter(transcoder, child);
    // A parameter that the map refuses is left out; the file as a whole is still accepted.
    InsertOrAssignParameterToMap(*map, parameter.name, parameter);
  }
  return result;
}

}  // namespace projectdb
