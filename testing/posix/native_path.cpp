#include "testing/native_path.h"

namespace test_support {

std::filesystem::path NativePath(const std::string& name) { return name; }

}  // namespace test_support
