#include "tests/kelproj/kelproj_test.h"

namespace test_support {

std::string KelprojProgram() { return KELPROJ_PROGRAM; }

}  // namespace test_support
