#include "xml/text.h"

#include <algorithm>
#include <new>

#include <fmt/format.h>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLChar.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "base/failure.h"
#include "base/utf8.h"

namespace projectdb::xml {
namespace {

// The transcoder never sees more than it is given; the size only sets up its own tables.
constexpr XMLSize_t kBlockSize = 1024;

// Printable ASCII is the same in both forms, and XML carries all of it.
bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool IsSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

// Transcoded text has surrogates in pairs only, and XML carries every character beyond 16 bits.
bool IsForbidden(char16_t unit) {
  return !IsSurrogate(unit) && !xercesc::XMLChar1_0::isXMLChar(unit);
}

}  // namespace

Transcoder::Transcoder() try
    : transcoder_(xercesc::XMLUni::fgUTF8EncodingString, kBlockSize,
                  xercesc::XMLPlatformUtils::fgMemoryManager) {
} catch (const xercesc::OutOfMemoryException&) {
  throw std::bad_alloc();
}

// The text must be UTF-8.
void Transcoder::Transcode(std::string_view text) {
  // A character takes no more 16-bit units than it has bytes.
  xml_text_.resize(text.size());
  sizes_.resize(text.size());
  XMLSize_t bytes_read = 0;
  const XMLSize_t length = transcoder_.transcodeFrom(
      reinterpret_cast<const XMLByte*>(text.data()), text.size(), xml_text_.data(),
      xml_text_.size(), bytes_read, reinterpret_cast<unsigned char*>(sizes_.data()));
  xml_text_.resize(length);
}

const std::u16string& Transcoder::ToXml(std::string_view text) {
  if (IsPlain(text)) {
    xml_text_.resize(text.size());
    std::copy(text.begin(), text.end(), xml_text_.begin());
    return xml_text_;
  }
  if (!utf8::IsValid(text)) throw Failure(fmt::format("the text {:?} is not UTF-8", text));
  Transcode(text);
  const auto forbidden = std::find_if(xml_text_.begin(), xml_text_.end(), IsForbidden);
  if (forbidden != xml_text_.end()) {
    throw Failure(fmt::format("the text {:?} has the character U+{:04X}, which XML cannot carry",
                              text, static_cast<unsigned>(*forbidden)));
  }
  return xml_text_;
}

std::u16string Transcoder::ToElementName(std::string_view name) {
  if (!utf8::IsValid(name)) return {};
  Transcode(name);
  return IsNCName(xml_text_) ? xml_text_ : std::u16string();
}

std::string Transcoder::ToUtf8(const XMLCh* text) {
  if (!text) return {};
  const XMLCh* plain_end = text;
  while (*plain_end != 0 && *plain_end < 0x80) ++plain_end;
  if (*plain_end == 0) return std::string(text, plain_end);
  // A 16-bit unit takes at most three bytes, a pair of them four.
  const XMLSize_t length = xercesc::XMLString::stringLen(text);
  std::string result(length * 3, '\0');
  XMLSize_t units_read = 0;
  result.resize(transcoder_.transcodeTo(text, length, reinterpret_cast<XMLByte*>(result.data()),
                                        result.size(), units_read,
                                        xercesc::XMLTranscoder::UnRep_RepChar));
  return result;
}

std::string TranscodeXMLString(const XMLCh* text) { return Transcoder().ToUtf8(text); }

bool IsNCName(std::u16string_view text) {
  return xercesc::XMLChar1_0::isValidNCName(text.data(), text.size());
}

}  // namespace projectdb::xml
