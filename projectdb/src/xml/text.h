#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include <xercesc/util/XMLUTF8Transcoder.hpp>
#include <xercesc/util/XercesDefs.hpp>

/// Everything that touches the XML library, which must be initialised (platform.h) meanwhile.
namespace projectdb::xml {

static_assert(std::is_same_v<XMLCh, char16_t>);

/// Converts between UTF-8 and the XML library's 16-bit text, whatever the process's locale. Its
/// buffers are reused: one object serves a whole document, on one thread.
class Transcoder {
 public:
  Transcoder();

  /// @return zero-terminated text, valid until the next call
  /// @exception Failure if the text is not UTF-8 or has a character that XML 1.0 cannot carry
  const std::u16string& ToXml(std::string_view text);

  /// The name of an element.
  /// @return "" if the text is not a name without colon
  std::u16string ToElementName(std::string_view name);

  /// @param text zero-terminated; null gives ""
  std::string ToUtf8(const XMLCh* text);

 private:
  void Transcode(std::string_view text);

  xercesc::XMLUTF8Transcoder transcoder_;
  std::u16string xml_text_;
  std::string sizes_;
};

/// One conversion to UTF-8.
std::string TranscodeXMLString(const XMLCh* text);

/// Whether the text is a name without colon.
bool IsNCName(std::u16string_view text);

}  // namespace projectdb::xml
