#pragma once

#include <string>

namespace kelproj {

/// The schema that is installed with the program.
/// @param advice what the user can do about it if there is none
/// @exception Trouble if there is none
std::string InstalledSchema(const std::string& advice = "install the program whole");

}  // namespace kelproj
