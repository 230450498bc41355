#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Texts go to and from those of the system here. What is no text has a sign in its place.
namespace kelproj {

std::wstring Utf16From(std::string_view utf8);
std::string Utf8From(std::wstring_view utf16);

/// The line that a program takes apart into these words.
std::wstring CommandLineOf(const std::vector<std::string>& words);

}  // namespace kelproj
