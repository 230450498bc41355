#include <string>

#include <fmt/format.h>
#include <projectdb/project_contents.h>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>

#include "base/failure.h"
#include "contents/parameter_rules.h"
#include "project_db/elements.h"
#include "project_db/format.h"
#include "project_db/project_data.h"
#include "project_db/project_document.h"
#include "xml/dom.h"
#include "xml/errors.h"
#include "xml/platform.h"
#include "xml/text.h"
#include "xml/writer.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;

void RequireElementName(xml::Transcoder& transcoder, const std::string& what,
                        const std::string& name) {
  if (!transcoder.ToElementName(name).empty()) return;
  throw Failure(fmt::format("{} has the name {:?}, which no element can have", what, name));
}

// The writer of a process does not tell which name it is that no element can have.
void RequireElementNames(const FlowProcess& process, std::size_t type) {
  xml::Transcoder transcoder;
  const std::string what = fmt::format("the flow process {}", kFlowProcesses[type].name);
  if (!process.name.empty()) RequireElementName(transcoder, what, process.name);
  ForEachFilledParameterMap(process, [&](const std::string& name, const ParameterMap& /*map*/) {
    RequireElementName(transcoder, "a parameter map of " + what, name);
  });
}

}  // namespace

void KelProjectDatabase::ExportProjectData(const std::string& path) const {
  ExportTestedProject(path, nullptr);
}

void KelProjectDatabase::ExportTestedProject(const std::string& path, ProjectTest test) const {
  if (!IsProjectDatabaseExist()) return;
  xml::InitializeXMLPlatform();
  xercesc::DOMImplementation* core = xml::WithBadAlloc(
      [] { return xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core"); });
  if (!core) return;
  xml::Owned<xercesc::DOMDocument> document;
  const bool has_project = xml::WithPrefixedErrors(WritingPrefix(path), [&] {
    document = CreateProjectDocument(*core);
    return AppendProjectToRoot(document->getDocumentElement(), test);
  });
  if (has_project) xml::WriteDOMDocumentToFile(path, document.get());
  document.reset();
  xml::TerminateXMLPlatform();
}

bool KelProjectDatabase::AppendProjectToRoot(DOMElement* root, ProjectTest test) const {
  const char16_t* const ns = format::kNamespace.wide;
  const char16_t* const prefix = format::kPrefix.wide;
  const std::lock_guard<std::mutex> lock(mutex_);
  // Another thread may have cleaned the project away in the meantime.
  if (!data_) return false;
  if (test) test(CopyContents());
  // The writing library's stamps, not those that the project came with.
  SetRootAttributes(root, data_->project_name, data_->info_attributes, NewStamps());
  xml::ElementWriter writer(ns, prefix);
  AppendSections(writer, root, *data_);
  for (std::size_t type = 0; type < data_->flow_processes.size(); ++type) {
    const FlowProcess& process = data_->flow_processes[type];
    RequireElementNames(process, type);
    if (process.name.empty()) {
      // An element needs a name; without one the process's parameters would be lost.
      FlowProcess named = process;
      named.name = kFlowProcesses[type].name;
      RequireWritten(AppendFlowProcessToDOMElement(root, named, ns, prefix));
    } else {
      RequireWritten(AppendFlowProcessToDOMElement(root, process, ns, prefix));
    }
  }
  return true;
}

}  // namespace projectdb
