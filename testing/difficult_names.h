#pragma once

#include <string>
#include <vector>

namespace test_support {

/// Names of files and directories that a URI or a locale could get wrong, as far as the system lets
/// a file have them.
std::vector<std::string> DifficultNames();

}  // namespace test_support
