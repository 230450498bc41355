#include "verilog_numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

namespace kelproj {
namespace {

constexpr std::string_view kDecimalDigits = "0123456789";
constexpr std::string_view kHexadecimalDigits = "0123456789abcdefABCDEF";

/// How digits to a base are written behind the quote.
struct Base {
  std::string_view letters;
  std::string_view digits;
};

constexpr std::array<Base, 4> kBases = {
    {{"bB", "01"}, {"oO", "01234567"}, {"dD", kDecimalDigits}, {"hH", kHexadecimalDigits}}};

bool ConsistsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool BeginsWithOneOf(std::string_view text, std::string_view characters) {
  return ConsistsOf(text.substr(0, 1), characters);
}

// A size, which may be missing, a quote, the letter of the base and digits.
bool IsBasedNumber(std::string_view text) {
  const std::size_t quote = text.find('\'');
  if (quote == std::string_view::npos) return false;
  if (quote > 0 && !ConsistsOf(text.substr(0, quote), kDecimalDigits)) return false;
  std::string_view rest = text.substr(quote + 1);
  if (BeginsWithOneOf(rest, "sS")) rest.remove_prefix(1);
  return std::any_of(kBases.begin(), kBases.end(), [rest](const Base& base) {
    return BeginsWithOneOf(rest, base.letters) && ConsistsOf(rest.substr(1), base.digits);
  });
}

bool IsPlainNumber(std::string_view text) {
  // A name such as "inf" would be parsed too.
  if (!BeginsWithOneOf(text.substr(BeginsWithOneOf(text, "-") ? 1 : 0), kDecimalDigits)) {
    return false;
  }
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [parsed_to, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && parsed_to == end;
}

bool IsHexadecimalOfC(std::string_view text) {
  const std::string_view prefix = text.substr(0, 2);
  return (prefix == "0x" || prefix == "0X") && ConsistsOf(text.substr(2), kHexadecimalDigits);
}

}  // namespace

bool IsVerilogNumber(const std::string& text) {
  const std::string digits = WithoutUnderscores(text);
  // A name may begin with an underscore.
  if (BeginsWithOneOf(text, "_")) return false;
  return IsBasedNumber(digits) || IsPlainNumber(digits) || IsHexadecimalOfC(text);
}

std::string WithoutUnderscores(std::string number) {
  number.erase(std::remove(number.begin(), number.end(), '_'), number.end());
  return number;
}

}  // namespace kelproj
