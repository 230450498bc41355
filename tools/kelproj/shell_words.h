#pragma once

#include <string>

namespace kelproj {

/// The word as a shell reads it whole.
std::string ShellQuoted(const std::string& word);

}  // namespace kelproj
