#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/dom/DOMLSParser.hpp>
#include <xercesc/sax/InputSource.hpp>

#include "xml/owned.h"

namespace projectdb::check {

/// A place in a file. Both count from 1; 0 stands for no line or no column.
struct Position {
  std::uint64_t line = 0;
  std::uint64_t column = 0;  ///< In 16-bit units, of which a character beyond U+FFFF takes two.
};

/// The place of the first byte that is not UTF-8.
/// @return nothing if there is none
std::optional<Position> FirstInvalidUtf8(std::string_view bytes);

/// Where the elements and comments of a document begin, noted while it is parsed. Most documents
/// have no problem and nobody asks for a position: the first question costs more than noting them
/// all.
class ElementPositions {
 public:
  /// Notes where the markup begins that the parser comes to next.
  void BeginMarkup(Position position) { current_ = position; }

  void Add(const xercesc::DOMElement* element, Position position) {
    positions_.emplace_back(element, position);
  }

  /// Notes that the markup is a comment that the parser has just come to.
  void AddComment() { comments_.push_back(current_); }

  const std::vector<Position>& comments() const { return comments_; }

  /// Where the markup begins that is being parsed; nowhere before the parse.
  Position current() const { return current_; }

  /// @param element of the document, to which no more elements are added
  Position Of(const xercesc::DOMElement& element);

 private:
  Position current_;
  std::vector<Position> comments_;
  std::vector<std::pair<const xercesc::DOMElement*, Position>> positions_;
  bool is_sorted_ = false;  ///< By the element.
};

/// What is parsed.
struct Source {
  const xercesc::InputSource& input;
  std::string uri;  ///< That of the input.
  /// All that the input holds, if it is no file that could be read again.
  std::optional<std::string_view> bytes;
  /// Whether a local schema that it names is looked for, if no other one is given.
  bool follows_schema_hints = true;
};

/// A configured DomParser that also notes where the elements stand, and that knows where the text
/// of a file is not UTF-8.
/// @param error_handler must outlive the parser, and so must the positions and the source
xml::Owned<xercesc::DOMLSParser> CreateLocatingParser(xercesc::DOMErrorHandler& error_handler,
                                                      ElementPositions& positions,
                                                      const Source& source);

}  // namespace projectdb::check
