#include "testing/slowness.h"

namespace test_support {

// Under Wine a file takes ten times as long.
std::size_t StepOfManyFiles() { return 32; }

}  // namespace test_support
