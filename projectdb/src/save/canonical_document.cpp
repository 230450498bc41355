#include "save/canonical_document.h"

#include <stdexcept>
#include <vector>

#include <projectdb/vocabulary.h>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>

#include "base/failure.h"
#include "contents/project_rules.h"
#include "project_db/elements.h"
#include "project_db/format.h"
#include "project_db/project_document.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;

std::vector<Parameter> ParametersOf(const FlowProcessContents& process, const char* map) {
  std::vector<Parameter> parameters;
  const auto found = process.parameter_maps.find(map);
  if (found == process.parameter_maps.end()) return parameters;
  parameters.reserve(found->second.size());
  for (const auto& [name, parameter] : found->second) {
    parameters.push_back(parameter);
    // A load makes one of all types that have no text.
    if (TextOf(parameter.type).empty()) parameters.back().type = kNoParameterType;
  }
  return parameters;
}

// Every process has the form of the synthesis, whose parameters are in lists.
SynthesisProcess OrderedProcess(const FlowProcessContents& process, const char* name) {
  return {name, process.tool_name, ParametersOf(process, kParameterMap),
          ParametersOf(process, kDefineMap), ParametersOf(process, kMacroMap)};
}

}  // namespace

void RequireWritable(const ProjectContents& contents) {
  try {
    RequireProjectOfTheFormat(contents);
  } catch (const std::invalid_argument& error) {
    throw Failure(error.what());
  }
}

xml::Owned<xercesc::DOMDocument> CanonicalDocument(const ProjectContents& contents,
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
  xml::ElementWriter writer(format::kNamespace.wide, format::kPrefix.wide);
  AppendSections(writer, root, contents);
  for (std::size_t type = 0; type < kFlowProcesses.size(); ++type) {
    RequireWritten(AppendSection(
        writer, root, OrderedProcess(contents.flow_processes[type], kFlowProcesses[type].name)));
  }
  return document;
}

}  // namespace projectdb
