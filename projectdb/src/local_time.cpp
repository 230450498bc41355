#include "local_time.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>

#include "utf8.h"

namespace projectdb {
namespace {

std::string Format(const std::tm& time, const std::locale& locale) {
  std::ostringstream out;
  out.imbue(locale);
  out << std::put_time(&time, "%a %b %d %Y %X");
  return out.str();
}

// Encodings that shift between character sets are plain ASCII but for the escape characters.
bool HasControlCharacter(const std::string& text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; });
}

}  // namespace

std::string GetLocalTimeString() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm local{};
  localtime_r(&now, &local);
  std::string text = Format(local, std::locale());
  if (utf8::IsValid(text) && !HasControlCharacter(text)) return text;
  return Format(local, std::locale::classic());
}

}  // namespace projectdb
