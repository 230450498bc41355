#pragma once

#include <string>
#include <vector>

#include <xercesc/dom/DOMDocument.hpp>

#include "check/locating_parser.h"
#include "xml/owned.h"

namespace projectdb::check {

/// A problem that the parser reports.
struct ParseProblem {
  bool is_error;      ///< Else a warning.
  Position position;  ///< In the parsed file; that of the hint for a problem of a hinted schema.
  std::string message;
};

/// A document and all that there is to say of its parse.
struct LocatedParse {
  /// Null if nothing was parsed; else as far as it goes.
  xml::Owned<xercesc::DOMDocument> document;
  ElementPositions positions;  ///< Of all elements of the document.
  std::vector<ParseProblem> problems;
};

/// Parses a project file just as xml::ParseProjectXMLFile does, but keeps a document with errors,
/// and notes all problems and where the elements stand. Where ParseProjectXMLFile gives null or
/// throws, there is a problem that is an error, and nowhere else.
LocatedParse ParseLocated(const Source& source, const std::string& schema_location);

}  // namespace projectdb::check
