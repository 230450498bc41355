#include "xml/parser.h"

#include <iostream>

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>

#include "platform/paths.h"
#include "xml/dom_parser.h"
#include "xml/errors.h"
#include "xml/input.h"
#include "xml/schema.h"

namespace projectdb::xml {
namespace {

using xercesc::XMLUni;

// Makes the parser validate against the schema and no other.
bool UseSchema(xercesc::DOMLSParser& parser, SchemaSource& schemas,
               const std::string& schema_location) {
  const std::unique_ptr<xercesc::InputSource> schema =
      schemas.Open(paths::FromBytes(schema_location));
  if (!schema) return false;
  const xercesc::Wrapper4InputSource source(schema.get(), false);
  if (!parser.loadGrammar(&source, xercesc::Grammar::SchemaGrammarType, true)) return false;
  Set(parser, XMLUni::fgXercesUseCachedGrammarInParse, true);
  Set(parser, XMLUni::fgXercesLoadSchema, false);
  return true;
}

}  // namespace

Owned<xercesc::DOMDocument> ParseWith(xercesc::DOMLSParser& parser,
                                      KelProjectDbErrorHandler& errors,
                                      const xercesc::InputSource& input,
                                      const std::string& schema_location) {
  SchemaSource schemas(errors);
  parser.getDomConfig()->setParameter(XMLUni::fgXercesEntityResolver, &schemas);
  if (schema_location.empty()) {
    // Otherwise every element of a file without a schema would count as undeclared. Not so with a
    // schema: this setting would keep it from being applied.
    Set(parser, XMLUni::fgDOMValidateIfSchema, true);
  } else if (!UseSchema(parser, schemas, schema_location)) {
    return nullptr;
  }
  return Parse(parser, input);
}

Owned<xercesc::DOMDocument> ParseProjectXMLFile(const std::string& xml_path,
                                                const std::string& schema_location) {
  if (xml_path.empty()) return nullptr;
  const std::string prefix = "Failed parsing XML file " + xml_path + ": ";
  return WithOnlyRuntimeErrors(prefix, [&] {
    try {
      KelProjectDbErrorHandler errors;
      DomParser parser;
      Configure(parser, errors);
      Owned<xercesc::DOMDocument> document =
          ParseWith(parser, errors, FileInput(xml_path), schema_location);
      if (errors.failed) document.reset();
      return document;
    } catch (const xercesc::DOMException& exception) {
      std::cout << prefix << TranscodeXMLString(exception.getMessage()) << "\n\n";
      throw;
    }
  });
}

}  // namespace projectdb::xml
