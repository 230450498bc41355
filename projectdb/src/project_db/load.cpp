#include <filesystem>

#include <xercesc/dom/DOMDocument.hpp>

#include "messages.h"
#include "platform/paths.h"
#include "project_db/format.h"
#include "project_db/input_files.h"
#include "project_db/load_observer.h"
#include "project_db/project_data.h"
#include "xml/dom.h"
#include "xml/errors.h"
#include "xml/parser.h"
#include "xml/platform.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;

std::string TagOf(const DOMElement& element) {
  return xml::TranscodeXMLString(element.getLocalName());
}

/// Posts what the user is to know; of the rest only the load's result tells.
class PostingObserver : public LoadObserver {
 public:
  void UnexpectedSection(const DOMElement& element) override {
    messages::Post(messages::MsgUnexpectedTag(TagOf(element)));
  }
  void SkippedSection(const DOMElement& /*element*/) override {}
  void UnexpectedChild(const DOMElement& /*element*/, const Names& /*expected*/) override {}
  void IgnoredElement(const DOMElement& /*element*/, const Names& /*expected*/) override {}
  void NamelessFile(const DOMElement& /*element*/) override {}
  void DeprecatedElement(const DOMElement& element) override {
    messages::Post(messages::MsgDeprecatedTag(TagOf(element)));
  }
  void UnknownParameterType(const DOMElement& /*element*/, const Parameter& /*parameter*/,
                            const std::string& /*type*/) override {}
  void ReplacedName(const DOMElement& /*element*/, const std::string& /*former*/) override {}
  void ReplacedParameter(const DOMElement& /*element*/, const Parameter& /*parameter*/) override {}
  void RefusedParameter(const DOMElement& /*element*/, const Parameter& /*parameter*/,
                        const ParameterMap& /*map*/) override {}
};

// The schema to parse with: "" if none is given or the given one is missing.
std::string SchemaLocation(const std::string& schema_file) {
  if (schema_file.empty() || FileExists(schema_file)) return schema_file;
  messages::Post(messages::MsgSchemaFileMissing(schema_file));
  return {};
}

}  // namespace

bool KelProjectDatabase::LoadProjectData(const std::string& xml_file,
                                         const std::string& schema_file) {
  if (xml_file.empty()) return false;
  if (!HasProjectFileExtension(xml_file) || !FileExists(xml_file)) {
    messages::Post(messages::MsgProjectFileMissing(xml_file));
    return false;
  }
  const std::string directory =
      paths::ToBytes(paths::Absolute(paths::FromBytes(xml_file)).parent_path());
  messages::Post(messages::MsgReadingProject(xml_file));
  xml::InitializeXMLPlatform();
  xml::Owned<xercesc::DOMDocument> document =
      xml::ParseProjectXMLFile(xml_file, SchemaLocation(schema_file));
  if (!document) {
    messages::Post(messages::MsgProjectFileMalformed(xml_file));
    return false;
  }
  PostingObserver observer;
  const bool result = xml::WithBadAlloc(
      [&] { return LoadProjectDocument(document->getDocumentElement(), observer); });
  SetProjectCurrentPath(directory);
  document.reset();
  xml::TerminateXMLPlatform();
  return result;
}

bool KelProjectDatabase::LoadProjectDocument(const DOMElement* root, LoadObserver& observer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  SetupProjectDatabase();
  LoadProjectInfoAttributes(format::kNamespace.narrow, root);
  bool result = true;
  for (const DOMElement* section : xml::ChildElements(root)) {
    result = LoadProjectInfo(format::kNamespace.narrow, section, observer) && result;
  }
  return result;
}

}  // namespace projectdb
