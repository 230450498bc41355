#include "xml/parser_settings.h"

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>

#include "xml/dom_parser.h"

namespace projectdb::xml {

using xercesc::XMLUni;

void Set(xercesc::DOMLSParser& parser, const XMLCh* parameter, bool value) {
  xercesc::DOMConfiguration& configuration = *parser.getDomConfig();
  if (configuration.canSetParameter(parameter, value)) {
    configuration.setParameter(parameter, value);
  }
}

Owned<xercesc::DOMLSParser> CreateParser(xercesc::DOMErrorHandler& error_handler) {
  Owned<xercesc::DOMLSParser> parser(new DomParser);
  Configure(*parser, error_handler);
  return parser;
}

void Configure(xercesc::DOMLSParser& parser, xercesc::DOMErrorHandler& error_handler) {
  Set(parser, XMLUni::fgDOMComments, false);
  Set(parser, XMLUni::fgDOMDatatypeNormalization, true);
  Set(parser, XMLUni::fgDOMEntities, false);
  Set(parser, XMLUni::fgDOMNamespaces, true);
  Set(parser, XMLUni::fgDOMElementContentWhitespace, false);
  Set(parser, XMLUni::fgDOMValidate, true);
  Set(parser, XMLUni::fgXercesSchema, true);
  Set(parser, XMLUni::fgXercesSchemaFullChecking, false);
  Set(parser, XMLUni::fgXercesUserAdoptsDOMDocument, true);
  // A document type declaration could make a small file expand without bound or read other files.
  Set(parser, XMLUni::fgDOMDisallowDoctype, true);
  parser.getDomConfig()->setParameter(XMLUni::fgDOMErrorHandler, &error_handler);
}

Owned<xercesc::DOMDocument> Parse(xercesc::DOMLSParser& parser, const xercesc::InputSource& input) {
  // The wrapper wants a pointer that it could adopt; it is told not to.
  const xercesc::Wrapper4InputSource source(const_cast<xercesc::InputSource*>(&input), false);
  return Owned<xercesc::DOMDocument>(parser.parse(&source));
}

}  // namespace projectdb::xml
