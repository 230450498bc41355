#include "base/utf8.h"

#include <algorithm>
#include <iterator>

namespace projectdb::utf8 {
namespace {

using Byte = unsigned char;

/// Characters whose first bytes are up to a last one. Where there is a second byte, its range keeps
/// out encodings longer than needed, surrogates and what is beyond U+10FFFF.
struct Form {
  Byte last_first;
  Byte size;  ///< 0 if no character begins so.
  Byte smallest_second;
  Byte largest_second;
};

constexpr Form kForms[] = {{0x7F, 1, 0, 0},       {0xC1, 0, 0, 0},       {0xDF, 2, 0x80, 0xBF},
                           {0xE0, 3, 0xA0, 0xBF}, {0xEC, 3, 0x80, 0xBF}, {0xED, 3, 0x80, 0x9F},
                           {0xEF, 3, 0x80, 0xBF}, {0xF0, 4, 0x90, 0xBF}, {0xF3, 4, 0x80, 0xBF},
                           {0xF4, 4, 0x80, 0x8F}, {0xFF, 0, 0, 0}};

bool IsContinuation(char c) { return (static_cast<Byte>(c) & 0xC0U) == 0x80U; }

bool HasRest(std::string_view character, const Form& form) {
  const Byte second = static_cast<Byte>(character[1]);
  return second >= form.smallest_second && second <= form.largest_second &&
         std::all_of(character.begin() + 2, character.end(), IsContinuation);
}

}  // namespace

std::size_t LeadingCharacterSize(std::string_view text) {
  if (text.empty()) return 0;
  const Byte first = static_cast<Byte>(text.front());
  const auto covers = [first](const Form& form) { return first <= form.last_first; };
  const Form& form = *std::find_if(std::begin(kForms), std::end(kForms), covers);
  if (form.size < 2) return form.size;
  return text.size() >= form.size && HasRest(text.substr(0, form.size), form) ? form.size : 0;
}

bool IsValid(std::string_view text) {
  while (!text.empty()) {
    const std::size_t size = LeadingCharacterSize(text);
    if (size == 0) return false;
    text.remove_prefix(size);
  }
  return true;
}

}  // namespace projectdb::utf8
