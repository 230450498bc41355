#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace kelproj {

/// A JSON text that was read. Each member of an object is found at once, however many there are.
using ParsedJson = nlohmann::json;

/// The value of a JSON text.
/// @exception Trouble, with the line and column, if the text is none; with the dotted path, if an
///            object has two members of one name, of which the value would keep the last alone
ParsedJson ParseJson(const std::string& text);

}  // namespace kelproj
