#include "console.h"

#include <array>
#include <ostream>
#include <utility>

namespace kelproj {
namespace {

// A control character of ASCII, or the second byte of one of Latin-1.
std::string Escape(unsigned char c) {
  switch (c) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      break;
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  return {'\\', 'x', kDigits[c / 16], kDigits[c % 16]};
}

bool IsAsciiControl(unsigned char c) { return c < 0x20 || c == 0x7F; }

// U+0080 to U+009F, which terminals take for escape sequences too: C2 80 to C2 9F in UTF-8.
bool IsLatinControl(unsigned char first, unsigned char second) {
  return first == 0xC2 && second >= 0x80 && second < 0xA0;
}

constexpr const char* SeverityName(Diag::MessageType severity) {
  constexpr std::array<const char*, 3> kNames = {"info", "warning", "error"};
  return kNames.at(static_cast<std::size_t>(severity));
}

constexpr const char* EscapeSequence(Style style) {
  constexpr std::array<const char*, 3> kSequences = {"\x1b[1m", "\x1b[31m", "\x1b[32m"};
  return kSequences.at(static_cast<std::size_t>(style));
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string printable;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
    if (IsAsciiControl(c)) {
      printable += Escape(c);
    } else if (IsLatinControl(c, next)) {
      printable += Escape(next);
      ++i;
    } else {
      printable += text[i];
    }
  }
  return printable;
}

void WriteMessage(std::ostream& err, Diag::MessageType severity, std::string_view text) {
  // Messages of exceptions of the library end their line themselves.
  const std::size_t end = text.find_last_not_of('\n') + 1;
  err << "kelproj: " << SeverityName(severity) << ": " << Printable(text.substr(0, end)) << '\n';
}

std::string Styled(const Console& console, Style style, const std::string& text) {
  return console.colour ? EscapeSequence(style) + text + "\x1b[0m" : text;
}

LibraryMessages::LibraryMessages(std::ostream& err, bool verbose)
    : former_(Diag::GlobalInst().SetHandler([&err, verbose](const Diag::DiagStorage& message) {
        if (!verbose && message.type() == Diag::MessageType::kInfo) return;
        WriteMessage(err, message.type(), message.text());
      })) {}

LibraryMessages::~LibraryMessages() { Diag::GlobalInst().SetHandler(std::move(former_)); }

}  // namespace kelproj
