#pragma once

#include <string>

namespace kelproj {

/// Names the standard input among the arguments.
inline constexpr char kStandardInput[] = "-";

/// The bytes of a file.
/// @param title of the file in messages
/// @exception Trouble if they cannot be read
std::string ReadFile(const std::string& path, const std::string& title);

/// The bytes of a file, or of the standard input.
/// @exception Trouble if they cannot be read
std::string ReadInput(const std::string& name);

}  // namespace kelproj
