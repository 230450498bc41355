#pragma once

#include <string>

namespace test_support {

/// A text that no string holds without an allocation.
inline std::string Long(const std::string& text) { return text + std::string(60, '_'); }

}  // namespace test_support
