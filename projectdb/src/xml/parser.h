#pragma once

#include <string>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/sax/InputSource.hpp>

#include "xml/error_handler.h"
#include "xml/owned.h"

namespace projectdb::xml {

/// Parses a project file, with validation against a schema if there is one.
///
/// @param xml_path native path of the file, which is opened once
/// @param schema_location native path of the schema; "" to follow a local one that the file names
/// @return null if the file or the schema has an error or a document type declaration
/// @exception std::runtime_error "Failed parsing XML file …" if the XML library gives up
Owned<xercesc::DOMDocument> ParseProjectXMLFile(const std::string& xml_path,
                                                const std::string& schema_location);

/// The parse of a project file with a given new parser: all but the making of the parser and what
/// becomes of errors.
/// @param errors the parser's error handler
/// @return the document as far as it goes; null if the given schema cannot be used
Owned<xercesc::DOMDocument> ParseWith(xercesc::DOMLSParser& parser,
                                      KelProjectDbErrorHandler& errors,
                                      const xercesc::InputSource& input,
                                      const std::string& schema_location);

}  // namespace projectdb::xml
