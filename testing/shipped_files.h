#pragma once

#include <string>
#include <vector>

/// Files of the source tree.
namespace test_support {

/// @param path from the root of the source tree
std::string SourcePath(const std::string& path);

/// The schema that is installed with the library.
std::string ShippedSchema();

/// The project that the demonstration shows.
std::string SampleProject();

/// The project files that the fuzzing of loading begins with, in alphabetical order.
std::vector<std::string> CorpusProjects();

}  // namespace test_support
