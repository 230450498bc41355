#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <string_view>

#include <kel/diag.h>

namespace kelproj {

/// What the program ends with.
enum class ExitStatus {
  kYes = 0,     ///< Done; the answer is yes.
  kNo = 1,      ///< Done; the answer is no.
  kTrouble = 2  ///< Not done.
};

/// Why something was not done: one line, UTF-8.
class Trouble : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Why the answer is no, and nothing was done: one line, UTF-8.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Where a command writes to: data to out, messages to err.
struct Console {
  std::ostream& out;
  std::ostream& err;
  bool colour;  ///< Whether data for people may be coloured.
};

/// The text with control characters written as escapes: what a file holds cannot steer a terminal,
/// and takes one line.
std::string Printable(std::string_view text);

/// Writes one line "kelproj: severity: text".
void WriteMessage(std::ostream& err, Diag::MessageType severity, std::string_view text);

/// Emphasis of a text on a terminal.
enum class Style { kHeading, kRemoved, kAdded };

/// The text as it is, or between escape sequences if the console is coloured.
std::string Styled(const Console& console, Style style, const std::string& text);

/// Writes the library's messages to the stream while it lives; information only if verbose.
class LibraryMessages {
 public:
  LibraryMessages(std::ostream& err, bool verbose);
  ~LibraryMessages();
  LibraryMessages(const LibraryMessages&) = delete;
  LibraryMessages& operator=(const LibraryMessages&) = delete;

 private:
  Diag::DiagService::Handler former_;
};

}  // namespace kelproj
