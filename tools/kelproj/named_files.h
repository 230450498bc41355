#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <projectdb/project_contents.h>

#include "console.h"

namespace kelproj {

/// A file that a project names.
struct NamedFile {
  std::string place;  ///< Of its name in the project, such as "design.files[3]".
  std::string name;   ///< As it is stored.
  std::filesystem::path path;
};

/// All files that the project names, in the order of its lists.
std::vector<NamedFile> FilesOf(const projectdb::ProjectContents& project);

/// Whether a file is there; a directory is none.
bool IsFile(const std::filesystem::path& path);

/// Writes a warning for each of the names, seen from the directory, that is not that of a file.
void WarnOfMissingFiles(const Console& console, const std::filesystem::path& directory,
                        const std::vector<std::string>& names);

}  // namespace kelproj
