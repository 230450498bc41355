#include "bare.h"

#include <filesystem>
#include <stdexcept>

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/framework/LocalFileFormatTarget.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xercesc/parsers/DOMLSParserImpl.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

#include "project_db/format.h"
#include "xml/dom_parser.h"
#include "xml/error_handler.h"

namespace bench::bare {
namespace {

namespace format = projectdb::format;
namespace xml = projectdb::xml;
using projectdb::Name;
using xercesc::DOMElement;
using xercesc::XMLUni;

class ParserWithoutText : public xercesc::DOMLSParserImpl {
 public:
  void docCharacters(const XMLCh* /*text*/, XMLSize_t /*length*/, bool /*is_cdata*/) override {}
  void ignorableWhitespace(const XMLCh* /*text*/, XMLSize_t /*length*/,
                           bool /*is_cdata*/) override {}
};

// The XML library's own parser with the library's settings.
xml::Owned<xercesc::DOMLSParser> CreateParser(TextBetweenTags text,
                                              projectdb::KelProjectDbErrorHandler& errors) {
  auto* const implementation = static_cast<xercesc::DOMImplementationLS*>(
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS"));
  xml::Owned<xercesc::DOMLSParser> parser(
      text == TextBetweenTags::kKept
          ? implementation->createLSParser(xercesc::DOMImplementationLS::MODE_SYNCHRONOUS, nullptr)
          : new ParserWithoutText);
  xml::Configure(*parser, errors);
  return parser;
}

void UseSchema(xercesc::DOMLSParser& parser, const std::string& path) {
  const xercesc::LocalFileInputSource file(Wide(path).c_str());
  // The wrapper wants a pointer that it could adopt; it is told not to.
  const xercesc::Wrapper4InputSource source(const_cast<xercesc::LocalFileInputSource*>(&file),
                                            false);
  if (!parser.loadGrammar(&source, xercesc::Grammar::SchemaGrammarType, true)) {
    throw std::runtime_error("the schema cannot be loaded");
  }
  xml::Set(parser, XMLUni::fgXercesUseCachedGrammarInParse, true);
  xml::Set(parser, XMLUni::fgXercesLoadSchema, false);
}

DOMElement* Append(DOMElement* parent, const Name& tag) {
  DOMElement* element =
      parent->getOwnerDocument()->createElementNS(format::kNamespace.wide, tag.wide);
  element->setPrefix(format::kPrefix.wide);
  parent->appendChild(element);
  return element;
}

void Set(DOMElement* element, const Name& name, const char16_t* text) {
  element->setAttribute(name.wide, text);
}

void Set(DOMElement* element, const Name& name, const std::u16string& text) {
  Set(element, name, text.c_str());
}

void Set(DOMElement* element, const Name& name, const std::string& text) {
  const xercesc::TranscodeFromStr wide(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                       "UTF-8");
  Set(element, name, wide.str());
}

template <typename Text>
void AppendNamed(DOMElement* parent, const Name& tag, const Text& name) {
  Set(Append(parent, tag), format::kName, name);
}

template <typename File>
void AppendFiles(DOMElement* parent, const Name& tag, const std::vector<File>& files) {
  for (const File& file : files) {
    DOMElement* element = Append(parent, tag);
    Set(element, format::kName, file.name);
    Set(element, format::kVersion, file.version);
    Set(element, format::kLibrary, file.library);
  }
}

template <typename Ip>
void AppendIps(DOMElement* root, const std::vector<Ip>& ips) {
  DOMElement* section = Append(root, format::kIpInfo);
  for (const Ip& ip : ips) {
    DOMElement* element = Append(section, format::kIp);
    Set(element, format::kInstanceName, ip.instance_name);
    Set(element, format::kPath, ip.path);
    for (const auto& file : ip.source_files) AppendNamed(element, format::kIpSrcFile, file);
  }
}

template <typename Parameter>
void AppendProcess(DOMElement* root, const Name& name, const std::vector<Parameter>& parameters) {
  DOMElement* process = Append(root, name);
  for (const Parameter& parameter : parameters) {
    DOMElement* element = Append(process, format::kParameters.front());
    Set(element, format::kName, parameter.name);
    Set(element, format::kValue, parameter.value);
    Set(element, format::kValueType, parameter.type);
  }
}

void FillRoot(DOMElement* root) {
  root->setPrefix(format::kPrefix.wide);
  const std::u16string location =
      std::u16string(format::kNamespace.wide) + u" " + format::kSchemaFile.wide;
  root->setAttributeNS(xercesc::SchemaSymbols::fgURI_XSI, format::kSchemaLocation.wide,
                       location.c_str());
  root->setAttribute(format::kProjectName.wide, u"soc");
  root->setAttribute(format::kSoftwareVersion.wide, u"0.1.0");
  root->setAttribute(format::kLastModifyTime.wide, u"Mon Nov 16 2026 03:09:25");
}

template <typename Text>
void AppendSections(DOMElement* root, const Project<Text>& project) {
  DOMElement* device = Append(root, format::kDeviceInfo);
  AppendNamed(device, format::kFamily, u"Varel");
  AppendNamed(device, format::kDevice, u"Q8R25");
  AppendNamed(device, format::kTimingModel, u"");
  DOMElement* design = Append(root, format::kDesignInfo);
  design->setAttribute(format::kDefVeriVersion.wide, u"");
  design->setAttribute(format::kDefVhdlVersion.wide, u"");
  AppendNamed(design, format::kTopModule, u"soc_top");
  AppendFiles(design, format::kDesignFile, project.design_files);
  AppendNamed(design, format::kTopVhdlArch, u"");
  AppendNamed(Append(root, format::kConstraintInfo), format::kInterFile, u"");
  Append(root, format::kIsfInfo);
  AppendFiles(Append(root, format::kSimInfo), format::kSimFile, project.test_benches);
  Append(root, format::kMiscInfo);
  AppendIps(root, project.ips);
  for (std::size_t type = 0; type < project.parameters.size(); ++type) {
    AppendProcess(root, format::kProcesses[type], project.parameters[type]);
  }
}

void Write(const xercesc::DOMDocument* document, const std::string& path) {
  xercesc::DOMImplementation* implementation =
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
  const xml::Owned<xercesc::DOMLSSerializer> serializer(implementation->createLSSerializer());
  serializer->getDomConfig()->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
  xercesc::LocalFileFormatTarget target(path.c_str());
  const xml::Owned<xercesc::DOMLSOutput> output(implementation->createLSOutput());
  output->setByteStream(&target);
  if (!serializer->write(document, output.get())) throw std::runtime_error("cannot write " + path);
}

template <typename Text>
void ExportProject(const Project<Text>& project, const std::string& path) {
  xercesc::DOMImplementation* core =
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core");
  const xml::Owned<xercesc::DOMDocument> document(
      core->createDocument(format::kNamespace.wide, format::kProject.wide, nullptr));
  FillRoot(document->getDocumentElement());
  AppendSections(document->getDocumentElement(), project);
  Write(document.get(), path);
}

}  // namespace

std::u16string Wide(const std::string& text) { return std::filesystem::path(text).u16string(); }

void Parse(const std::string& path, const std::string& schema, TextBetweenTags text) {
  projectdb::KelProjectDbErrorHandler errors;
  const auto parser = CreateParser(text, errors);
  if (schema.empty()) {
    xml::Set(*parser, XMLUni::fgDOMValidateIfSchema, true);
  } else {
    UseSchema(*parser, schema);
  }
  const auto document = xml::Parse(*parser, xercesc::LocalFileInputSource(Wide(path).c_str()));
  if (!document || errors.failed) throw std::runtime_error(path + " has an error");
}

void Export(const WideProject& project, const std::string& path) { ExportProject(project, path); }

void Export(const Utf8Project& project, const std::string& path) { ExportProject(project, path); }

}  // namespace bench::bare
