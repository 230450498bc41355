#pragma once

#include <string>

namespace kelproj {

/// The schema that is installed with the program.
/// @exception Trouble if there is none
std::string InstalledSchema();

}  // namespace kelproj
