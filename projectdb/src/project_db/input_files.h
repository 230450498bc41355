#pragma once

#include <string>

/// The files that a project is loaded from, before they are opened.
namespace projectdb {

/// @param name native path; one whose status cannot be read counts as missing, and so does a name
///        that no file can have
bool FileExists(const std::string& name);

/// Whether the name ends as that of a project file does.
bool HasProjectFileExtension(const std::string& name);

}  // namespace projectdb
