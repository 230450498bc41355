#pragma once

#include <string>

#include "json.h"

namespace kelproj {

/// The value of a JSON text.
/// @exception Trouble, with the line and column, if the text is none; with the dotted path, if an
///            object has two members of one name, of which the value would keep the last alone
Json ParseJson(const std::string& text);

}  // namespace kelproj
