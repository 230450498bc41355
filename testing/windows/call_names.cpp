#include "testing/call_names.h"

namespace test_support {

const char* NameOfWrite() { return "WriteFile"; }

const char* NameOfFlush() { return "FlushFileBuffers"; }

}  // namespace test_support
