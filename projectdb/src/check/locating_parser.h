#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/dom/DOMLSParser.hpp>

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

/// Where the elements of a document begin, noted while it is parsed.
class ElementPositions {
 public:
  /// Notes where the markup begins that the parser comes to next.
  void BeginMarkup(Position position) { current_ = position; }

  void Add(const xercesc::DOMElement* element, Position position) {
    positions_.emplace(element, position);
  }

  /// Where the markup begins that is being parsed; nowhere before the parse.
  Position current() const { return current_; }

  /// @param element of the document
  Position Of(const xercesc::DOMElement& element) const { return positions_.at(&element); }

 private:
  Position current_;
  std::unordered_map<const xercesc::DOMElement*, Position> positions_;
};

/// A configured DomParser that also notes where the elements stand, and that knows where the text
/// of a file is not UTF-8.
/// @param error_handler must outlive the parser, and so must the positions
xml::Owned<xercesc::DOMLSParser> CreateLocatingParser(xercesc::DOMErrorHandler& error_handler,
                                                      ElementPositions& positions);

}  // namespace projectdb::check
