#include "project_db/elements.h"

#include <projectdb/project_db.h>

#include "base/failure.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;
using xml::ElementWriter;

void AppendParameters(ElementWriter& writer, DOMElement* process, const Name& tag,
                      const std::vector<Parameter>& parameters) {
  for (const Parameter& parameter : parameters) {
    AppendParameter(writer, process, tag.wide, parameter);
  }
}

}  // namespace

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

bool AppendSection(ElementWriter& writer, DOMElement* root, const DeviceInfo& device_info) {
  return writer.AppendElement(root, format::kDeviceInfo.wide, [&](DOMElement* section) {
    const auto append = [&](const Name& tag, const std::string& name) {
      AppendNamedElement(writer, section, tag.wide, name);
    };
    append(format::kFamily, device_info.family);
    append(format::kDevice, device_info.device);
    append(format::kTimingModel, device_info.timing_model);
  });
}

bool AppendSection(ElementWriter& writer, DOMElement* root, const DesignInfo& design_info) {
  return writer.AppendElement(root, format::kDesignInfo.wide, [&](DOMElement* section) {
    writer.SetDOMElementAttribute(section, format::kDefVeriVersion, design_info.def_veri_version);
    writer.SetDOMElementAttribute(section, format::kDefVhdlVersion, design_info.def_vhdl_version);
    AppendNamedElement(writer, section, format::kTopModule.wide, design_info.top_module);
    for (const DesignFile& file : design_info.design_files) {
      AppendDesignFile(writer, section, format::kDesignFile.wide, file);
    }
    AppendNamedElement(writer, section, format::kTopVhdlArch.wide, design_info.top_vhdl_arch);
  });
}

bool AppendSection(ElementWriter& writer, DOMElement* root, const DesignConstraint& constraint) {
  return writer.AppendElement(root, format::kConstraintInfo.wide, [&](DOMElement* section) {
    for (const std::string& name : constraint.sdc_files) {
      AppendNamedElement(writer, section, format::kSdcFile.wide, name);
    }
    AppendNamedElement(writer, section, format::kInterFile.wide, constraint.inter_file);
  });
}

bool AppendSection(ElementWriter& writer, DOMElement* root, const DesignISF& isf) {
  return writer.AppendElement(root, format::kIsfInfo.wide, [&](DOMElement* section) {
    for (const std::string& name : isf.isf_files) {
      AppendNamedElement(writer, section, format::kIsfFile.wide, name);
    }
  });
}

bool AppendSection(ElementWriter& writer, DOMElement* root, const IPInfo& ip_info) {
  return writer.AppendElement(root, format::kIpInfo.wide, [&](DOMElement* section) {
    for (const IP& ip : ip_info.ips) AppendIPInstance(writer, section, format::kIp.wide, ip);
  });
}

bool AppendSection(ElementWriter& writer, DOMElement* root, const SynthesisProcess& process) {
  return AppendProcess(writer, root, process.name, process.tool_name, [&](DOMElement* element) {
    const auto& [parameter, define, macro] = format::kParameters;
    AppendParameters(writer, element, parameter, process.params);
    AppendParameters(writer, element, define, process.dyn_params);
    AppendParameters(writer, element, macro, process.def_macros);
  });
}

bool AppendSection(ElementWriter& writer, DOMElement* root, const XMLCh* tag, const XMLCh* item_tag,
                   const std::vector<DesignFile>& files) {
  return writer.AppendElement(root, tag, [&](DOMElement* section) {
    for (const DesignFile& file : files) AppendDesignFile(writer, section, item_tag, file);
  });
}

void RequireWritten(bool is_written) {
  if (!is_written) throw Failure("an element cannot be created");
}

}  // namespace projectdb
