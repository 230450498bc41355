#include "check/located_parse.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <stdexcept>

#include <fmt/format.h>
#include <xercesc/dom/DOMLocator.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "platform/paths.h"
#include "xml/dom_parser.h"
#include "xml/error_handler.h"
#include "xml/errors.h"
#include "xml/file_uri.h"
#include "xml/parser.h"
#include "xml/text.h"

namespace projectdb::check {
namespace {

bool IsError(const xercesc::DOMError& error) {
  return error.getSeverity() != xercesc::DOMError::DOM_SEVERITY_WARNING;
}

// Exported files name a schema that need not be there, so this is no problem; and nothing else is
// both a warning and in no file.
bool IsSchemaNotFound(const xercesc::DOMError& error) {
  const XMLCh* uri = error.getLocation()->getURI();
  return !IsError(error) && (!uri || !*uri);
}

/// Collects all problems of a parse, those of its schemas too.
class ProblemCollector : public KelProjectDbErrorHandler {
 public:
  /// @param uri of the file that is parsed; positions and problems must outlive this
  ProblemCollector(std::string uri, const ElementPositions& positions,
                   std::vector<ParseProblem>& problems)
      : uri_(std::move(uri)), positions_(positions), problems_(problems) {}

  bool handleError(const xercesc::DOMError& error) override {
    try {
      if (!IsSchemaNotFound(error)) problems_.push_back(ProblemOf(error));
    } catch (...) {
      exception_ = std::current_exception();
    }
    return KelProjectDbErrorHandler::handleError(error);
  }

  /// The parser swallows what handleError throws; this throws it.
  void RethrowException() const {
    if (exception_) std::rethrow_exception(exception_);
  }

 private:
  ParseProblem ProblemOf(const xercesc::DOMError& error) {
    const bool is_error = IsError(error);
    const xercesc::DOMLocator& location = *error.getLocation();
    const std::string uri = transcoder_.ToUtf8(location.getURI());
    const std::string message = transcoder_.ToUtf8(error.getMessage());
    if (uri.empty()) return {is_error, {}, "the file cannot be read: " + message};
    if (uri == uri_) {
      return {is_error, {location.getLineNumber(), location.getColumnNumber()}, message};
    }
    const std::optional<std::filesystem::path> schema = xml::LocalPath(uri, uri_);
    return {is_error, positions_.current(),
            fmt::format("XML schema {:?}, line {}: {}", schema ? paths::ToBytes(*schema) : uri,
                        location.getLineNumber(), message)};
  }

  std::string uri_;
  const ElementPositions& positions_;
  std::vector<ParseProblem>& problems_;
  xml::Transcoder transcoder_;
  std::exception_ptr exception_;
};

bool HasError(const std::vector<ParseProblem>& problems) {
  return std::any_of(problems.begin(), problems.end(),
                     [](const ParseProblem& problem) { return problem.is_error; });
}

}  // namespace

LocatedParse ParseLocated(const Source& source, const std::string& schema_location) {
  LocatedParse parse;
  const auto add_error = [&parse](const std::string& message) {
    parse.problems.push_back({true, parse.positions.current(), message});
  };
  try {
    parse.document = xml::WithPrefixedErrors("", [&] {
      ProblemCollector collector(source.uri, parse.positions, parse.problems);
      const xml::Owned<xercesc::DOMLSParser> parser =
          CreateLocatingParser(collector, parse.positions, source);
      if (!source.follows_schema_hints) {
        xml::Set(*parser, xercesc::XMLUni::fgXercesLoadSchema, false);
      }
      xml::Owned<xercesc::DOMDocument> document =
          xml::ParseWith(*parser, collector, source.input, schema_location);
      collector.RethrowException();
      return document;
    });
    // Of a schema that cannot even be opened the parser does not get to know.
    if (!parse.document && !HasError(parse.problems)) {
      add_error(fmt::format("the XML schema {:?} cannot be read", schema_location));
    }
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::runtime_error& error) {
    add_error(std::string("the file cannot be parsed: ") + error.what());
  } catch (...) {
    add_error("the XML library failed for an unknown reason");
  }
  return parse;
}

}  // namespace projectdb::check
