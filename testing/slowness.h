#pragma once

#include <cstddef>

namespace test_support {

/// Tests that do the same with very many files do it with one of so many.
std::size_t StepOfManyFiles();

}  // namespace test_support
