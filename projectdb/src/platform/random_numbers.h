#pragma once

#include <array>
#include <cstdint>

namespace projectdb::files {

/// Numbers that nobody can foresee.
/// @exception Failure if the system gives none
std::array<std::uint64_t, 2> RandomNumbers();

}  // namespace projectdb::files
