#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <projectdb/project_contents.h>

#include "console.h"
#include "file_kinds.h"

namespace kelproj {

/// A file that a project names.
struct NamedFile {
  const FileKind* kind;
  std::string list;   ///< The key of the list that has it, such as "design.files".
  std::string place;  ///< Of its name in the project, such as "design.files[3]".
  std::string name;   ///< As it is stored.
  std::filesystem::path path;
  std::string version;  ///< Of its language; "" if its kind has none.
  std::string library;  ///< "" if its kind has none.

  /// Whether it is what an IP instance was made from, which is no source itself.
  bool is_ip_instance() const { return list == "ip"; }
};

/// All files that the project names, in the order of its lists.
std::vector<NamedFile> FilesOf(const projectdb::ProjectContents& project);

/// The name under which a project stores a file that the user names from where he stands: relative
/// to the project's directory. An absolute name stays.
std::string StoredName(const std::string& name, const std::filesystem::path& project_directory);

/// How the user names a file from where he stands.
std::string NameFromHere(const std::filesystem::path& path);

/// Whether a file is there; a directory is none.
bool IsFile(const std::filesystem::path& path);

/// Writes a warning for each of the names, seen from the directory, that is not that of a file.
void WarnOfMissingFiles(const Console& console, const std::filesystem::path& directory,
                        const std::vector<std::string>& names);

}  // namespace kelproj
