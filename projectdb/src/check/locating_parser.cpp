#include "check/locating_parser.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include <xercesc/framework/XMLErrorCodes.hpp>
#include <xercesc/internal/ReaderMgr.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "base/utf8.h"
#include "xml/dom_parser.h"
#include "xml/file_uri.h"
#include "xml/input.h"
#include "xml/text.h"

namespace projectdb::check {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

using Entry = std::pair<const xercesc::DOMElement*, Position>;

bool IsBefore(const Entry& a, const Entry& b) { return std::less<>()(a.first, b.first); }

bool IsOfUtf8(unsigned int code, const XMLCh* domain) {
  constexpr std::array<unsigned int, 5> kCodes = {
      xercesc::XMLExcepts::UTF8_FormatError, xercesc::XMLExcepts::UTF8_Invalid_3BytesSeq,
      xercesc::XMLExcepts::UTF8_Irregular_3BytesSeq, xercesc::XMLExcepts::UTF8_Invalid_4BytesSeq,
      xercesc::XMLExcepts::UTF8_Exceeds_BytesLimit};
  return xercesc::XMLString::equals(domain, xercesc::XMLUni::fgExceptDomain) &&
         std::find(kCodes.begin(), kCodes.end(), code) != kCodes.end();
}

// The parser has one text for all that may not stand before the root.
bool IsOfProlog(unsigned int code, const XMLCh* domain) {
  return xercesc::XMLString::equals(domain, xercesc::XMLUni::fgXMLErrDomain) &&
         code == xercesc::XMLErrs::InvalidDocumentStructure;
}

// The parser decodes a file in large blocks, so that it cannot say where in one the error is. What
// a pipe gave cannot be read again.
std::optional<Position> PlaceOfBadText(const std::string& uri, const Source& source) {
  if (source.bytes && uri == source.uri) return FirstInvalidUtf8(*source.bytes);
  const std::optional<std::filesystem::path> path = xml::LocalPath(uri, uri);
  if (!path) return std::nullopt;
  const std::optional<std::string> bytes =
      xml::ReadBytes(*path, std::numeric_limits<std::size_t>::max());
  return bytes ? FirstInvalidUtf8(*bytes) : std::nullopt;
}

/// The scanner tells of a piece of a file when it has just read it. So an element begins where the
/// piece before it ended.
class LocatingParser : public xml::DomParser {
 public:
  LocatingParser(ElementPositions& positions, const Source& source)
      : positions_(positions), source_(source) {}

  void startDocument() override {
    DomParser::startDocument();
    NoteEndOfPiece();
  }

  void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
               const XMLCh* actual_encoding) override {
    DomParser::XMLDecl(version, encoding, standalone, actual_encoding);
    NoteEndOfPiece();
  }

  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri_id,
                    const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attribute_count, bool is_empty, bool is_root) override {
    const Position begin = positions_.current();
    DomParser::startElement(declaration, uri_id, prefix, attributes, attribute_count, is_empty,
                            is_root);
    positions_.Add(static_cast<const xercesc::DOMElement*>(getCurrentNode()), begin);
    if (!is_empty) NoteEndOfPiece();  // Else endElement has done so.
  }

  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri_id, bool is_root,
                  const XMLCh* prefix) override {
    DomParser::endElement(declaration, uri_id, is_root, prefix);
    NoteEndOfPiece();
  }

  void docCharacters(const XMLCh* text, XMLSize_t length, bool is_cdata) override {
    DomParser::docCharacters(text, length, is_cdata);
    NoteEndOfPiece();
  }

  void ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool is_cdata) override {
    DomParser::ignorableWhitespace(text, length, is_cdata);
    NoteEndOfPiece();
  }

  void docComment(const XMLCh* comment) override {
    DomParser::docComment(comment);
    positions_.AddComment();
    NoteEndOfPiece();
  }

  void docPI(const XMLCh* target, const XMLCh* data) override {
    DomParser::docPI(target, data);
    NoteEndOfPiece();
  }

  void error(unsigned int code, const XMLCh* domain, ErrTypes type, const XMLCh* text,
             const XMLCh* system_id, const XMLCh* public_id, XMLFileLoc line,
             XMLFileLoc column) override {
    Position position{line, column};
    std::u16string message = text;
    if (IsOfUtf8(code, domain)) {
      position = PlaceOfBadText(xml::TranscodeXMLString(system_id), source_).value_or(position);
      message.insert(0, u"the text is not UTF-8: ");
    }
    if (IsOfProlog(code, domain)) {
      message += u": expected the root element, with no document type declaration before it";
    }
    DomParser::error(code, domain, type, message.c_str(), system_id, public_id, position.line,
                     position.column);
  }

 private:
  void NoteEndOfPiece() {
    xercesc::ReaderMgr::LastExtEntityInfo place;
    getScanner()->getReaderMgr()->getLastExtEntityInfo(place);
    positions_.BeginMarkup({place.lineNumber, place.colNumber});
  }

  ElementPositions& positions_;
  const Source& source_;
};

}  // namespace

std::optional<Position> FirstInvalidUtf8(std::string_view bytes) {
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  Position position{1, 1};
  while (!bytes.empty()) {
    const std::string_view character = bytes.substr(0, utf8::LeadingCharacterSize(bytes));
    if (character.empty()) return position;
    bytes.remove_prefix(character.size());
    const bool is_first_of_two = character == "\r" && bytes.substr(0, 1) == "\n";
    if (character == "\n" || (character == "\r" && !is_first_of_two)) {
      position = {position.line + 1, 1};
    } else {
      position.column += character.size() == 4 ? 2U : 1U;
    }
  }
  return std::nullopt;
}

Position ElementPositions::Of(const xercesc::DOMElement& element) {
  if (!is_sorted_) std::sort(positions_.begin(), positions_.end(), IsBefore);
  is_sorted_ = true;
  return std::lower_bound(positions_.begin(), positions_.end(), Entry(&element, {}), IsBefore)
      ->second;
}

xml::Owned<xercesc::DOMLSParser> CreateLocatingParser(xercesc::DOMErrorHandler& error_handler,
                                                      ElementPositions& positions,
                                                      const Source& source) {
  xml::Owned<xercesc::DOMLSParser> parser(new LocatingParser(positions, source));
  xml::Configure(*parser, error_handler);
  return parser;
}

}  // namespace projectdb::check
