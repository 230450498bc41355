#include "base/utf8.h"

#include <algorithm>
#include <array>
#include <codecvt>
#include <cwchar>
#include <stdexcept>

namespace projectdb::utf8 {
namespace {

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

// The facet that paths are converted with where their native form is UTF-16; its answer decides
// everywhere, so that a project is accepted or refused alike on every platform.
bool FacetAccepts(std::string_view text) {
  static const std::codecvt_utf8_utf16<char16_t> facet;
  std::mbstate_t state{};
  std::array<char16_t, 256> units;
  const char* next = text.data();
  const char* const end = next + text.size();
  while (next != end) {
    const char* const start = next;
    char16_t* unit = units.data();
    const auto result =
        facet.in(state, start, end, next, units.data(), units.data() + units.size(), unit);
    if (result == std::codecvt_base::error || next == start) return false;
  }
  return true;
}

// The facet lets halves of surrogate pairs pass that each have an encoding of their own.
bool HasEncodedSurrogate(std::string_view text) {
  const auto is_one = [](char first, char second) { return first == '\xED' && second >= '\xA0'; };
  return std::adjacent_find(text.begin(), text.end(), is_one) != text.end();
}

}  // namespace

bool IsValid(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsAscii) ||
         (FacetAccepts(text) && !HasEncodedSurrogate(text));
}

void RequireValid(std::string_view text) {
  if (!IsValid(text)) throw std::range_error("a path is not UTF-8 text");
}

}  // namespace projectdb::utf8
