#pragma once

#include <cstddef>
#include <string_view>

/// What UTF-8 is, the one answer for file names, time stamps and XML text.
namespace projectdb::utf8 {

/// The bytes of the character that the text begins with; 0 if it begins with none, as the empty
/// text does. Surrogates are no characters.
std::size_t LeadingCharacterSize(std::string_view text);

bool IsValid(std::string_view text);

}  // namespace projectdb::utf8
