#pragma once

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "xml/owned.h"

namespace projectdb::xml {

/// A load/save parser with the settings that every parse of this library shares: namespaces,
/// schema validation, no document type declarations.
/// @param error_handler must outlive the parser
Owned<xercesc::DOMLSParser> CreateParser(xercesc::DOMErrorHandler& error_handler);

/// Gives a new parser those settings.
void Configure(xercesc::DOMLSParser& parser, xercesc::DOMErrorHandler& error_handler);

/// Sets a parameter if the parser can take the value.
void Set(xercesc::DOMLSParser& parser, const XMLCh* parameter, bool value);

Owned<xercesc::DOMDocument> Parse(xercesc::DOMLSParser& parser, const xercesc::InputSource& input);

}  // namespace projectdb::xml
