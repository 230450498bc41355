#include "platform/local_time.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>

#include "base/control_characters.h"
#include "base/utf8.h"
#include "platform/calendar_time.h"

namespace projectdb {
namespace {

std::string Format(const std::tm& time, const std::locale& locale) {
  std::ostringstream out;
  // Streams swallow exceptions otherwise, and running out of memory would give an empty text.
  out.exceptions(std::ios::badbit);
  out.imbue(locale);
  out << std::put_time(&time, "%a %b %d %Y %X");
  return out.str();
}

// Encodings that shift between character sets are plain ASCII but for the escape characters.
bool HasControlCharacter(const std::string& text) {
  return std::any_of(text.begin(), text.end(), IsControl);
}

// The two code points U+FFFE and U+FFFF are no characters, and no project file can hold them.
bool HasNoncharacter(const std::string& text) {
  return text.find("\xEF\xBF\xBE") != std::string::npos ||
         text.find("\xEF\xBF\xBF") != std::string::npos;
}

bool CanBeStored(const std::string& text) {
  return utf8::IsValid(text) && !HasControlCharacter(text) && !HasNoncharacter(text);
}

}  // namespace

std::string GetLocalTimeString() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  const std::tm local = LocalCalendarTime(now);
  const std::string text = Format(local, std::locale());
  return CanBeStored(text) ? text : Format(local, std::locale::classic());
}

}  // namespace projectdb
