#include "testing/slowness.h"

#include "testing/sanitizers.h"

namespace test_support {

std::size_t StepOfManyFiles() { return kSanitized ? 8 : 1; }

}  // namespace test_support
