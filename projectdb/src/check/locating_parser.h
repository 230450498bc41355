#pragma once

#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/dom/DOMLSParser.hpp>

#include "check/positions.h"
#include "xml/owned.h"

namespace projectdb::xml {

/// The parser that CreateParser gives, but one that notes where the elements stand,
/// and that knows where the text of a file is not UTF-8.
/// @param error_handler must outlive the parser, and so must the positions
Owned<xercesc::DOMLSParser> CreateLocatingParser(xercesc::DOMErrorHandler& error_handler,
                                                 ElementPositions& positions);

}  // namespace projectdb::xml
