#pragma once

#include <string>
#include <vector>

#include <projectdb/records.h>

#include "project_db/format.h"
#include "xml/dom.h"

/// The elements of a project file, each appended to a parent. All give false, and append nothing,
/// if the parent is null or a name is none.
namespace projectdb {

bool AppendDesignFile(xml::ElementWriter& writer, xercesc::DOMElement* parent, const XMLCh* tag,
                      const DesignFile& file);

/// An element with a name alone.
bool AppendNamedElement(xml::ElementWriter& writer, xercesc::DOMElement* parent, const XMLCh* tag,
                        const std::string& name);

bool AppendIPInstance(xml::ElementWriter& writer, xercesc::DOMElement* parent, const XMLCh* tag,
                      const IP& ip);

bool AppendParameter(xml::ElementWriter& writer, xercesc::DOMElement* parent, const XMLCh* tag,
                     const Parameter& parameter);

/// The element of a flow process; fill(element) is called for its parameters.
template <typename Fill>
bool AppendProcess(xml::ElementWriter& writer, xercesc::DOMElement* parent, const std::string& name,
                   const std::string& tool_name, Fill fill) {
  if (!parent) return false;
  const std::u16string tag = writer.ElementName(name);
  return writer.AppendElement(parent, tag.c_str(), [&](xercesc::DOMElement* element) {
    if (!tool_name.empty()) {
      writer.SetDOMElementAttribute(element, format::kToolName, tool_name);
    }
    fill(element);
  });
}

bool AppendSection(xml::ElementWriter& writer, xercesc::DOMElement* root,
                   const DeviceInfo& device_info);
bool AppendSection(xml::ElementWriter& writer, xercesc::DOMElement* root,
                   const DesignInfo& design_info);
bool AppendSection(xml::ElementWriter& writer, xercesc::DOMElement* root,
                   const DesignConstraint& constraint);
bool AppendSection(xml::ElementWriter& writer, xercesc::DOMElement* root, const DesignISF& isf);
bool AppendSection(xml::ElementWriter& writer, xercesc::DOMElement* root, const IPInfo& ip_info);
bool AppendSection(xml::ElementWriter& writer, xercesc::DOMElement* root,
                   const SynthesisProcess& process);

/// A section of files, each an element of the item tag.
bool AppendSection(xml::ElementWriter& writer, xercesc::DOMElement* root, const XMLCh* tag,
                   const XMLCh* item_tag, const std::vector<DesignFile>& files);

/// @exception Failure if an element could not be made
void RequireWritten(bool is_written);

/// The sections before those of the flow processes, in their order.
/// @param project its data or its contents
/// @exception Failure as RequireWritten, and for texts that XML cannot carry
template <typename Project>
void AppendSections(xml::ElementWriter& writer, xercesc::DOMElement* root, const Project& project) {
  RequireWritten(AppendSection(writer, root, project.device_info));
  RequireWritten(AppendSection(writer, root, project.design_info));
  RequireWritten(AppendSection(writer, root, project.design_constraint));
  RequireWritten(AppendSection(writer, root, project.design_isf));
  RequireWritten(
      AppendSection(writer, root, format::kSimInfo.wide, format::kSimFile.wide, project.sim_files));
  RequireWritten(AppendSection(writer, root, format::kMiscInfo.wide, format::kMiscFile.wide,
                               project.misc_files));
  RequireWritten(AppendSection(writer, root, project.ip_info));
}

}  // namespace projectdb
