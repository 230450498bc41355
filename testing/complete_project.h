#pragma once

#include <filesystem>
#include <string>

#include <projectdb/project_contents.h>

/// One project with every section, every kind of entry and every parameter type, written out twice.
namespace test_support {

/// As a project file.
std::string CompleteProjectXml();

/// As what a load of that file gives.
/// @param directory in which the file lies
projectdb::ProjectContents CompleteProject(const std::filesystem::path& directory = "/work");

}  // namespace test_support
