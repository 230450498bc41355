#pragma once

#include <string_view>

/// UTF-8 text outside XML: file names and time stamps.
namespace projectdb::utf8 {

/// Whether the text converts to UTF-16.
bool IsValid(std::string_view text);

/// @exception std::range_error if the text is not UTF-8
void RequireValid(std::string_view text);

}  // namespace projectdb::utf8
