#include "save/canonical_document.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>

#include "base/failure.h"
#include "contents/project_rules.h"
#include "project_db/format.h"
#include "project_db/project_document.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;

std::vector<Parameter> ParametersOf(FlowProcessContents& process, std::string_view map) {
  std::vector<Parameter> parameters;
  for (auto& [name, parameter] : process.parameter_maps[std::string(map)]) {
    // A load makes one of all types that have no text.
    if (TextOf(parameter.type).empty()) parameter.type = kNoParameterType;
    parameters.push_back(std::move(parameter));
  }
  return parameters;
}

// Every process has the form of the synthesis, whose parameters are in lists.
SynthesisProcess OrderedProcess(FlowProcessContents process, std::string_view name) {
  return {std::string(name), process.tool_name, ParametersOf(process, kParameterMap),
          ParametersOf(process, kDefineMap), ParametersOf(process, kMacroMap)};
}

// Whether every element could be made.
bool AppendSections(DOMElement* root, ProjectContents& contents) {
  const char16_t* const ns = format::kNamespace.wide;
  const char16_t* const prefix = format::kPrefix.wide;
  const KelProjectDatabase writer;
  std::vector<bool> are_appended = {
      writer.AppendDeviceInfoToDOMElement(root, contents.device_info, ns, prefix),
      writer.AppendDesignInfoToDOMElement(root, contents.design_info, ns, prefix),
      writer.AppendDesignConstraintToDOMElement(root, contents.design_constraint, ns, prefix),
      writer.AppendISFToDOMElement(root, contents.design_isf, ns, prefix),
      writer.AppendDesignFileListToDOMElement(
          root, format::kSimInfo.narrow, format::kSimFile.narrow, contents.sim_files, ns, prefix),
      writer.AppendDesignFileListToDOMElement(root, format::kMiscInfo.narrow,
                                              format::kMiscFile.narrow, contents.misc_files, ns,
                                              prefix),
      writer.AppendIPInfoToDOMElement(root, contents.ip_info, ns, prefix)};
  are_appended.reserve(are_appended.size() + kFlowProcesses.size());
  for (std::size_t type = 0; type < kFlowProcesses.size(); ++type) {
    SynthesisProcess process =
        OrderedProcess(std::move(contents.flow_processes[type]), kFlowProcesses[type].name);
    are_appended.push_back(writer.AppendSynthesisProcessToDOMElement(root, process, ns, prefix));
  }
  return std::all_of(are_appended.begin(), are_appended.end(), [](bool is) { return is; });
}

}  // namespace

void RequireWritable(const ProjectContents& contents) {
  try {
    RequireProjectOfTheFormat(contents);
  } catch (const std::invalid_argument& error) {
    throw Failure(error.what());
  }
}

xml::Owned<xercesc::DOMDocument> CanonicalDocument(ProjectContents contents,
                                                   const FormatOptions& options) {
  RequireWritable(contents);
  xercesc::DOMImplementation* core =
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core");
  if (!core) throw Failure("the XML library makes no documents");
  xml::Owned<xercesc::DOMDocument> document = CreateProjectDocument(*core);
  DOMElement* root = document->getDocumentElement();
  const Stamps stamps = options.keep_stamps
                            ? Stamps{contents.software_version, contents.last_modify_time}
                            : NewStamps();
  SetRootAttributes(root, contents.project_name, contents.info_attributes, stamps);
  if (!AppendSections(root, contents)) throw Failure("an element cannot be created");
  return document;
}

}  // namespace projectdb
