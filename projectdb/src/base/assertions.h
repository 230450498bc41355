#pragma once

#include <cstdint>
#include <string_view>

/// Checks of what this library's own code and its callers owe; a failure is a programming error.
namespace projectdb::assertions {

/// @exception kel_exception if the number is 0; the text names ParseMaxThreads as the place
void AssertDefaultIsPositive(std::uint64_t default_num);

/// Ends the process through the suite's internal-error routine if the pointer is null.
void AssertNotNull(const void* pointer, std::string_view condition);

}  // namespace projectdb::assertions
