#include "testing/call_names.h"

namespace test_support {

const char* NameOfWrite() { return "write"; }

const char* NameOfFlush() { return "fsync"; }

}  // namespace test_support
