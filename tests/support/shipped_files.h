#pragma once

#include <string>

/// Files of the source tree.
namespace test_support {

/// The schema that is installed with the library.
std::string ShippedSchema();

/// The project that the demonstration shows.
std::string SampleProject();

}  // namespace test_support
